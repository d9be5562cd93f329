// The data of a page with load cases.
//
// Forces and displacements along a beam under uniform loads are polynomials of at most the fourth
// degree, so that at most five points of a beam determine all of them (interpolation by Lagrange).
// This makes the size of the page independent of the number of division points.

#include "report/case_data.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>
#include <utility>

#include "common/tables.h"
#include "common/utf8.h"
#include "problem/problem.h"
#include "report/packed.h"

namespace morlen {

using Json = nlohmann::ordered_json;

namespace {

using tables::Cell;
using tables::Table;

const std::set<std::string_view> kKeys = {"node", "element", "point"};
/// Columns without data in the page, whose script derives them from the combined values.
const std::set<std::string_view> kDerived = {"u",   "N1",  "N2", "M1",        "M2", "mx+", "my+",
                                             "mx-", "my-", "S1", "von_Mises", "S2", "S3"};
const std::set<std::string_view> kOfCase = {"supports", "nodal_loads", "element_loads"};
const std::set<std::string_view> kOfModel = {"nodes", "elements", "materials"};

double NumberIn(const Cell& cell)
{
  const double* number = std::get_if<double>(&cell);
  return number ? *number : 0.0;
}

std::vector<double> ColumnOf(const Table& table, std::size_t column)
{
  std::vector<double> values;
  values.reserve(table.Rows());
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size())
    values.push_back(NumberIn(table.cells[i]));
  return values;
}

Table OneColumn(const Table& table, std::size_t column)
{
  Table one{table.name, {table.columns[column]}, {}};
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size())
    one.Put(table.cells[i]);
  return one;
}

// The weights with which values at chosen points give that at another point.
std::vector<double> WeightsAt(int point, const std::vector<int>& chosen)
{
  std::vector<double> weights;
  for (const int own : chosen) {
    double weight = 1.0;
    for (const int other : chosen) {
      if (other != own)
        weight *= static_cast<double>(point - other) / (own - other);
    }
    weights.push_back(weight);
  }
  return weights;
}

bool Determine(const std::vector<int>& chosen, std::span<const double> values, int points,
               double tolerance)
{
  for (int point = 0; point < points; ++point) {
    const std::vector<double> weights = WeightsAt(point, chosen);
    for (std::size_t first = 0; first < values.size(); first += points) {
      double sum = 0.0;
      for (std::size_t k = 0; k < chosen.size(); ++k)
        sum += weights[k] * values[first + chosen[k]];
      if (!(std::fabs(sum - values[first + point]) <= tolerance))
        return false;
    }
  }
  return true;
}

// The values of a case in a column; nothing when all are 0. points: of a beam; 0 for other tables.
Json PackedValues(const std::vector<double>& values, int points)
{
  if (std::all_of(values.begin(), values.end(), [](double value) { return value == 0.0; }))
    return nullptr;
  if (points == 0)
    return PackedExactly(values);
  const int count = CountOfPoints(values, points);
  std::vector<double> kept;
  for (std::size_t first = 0; first < values.size(); first += points) {
    for (const int point : ChosenPoints(count, points))
      kept.push_back(values[first + point]);
  }
  Json packed = PackedExactly(kept);
  packed["points"] = count;
  return packed;
}

// A table of results without its values: the columns that name its rows, those that each case has
// ("cases", still empty), and those that the page derives.
Json HeadOf(const Table& table)
{
  Json columns = Json::array();
  for (std::size_t k = 0; k < table.columns.size(); ++k) {
    const auto& [name, unit] = table.columns[k];
    if (kKeys.contains(name))
      columns.push_back(Packed(OneColumn(table, k))["columns"][0]);
    else if (kDerived.contains(name))
      columns.push_back({{"name", name}, {"unit", unit}});
    else
      columns.push_back({{"name", name}, {"unit", unit}, {"cases", Json::array()}});
  }
  return {{"name", table.name}, {"rows", table.Rows()}, {"columns", std::move(columns)}};
}

std::string NameOf(const cases::Study& study, int combination)
{
  return ToUtf8(study.combinations[combination].name);
}

