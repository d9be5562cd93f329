#include "case_file/envelope_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <utility>

#include "case_file/case_facts.h"
#include "case_file/names.h"
#include "cases/envelope.h"
#include "check/joined.h"
#include "common/atomic_file.h"
#include "common/tables.h"
#include "common/utf8.h"
#include "export/csv.h"
#include "export/json.h"
#include "problem/problem.h"

namespace morlen::cases {
namespace {

using tables::Cell;
using tables::Column;

/// The table of a group: its name, its columns, and the order of its values in them.
struct GroupTable
{
  const char* name;
  const char* owner;  ///< "node" or "element"
  bool hasPoints;
  std::vector<Column> values;
  std::vector<int> order;  ///< positions of the values in a point
};

class Layouts
{
public:
  explicit Layouts(const model::Model& forModel) : model(forModel), units(model.units) {}

  /// Nothing for kinds that have no envelope.
  std::optional<GroupTable> Of(ValueKind kind) const
  {
    GroupTable table = Named(kind);
    if (table.values.empty())
      return std::nullopt;
    table.order.resize(table.values.size());
    std::iota(table.order.begin(), table.order.end(), 0);
    if (kind == ValueKind::SolidStresses)
      std::swap(table.order[4], table.order[5]);  // yz before xz
    return table;
  }

private:
  using Names = std::initializer_list<const char*>;

  static void Add(GroupTable& table, Names names, const std::string& unit)
  {
    for (const char* name : names)
      table.values.push_back({name, unit});
  }

  // The components of a node.
  void AddNode(GroupTable& table, Names planeNames, Names spaceNames, const std::string& first,
               const std::string& second) const
  {
    const Names& names = model.plane && !model.solids ? planeNames : spaceNames;
    for (int k = 0; k < model.components; ++k)
      table.values.push_back({names.begin()[k], k < model.Translations() ? first : second});
  }

  GroupTable Named(ValueKind kind) const
  {
    GroupTable table{"", "node", false, {}, {}};
    switch (kind) {
      case ValueKind::Displacements:
        table.name = "displacements";
        AddNode(table, {"ux", "uy", "rz"}, {"ux", "uy", "uz", "rx", "ry", "rz"}, units.Length(),
                "rad");
        Add(table, {"u"}, units.Length());
        break;
      case ValueKind::Reactions:
        table.name = "reactions";
        AddNode(table, {"Px", "Py", "M"}, {"Px", "Py", "Pz", "Mx", "My", "Mz"}, units.Force(),
                units.Moment());
        break;
      case ValueKind::BeamForces:
        table = {"beam_forces", "element", true, {}, {}};
        Add(table, model.plane ? Names{"N", "Vy"} : Names{"N", "Vy", "Vz"}, units.Force());
        Add(table, model.plane ? Names{"Mz"} : Names{"T", "My", "Mz"}, units.Moment());
        break;
      case ValueKind::ShellForces:
        table = {"shell_forces", "element", true, {}, {}};
        Add(table, {"Nx'", "Ny'", "Nxy'"}, units.ForcePer(1));
        Add(table, {"Mx'", "My'", "Mxy'"}, units.MomentPerLength());
        Add(table, {"Qx'", "Qy'", "N1", "N2"}, units.ForcePer(1));
        Add(table, {"M1", "M2", "mx+", "my+", "mx-", "my-"}, units.MomentPerLength());
        break;
      case ValueKind::SolidStresses:
        table.name = "stresses";
        Add(table, {"Sx", "Sy", "Sz", "Txy", "Tyz", "Txz", "von_Mises", "S1", "S2", "S3"},
            units.Pressure());
        break;
      default:
        break;
    }
    return table;
  }

  const model::Model& model;
  tables::UnitTexts units;
};

/// The ten items with the largest values of each component. Values that differ by rounding count as
/// equal, and the first of them comes first: the order is the same on every machine.
class Largest
{
public:
  void Enter(int number, int point, int column, const Extreme& extreme, int combination)
  {
    if (columns.size() <= static_cast<std::size_t>(column))
      columns.resize(static_cast<std::size_t>(column) + 1);
    Best& best = columns[column][number];
    if (best.combination < 0 || Size(extreme.value) > Size(best.value))
      best = {extreme.value, number, point, combination};
  }

