#include "report/run_report.h"

#include <utility>

#include "problem/problem.h"
#include "report/applied_loads.h"
#include "report/page.h"
#include "report/page_data.h"

namespace morlen {

namespace {

Balance Judged(const Problem& problem, const model::Model& model, const AppliedLoads& loads,
               const results::Results& results)
{
  const Equilibrium equilibrium = EquilibriumOf(model, loads.nodes, results);
  const SolverType solver = problem.solverSettings.type;
  const bool iterated = solver == SolverType::Sparse || solver == SolverType::Double;
  return {equilibrium, AdviceOf(equilibrium, model, problem.shellFormulation, iterated)};
}

}  // namespace

Balance WriteRunReport(Problem& problem, const model::Model& model, const results::Results& results,
                       const ReportTexts& texts, std::ostream& out)
{
  PrepareLoads(problem);
  const AppliedLoads loads = AppliedLoadsOf(problem, model);
  Balance balance = Judged(problem, model, loads, results);
  WritePage(out, texts.file,
            PageData({.file = texts.file,
                      .description = texts.description,
                      .model = model,
                      .results = results,
                      .loads = loads,
                      .equilibrium = balance.equilibrium,
                      .advice = balance.advice,
                      .check = texts.check,
                      .run = texts.run}));
  return balance;
}

Balance WriteRunReport(Problem& problem, const model::Model& model, const results::Results& results,
                       const ReportTexts& texts, const std::filesystem::path& output,
                       AtomicFile::By writer)
{
  AtomicFile file(output, writer);
  Balance balance = WriteRunReport(problem, model, results, texts, file.Stream());
  file.Commit();
  return balance;
}

Balance BalanceOf(Problem& problem, const model::Model& model, const results::Results& results)
{
  PrepareLoads(problem);
  return Judged(problem, model, AppliedLoadsOf(problem, model), results);
}

}  // namespace morlen