Json CombinationsOf(const cases::Study& study)
{
  Json list = Json::array();
  for (std::size_t k = study.cases; k < study.combinations.size(); ++k) {
    Json factors = Json::array();
    for (const CaseFactor& one : study.combinations[k].factors)
      factors.push_back({one.index, one.factor});
    list.push_back({{"name", NameOf(study, static_cast<int>(k))}, {"factors", factors}});
  }
  return list;
}

Json EnvelopesOf(const cases::Study& study)
{
  Json list = Json::array();
  for (const cases::Envelope& one : study.envelopes)
    list.push_back({{"name", ToUtf8(one.name)}, {"members", one.members}});
  return list;
}

}  // namespace

int CountOfPoints(std::span<const double> values, int points)
{
  double largest = 0.0;
  for (const double value : values)
    largest = std::max(largest, std::fabs(value));
  constexpr double kRounding = 1e-12;
  for (int count = 2; count <= 5 && count < points; ++count) {
    if (Determine(ChosenPoints(count, points), values, points, kRounding * largest))
      return count;
  }
  return points;
}

std::vector<int> ChosenPoints(int count, int points)
{
  std::vector<int> chosen;
  for (int k = 0; k < count; ++k)
    chosen.push_back(k * (points - 1) / (count - 1));
  return chosen;
}

std::vector<CaseActions> ActionsOf(cases::Study& study)
{
  Problem& problem = *study.problem;
  PrepareLoads(problem);
  std::vector<CaseActions> all;
  for (LoadSet& loads : study.loads) {
    const LoadsInPlace inPlace(problem, loads);
    model::Model model = model::ModelOf(problem);
    AppliedLoads applied = AppliedLoadsOf(problem, model);
    all.push_back({std::move(model.supports), std::move(model.nodalLoads),
                   std::move(model.elementLoads), std::move(applied)});
  }
  return all;
}

struct CasePageData::Parts
{
  Json data;
  Json cases = Json::array();
  Json results = Json::array();  ///< the tables of results
};

CasePageData::CasePageData(const cases::Study& study_, const std::string& file,
                           const std::vector<std::string>& description,
                           const std::vector<Finding>& check, const KnownRun& run)
    : study(study_), model(study.model), parts(std::make_unique<Parts>())
{
  parts->data = ModelParts(file, description, model, check, run);
  parts->data["tables"] = Json::array();
}

CasePageData::~CasePageData() = default;

void CasePageData::Add(const CaseActions& actions, const results::Results& results)
{
  model.supports = actions.supports;
  model.nodalLoads = actions.nodalLoads;
  model.elementLoads = actions.elementLoads;
  const std::size_t index = parts->cases.size();
  Json one = {{"name", NameOf(study, static_cast<int>(index))},
              {"title", ToUtf8(study.titles[index])},
              {"loads", LoadsPart(actions.applied)},
              {"tables", Json::array()}};
  std::size_t place = 0;
  for (const Table& whole : tables::AllTables(model, results)) {
    if (whole.Rows() == 0)
      continue;
    if (kOfCase.contains(whole.name)) {
      one["tables"].push_back(Packed(whole));
    } else if (kOfModel.contains(whole.name)) {
      if (index == 0)
        parts->data["tables"].push_back(Packed(whole));
    } else {
      const Table table = TableOfPage(whole, model.Translations());
      if (index == 0)
        parts->results.push_back(HeadOf(table));
      const int points = table.name == "beam_diagrams" ? model.beamDivisions + 1 : 0;
      Json& columns = parts->results[place++]["columns"];
      for (std::size_t k = 0; k < table.columns.size(); ++k) {
        if (columns[k].contains("cases"))
          columns[k]["cases"].push_back(PackedValues(ColumnOf(table, k), points));
      }
    }
  }
  parts->cases.push_back(std::move(one));
}

std::string CasePageData::Text(std::span<const Equilibrium> balances,
                               std::span<const std::string> advice) const
{
  Json all = parts->cases;
  for (std::size_t k = 0; k < all.size(); ++k)
    all[k]["equilibrium"] = BalancePart(balances[k], advice[k]);
  Json data = parts->data;
  data["study"] = {{"cases", std::move(all)},
                   {"combinations", CombinationsOf(study)},
                   {"envelopes", EnvelopesOf(study)},
                   {"tables", parts->results}};
  return PageText(data);
}

}  // namespace morlen