  struct Best
  {
    double value = 0.0;
    int number = 0;
    int point = 0;
    int combination = -1;
  };

  std::vector<Best> Ten(std::size_t column) const
  {
    constexpr std::size_t kMost = 10;
    std::vector<Best> list;
    for (const auto& [number, best] : columns[column])
      list.push_back(best);
    std::stable_sort(list.begin(), list.end(),
                     [](const Best& a, const Best& b) { return Size(a.value) > Size(b.value); });
    list.resize(std::min(list.size(), kMost));
    return list;
  }

  std::size_t Columns() const { return columns.size(); }

private:
  // Without the last digits: a double has 52 binary places.
  static double Size(double value)
  {
    constexpr int kPlaces = 32;
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(value), &exponent);
    return std::ldexp(std::round(std::ldexp(fraction, kPlaces)), exponent - kPlaces);
  }

  std::vector<std::map<int, Best>> columns;  ///< the best of each item, by its number
};

nlohmann::ordered_json MembersOf(const Study& study, const Combination& combination)
{
  nlohmann::ordered_json factors = nlohmann::ordered_json::object();
  for (const CaseFactor& one : combination.factors)
    factors[ToUtf8(study.combinations[one.index].name)] = one.factor;
  return {{"name", ToUtf8(combination.name)}, {"factors", factors}};
}

std::string JsonOfEnvelope(const Study& study, const SolvedCases& cases, const Envelope& envelope)
{
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const int member : envelope.members)
    list.push_back(MembersOf(study, study.combinations[member]));
  return check::Joined(
      "\"name\":", nlohmann::ordered_json(ToUtf8(envelope.name)).dump(),
      ",\"combinations\":", list.dump(),
      ",\"run\":", morlen::JsonOf({KnownRun::State::Matches, FactsOfAll(cases, *study.problem)}));
}

/// Writes the files of one envelope.
class Writer
{
public:
  Writer(const Study& study_, const SolvedCases& cases_, const Envelope& envelope_,
         const EnvelopeFormats& formats_, const std::filesystem::path& folder_, AtomicFile::By by_)
      : study(study_),
        cases(cases_),
        envelope(envelope_),
        formats(formats_),
        folder(folder_),
        by(by_)
  {
    for (const int member : envelope.members)
      combinations.push_back(study.combinations[member]);
  }

  std::vector<Peak> Write()
  {
    if (formats.json)
      json.emplace(FileWith(".json"),
                   JsonTables::Head{"morlen-envelope", "morlen-cases",
                                    JsonOfEnvelope(study, cases, envelope)},
                   study.model, study.modelFile, by);
    summary = check::Joined("Envelope ", envelope.name, "\n\n");
    for (const Combination& one : combinations)
      summary += check::Joined("  ", one.name, " = ", TextOf(study, one), "\n");
    const Layouts layouts(study.model);
    // Meshes of one kind share a table.
    for (const ValueKind kind :
         {ValueKind::Displacements, ValueKind::Reactions, ValueKind::BeamForces,
          ValueKind::ShellForces, ValueKind::SolidStresses})
      WriteKind(kind, layouts);
    if (json)
      json->Commit();
    AtomicFile file(FileWith(".summary.txt"), by);
    file.Write(summary);
    file.Commit();
    return std::move(peaks);
  }

private:
  std::filesystem::path FileWith(const std::string& ending) const
  {
    return folder / (FileNameOf(envelope.name) + ending);
  }

  std::filesystem::path CsvOf(const GroupTable& table) const
  {
    return FileWith(std::string(".") + table.name + ".csv");
  }

