#pragma once

#include <cstddef>
#include <vector>

#include "base/large_array.h"
#include "solvers/block_kernel.h"

class SparseMatrix;

/// Lines of blocks that are filled one after the other.
struct BlockRows
{
  int size;
  LargeArray<double> values;
  std::vector<int> columns;
  std::vector<int> starts = {0};

  void Reserve(std::size_t lines, std::size_t blocks);
  void Add(int column, const double* block);
  void EndLine() { starts.push_back(static_cast<int>(columns.size())); }
  double* Block(int s) { return values.data() + static_cast<std::size_t>(s) * size * size; }
  const double* Block(int s) const { return const_cast<BlockRows*>(this)->Block(s); }

  BlockLines View() const
  {
    return {static_cast<int>(starts.size()) - 1, values.data(), columns.data(), starts.data()};
  }
  std::size_t StorageBytes() const;
};

/// The incomplete factors without fill of a matrix of node blocks, in blocks.
///
/// The pattern of the matrix is whole blocks, and so is that of its scalar factors L·U. With
/// the blocks L_ii, U_ii of their diagonals taken out, L·U = (I + L')·D·(I + U'), where
/// D_i = L_ii·U_ii, L'_ij = L_ij·L_jj⁻¹ and U'_ij = U_ii⁻¹·U_ij: the same matrix, but what a
/// node waits for in a substitution is one product with a block. −L', −U' and D⁻¹ are kept,
/// in the order in which they are used.
class BlockFactors
{
public:
  /// The matrix must be stored in blocks of nodes. Blocks that are free count as missing.
  explicit BlockFactors(const SparseMatrix& matrix);

  /// False when a pivot of the scalar factors was missing, 0 or not finite; nothing can be
  /// solved then.
  bool IsComplete() const { return complete; }

  /// y = (L·U)⁻¹·x; y may be x.
  void Solve(const double* x, double* y) const;
  /// y = (L·U)⁻ᵀ·x; y may be x.
  void TransSolve(const double* x, double* y) const;

  std::size_t StorageBytes() const { return lower.StorageBytes() + upper.StorageBytes(); }

private:
  int Nodes() const { return static_cast<int>(lower.starts.size()) - 1; }
  /// The line of a node in `upper`.
  int UpperLine(int node) const { return Nodes() - 1 - node; }

  void Split(const SparseMatrix& matrix);
  bool Factorise();
  /// Takes off the line of node i what the nodes before it bring; target[j] points to block
  /// (i, j), null when it is not in the pattern.
  void EliminateLine(int i, double* const* target);
  /// Turns the block of D that the elimination left into its inverse, and scales −U'.
  bool FinishLine(int i, double* work);

  int size;
  const BlockKernels* kernels;
  BlockRows lower;                   ///< line i: −L'_ij, j ascending
  BlockRows upper;                   ///< line n − 1 − i: D_i⁻¹, then −U'_ij, j descending
  std::vector<BlockUpdate> updates;  ///< scratch of the elimination
  bool complete;
};
