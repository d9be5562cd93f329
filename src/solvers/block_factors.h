#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "solvers/block_kernel.h"
#include "solvers/preconditioner.h"

namespace morlen {

class NodeBlockMatrix;

/// The incomplete factors without fill of a symmetric matrix of node blocks, in blocks:
/// (I + Uᵀ)·D·(I + U), with D block diagonal and U strictly above the diagonal.
///
/// A row that prescribes a value counts as one of the unit matrix, and its column as 0. That
/// changes nothing in an iteration that starts from the prescribed values: the residual of these
/// rows stays 0, so that their columns are only multiplied by zeros.
class BlockFactors : public Preconditioner
{
public:
  /// The matrix must be symmetric, except in the columns of the prescribed rows (from 0): its
  /// blocks below the diagonal are not read.
  BlockFactors(const NodeBlockMatrix& matrix, std::span<const int> prescribed);

  /// False when a pivot was 0 or not finite; solve then gives NaN.
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

  void CopyUpperHalf(const NodeBlockMatrix& matrix);
  void ClearColumns(std::span<const int> equations);
  bool Factorise();
  /// Copies the blocks of a line, transposed, before they are divided by D.
  void KeepLine(int line);
  /// Subtracts the products of a finished line from the lines of its nodes; place[j] is the index
  /// within the line of the block in column j, -1 when there is none.
  void SubtractLine(int line, const int* place);

  int size;
  const BlockKernels* kernels;
  LargeArray<double> diagonal;  ///< D⁻¹, a block for each node
  LargeArray<double> values;    ///< −U by lines, columns ascending, each block row by row
  std::vector<int> columns;
  std::vector<int> starts = {0};
  std::vector<double> kept;          ///< scratch of the elimination: see KeepLine
  std::vector<BlockUpdate> updates;  ///< scratch of the elimination
  bool complete;
};

}  // namespace morlen
