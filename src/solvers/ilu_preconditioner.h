#pragma once

#include <cstddef>

#include "solvers/compressed_rows.h"
#include "solvers/preconditioner.h"

namespace morlen {

/// Incomplete factors L·U without fill, for a matrix of single entries: L has ones on its diagonal
/// and the slots below it, U the slots on and above it. Not used by the analysis itself, whose
/// nodes have three or six equations: see BlockFactors.
class ILUPreconditioner : public Preconditioner
{
public:
  explicit ILUPreconditioner(const SparseMatrix& matrix);

  void solve(const double* x, double* y) const override;
  void trans_solve(const double* x, double* y) const override;
  void New_Matrix(const SparseMatrix& matrix) override;

  /// By rows, columns ascending, without the ones of the diagonal.
  CompressedView GiveL() const { return lower.View(); }
  /// By rows, columns ascending, the diagonal first.
  CompressedView GiveU() const { return upper.View(); }
  /// False when a pivot was missing, 0 or not finite.
  bool IsComplete() const { return complete; }
  std::size_t StorageBytes() const;

private:
  void Split(const SparseMatrix& matrix);
  /// False at the first pivot that cannot be divided by.
  bool Factorise();
  bool HasPivot(int i) const;
  /// Eliminates the entries of row i left of the diagonal; entry[j] points to (i, j), null when it
  /// is not in the pattern.
  void EliminateRow(int i, double* const* entry);

  int n;
  CompressedRows lower;
  CompressedRows upper;
  bool complete;
};

}  // namespace morlen
