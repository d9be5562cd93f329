#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "base/processor.h"
#include "solvers/bsolver.h"
#include "solvers/checked_iteration.h"
#include "solvers/node_block_matrix.h"
#include "solvers/node_couplings.h"
#include "solvers/preconditioner.h"
#include "solvers/sparse_matrix.h"

namespace morlen {

/// The whole matrix, both triangles, solved by conjugate gradients with an incomplete LU
/// preconditioner.
///
/// The pattern comes from the couplings of nodes: the line of a node has a block for itself and
/// one for every neighbour. The matrix of nodes with three or six equations is a NodeBlockMatrix,
/// in which all of these blocks exist from the start. That of other nodes is a SparseMatrix, whose
/// rows have as many slots; the first entries that are added to a row take them.
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

  /// Lowers the limit of iterations to `most`.
  void LimitIterations(int most) { MaxIterations = std::min(MaxIterations, most); }

  /// Demands on the iteration of b besides its tolerance.
  void Demand(const IterationDemands& demands_) { demands = demands_; }
  /// Sets the tolerance of the relative residual of a probe.
  void EnterProbeTolerance(double tolerance) { probeTolerance = tolerance; }

  int GiveSize() const override { return n; }
  /// The relative residual at which the iteration stops.
  double Tolerance() const { return tolerance1; }

  /// Fatal when one of the nodes gets more than MAXNUMNODESAROUNDNODE neighbours.
  void EnterMaxDiff(int node1, int node2, int ndof) override;

  /// Fatal when there are no equations, or more entries than an int can count.
  void Create(int ndof) override;

  /// Fatal when (i, j) has no slot.
  double& operator()(int i, int j) override;

  void SetToZero() override;

  /// Adds m, and its mirror image unless it begins on the diagonal, so that the caller hands
  /// over each block of two nodes once. Fatal where there are no slots.
  void AddSubMatriu(int row, int col, const Matriu& m) override;
  void AddElement(const ElementBlocks& element) override;
  void Prefetch(std::span<const int> nodes, int count) override;

  /// Solves from the starting vector, which is consumed. b becomes the solution when the result is
  /// 0; otherwise it is unchanged. The result is -1 after a breakdown, or minus the number of
  /// iterations (at least 1) when they were not enough.
  ///
  /// The true residual is checked at the end, with at most three restarts: see CheckedIteration.
  /// All restarts share the limit of iterations.
  int Solver(ReaVecV& b, std::FILE* info) override;

  /// The same, side by side with a second right-hand side, a probe, which starts from 0, has its
  /// own tolerance and must be 0 in the prescribed equations. The probe becomes its last iterate.
  /// The result is that of b; but when the probe fails first (breakdown, restarts or quotient), the
  /// iteration of b stops too, as if the limit were reached.
  int Solver(ReaVecV& b, ReaVecV& probe, std::FILE* info);

  /// With true, Solver keeps its preconditioner for further right-hand sides, each solved by
  /// another call, until the matrix changes. With false (the default), each call makes its own
  /// preconditioner, and a kept one is freed.
  void KeepPreconditioner(bool keep);
  bool HasPreconditioner() const { return preconditioner != nullptr; }

  /// The outcome of the last call of Solver; that of the probe is empty without one.
  const IterationReport& ModelReport() const { return modelReport; }
  const IterationReport& ProbeReport() const { return probeReport; }

  /// Replaces row eq only: the column stays, and the matrix is no longer symmetric. The starting
  /// vector has the prescribed values, so that the residual of their rows is exactly 0: the
  /// iteration never changes them and works as on the free equations alone.
  int ApplyConstraint(int eq, std::span<const double> values,
                      std::span<ReaVecV* const> sides) override;
  using BSolver::ApplyConstraint;

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
  const SystemMatrix* GiveMatrix() const { return matrix; }
  /// The same matrix by its class; the other one is null.
  const NodeBlockMatrix* GiveBlocks() const { return blocks.get(); }
  const SparseMatrix* GiveEntries() const { return entries.get(); }

private:
  void AddNeighbour(int node, int neighbour);

  /// The starting vector for b; consumes the initial values.
  std::unique_ptr<double[]> ConsumeStart(const ReaVecV& b);
  /// ‖b − K·u‖ / ‖b‖, at least 1, where u has the prescribed values and is 0 elsewhere.
  double AllLoads(const ReaVecV& b) const;
  int Solve(ReaVecV& b, ReaVecV* probe, std::FILE* info);
  /// The result for the outcome of b; writes it to info.
  int Judge(std::FILE* info) const;
  /// The incomplete factors of the matrix.
  std::unique_ptr<Preconditioner> MakePreconditioner() const;
  /// The matrix, to be changed: drops the preconditioner.
  SystemMatrix& MatrixToChange();

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

  NodeCouplings couplings;                         ///< until Create
  std::unique_ptr<NodeBlockMatrix> blocks;         ///< of nodes with three or six equations
  std::unique_ptr<SparseMatrix> entries;           ///< of other nodes
  SystemMatrix* matrix = nullptr;                  ///< `blocks` or `entries`, whichever exists
  std::vector<int> prescribed;                     ///< equations whose rows are replaced, from 0
  std::unique_ptr<Preconditioner> preconditioner;  ///< null between calls of Solver unless kept
  bool keepsPreconditioner = false;
  std::unique_ptr<double[]> initialValues;
};

}  // namespace morlen
