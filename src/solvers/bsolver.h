#pragma once

#include <cstdio>
#include <fstream>
#include <span>

#include "solvers/element_blocks.h"

namespace morlen {

class Matriu;
class ReaVecV;

/// The global stiffness matrix and the solver of its system; hides the storage from assembly and
/// analysis.
///
/// Equations, rows and columns run from 1. Order of use: EnterMaxDiff for every two
/// nodes that share an element, Create, AddElement or AddSubMatriu for every block,
/// ApplyConstraint for every prescribed unknown, Solver.
class BSolver : public ElementSink
{
public:
  /// Number of equations.
  virtual int GiveSize() const = 0;

  /// Declares that the ndof equations of node1 couple with those of node2; equation k
  /// of node p is (p - 1)·ndof + k.
  virtual void EnterMaxDiff(int node1, int node2, int ndof) = 0;

  /// Allocates the storage, all zero. To be called after every coupling has been declared.
  virtual void Create(int ndof) = 0;

  /// Entry (i, j). Not used by the analysis itself.
  virtual double& operator()(int i, int j) = 0;

  /// Sets every stored entry to 0. Not used by the analysis itself.
  virtual void SetToZero() = 0;

  /// Adds the dense block m with its entry (1, 1) at (row, col).
  virtual void AddSubMatriu(int row, int col, const Matriu& m) = 0;

  /// Adds each block of an element between its nodes as AddSubMatriu does; the node with the lower
  /// number has the rows.
  void AddElement(const ElementBlocks& element) override;

  /// Solves in place: b is the right-hand side and becomes the solution. Returns 0 on
  /// success. Messages go to info when it is not null.
  virtual int Solver(ReaVecV& b, std::FILE* info) = 0;

  /// Imposes u(eq) = value on the matrix and on the right-hand side b. Returns eq.
  virtual int ApplyConstraint(int eq, double value, ReaVecV& b);

  /// The same for several right-hand sides, each with its own value: the matrix changes once, and
  /// the result of each is bit for bit that of a separate call. One value for each side. Returns
  /// eq.
  virtual int ApplyConstraint(int eq, std::span<const double> values,
                              std::span<ReaVecV* const> sides) = 0;

  // The analysis itself uses none of the following operations except PrintInfoMem.

  /// The product of row i with v.
  virtual double ReturnRowPerVector(int i, const ReaVecV& v) const = 0;

  /// Text dump.
  virtual void PrintTo(std::ofstream& out) const = 0;

  /// Copies the whole matrix into m, which becomes n×n.
  virtual void CopyFromYouToMat(Matriu& m) const = 0;

  /// Writes the matrix as a mesh and a result for the post-processor.
  virtual void WriteForKiv(std::ofstream& mesh, std::ofstream& res) const = 0;

  /// Storage report; nothing without a stream.
  virtual void PrintInfoMem(std::FILE* info) const = 0;

protected:
  BSolver() = default;
  BSolver(const BSolver&) = delete;
  BSolver& operator=(const BSolver&) = delete;
};

/// Whether both have the same size and no two entries differ by tol or more. Reads all entries
/// through operator(), which must not be fatal for any of them. Not used by the analysis itself.
bool AreEqual(BSolver& a, BSolver& b, double tol);

}  // namespace morlen
