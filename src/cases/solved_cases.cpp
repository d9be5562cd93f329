#include "cases/solved_cases.h"

#include <algorithm>
#include <utility>

#include "assembly/analysis.h"
#include "assembly/solve.h"
#include "base/byte_archive.h"
#include "base/errorwriter.h"
#include "cases/case_loads.h"
#include "problem/problem.h"
#include "results/finite_results.h"
#include "results/reactions.h"
#include "results/strengths.h"

namespace morlen {

namespace {

// Local stress output, until the scope ends.
class LocalOutput
{
public:
  explicit LocalOutput(Problem& problem_)
      : problem(problem_), previous(std::exchange(problem.stressOutput, StressOutput::Local))
  {
  }
  LocalOutput(const LocalOutput&) = delete;
  LocalOutput& operator=(const LocalOutput&) = delete;
  ~LocalOutput() { problem.stressOutput = previous; }

private:
  Problem& problem;
  StressOutput previous;
};

}  // namespace

SolvedCases::SolvedCases(Problem& problem, const ElementFamilies& families,
                         std::span<LoadSet> cases, const AnalysisOptions& options)
    : columns(cases.size()), accuracies(cases.size())
{
  const MakeLoads makeLoads = [&](const Problem& prepared, const ElementFamilies& known) {
    std::vector<LoadVector> vectors;
    vectors.reserve(cases.size());
    for (LoadSet& loads : cases) {
      const CaseInPlace inPlace(problem, loads);
      vectors.push_back({.values = AppliedLoads(prepared, known),
                         .settlements = SettlementsOf(prepared.GiveNodes(), prepared.components),
                         .name = loads.name});
    }
    layout.reset();
    return vectors;
  };
  const AnalysisOptions forAll = {.renumber = options.renumber,
                                  .info = options.info,
                                  .kit = options.kit,
                                  .loadVectors = Count()};
  const UseSolution use = [&](std::size_t index, Solution&& solution) {
    if (!layout)
      layout = std::make_unique<ResultLayout>(problem, families);
    const std::string& name = cases[index].name;
    const CaseInPlace inPlace(problem, cases[index]);
    if (!Enter(index, std::move(solution), problem, families, options.kit)) {
      if (!name.empty())
        Explain("in load case '", name, "'");
      SolverFailed(problem.meshes, problem.components, -1);
    }
  };
  account = Analyse(problem, families, forAll, makeLoads, use).account;
}

SolvedCases::SolvedCases(const Problem& problem, const ElementFamilies& families,
                         std::vector<std::vector<double>>&& columns_,
                         std::vector<SolutionAccuracy>&& accuracies_)
    : layout(std::make_unique<ResultLayout>(problem, families)),
      columns(std::move(columns_)),
      accuracies(std::move(accuracies_))
{
  const auto fits = [&](const std::vector<double>& one) { return one.size() == layout->Size(); };
  if (accuracies.size() != columns.size() || !std::all_of(columns.begin(), columns.end(), fits))
    RefuseBytes();
}

bool SolvedCases::Enter(std::size_t index, Solution&& solution, Problem& problem,
                        const ElementFamilies& families, const SolverKit& kit)
{
  const LocalOutput local(problem);
  for (int mesh = 0; mesh < static_cast<int>(problem.meshes.size()); ++mesh)
    CalcStrengths(problem, families, mesh, solution, kit);
  CalcReactions(problem, families, solution);
  columns[index] = layout->ColumnOf(solution);
  accuracies[index] = solution.accuracy;
  return AreResultsFinite(problem, families, solution);
}

}  // namespace morlen
