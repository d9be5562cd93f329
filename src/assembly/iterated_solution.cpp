// The solution by iteration, and when it can be trusted.

#include <algorithm>
#include <sstream>
#include <string>

#include "assembly/free_equations.h"
#include "assembly/probe_load.h"
#include "base/stprintf.h"
#include "problem/project.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

/// Whether the iteration of a probe has met a motion without energy.
bool MovesFreely(const IterationReport& probe)
{
  return probe.smallestQuotient >= 0.0 && probe.smallestQuotient < IterationDemands::kLeastQuotient;
}

/// Whether a probe has come so far that most structures that can move are ruled out.
bool HasAlmostConverged(const IterationReport& probe, double tolerance)
{
  constexpr double kAlmost = 1e-2;
  return probe.residual <= std::max(tolerance, kAlmost);
}

/// Why an iteration that has converged is refused.
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

}  // namespace

// The result of SparseSolver::Solver. A probe is iterated as well.
int Project::Iterate(std::FILE* info)
{
  ApplySupports();
  ReaVecV probe = ProbeLoad(GiveNodes(), ScaleOfComponents(), displacements.Size());
  auto& sparse = static_cast<SparseSolver&>(*solver);
  Progress(info, "Just before Solver\n");
  const int result = sparse.Solver(displacements, probe, info);
  accuracy.error = sparse.ModelReport().error;
  accuracy.residual = sparse.ModelReport().residual;
  displacementRests.resize(displacements.Size(), 0.0);
  displacementRests = 0.0;
  return result;
}

// False when the iteration has not come to an end that can be trusted.
bool Project::IterateToTheEnd(std::FILE* info)
{
  const int result = Iterate(info);
  const auto& sparse = static_cast<const SparseSolver&>(*solver);
  const bool reached = sparse.ModelReport().reached && sparse.ProbeReport().reached;
  if (result != 0 || !reached || !AllFinite(displacements))
    return false;
  TellAccuracy(info);
  return true;
}

// As the problem file asks for it: a residual within the second tolerance is taken, with a warning,
// unless the probe shows that the structure can move.
void Project::SolveByIteration(std::FILE* info)
{
  RequireSolution(Iterate(info));
  const auto& sparse = static_cast<const SparseSolver&>(*solver);
  const IterationReport& model = sparse.ModelReport();
  const IterationReport& probe = sparse.ProbeReport();
  const bool unproven = model.reached && !HasAlmostConverged(probe, sparse.Tolerance());
  if (!probe.reached && (unproven || MovesFreely(probe)))
    SolverFailed(-std::max(probe.iterations, 1), UnprovenHint(probe));
  if (!model.reached)
    Warn(info,
         "warning: the iteration ended before its tolerance, with a residual of %.1e. The results "
         "may be wrong by much more than that\n",
         model.residual);
  else if (!probe.reached)
    Warn(info,
         "warning: a test with a load in every equation has not converged (residual %.1e): the "
         "structure may be able to move\n",
         probe.residual);
  TellAccuracy(info);
}

}  // namespace morlen
