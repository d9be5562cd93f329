#include "model/units.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/errorwriter.h"
#include "base/nearest_word.h"
#include "base/read_observer.h"
#include "base/textscan.h"

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

// Explains a name that is not among those defined. defined: the names, each may occur often.
void ExplainUndefined(std::string_view name, std::vector<std::string_view> defined)
{
  if (name.starts_with('#'))
    return Explain("a comment cannot be between a keyword and its value");
  if (defined.empty())
    return Explain("no unit system is defined yet: the block 'units_names' comes first");
  std::sort(defined.begin(), defined.end());
  defined.erase(std::unique(defined.begin(), defined.end()), defined.end());
  const std::string_view nearest = NearestWord(name, defined);
  if (EqualsNoCase(nearest, name))
    return Explain("did you mean '", nearest, "'? Upper and lower case differ");
  const std::string_view beforeComment = name.substr(0, name.find('#'));
  if (std::binary_search(defined.begin(), defined.end(), beforeComment))
    return Explain("a comment needs a blank in front of its '#'");
  constexpr std::size_t kMost = 8;
  std::string list;
  for (std::size_t i = 0; i < std::min(kMost, defined.size()); ++i)
    list += (i == 0 ? "'" : ", '") + std::string(defined[i]) + "'";
  if (defined.size() > kMost)
    list += " and more";
  if (!nearest.empty())
    return Explain("did you mean '", nearest, "'? Defined so far: ", list);
  Explain("defined so far: ", list);
}

// Names of the first systems of a table, enough for a hint.
std::vector<std::string_view> NamesOf(const std::vector<UnitsBase>& bases,
                                      std::string UnitsBase::*name)
{
  constexpr std::size_t kEnough = 200;
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < std::min(kEnough, bases.size()); ++i)
    names.push_back(bases[i].*name);
  return names;
}

// The first unit system that has this name for one of its units; null when there is none.
const UnitsBase* FindUnit(const std::vector<UnitsBase>& bases, std::string UnitsBase::*unit,
                          std::string_view name)
{
  const auto found = std::find_if(bases.begin(), bases.end(),
                                  [&](const UnitsBase& base) { return base.*unit == name; });
  return found == bases.end() ? nullptr : &*found;
}

void ExplainUndefinedSystem(std::string_view name, const std::vector<UnitsBase>& bases)
{
  const std::pair<std::string UnitsBase::*, const char*> units[] = {
      {&UnitsBase::nameM, "length"},
      {&UnitsBase::nameN, "force"},
      {&UnitsBase::namePa, "pressure"}};
  for (const auto& [unit, kind] : units) {
    if (const UnitsBase* base = FindUnit(bases, unit, name))
      return Explain("'", name, "' is the ", kind, " unit of the system '", base->name,
                     "': a system is named here");
  }
  ExplainUndefined(name, NamesOf(bases, &UnitsBase::name));
}

void ExplainUndefinedLength(std::string_view name, const UnitsBase* system,
                            const std::vector<UnitsBase>& bases)
{
  if (system)
    Explain("'", name, "' is a unit system: units_mesh takes its length unit, '", system->nameM,
            "'");
  else
    ExplainUndefined(name, NamesOf(bases, &UnitsBase::nameM));
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
  if (!IsFactor(given.facN) || !IsFactor(given.facM)) {
    Explain("its sizes in 'units_names' are ", given.facN, " and ", given.facM);
    Fatal("error: Unit name '", given.name, "' must have two positive numbers\n");
  }
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

const UnitsBase* Units::FindUnitsBase(std::string_view name) const
{
  const auto found =
      std::lower_bound(bases.begin(), bases.end(), name,
                       [](const UnitsBase& base, std::string_view key) { return base.name < key; });
  return found == bases.end() || found->name != name ? nullptr : &*found;
}

const UnitsBase* Units::GiveUnitsBase(std::string_view name) const
{
  if (name.size() > UnitsBase::kLongestName) {
    Explain("it has ", name.size(), " characters; names of unit systems have up to ",
            UnitsBase::kLongestName);
    Fatal("error: Unit name '", name, "' is too long\n");
  }
  const UnitsBase* const found = FindUnitsBase(name);
  if (!found) {
    ExplainUndefinedSystem(name, bases);
    Fatal("error: Unit name '", name, "' has not been previously defined\n");
  }
  Note(ReadEvent::UnitsUsed, found->name);
  return found;
}

const UnitsBase* Units::GiveUnitsBaseFromLine(std::string_view line) const
{
  constexpr std::size_t kLongest = 99;
  std::string_view name = AfterUnitsWord(BeforeComment(line));
  const std::size_t start = name.find_first_not_of(" \t=:\r\n\v\f");
  if (start == std::string_view::npos)
    return nullptr;
  name = name.substr(start, kLongest);
  return GiveUnitsBase(name.substr(0, name.find_first_of(" \t\r\n\v\f")));
}

const UnitsBase* Units::GiveUnitsBaseFromLength(std::string_view name) const
{
  const UnitsBase* const found = FindUnit(bases, &UnitsBase::nameM, name);
  if (!found) {
    ExplainUndefinedLength(name, FindUnitsBase(name), bases);
    Fatal("error: Unit length name '", name, "' has not been previously defined\n");
  }
  Note(ReadEvent::UnitsUsed, found->name);
  return found;
}

}  // namespace morlen
