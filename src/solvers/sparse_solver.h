#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "base/processor.h"
#include "solvers/bsolver.h"
#include "solvers/checked_iteration.h"
#include "solvers/node_couplings.h"
#include "solvers/preconditioner.h"
#include "solvers/sparse_matrix.h"

namespace morlen {

/// The whole matrix, both triangles, in blocks of nodes, solved by conjugate gradients with
/// an incomplete LU preconditioner.
///
/// The pattern comes from the couplings of nodes: in the line of a node, a block is set aside
/// for itself and for every neighbour, in ascending order. What lies outside that pattern
/// cannot be added.
class SparseSolver : public BSolver
{
public:
  /// The most neighbours of a node.
  static constexpr int MAXNUMNODESAROUNDNODE = 200;

  /// Works with the instructions of the processor, which this one must have.
  SparseSolver(int nnodes, int ndof, Processor processor = ThisProcessor());

  /// The iteration stops at the relative residual tolerance1, or after MaxIterations, when
  /// tolerance2 is still accepted.
  SparseSolver(int nnodes, int ndof, double tolerance1, double tolerance2, int MaxIterations,
               Processor processor = ThisProcessor());

  /// Lowers the limit of iterations to this.
  void LimitIterations(int most) { MaxIterations = std::min(MaxIterations, most); }

  void Demand(const IterationDemands& demands_) { demands = demands_; }
  /// The tolerance of the relative residual of a probe.
  void EnterProbeTolerance(double tolerance) { probeTolerance = tolerance; }

  int GiveSize() const override { return n; }
  /// The relative residual at which the iteration stops.
  double Tolerance() const { return tolerance1; }

  /// Fatal when one of the nodes gets more than MAXNUMNODESAROUNDNODE neighbours.
  void EnterMaxDiff(int node1, int node2, int ndof) override;

  /// Fatal when there are no equations, or more entries than an int can count.
  void Create(int ndof) override;

  /// Fatal when nothing was added to (i, j) before.
  double& operator()(int i, int j) override;

  void SetToZero() override;

  /// Adds m, and its mirror image too unless it begins on the diagonal, so that the caller
  /// hands over each block of two nodes once. Fatal outside the pattern.
  void AddSubMatriu(int row, int col, const Matriu& m) override;
  void AddElement(const ElementBlocks& element) override;
  void Expect(std::span<const int> nodes, int count) override;

  /// Solves from the starting vector, which is used up. b becomes the solution when the
  /// result is 0; else it stays. The result is -1 after a breakdown, or minus the number of
  /// iterations (at least 1) when they were not enough.
  ///
  /// Where the recurrence claims that a tolerance is reached, the residual is formed afresh. When
  /// that is more than ten times the tolerance, of all loads, the iteration starts again with it,
  /// at most three times. All starts share the limit of iterations.
  int Solver(ReaVecV& b, std::FILE* info) override;

  /// The same, together with a second right-hand side, a probe, from 0 on and to its own
  /// tolerance; it is to be 0 in the prescribed equations. The probe becomes its latest iterate.
  /// The result is that of b; but where the probe fails first, by a breakdown, its restarts or
  /// its quotient, the iteration of b is left where it stands, as if the limit were reached.
  int Solver(ReaVecV& b, ReaVecV& probe, std::FILE* info);

  /// How the latest iterations have ended; that of the probe is empty without one.
  const IterationReport& ModelReport() const { return modelReport; }
  const IterationReport& ProbeReport() const { return probeReport; }

  /// Replaces row eq only: the column stays, and the matrix is no longer symmetric. Since
  /// the starting vector holds the prescribed values, the residual of their rows is exactly
  /// 0 from the start, the iteration never moves them, and it works as on the free equations.
  int ApplyConstraint(int eq, double value, ReaVecV& b) override;

  double ReturnRowPerVector(int i, const ReaVecV& v) const override;
  void PrintTo(std::ofstream& out) const override;

  /// Not available: fatal.
  void CopyFromYouToMat(Matriu& m) const override;
  /// Not available: fatal.
  void WriteForKiv(std::ofstream& mesh, std::ofstream& res) const override;

  void PrintInfoMem(std::FILE* info) const override;

  /// The starting vector of the next call of Solver, n numbers; without one it is 0.
  void EnterInitialvalues(std::unique_ptr<double[]> x0) { initialValues = std::move(x0); }

  /// Null before Create.
  const SparseMatrix* GiveMatrix() const { return matrix.get(); }

private:
  void AddNeighbour(int node, int neighbour);

  std::unique_ptr<double[]> TakeStart(const ReaVecV& b);
  /// ‖b − K·u‖ / ‖b‖ for the displacements u that are 0 where nothing is prescribed; at least 1.
  double AllLoads(const ReaVecV& b) const;
  int Solve(ReaVecV& b, ReaVecV* probe, std::FILE* info);
  /// The result for the outcome of the right-hand side of the model, which is told.
  int Judge(std::FILE* info) const;
  /// The incomplete factors of the matrix.
  std::unique_ptr<Preconditioner> MakePreconditioner() const;

  int n;
  int ndof;
  double tolerance1;
  double tolerance2;
  int MaxIterations;
  Processor processor;
  IterationDemands demands;
  double probeTolerance;
  IterationReport modelReport;
  IterationReport probeReport;

  NodeCouplings couplings;  ///< until Create
  std::unique_ptr<SparseMatrix> matrix;
  std::vector<int> prescribed;  ///< equations whose rows are replaced, from 0
  std::unique_ptr<double[]> initialValues;
};

}  // namespace morlen
