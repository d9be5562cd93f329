#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "direct/factor_files.h"
#include "direct/mumps.h"
#include "direct/order_plan.h"
#include "direct/upper_matrix.h"
#include "solvers/direct_solver.h"
#include "solvers/node_couplings.h"

namespace morlen::direct {

/// The solver of `Solver Direct`: a sparse matrix of node blocks, factorised by MUMPS in an order
/// by nested dissection of the graph of the nodes.
class MumpsSolver : public DirectSolver
{
public:
  /// For nodes with ndof equations each. busy: see Mumps. plan: with it, EnterMaxDiff declares
  /// nothing new; may be null.
  MumpsSolver(int nodes, int ndof, std::mutex& busy, std::unique_ptr<OrderPlan> plan = nullptr);

  const char* Name() const override { return "Direct"; }
  int GiveSize() const override { return nodes * ndof; }
  void EnterMaxDiff(int node1, int node2, int ndof) override;
  void Create(int ndof) override;
  double& operator()(int i, int j) override;
  void SetToZero() override;
  void AddSubMatriu(int row, int col, const Matriu& m) override { matrix.AddBlock(row, col, m); }
  void AddElement(const ElementBlocks& element) override { matrix.AddElement(element); }

  int ApplyConstraint(int eq, std::span<const double> prescribed,
                      std::span<ReaVecV* const> sides) override;
  using BSolver::ApplyConstraint;

  /// Refused is only an equation whose diagonal entry is 0, or that has an entry which is not a
  /// number.
  int Factorise(std::FILE* info) override;
  bool IsFactorised() const override { return factorised; }
  void Substitute(const RightHandSides& sides, std::FILE* info) const override;

  double ReturnRowPerVector(int i, const ReaVecV& v) const override
  {
    return matrix.RowTimes(i, v);
  }
  void PrintTo(std::ofstream& out) const override;
  void CopyFromYouToMat(Matriu& m) const override;
  /// Not implemented: fatal.
  void WriteForKiv(std::ofstream& mesh, std::ofstream& res) const override;
  void PrintInfoMem(std::FILE* info) const override;

private:
  int FindRefused() const;
  /// Chooses memory or files for the factors, and tells it. Fatal when there is room in neither.
  void ChoosePlace(const MumpsSizes& sizes, std::FILE* info);

  int nodes;
  int ndof;
  std::mutex& busy;
  std::unique_ptr<OrderPlan> plan;           ///< until Create; may be null
  std::unique_ptr<NodeCouplings> couplings;  ///< until Create; null with a plan
  UpperMatrix matrix;
  std::vector<int> order;  ///< places of the nodes, from 0
  Coordinates entries;     ///< of the assembled matrix
  std::vector<int> places;
  std::unique_ptr<FactorFiles> files;  ///< null while the factors are in memory
  std::unique_ptr<Mumps> mumps;        ///< null before Factorise
  bool factorised = false;
  double outside = 0.0;  ///< target of operator() outside the pattern
};

}  // namespace morlen::direct
