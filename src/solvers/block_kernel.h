#pragma once

#include "base/processor.h"

/// Lines of square blocks in compressed storage, borrowed: line i has the blocks from
/// starts[i] to starts[i + 1] - 1. A block has size² values, column by column; columns[s] is
/// the node, from 0, whose `size` unknowns block s multiplies. Behind the last block
/// kBlockPadding more values can be read.
struct BlockLines
{
  int lines;
  const double* values;
  const int* columns;
  const int* starts;
};

/// What a vector load may read behind a block.
inline constexpr int kBlockPadding = 4;

/// A block that is to be changed by one of a row of blocks, counted from 0.
struct BlockUpdate
{
  int block;
  double* target;
};

/// The loops over blocks of one size, compiled for one set of instructions; another set sums
/// in the same order but may round less often.
struct BlockKernels
{
  /// y of node i = line i times x, for all i.
  void (*product)(const BlockLines& A, const double* x, double* y);

  /// y of node i = b of node i plus line i times y, i ascending: the blocks meet what was
  /// found before, the last one what was found last. y may be b.
  void (*forward)(const BlockLines& L, const double* b, double* y);

  /// y of node i = line n - 1 - i times y, i descending from n - 1. The first block of a line
  /// is the node's own and meets what y held.
  void (*backward)(const BlockLines& U, double* y);

  /// *updates[k].target += factor·block `updates[k].block` of a row of blocks.
  void (*addProducts)(const double* factor, const double* blocks, const BlockUpdate* updates,
                      int count);

  /// Each of `count` blocks in a row becomes −factor·block.
  void (*scaleLeft)(const double* factor, double* blocks, int count);

  /// block = −block·factor.
  void (*scaleRight)(double* block, const double* factor);
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
