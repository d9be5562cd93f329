#include "cases.h"

#include <algorithm>
#include <limits>
#include <system_error>
#include <utility>

#include "arrays.h"
#include "base/interruption.h"
#include "cases/envelope.h"
#include "problem/beam_span.h"
#include "problem/load_set.h"
#include "problem/loads_on_element.h"
#include "problem/pressure_load.h"
#include "problem/problem_file.h"
#include "problem/problem_image.h"
#include "run/element_families.h"

namespace morlen::python {

namespace {

template <std::size_t size>
void CopyText(std::string_view from, char (&to)[size])
{
  to[from.copy(to, size - 1)] = '\0';
}

[[noreturn]] void Refuse(const check::Located& problem)
{
  RefusedCases refused;
  CopyText(problem.file.empty() ? problem.message : problem.file + ": " + problem.message,
           refused.error.message);
  CopyText(problem.hint, refused.error.hint);
  refused.place = {problem.line, problem.column};
  throw refused;
}

// The error with a hint for those who read a problem file as a file of load cases.
check::Located OfProblemFile(check::Located problem)
{
  problem.hint = "this is a problem file, not a file of load cases: morlen.read reads it";
  return problem;
}

// The loads along the beams as loads that can be described, and so stored.
LoadSet SpanLoadsOf(const Problem& problem, LoadSet sums)
{
  Matriu T;
  for (LoadSet::OnElement& on : sums.onElements) {
    SpanLoad sum;
    on.chain->AddToSpanLoad(MakeSpan(problem, *problem.GiveElem(on.number), T), sum);
    auto forces = std::make_unique<PreassureLT>(PreassureLT_type::Local);
    std::copy_n(sum.q, 4, forces->values);
    auto strain = std::make_unique<TemperatureLT>();
    strain->values[0] = sum.strain;
    strain->values[1] = 1.0;
    forces->Append(std::move(strain));
    on.chain = std::move(forces);
  }
  return sums;
}

SolutionAccuracy WorstAccuracy(const SolvedCases& cases, const Combination& combination)
{
  SolutionAccuracy worst;
  for (const CaseFactor& one : combination.factors) {
    worst.error = std::max(worst.error, cases.Accuracy(one.index).error);
    worst.residual = std::max(worst.residual, cases.Accuracy(one.index).residual);
  }
  return worst;
}

// The place of a component in its row: as in the results of one case.
int PlaceOf(const ValueGroup& group, int component)
{
  constexpr int kPlaneForces[] = {0, 1, 5};
  constexpr int kStresses[] = {0, 1, 2, 3, 5, 4};  // xz comes before yz
  if (group.kind == ValueKind::BeamForces && group.linear == 3)
    return kPlaneForces[component];
  if (group.kind == ValueKind::SolidStresses && component < kSolidStress)
    return kStresses[component];
  return component;
}

int WidthOf(const ValueGroup& group)
{
  return group.kind == ValueKind::BeamForces ? kBeamForces : group.Width();
}

/// Fills the table of the groups of one kind.
class TableFiller
{
public:
  TableFiller(const CaseResults& all_, ValueKind kind) : all(all_)
  {
    for (const ValueGroup& group : all.Solved().Layout().Groups()) {
      if (group.kind != kind)
        continue;
      groups.push_back(&group);
      table.points = std::max(table.points, group.points);
      table.width = std::max(table.width, WidthOf(group));
      for (int item = 0; item < group.items; ++item)
        table.numbers.push_back(all.Solved().Layout().NumberOf(group, item));
    }
    const std::size_t size = table.numbers.size() * table.points * table.width;
    table.minimum.assign(size, std::numeric_limits<double>::quiet_NaN());
    table.maximum = table.minimum;
    table.minimumBy.assign(size, -1);
    table.maximumBy = table.minimumBy;
  }

  EnvelopeTable Fill(std::span<const Combination> combinations)
  {
    std::size_t before = 0;
    for (const ValueGroup* group : groups) {
      FillZeros(*group, before);
      ForEachEnvelopePoint(all.Solved(), *group, combinations, [&](const EnvelopePoint& at) {
        CheckInterruption();
        const std::size_t place = Row(before + at.item, at.point) + PlaceOf(*group, at.component);
        table.minimum[place] = at.minimum.value;
        table.maximum[place] = at.maximum.value;
        table.minimumBy[place] = at.minimum.combination;
        table.maximumBy[place] = at.maximum.combination;
      });
      before += group->items;
    }
    return std::move(table);
  }

private:
  std::size_t Row(std::size_t item, int point) const
  {
    return (item * table.points + point) * table.width;
  }

  // The forces that beams in the plane do not have.
  void FillZeros(const ValueGroup& group, std::size_t before)
  {
    if (group.kind != ValueKind::BeamForces || group.linear == kBeamForces)
      return;
    const std::size_t begin = Row(before, 0);
    const std::size_t end = Row(before + group.items, 0);
    std::fill(table.minimum.begin() + begin, table.minimum.begin() + end, 0.0);
    std::fill(table.maximum.begin() + begin, table.maximum.begin() + end, 0.0);
  }

