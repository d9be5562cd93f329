#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "mpi/distributed_model.h"
#include "solvers/direct_solver.h"
#include "solvers/node_couplings.h"

namespace morlen::mpi {

/// A matrix that is distributed over all ranks, on the first of them.
///
/// The parts are assembled by the ranks, with their supports (DistributedModel::Assemble). Here are
/// only the couplings of the nodes, and the effect of the supports on right-hand sides. Functions
/// that need entries of the matrix are fatal.
class DistributedMatrix : public DirectSolver
{
public:
  ~DistributedMatrix() override;

  int GiveSize() const override { return size; }
  void EnterMaxDiff(int node1, int node2, int ndof) override;
  /// Divides the nodes between the ranks.
  void Create(int ndof) override;
  /// See node_parts.h.
  const std::vector<int>& PartOfNode() const { return partOfNode; }

  /// Enters the sums of an assembly. SetToZero forgets them.
  void Enter(Assembled sums) { assembled = std::move(sums); }
  void SetToZero() override { assembled = {}; }

  /// A spring of a support, which its part has added.
  void AddSubMatriu(int /*row*/, int /*col*/, const Matriu& /*m*/) override {}

  /// A support, which the parts have applied to the matrix: changes the sides only. The values must
  /// be those of the problem.
  int ApplyConstraint(int eq, std::span<const double> values,
                      std::span<ReaVecV* const> sides) override;
  using BSolver::ApplyConstraint;

  bool IsFactorised() const override { return factorised; }

  double& operator()(int i, int j) override;
  double ReturnRowPerVector(int i, const ReaVecV& v) const override;
  void PrintTo(std::ofstream& out) const override;
  void CopyFromYouToMat(Matriu& m) const override;
  void WriteForKiv(std::ofstream& mesh, std::ofstream& res) const override;
  void PrintInfoMem(std::FILE* /*info*/) const override {}

protected:
  /// Borrows the team.
  DistributedMatrix(Team& team, int nodes, int components);

  /// Is given the couplings before they are freed.
  virtual void UsePattern(const NodePattern& /*pattern*/) {}
  /// The first equation whose row is 0, or that has an entry that is not a number; 0 for none.
  int FindRefused() const;
  /// The values of the matrix on all ranks.
  std::int64_t MatrixValues() const;

  Team& team;
  int size;
  int components;
  bool factorised = false;

private:
  std::unique_ptr<NodeCouplings> couplings;  ///< null after Create
  std::vector<int> partOfNode;
  Assembled assembled;
};

/// The direct solver of a distributed matrix.
class DistributedSolver : public DistributedMatrix
{
public:
  /// Borrows the team.
  DistributedSolver(Team& team_, int nodes, int components_)
      : DistributedMatrix(team_, nodes, components_)
  {
  }

  const char* Name() const override { return "Direct"; }
  int Factorise(std::FILE* info) override;
  void Substitute(const RightHandSides& sides, std::FILE* info) const override;

private:
  /// Finds the order of elimination.
  void UsePattern(const NodePattern& pattern) override;
  FactorAnalysis Analyse(std::FILE* info) const;

  std::vector<int> order;  ///< place of each node, from 0
};

}  // namespace morlen::mpi
