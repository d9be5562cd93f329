#pragma once

#include "assembly/solver_kit.h"
#include "mpi/distributed_model.h"

namespace morlen::mpi {

/// The kit of a program that runs as several ranks: matrix, forces and strengths are distributed.
/// For one analysis at a time.
class DistributedKit : public SolverKit
{
public:
  /// Borrows the team.
  explicit DistributedKit(Team& team) : model(std::make_unique<DistributedModel>(team)) {}

  /// Direct for Automatic; fatal for solvers whose matrix is not distributed.
  SolverType Settle(SolverType asked) const override;
  /// True for models of solids, when the program has the multigrid method.
  bool Suits(const Problem& problem) const override;
  bool Solve(const AnalysisTask& task, std::vector<LoadCase>& cases,
             const OnSolved& onSolved) const override;
  bool HasDirect() const override { return true; }
  std::unique_ptr<DirectSolver> MakeDirect(const Problem& problem,
                                           std::unique_ptr<DirectPlan> plan) const override;
  void CreateMatrix(const AnalysisTask& task, BSolver& solver) const override;
  void AddStiffness(const AnalysisTask& task, BSolver& solver) const override;
  void AddForces(const AnalysisTask& task, InternalForces& forces) const override;
  void FillStrengths(const Problem& problem, const ElementFamilies& families, int mesh,
                     Solution& solution) const override;

private:
  std::unique_ptr<DistributedModel> model;
};

}  // namespace morlen::mpi
