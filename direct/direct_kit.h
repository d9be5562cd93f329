#pragma once

#include <memory>
#include <mutex>

#include "assembly/solver_kit.h"

namespace morlen::direct {

/// The kit of a program with the sparse direct solver. Solvers that it has made borrow it.
class DirectKit : public SolverKit
{
public:
  /// Call it before other threads run: see ChooseBlasKernels.
  DirectKit();

  bool HasDirect() const override { return true; }
  std::unique_ptr<DirectPlan> PlanDirect(const Problem& problem, double blocks,
                                         double mostSeconds) const override;
  std::unique_ptr<DirectSolver> MakeDirect(const Problem& problem,
                                           std::unique_ptr<DirectPlan> plan) const override;

private:
  mutable std::mutex busy;  ///< MUMPS serves one caller at a time
};

}  // namespace morlen::direct
