// The kit, and the estimate of the solver's work.
//
// The time has a part for each node and coupling (order, analysis, entries), one for each entry of
// the factors (memory, substitutions) and one for each operation. The constants are measured on
// models of all families, relative to those of the skyline in assembly/solver_choice.cpp; see
// bench/README.md.

#include "direct/direct_kit.h"

#include <utility>

#include "base/memory_limit.h"
#include "direct/blas_kernels.h"
#include "direct/mumps_solver.h"
#include "direct/node_ordering.h"
#include "direct/order_plan.h"
#include "direct/problem_pattern.h"
#include "problem/problem.h"

namespace morlen::direct {

namespace {

// The order of the nodes.
constexpr double kSecondsPerNode = 4.2e-6;
constexpr double kSecondsPerCoupling = 3e-7;
/// The analysis and the assembly.
constexpr double kSecondsPerEquation = 2.5e-6;
// The factorisation and the substitutions.
constexpr double kSecondsPerEntry = 3.4e-8;
constexpr double kSecondsPerOperation = 3e-11;
/// The substitutions and the refinement of each further load vector.
constexpr double kSecondsPerEntryAndFurther = 3.5e-9;
/// The factors of any structure have at least so many blocks for each pair of coupled nodes.
constexpr double kLeastFill = 3.0;
/// The memory for each byte of the factors: matrix, fronts and integers too.
constexpr double kBytesPerByte = 1.75;

/// The time without the factorisation's operations, for so many entries of the factors.
double SecondsOf(const Problem& problem, double blocks, double entries)
{
  return kSecondsPerNode * problem.numNodes + kSecondsPerCoupling * blocks +
         kSecondsPerEquation * problem.numNodes * problem.components.count +
         kSecondsPerEntry * entries;
}

}  // namespace

DirectKit::DirectKit()
{
  ChooseBlasKernels();
}

std::unique_ptr<DirectPlan> DirectKit::PlanDirect(const Problem& problem, double blocks,
                                                  double mostSeconds) const
{
  const double n = problem.components.count;
  const double pairs = (blocks - problem.numNodes) / 2.0;
  if (SecondsOf(problem, blocks, kLeastFill * pairs * n * n) > mostSeconds)
    return nullptr;
  auto plan = std::make_unique<OrderPlan>();
  plan->pattern = PatternOf(problem);
  plan->order = OrderNodes(plan->pattern);
  const FactorSize size = CountFactor(plan->pattern, plan->order);
  const double entries = size.blocks * n * n;
  plan->seconds =
      SecondsOf(problem, blocks, entries) + kSecondsPerOperation * size.operations * n * n * n;
  plan->secondsPerFurther = kSecondsPerEntryAndFurther * entries;
  plan->bytes = static_cast<std::uint64_t>(kBytesPerByte * sizeof(double) * entries) + kBlasBytes;
  if (plan->bytes > AvailableMemory())
    return nullptr;
  return plan;
}

std::unique_ptr<DirectSolver> DirectKit::MakeDirect(const Problem& problem,
                                                    std::unique_ptr<DirectPlan> plan) const
{
  std::unique_ptr<OrderPlan> own(static_cast<OrderPlan*>(plan.release()));
  return std::make_unique<MumpsSolver>(problem.numNodes, problem.components.count, busy,
                                       std::move(own));
}

}  // namespace morlen::direct