  void WriteKind(ValueKind kind, const Layouts& layouts)
  {
    const std::optional<GroupTable> table = layouts.Of(kind);
    bool begun = false;
    std::optional<CsvFile> csv;
    Largest largest;
    for (const ValueGroup& group : cases.Layout().Groups()) {
      if (group.kind != kind || group.items == 0)
        continue;
      if (!begun)
        Begin(*table, csv);
      begun = true;
      WriteGroup(group, *table, csv, largest);
    }
    if (!begun) {
      if (formats.csv)
        RemoveStale(CsvOf(*table), by);
      return;
    }
    if (csv)
      csv->Commit();
    if (json)
      json->End();
    Summarise(*table, largest);
  }

  void Begin(const GroupTable& table, std::optional<CsvFile>& csv)
  {
    std::vector<Column> columns = {{table.owner, ""}};
    if (table.hasPoints)
      columns.push_back({"point", ""});
    for (const char* name : {"component", "extreme", "combination"})
      columns.push_back({name, ""});
    columns.insert(columns.end(), table.values.begin(), table.values.end());
    if (formats.csv)
      csv.emplace(CsvOf(table), columns, by);
    if (json)
      json->Begin(table.name, columns);
  }

  void WriteGroup(const ValueGroup& group, const GroupTable& table, std::optional<CsvFile>& csv,
                  Largest& largest)
  {
    std::vector<int> columnOf(table.order.size());
    for (std::size_t k = 0; k < table.order.size(); ++k)
      columnOf[table.order[k]] = static_cast<int>(k);
    std::vector<Cell> row;
    const auto write = [&](const EnvelopePoint& at, const char* which, const Extreme& extreme) {
      const int number = cases.Layout().NumberOf(group, at.item);
      const int column = columnOf[at.component];
      largest.Enter(number, at.point + 1, column, extreme, extreme.combination);
      row.clear();
      row.push_back(number);
      if (table.hasPoints)
        row.push_back(at.point + 1);
      row.push_back(table.values[column].name.c_str());
      row.push_back(which);
      row.push_back(combinations[extreme.combination].name.c_str());
      for (const int k : table.order)
        row.push_back(extreme.values[k]);
      if (csv)
        csv->Row(row);
      if (json)
        json->Row(row);
    };
    ForEachEnvelopePoint(cases, group, combinations, [&](const EnvelopePoint& at) {
      write(at, "min", at.minimum);
      write(at, "max", at.maximum);
    });
  }

  void Summarise(const GroupTable& table, const Largest& largest)
  {
    for (std::size_t column = 0; column < largest.Columns(); ++column) {
      const Column& value = table.values[column];
      summary += check::Joined(
          "\n", table.name, ": largest ", value.name,
          value.unit.empty() ? std::string() : check::Joined(" [", value.unit, "]"), "\n");
      const std::vector<Largest::Best> ten = largest.Ten(column);
      const Largest::Best& first = ten.front();  // a column has an item at least
      peaks.push_back({table.name, value.name, value.unit, first.value, first.number,
                       combinations[first.combination].name});
      for (const Largest::Best& best : ten) {
        char line[120];
        std::snprintf(line, sizeof line, "  %12.5g  %s %d", best.value, table.owner, best.number);
        summary += line;
        if (table.hasPoints) {
          std::snprintf(line, sizeof line, ", point %d", best.point);
          summary += line;
        }
        summary += check::Joined("  ", combinations[best.combination].name, "\n");
      }
    }
  }

  const Study& study;
  const SolvedCases& cases;
  const Envelope& envelope;
  const EnvelopeFormats& formats;
  const std::filesystem::path& folder;
  AtomicFile::By by;
  std::vector<Combination> combinations;
  std::optional<JsonTables> json;
  std::string summary;
  std::vector<Peak> peaks;
};

}  // namespace

std::string JsonOf(const Study& study, const Combination& combination)
{
  const std::string object = MembersOf(study, combination).dump();
  return object.substr(1, object.size() - 2);
}

std::vector<Peak> WriteEnvelope(const Study& study, const SolvedCases& cases,
                                const Envelope& envelope, const EnvelopeFormats& formats,
                                const std::filesystem::path& folder, AtomicFile::By writer)
{
  return Writer(study, cases, envelope, formats, folder, writer).Write();
}

}  // namespace morlen::cases
