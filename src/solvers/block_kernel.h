#pragma once

#include "base/processor.h"

namespace morlen {

/// Lines of square blocks in compressed storage, borrowed: line i has the blocks from
/// starts[i] to starts[i + 1] - 1. A block has size² values; columns[s] is the node, from 0,
/// whose `size` unknowns block s multiplies. kBlockPadding zeros follow the last block.
struct BlockLines
{
  int lines;
  const double* values;
  const int* columns;
  const int* starts;
};

/// A vector load may read this many numbers past the end of a block.
inline constexpr int kBlockPadding = 4;

/// An update of a block by one of consecutive blocks, counted from 0.
struct BlockUpdate
{
  int block;
  double* target;
};

/// The loops over blocks of one size, compiled for one set of instructions; another set sums
/// in the same order but may round less often. The blocks of a matrix A are stored column by
/// column, those of a triangle −U, strictly above the diagonal, row by row. So every product, also
/// with the transpose, reads and writes the unknowns of a node in their order.
struct BlockKernels
{
  /// y of node i = line i times x, for all i.
  void (*product)(const BlockLines& A, const double* x, double* y);

  /// Solves (I + Uᵀ)·y = b, where y holds b.
  void (*forward)(const BlockLines& U, double* y);

  /// Solves (I + U)·y = D⁻¹·b, where y holds b; `inverse` has a block of D⁻¹ for every node,
  /// column by column, and the padding of BlockLines.
  void (*backward)(const BlockLines& U, const double* inverse, double* y);

  /// The same for two vectors in one pass over the blocks; the result of each is bit for bit that
  /// of a separate call.
  void (*productOfTwo)(const BlockLines& A, const double* const x[2], double* const y[2]);
  void (*forwardOfTwo)(const BlockLines& U, double* const y[2]);
  void (*backwardOfTwo)(const BlockLines& U, const double* inverse, double* const y[2]);

  /// *updates[k].target += block `updates[k].block` of consecutive blocks times factor, all column
  /// by column.
  void (*addProducts)(const double* factor, const double* blocks, const BlockUpdate* updates,
                      int count);

  /// Each of `count` consecutive blocks becomes −block·factor, all column by column.
  void (*scale)(double* blocks, int count, const double* factor);
};

/// The loops for blocks of this size on a processor; null for sizes other than 3 and 6.
const BlockKernels* GiveBlockKernels(int size, Processor processor);

/// y += blockᵀ·x, the block column by column.
inline void AddTransposedBlock(int size, const double* block, const double* x, double* y)
{
  for (int b = 0; b < size; ++b)
    for (int a = 0; a < size; ++a)
      y[b] += *block++ * x[a];
}

}  // namespace morlen
