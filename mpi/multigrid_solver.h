#pragma once

#include "mpi/distributed_solver.h"
#include "problem/problem.h"

namespace morlen::mpi {

/// The iteration of a distributed matrix of solids, see Multigrid. Its solutions are as accurate as
/// its tolerance: a refinement must follow, and test them.
class MultigridSolver : public DistributedMatrix
{
public:
  /// Borrows both.
  MultigridSolver(DistributedModel& model, const Problem& problem);

  const char* Name() const override { return "Multigrid"; }
  /// Makes the grids. Returns -1 when that fails.
  int Factorise(std::FILE* info) override;
  /// A solution that has not converged is not a number.
  void Substitute(const RightHandSides& sides, std::FILE* info) const override;

private:
  void Solve(ReaVecV& side, std::FILE* info) const;

  DistributedModel& model;
  const Problem& problem;
};

}  // namespace morlen::mpi
