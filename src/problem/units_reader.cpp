#include "problem/units_reader.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "base/textscan.h"
#include "problem/problem.h"

namespace morlen {

namespace {

void RequireFactor(const TextScan& text, const UnitsBase& base, double size, const char* message)
{
  if (IsFactor(size))
    return;
  Explain(LinePrefix(text, text.Here()), "the sizes of the system '", base.name, "' are ",
          base.facN, " and ", base.facM);
  Fatal(message);
}

// A number in as few digits as tell it from another, 6 or more.
std::string TextApart(double number, double other)
{
  const auto text = [](double value, int digits) {
    std::ostringstream out;
    out.precision(digits);
    out << value;
    return out.str();
  };
  int digits = 6;
  while (digits < 17 && number != other && text(number, digits) == text(other, digits))
    ++digits;
  return text(number, digits);
}

// One line "name nameN nameM namePa facN facM". A word of more characters than a name may have is
// cut: its rest is the next word.
struct Definition
{
  UnitsBase base = {};
  std::string_view tooLong = {};  ///< the first word that is cut; empty when there is none
  bool complete = false;
  std::string_view tail;  ///< the text after the names that are read

  explicit Definition(std::string_view line) : tail(UpToNull(line))
  {
    for (std::string* name : {&base.name, &base.nameN, &base.nameM, &base.namePa})
      *name = ScanName();
    const std::string_view numbers = tail;
    complete = ScanDouble(tail, base.facN) && ScanDouble(tail, base.facM);
    if (!complete)
      return;
    NoteNumbers(numbers.substr(0, numbers.size() - tail.size()), tail);
    Note(ReadEvent::LineTail, tail);
  }

private:
  std::string ScanName()
  {
    const std::string_view word = FirstWord(tail);
    if (word.size() > UnitsBase::kLongestName && tooLong.empty())
      tooLong = word;
    const std::string_view name = word.substr(0, UnitsBase::kLongestName);
    tail = {name.data() + name.size(), tail.data() + tail.size()};
    return std::string(name);
  }
};

// Explains a line without four names and two numbers.
void ExplainItems(int line, const Definition& definition)
{
  if (!definition.tooLong.empty())
    return Explain("line ", line, ": the name '", definition.tooLong, "' has more than ",
                   UnitsBase::kLongestName, " characters");
  Explain("line ", line, ": four names and two numbers are needed, such as 'kN_m kN m kPa 1000 1'");
}

// The block `units_names` while it is read.
class UnitsBlock
{
public:
  explicit UnitsBlock(Units& table) : units(table)
  {
    for (const UnitsBase& base : units.bases)
      lengths.emplace(base.nameM, base.facM);
  }

  void Read(TextScan& text, std::string_view line);
  // Units::AddUnitsBase merges a batch into the whole table. Batches that grow with the table keep
  // the total cost at n log n.
  void EnterLargeBatch()
  {
    constexpr std::size_t kBatch = 50;
    if (batch.size() >= std::max(kBatch, units.bases.size()))
      EnterBatch();
  }
  void EnterBatch();

private:
  const UnitsBase* Find(const std::string& name) const;
  void RequireSameContents(int line, const UnitsBase& base, const UnitsBase& known) const;

