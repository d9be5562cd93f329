#include "model/units.h"

#include <algorithm>
#include <cmath>

#include "base/errorwriter.h"
#include "base/read_observer.h"

namespace morlen {

namespace {

bool Precedes(const UnitsBase& a, const UnitsBase& b)
{
  return CompareUnitsBase(a, b) < 0;
}

// The rest of a line after its word "units"; empty without such a word.
std::string_view AfterUnitsWord(std::string_view line)
{
  for (const std::string_view word : {"units", "Units", "UNITS"}) {
    const std::size_t at = line.find(word);
    if (at != std::string_view::npos)
      return line.substr(at + word.size());
  }
  return {};
}

}  // namespace

bool IsFactor(double size)
{
  return size > 0.0 && std::isfinite(size);
}

int CompareUnitsBase(const UnitsBase& a, const UnitsBase& b)
{
  return a.name.compare(b.name);
}

double Units::Ratios::Of(int forcePower, int lengthPower) const
{
  return std::pow(force, forcePower) * std::pow(length, lengthPower);
}

Units::Ratios Units::RatiosOf(const UnitsBase& given) const
{
  if (!IsFactor(given.facN) || !IsFactor(given.facM))
    Fatal("error: Unit name '", given.name, "' must have two positive numbers\n");
  return {given.facN / resForce, given.facM / resLength};
}

// Sorts only the new entries, then merges: a long table that comes in many small parts costs
// no sort of the whole each time.
void Units::AddUnitsBase(const UnitsBase* list, int n)
{
  const auto added = bases.insert(bases.end(), list, list + n);
  std::sort(added, bases.end(), Precedes);
  std::inplace_merge(bases.begin(), added, bases.end(), Precedes);
}

const UnitsBase* Units::GiveUnitsBase(std::string_view name) const
{
  constexpr std::size_t kTooLong = 20;
  if (name.size() >= kTooLong)
    Fatal("error: Unit name '", name, "' is too long\n");
  const auto found =
      std::lower_bound(bases.begin(), bases.end(), name,
                       [](const UnitsBase& base, std::string_view key) { return base.name < key; });
  if (found == bases.end() || found->name != name)
    Fatal("error: Unit name '", name, "' has not been previously defined\n");
  Note(ReadEvent::UnitsUsed, found->name);
  return &*found;
}

const UnitsBase* Units::GiveUnitsBaseFromLine(std::string_view line) const
{
  constexpr std::size_t kLongest = 99;
  std::string_view name = AfterUnitsWord(line);
  const std::size_t start = name.find_first_not_of(" =:\r\n");
  if (start == std::string_view::npos)
    return nullptr;
  name = name.substr(start, kLongest);
  return GiveUnitsBase(name.substr(0, name.find_first_of(" \r\n")));
}

const UnitsBase* Units::GiveUnitsBaseFromLength(std::string_view name) const
{
  const auto found = std::find_if(bases.begin(), bases.end(),
                                  [name](const UnitsBase& base) { return base.nameM == name; });
  if (found == bases.end())
    Fatal("error: Unit length name '", name, "' has not been previously defined\n");
  Note(ReadEvent::UnitsUsed, found->name);
  return &*found;
}

}  // namespace morlen
