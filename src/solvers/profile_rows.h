#pragma once

namespace morlen {

/// Symmetric matrices by the rows of their profile, and the loops of the substitutions on them.
/// Everything here counts from 0; nothing is checked.

/// A symmetric matrix by the rows of its profile: row i has heights[i] doubles, element d
/// of which is entry (i, i - d). Borrowed for the length of a call.
struct ProfileRows
{
  double* const* rows;
  const int* heights;

  int FirstColumn(int i) const { return i - heights[i] + 1; }
};

/// Prefetches a row.
void FetchRow(const double* row, int height);

/// Prefetches many rows, a few cache lines at a time, so that loads overlap other work.
class RowFetcher
{
public:
  explicit RowFetcher(const ProfileRows& matrix) : rows(matrix) {}

  /// Sets the rows to prefetch: `first` to end - 1.
  void Begin(int first, int end);
  /// Prefetches the next few lines.
  void FetchSome();

private:
  ProfileRows rows;
  int row = 0;
  int endRow = 0;
  int entry = 0;  ///< of the row, the next to prefetch
};

/// Σ a[k]·b[k] over 0 <= k < count.
double DotProduct(const double* a, const double* b, int count);

/// y[k] -= factor·x[k] over 0 <= k < count; x and y do not overlap.
void SubtractMultiple(double* y, const double* x, double factor, int count);

}  // namespace morlen
