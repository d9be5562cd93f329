#include "solvers/checked_iteration.h"

#include <algorithm>
#include <cmath>

#include "base/stprintf.h"
#include "solvers/system_matrix.h"

namespace morlen {

namespace {

constexpr int kMaxRestarts = 3;
/// The largest true residual that is accepted, as a multiple of Claimed().
constexpr double kTolerances = 10.0;
/// With fewer iterations CgSystem::Error has too few terms.
constexpr int kFewIterations = 8;
/// With demands: smaller residuals are treated alike; as a multiple of the tolerance.
constexpr double kNegligible = 1e-2;

}  // namespace

CheckedIteration::CheckedIteration(const SystemMatrix& A, double* x_, const double* b,
                                   const IterationGoal& goal_)
    : system(A, x_, b), x(x_), n(A.GiveSize()), goal(goal_)
{
  report.reached = system.Residual() <= goal.tolerance;
  ended = report.reached || system.IsBroken();
}

bool CheckedIteration::Claims() const
{
  return system.Residual() <= goal.tolerance && system.Error() <= goal.demands.error &&
         (change <= goal.demands.change || std::isinf(goal.demands.change));
}

void CheckedIteration::MeasureChange()
{
  if (std::isinf(goal.demands.change) ||
      system.Iterations() - measuredAt < 10 + system.Iterations() / 20)
    return;
  before.resize(static_cast<std::size_t>(n), 0.0);
  double moved[2] = {};  // the largest change of the translations and of the rotations
  double largest[2] = {};
  for (int i = 0; i < n; ++i) {
    const int kind =
        i % goal.demands.components.count < goal.demands.components.translations ? 0 : 1;
    moved[kind] = std::max(moved[kind], std::fabs(x[i] - before[i]));
    largest[kind] = std::max(largest[kind], std::fabs(x[i]));
  }
  change = 0.0;
  for (int kind = 0; kind < 2; ++kind) {
    if (moved[kind] > 0.0)
      change = std::max(change, moved[kind] / largest[kind]);
  }
  std::copy_n(x, n, before.begin());
  measuredAt = system.Iterations();
}

// The estimate of the error follows the recurrence, so that it holds only if the true residual is
// about as small. Far below the tolerance that does not matter.
double CheckedIteration::Claimed() const
{
  return goal.demands.AreMade() ? std::max(system.Residual(), kNegligible * goal.tolerance)
                                : goal.tolerance;
}

void CheckedIteration::Check(const char* name, std::FILE* info)
{
  MeasureChange();
  report.left =
      system.SmallestQuotient() >= 0.0 && system.SmallestQuotient() < goal.demands.quotient;
  ended = system.IsBroken() || report.left;
  if (ended || !Claims())
    return;
  const double largest = kTolerances * goal.loads * Claimed();
  system.Renew();
  report.reached = system.Residual() <= largest;
  ended = report.reached || restarts == kMaxRestarts || system.IsBroken();
  if (ended)
    return;
  ++restarts;
  Progress(info, "%strue residual %g, starting again\n", name, system.Residual());
}

void CheckedIteration::Finish(const Preconditioner& M, int limit)
{
  report.left = report.left || (!ended && system.Iterations() < limit);
  if (!report.reached)
    system.Renew();
  report.iterations = system.Iterations();
  report.residual = system.Residual();
  report.error = system.Iterations() < kFewIterations ? system.RemainingError(M) : system.Error();
  report.smallestQuotient = system.SmallestQuotient();
  report.broken = system.IsBroken();
}

void CheckedIteration::Run(const SystemMatrix& A, const Preconditioner& M, CheckedIteration& model,
                           CheckedIteration* probe, int limit, std::FILE* info)
{
  if (model.report.reached)
    Progress(info, "iteration number 0 OK resid=%g tol=%g\n", model.system.Residual(),
             model.goal.tolerance);
  for (int done = 0; done < limit; ++done) {
    CgSystem* systems[2];
    std::size_t count = 0;
    for (CheckedIteration* const each : {&model, probe})
      if (each && !each->ended)
        systems[count++] = &each->system;
    if (count == 0 || model.HasFailed() || (probe && probe->HasFailed()))
      break;
    if (!model.ended)
      AnnounceIteration(done + 1, model.system.Residual(), model.goal.tolerance, info);
    CgSystem::Advance(A, M, {systems, count});
    if (!model.ended) {
      model.Check("", info);
      if (model.report.reached)
        Progress(info, "Converged it number. %i resid=%g tol=%g\n", done + 1,
                 model.system.Residual(), model.goal.tolerance);
    }
    if (probe && !probe->ended)
      probe->Check("probe: ", info);
  }
  model.Finish(M, limit);
  if (!probe)
    return;
  probe->Finish(M, limit);
  Progress(info, "probe: %s after %i iterations, resid=%g tol=%g\n",
           probe->report.reached ? "converged" : "not solved", probe->report.iterations,
           probe->report.residual, probe->goal.tolerance);
}

}  // namespace morlen
