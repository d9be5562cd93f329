#pragma once

#include "solvers/ldlt_kernel.h"

namespace morlen {

// The loops of LdltKernel for any length of vectors. A tile of Vectors × Width rows of the panel
// and Columns columns is kept in registers while the sum runs over the columns of the chunk:
// Vectors loads and Columns broadcasts for Vectors·Columns multiplications (K. Goto, R. A. van de
// Geijn, Anatomy of high-performance matrix multiplication, ACM Transactions on Mathematical
// Software 34 (2008)).
//
// All of it is local to the file that includes it and calls nothing of the standard library:
// each kernel file is compiled for other instructions.

namespace {

template <int Width, int Vectors, int Columns>
class LdltTiles
{
public:
  static constexpr LdltKernel Kernel(const char* name)
  {
    return {name, Columns, kTileRows, Subtract, Solve, Divide, Eliminate};
  }

private:
  using Vector [[gnu::vector_size(Width * sizeof(double))]] = double;
  static constexpr int kTileRows = Vectors * Width;
  static constexpr int kGroups = kPanelRows / Columns;
  static constexpr int kGroupSize = kChunkColumns * Columns;
  static_assert(kPanelRows % kTileRows == 0 && kPanelRows % Columns == 0);
  static_assert(Columns % Width == 0);

  /// A vector in an array, at any address.
  using InMemory [[gnu::vector_size(Width * sizeof(double)), gnu::aligned(8), gnu::may_alias]] =
      double;

  static const InMemory& At(const double* p) { return *reinterpret_cast<const InMemory*>(p); }
  static InMemory& At(double* p) { return *reinterpret_cast<InMemory*>(p); }

  /// target(r, c) -= Σ panel(r, k)·group(k, c) over 0 <= k < count; then, if Solves, eliminates the
  /// tile's columns from each other by the rows `count` to count + Columns - 1 of the group.
  /// The sum is formed first and subtracted from the entry once: where the entry is large, only
  /// this one rounding is of its size. The loops are unrolled explicitly, because the compiler
  /// would otherwise move the sums from registers to memory.
  template <bool Solves>
  static void Tile(double* target, const double* panel, const double* group, int count)
  {
    Vector sums[Columns][Vectors] = {};
    for (int k = 0; k < count; ++k) {
      Vector g[Vectors];
      for (int v = 0; v < Vectors; ++v)
        g[v] = At(panel + v * Width);
      for (int c = 0; c < Columns; ++c)
        for (int v = 0; v < Vectors; ++v)
          sums[c][v] += g[v] * group[c];
      panel += kPanelRows;
      group += Columns;
    }
#pragma GCC unroll 8
    for (int c = 0; c < Columns; ++c)
      for (int v = 0; v < Vectors; ++v)
        sums[c][v] = At(target + c * kPanelRows + v * Width) - sums[c][v];
    if constexpr (Solves) {
#pragma GCC unroll 8
      for (int k = 0; k < Columns; ++k, group += Columns)
        for (int c = k + 1; c < Columns; ++c)
          for (int v = 0; v < Vectors; ++v)
            sums[c][v] -= sums[k][v] * group[c];
    }
    for (int c = 0; c < Columns; ++c)
      for (int v = 0; v < Vectors; ++v)
        At(target + c * kPanelRows + v * Width) = sums[c][v];
  }

  static int Later(int a, int b)
  {
    return a > b ? a : b;
  }

  /// All tiles of a group of the step; sums end before column `end`.
  template <bool Solves>
  static void Group(const LdltStep& step, int index, int end)
  {
    double* const target = step.target + index * Columns * kPanelRows;
    const double* const group = step.block + index * kGroupSize;
    const int start = Later(step.chunk, step.groupStarts[index]);
    for (int tile = step.firstTile; tile < kPanelRows / kTileRows; ++tile) {
      const int reached = Later(start, step.tileStarts[tile]);
      if (reached >= end && (!Solves || step.tileStarts[tile] >= end + Columns))
        continue;
      const int first = reached < end ? reached : end;
      const int row = tile * kTileRows;
      const int skipped = first - step.chunk;
      Tile<Solves>(target + row, step.panel + skipped * kPanelRows + row, group + skipped * Columns,
                   end - first);
    }
  }

  static void Subtract(const LdltStep& step, int count)
  {
    for (int index = 0; index < count; ++index)
      Group<false>(step, index, step.end);
  }

  static void Solve(const LdltStep& step, int column, int count)
  {
    for (int index = 0; index < count; ++index)
      Group<true>(step, index, column + index * Columns);
  }

  static void Divide(const double* panel, const double* pivots, double* block, int count)
  {
    for (int k = 0; k < count; ++k) {
      const Vector pivot = pivots[k] - Vector{};
      for (int group = 0; group < kGroups; ++group)
        for (int c = 0; c < Columns; c += Width)
          At(block + group * kGroupSize + k * Columns + c) =
              At(panel + k * kPanelRows + group * Columns + c) / pivot;
    }
  }

  /// y -= x·factor over the rows of a panel.
  static void SubtractColumn(double* y, const double* x, double factor)
  {
    for (int row = 0; row < kPanelRows; row += Width)
      At(y + row) -= At(x + row) * factor;
  }

  static void Eliminate(const LdltPivot& pivot)
  {
    const int index = pivot.column % Columns;
    const double* const column = pivot.group + index * kPanelRows;
    const double d = column[pivot.column];
    Divide(column, &d, pivot.block, 1);
    const double* const l = pivot.block + pivot.column / Columns * kGroupSize;
    for (int c = index + 1; c < Columns; ++c)
      SubtractColumn(pivot.group + c * kPanelRows, column, l[c]);
  }
};

}  // namespace

}  // namespace morlen