  const CaseResults& all;
  std::vector<const ValueGroup*> groups;
  EnvelopeTable table;
};

}  // namespace

std::unique_ptr<cases::Study> ReadCases(const std::string& file, std::string_view text)
{
  cases::Problems problems(cases::Problems::LostData::Warning);
  const std::string all = "*";  // every case can be asked for
  std::unique_ptr<cases::Study> study = cases::ReadStudy(file, text, {&all, 1}, problems);
  for (const check::Located& one : problems.Sorted()) {
    if (one.severity == check::Severity::Error)
      Refuse(BeginsLikeProblem(text) ? OfProblemFile(one) : one);
    errorwriter.WriteWarning(check::LineOf(one, file));
  }
  std::error_code none;  // without a working folder
  for (std::filesystem::path& input : study->inputs)
    input = std::filesystem::absolute(input, none);
  return study;
}

CaseResults::CaseResults(std::unique_ptr<cases::Study> study, std::optional<SolverType> solver,
                         std::FILE* info)
    : combinations(std::move(study->combinations)), envelopes(std::move(study->envelopes))
{
  Problem& problem = *study->problem;
  Bytes image = ImageOf(problem);
  if (solver)
    problem.solverSettings.type = *solver;
  solved = std::make_unique<SolvedCases>(problem, FamiliesOf(problem), study->loads,
                                         AnalysisOptions{.info = info, .kit = Kit()});
  const SolverType used = problem.solverSettings.type;
  analysis = std::make_shared<Analysis>(std::move(image), Origin{"", study->inputs},
                                        std::move(study->problem));
  analysis->solver = used;
  analysis->isCase = true;
}

Bytes CaseResults::State() const
{
  Bytes state;
  BytePutter put(state);
  const std::lock_guard<std::mutex> alone(analysis->busy);
  PutAnalysis(*analysis, put);
  put(combinations.size());
  for (const Combination& one : combinations) {
    put(one.name);
    put(one.factors.size());
    for (const CaseFactor& factor : one.factors) {
      put(factor.index);  // by itself: the record has bytes without a value
      put(factor.factor);
    }
  }
  put(envelopes.size());
  for (const cases::Envelope& one : envelopes) {
    put(one.name);
    put(one.members);
  }
  put(static_cast<std::size_t>(solved->Count()));
  for (int k = 0; k < solved->Count(); ++k) {
    put.PutList(solved->Column(k).data(), solved->Column(k).size());
    put(solved->Accuracy(k));
  }
  return state;
}

CaseResults::CaseResults(std::span<const char> state)
{
  ByteGetter get(state);
  analysis = GetAnalysis(get);
  GetCombinations(get);
  std::vector<std::vector<double>> columns(get.GetCount(sizeof(SolutionAccuracy)));
  std::vector<SolutionAccuracy> accuracies(columns.size());
  for (std::size_t k = 0; k < columns.size(); ++k) {
    get(columns[k]);
    get(accuracies[k]);
  }
  if (!get.AtEnd())
    RefuseBytes();
  solved = std::make_unique<SolvedCases>(analysis->problem, FamiliesOf(analysis->problem),
                                         std::move(columns), std::move(accuracies));
  RequireMembers();
}

void CaseResults::GetCombinations(ByteGetter& get)
{
  combinations.resize(get.GetCount(2 * sizeof(std::size_t)));
  for (Combination& one : combinations) {
    get(one.name);
    one.factors.resize(get.GetCount(sizeof(int) + sizeof(double)));
    for (CaseFactor& factor : one.factors) {
      get(factor.index);
      get(factor.factor);
    }
  }
  envelopes.resize(get.GetCount(2 * sizeof(std::size_t)));
  for (cases::Envelope& one : envelopes) {
    get(one.name);
    get(one.members);
  }
}

// The cases of the combinations and the members of the envelopes exist.
void CaseResults::RequireMembers() const
{
  const auto isCase = [&](const CaseFactor& one) {
    return one.index >= 0 && one.index < solved->Count();
  };
  for (const Combination& one : combinations) {
    if (!std::all_of(one.factors.begin(), one.factors.end(), isCase))
      RefuseBytes();
  }
  const auto isMember = [&](int member) {
    return member >= 0 && member < static_cast<int>(combinations.size());
  };
  for (const cases::Envelope& one : envelopes) {
    if (!std::all_of(one.members.begin(), one.members.end(), isMember))
      RefuseBytes();
  }
}

std::shared_ptr<Solved> ResultsOf(const CaseResults& all, int index)
{
  const Combination& combination = all.Combinations()[index];
  const std::vector<double> column = CombinedColumn(all.Solved(), combination);
  const ResultLayout& layout = all.Solved().Layout();
  const std::shared_ptr<Analysis>& common = all.Common();
  const std::lock_guard<std::mutex> alone(common->busy);
  auto solved = std::make_shared<Solved>(Solved{common, layout.SolutionOf(column)});
  solved->solution.accuracy = WorstAccuracy(all.Solved(), combination);
  solved->loads =
      std::make_shared<LoadSet>(SpanLoadsOf(common->problem, layout.SpanLoadsOf(column)));
  return solved;
}

EnvelopeTable TableOf(const CaseResults& all, const cases::Envelope& envelope, ValueKind kind)
{
  std::vector<Combination> members;
  for (const int member : envelope.members)
    members.push_back(all.Combinations()[member]);
  const std::lock_guard<std::mutex> alone(all.Common()->busy);
  return TableFiller(all, kind).Fill(members);
}

}  // namespace morlen::python
