#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "solvers/block_kernel.h"
#include "solvers/preconditioner.h"

namespace morlen {

class SparseMatrix;

/// The incomplete factors without fill of a symmetric matrix of node blocks, in blocks.
///
/// The pattern of the matrix is whole blocks, and so is that of its scalar factors L·U. With
/// the blocks of their diagonals taken out, L·U = (I + Uᵀ)·D·(I + U), U strictly above the
/// diagonal: the same matrix, but kept in half the memory, and what a node waits for in a
/// substitution is a product with one block. D⁻¹ and −U are kept.
///
/// A row that prescribes a value is one of the unit matrix, and its column is left out: where
/// the residual of the row is 0, as it is when the iteration starts from the prescribed values,
/// the column meets nothing but zeros.
class BlockFactors : public Preconditioner
{
public:
  /// The matrix must be stored in blocks of nodes and, but for the columns of the prescribed
  /// rows, from 0, be symmetric: what is below its diagonal is not looked at. Blocks that are
  /// free count as missing.
  BlockFactors(const SparseMatrix& matrix, std::span<const int> prescribed);

  /// False when a pivot of the scalar factors was missing, 0 or not finite; nothing can be
  /// solved then.
  bool IsComplete() const { return complete; }

  void solve(const double* x, double* y) const override;
  void SolveTwo(const double* const x[2], double* const y[2]) const override;
  void trans_solve(const double* x, double* y) const override { solve(x, y); }
  void New_Matrix(const SparseMatrix& matrix) override;

  std::size_t StorageBytes() const;

private:
  int Nodes() const { return static_cast<int>(starts.size()) - 1; }
  std::size_t Square() const { return static_cast<std::size_t>(size) * size; }
  double* Diagonal(int node) { return diagonal.data() + node * Square(); }
  double* Block(int s) { return values.data() + s * Square(); }
  BlockLines Lines() const { return {Nodes(), values.data(), columns.data(), starts.data()}; }

  void CopyUpperHalf(const SparseMatrix& matrix);
  void ClearColumns(std::span<const int> equations);
  bool Factorise();
  /// Keeps the blocks of a line, transposed, before they are divided by D.
  void KeepLine(int line);
  /// Takes a finished line off the lines that it reaches; place[j] is the place of the block in
  /// column j within the line, -1 when there is none.
  void TakeOutLine(int line, const int* place);

  int size;
  const BlockKernels* kernels;
  LargeArray<double> diagonal;  ///< D⁻¹, a block for each node
  LargeArray<double> values;    ///< −U by lines, columns ascending, each block row by row
  std::vector<int> columns;
  std::vector<int> starts = {0};
  std::vector<double> kept;          ///< scratch of the elimination, see KeepLine
  std::vector<BlockUpdate> updates;  ///< scratch of the elimination
  bool complete;
};

}  // namespace morlen
