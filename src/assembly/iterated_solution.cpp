// The solution by iteration, and the rules by which it is accepted.

#include "assembly/iterated_solution.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

#include "assembly/free_equations.h"
#include "assembly/probe_load.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "problem/problem.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

/// True when the iteration of a probe has found a motion without energy.
bool MovesFreely(const IterationReport& probe)
{
  return probe.smallestQuotient >= 0.0 && probe.smallestQuotient < IterationDemands::kLeastQuotient;
}

/// True when the residual of a probe is so small that most structures that can move are excluded.
bool HasAlmostConverged(const IterationReport& probe, double tolerance)
{
  constexpr double kAlmost = 1e-2;
  return probe.residual <= std::max(tolerance, kAlmost);
}

/// The reason why an iteration that has converged is refused.
std::string UnprovenHint(const IterationReport& probe)
{
  std::ostringstream text;
  stprintf(
      text,
      "The loads are held, but a test with a load in every equation has not converged (residual "
      "%.1e): the structure may be able to move\n",
      probe.residual);
  return text.str();
}

/// The reports of a load case and of the probe, which is solved together with the first case.
struct CaseReports
{
  bool first;  ///< of the load cases
  int result;  ///< of SparseSolver::Solver
  IterationReport model;
  IterationReport probe;
};

/// Solves the load cases in order and calls judge(load case, reports) after each. Stops and returns
/// false when judge returns false; returns true after the last case.
template <class Judge>
bool Iterate(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases,
             const OnSolved& onSolved, Judge judge)
{
  const VoidPlex& nodes = task.problem.GiveNodes();
  const NodeComponents& components = task.problem.components;
  std::vector<ReaVecV> sides;  // the loads themselves: nothing reads them after the iteration
  sides.reserve(cases.size());
  for (LoadCase& one : cases)
    sides.push_back(std::move(one.loads));
  ApplySupports(nodes, components, solver, sides, cases);
  ReaVecV probe =
      ProbeLoad(nodes, ScaleOfComponents(task.problem.meshes, components), solver.GiveSize());
  CaseReports reports{};
  solver.KeepPreconditioner(cases.size() > 1);
  Progress(task.info, "Just before Solver\n");
  for (std::size_t k = 0; k < cases.size(); ++k) {
    reports.first = k == 0;
    reports.result =
        k == 0 ? solver.Solver(sides[k], probe, task.info) : solver.Solver(sides[k], task.info);
    reports.model = solver.ModelReport();
    if (k == 0)
      reports.probe = solver.ProbeReport();
    Solution& solution = cases[k].solution;
    solution.displacements = std::move(sides[k]);
    solution.displacementRests.resize(solution.displacements.Size(), 0.0);
    solution.displacementRests = 0.0;
    solution.accuracy = {.error = reports.model.error, .residual = reports.model.residual};
    if (!judge(cases[k], reports))
      return false;
    TellAccuracy(cases[k], SolverType::Sparse, task.info);
    onSolved(k);
  }
  return true;
}

/// Explains the error that follows. The vectors of an iteration mix all motions with the loads, so
/// that they name none.
void AdviseCheck(const LoadCase& one)
{
  Explain(LabelOf(one),
          "morlen-check finds out whether the structure can move, and names the nodes");
}

/// For an iteration that the problem file asks for: refuses a solution that does not meet the
/// second tolerance, and warns of one that does not meet the first. Also refuses the structure, or
/// warns, when the probe has not converged.
void JudgeExplicit(const AnalysisTask& task, const LoadCase& one, const CaseReports& reports,
                   double tolerance)
{
  const auto& [first, result, model, probe] = reports;
  const ReaVecV& displacements = one.solution.displacements;
  const Problem& problem = task.problem;
  if (result != 0 || !AllFinite(displacements))
    AdviseCheck(one);
  RequireSolution(problem.meshes, problem.components, result, displacements);
  const bool unproven = model.reached && !HasAlmostConverged(probe, tolerance);
  if (!probe.reached && (unproven || MovesFreely(probe))) {
    AdviseCheck(one);
    SolverFailed(problem.meshes, problem.components, -std::max(probe.iterations, 1),
                 UnprovenHint(probe));
  }
  if (!model.reached)
    Warn(
        task.info,
        "warning: %sthe iteration ended before its tolerance, with a residual of %.1e. The results "
        "may be wrong by much more than that\n",
        LabelOf(one).c_str(), model.residual);
  else if (!probe.reached && first)
    Warn(task.info,
         "warning: a test with a load in every equation has not converged (residual %.1e): the "
         "structure may be able to move\n",
         probe.residual);
}

}  // namespace

void SolveByIteration(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases,
                      const OnSolved& onSolved)
{
  Iterate(task, solver, cases, onSolved, [&](const LoadCase& one, const CaseReports& reports) {
    JudgeExplicit(task, one, reports, solver.Tolerance());
    return true;
  });
}

bool IterateToTheEnd(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases,
                     const OnSolved& onSolved)
{
  return Iterate(task, solver, cases, onSolved,
                 [](const LoadCase& one, const CaseReports& reports) {
                   return reports.result == 0 && reports.model.reached && reports.probe.reached &&
                          AllFinite(one.solution.displacements);
                 });
}

}  // namespace morlen