  Units& units;
  std::vector<UnitsBase> batch;
  std::unordered_map<std::string, std::size_t> inBatch;  ///< places in the batch by name
  std::unordered_map<std::string, double> lengths;       ///< factors of the length units by name
};

const UnitsBase* UnitsBlock::Find(const std::string& name) const
{
  const auto found = inBatch.find(name);
  return found == inBatch.end() ? units.FindUnitsBase(name) : &batch[found->second];
}

void UnitsBlock::RequireSameContents(int line, const UnitsBase& base, const UnitsBase& known) const
{
  if (base == known)
    return;
  Explain("line ", line, ": '", known.name, "' is already '", known.nameN, ' ', known.nameM, ' ',
          known.namePa, ' ', TextApart(known.facN, base.facN), ' ',
          TextApart(known.facM, base.facM), "'; give it once, or give one of the two ",
          "another name");
  Fatal("error: Unit name '", base.name, "' is defined twice with different contents\n");
}

void UnitsBlock::Read(TextScan& text, std::string_view line)
{
  const int number = text.LineOf(line.data());
  const Definition definition(line);
  if (!definition.complete) {
    ExplainItems(number, definition);
    Fatal("error: 'units_names' items should be: name nameN nameM namePa facN facM\n");
  }
  if (!definition.tooLong.empty()) {
    Explain("line ", number, ": it has ", definition.tooLong.size(),
            " characters; names have up to ", UnitsBase::kLongestName);
    Fatal("error: Unit name '", definition.tooLong, "' is too long\n");
  }
  const UnitsBase& base = definition.base;
  if (const UnitsBase* known = Find(base.name)) {
    RequireSameContents(number, base, *known);
    Note(ReadEvent::UnitsRepeated, line, known->name);
  }
  const double factor = lengths.emplace(base.nameM, base.facM).first->second;
  if (factor != base.facM) {
    Explain("line ", number, ": its factor is ", TextApart(base.facM, factor), " here and ",
            TextApart(factor, base.facM), " before");
    Fatal("error: Unit length name '", base.nameM, "' is defined twice with different factors\n");
  }
  inBatch.emplace(base.name, batch.size());
  batch.push_back(base);
}

void UnitsBlock::EnterBatch()
{
  units.AddUnitsBase(batch.data(), static_cast<int>(batch.size()));
  batch.clear();
  inBatch.clear();
}

}  // namespace

void ReadUnitsMesh(TextScan& text, const std::string& value, Problem& problem)
{
  const UnitsBase& base = *problem.units.GiveUnitsBaseFromLength(value);
  problem.units.meshLength = base.facM;
  RequireFactor(text, base, base.facM, "error: Units_mesh must be a positive number\n");
}

void ReadUnitsMatAndLoad(TextScan& text, const std::string& value, Problem& problem)
{
  Units& units = problem.units;
  const UnitsBase& base = *units.GiveUnitsBase(value);
  units.matLoadForce = base.facN;
  units.matLoadLength = base.facM;
  for (const double size : {units.matLoadForce, units.matLoadLength})
    RequireFactor(text, base, size, "error: units_mat_and_load must be two positive numbers\n");
}

void ReadUnitsRes(TextScan& text, const std::string& value, Problem& problem)
{
  Units& units = problem.units;
  const UnitsBase& base = *units.GiveUnitsBase(value);
  units.resForce = base.facN;
  units.resLength = base.facM;
  units.resForceName = base.nameN;
  units.resLengthName = base.nameM;
  units.resPressureName = base.namePa;
  for (const double size : {units.resForce, units.resLength})
    RequireFactor(text, base, size,
                  "error: units_res must be two positive numbers and three names\n");
}

void ReadUnitsNames(TextScan& text, Problem& problem)
{
  UnitsBlock block(problem.units);
  for (;;) {
    const int comment = text.TakeOutSpaces();
    if (comment == -1) {
      const std::string_view keyword = text.LastBlock().keyword;
      if (!keyword.empty())
        Explain("the block in line ", text.LineOf(keyword.data()),
                " has no line that begins with 'end'");
      Fatal("error: 'units_names' should finish with the 'end' word\n");
    }
    if (comment == 1) {
      text.ReadRestOfLine();
      continue;
    }
    if (HasPrefix(text.TextAhead(), "end")) {
      const std::string_view line = text.ReadRestOfLine();
      Note(ReadEvent::SkippedToBlockEnd, line.substr(0, 0));
      text.LeaveBlock(line.data());
      return block.EnterBatch();
    }
    Attempt(&text, [&] { block.Read(text, text.ReadRestOfLine()); });
    block.EnterLargeBatch();
  }
}

void RequirePositiveFactors(const Problem& problem)
{
  for (const UnitsBase& base : problem.units.bases)
    problem.units.RatiosOf(base);
}

}  // namespace morlen
