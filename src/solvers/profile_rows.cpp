#include "solvers/profile_rows.h"

namespace morlen {

namespace {

/// Independent sums, so that no addition waits for the one before it.
constexpr int kLanes = 8;
/// Doubles in a line of the cache.
constexpr int kLineEntries = 8;
/// Lines that RowFetcher requests at a time: about as many as a core can have outstanding.
constexpr int kLinesAtATime = 48;

}  // namespace

void FetchRow(const double* row, int height)
{
  for (int entry = 0; entry < height; entry += kLineEntries)
    __builtin_prefetch(row + entry);
}

void RowFetcher::Begin(int first, int end)
{
  row = first;
  endRow = end;
  entry = 0;
}

void RowFetcher::FetchSome()
{
  for (int line = 0; line < kLinesAtATime && row < endRow; ++line) {
    __builtin_prefetch(rows.rows[row] + entry);
    entry += kLineEntries;
    if (entry >= rows.heights[row]) {
      entry = 0;
      ++row;
    }
  }
}

double DotProduct(const double* a, const double* b, int count)
{
  double lanes[kLanes] = {};
  int k = 0;
  for (; k + kLanes <= count; k += kLanes)
    for (int lane = 0; lane < kLanes; ++lane)
      lanes[lane] += a[k + lane] * b[k + lane];
  double sum = 0.0;
  for (const double lane : lanes)
    sum += lane;
  for (; k < count; ++k)
    sum += a[k] * b[k];
  return sum;
}

void SubtractMultiple(double* y, const double* x, double factor, int count)
{
  for (int k = 0; k < count; ++k)
    y[k] -= factor * x[k];
}

}  // namespace morlen
