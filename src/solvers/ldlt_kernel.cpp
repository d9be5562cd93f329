#include "solvers/ldlt_kernel.h"

#include <algorithm>

// Rows are stored from the diagonal leftwards, so the entries (i, k) and (j, k) of columns
// k = c .. i - 1 are contiguous in both rows: elements 1 .. i - c of row i and the same
// number from element j - i + 1 of row j. The whole factorisation is dot products of such
// runs. Four sums run side by side, so that no addition waits for the one before it.

namespace {

constexpr int kLanes = 4;

/// sums[r] = Σ a[k]·b[r][k] over 0 <= k < count, for Rows vectors b against one a.
template <int Rows>
void DotProducts(const double* a, const double* const* b, int count, double* sums)
{
  double lanes[Rows][kLanes] = {};
  int k = 0;
  for (; k + kLanes <= count; k += kLanes)
    for (int r = 0; r < Rows; ++r)
      for (int lane = 0; lane < kLanes; ++lane)
        lanes[r][lane] += a[k + lane] * b[r][k + lane];
  for (int r = 0; r < Rows; ++r) {
    sums[r] = (lanes[r][0] + lanes[r][1]) + (lanes[r][2] + lanes[r][3]);
    for (int rest = k; rest < count; ++rest)
      sums[r] += a[rest] * b[r][rest];
  }
}

template <int Rows>
void ReduceGroup(const ProfileRows& matrix, int first)
{
  const int start = matrix.FirstColumn(first);
  for (int i = start + 1; i < first; ++i) {
    const int count = i - std::max(start, matrix.FirstColumn(i));
    if (count == 0)
      continue;
    const double* right[Rows];
    for (int r = 0; r < Rows; ++r)
      right[r] = matrix.rows[first + r] + (first + r - i + 1);
    double sums[Rows];
    DotProducts<Rows>(matrix.rows[i] + 1, right, count, sums);
    for (int r = 0; r < Rows; ++r)
      matrix.rows[first + r][first + r - i] -= sums[r];
  }
}

/// ReduceGroup by number of rows, from 1.
constexpr void (*kReduceGroup[kMaxRowsPerGroup])(const ProfileRows&, int) = {
    ReduceGroup<1>, ReduceGroup<2>, ReduceGroup<3>, ReduceGroup<4>, ReduceGroup<5>, ReduceGroup<6>,
};

/// Turns the finished G of a row into L and its diagonal into D(row).
void DivideByPivots(const ProfileRows& matrix, int row)
{
  double* const entries = matrix.rows[row];
  double sum = 0.0;
  for (int k = matrix.FirstColumn(row); k < row; ++k) {
    const double g = entries[row - k];
    const double l = g / matrix.rows[k][0];
    entries[row - k] = l;
    sum += g * l;
  }
  entries[0] -= sum;
}

}  // namespace

void ReduceRows(const ProfileRows& matrix, int first, int count)
{
  kReduceGroup[count - 1](matrix, first);
}

void FinishRow(const ProfileRows& matrix, int row, int first)
{
  double* const entries = matrix.rows[row];
  const int start = matrix.FirstColumn(row);
  for (int i = std::max(first, start + 1); i < row; ++i) {
    const int count = i - std::max(start, matrix.FirstColumn(i));
    entries[row - i] -= DotProduct(matrix.rows[i] + 1, entries + (row - i + 1), count);
  }
  DivideByPivots(matrix, row);
}

double DotProduct(const double* a, const double* b, int count)
{
  double sum;
  DotProducts<1>(a, &b, count, &sum);
  return sum;
}

void SubtractMultiple(double* y, const double* x, double factor, int count)
{
  for (int k = 0; k < count; ++k)
    y[k] -= factor * x[k];
}
