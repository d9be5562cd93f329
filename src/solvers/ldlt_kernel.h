#pragma once

/// The inner loops of the L·D·Lᵀ factorisation and of its substitutions, on raw rows.
/// Everything here counts from 0; nothing is checked.

/// A symmetric matrix by the rows of its profile: row i has heights[i] doubles, element d
/// of which is entry (i, i - d). Borrowed for the length of a call.
struct ProfileRows
{
  double* const* rows;
  const int* heights;

  int FirstColumn(int i) const { return i - heights[i] + 1; }
};

/// The most rows that ReduceRows takes in one call.
constexpr int kMaxRowsPerGroup = 6;

/// First step of the factorisation of rows first .. first + count - 1, which must all begin
/// in the same column; the rows above must be factorised. Every entry (j, i) of the group
/// with i < first becomes
///   G(j,i) = A(j,i) - Σ L(i,k)·G(j,k), k < i, so that L(j,i) = G(j,i) / D(i).
/// A row above is read once for the whole group, which is what the grouping is for.
void ReduceRows(const ProfileRows& matrix, int first, int count);

/// Second step, for one row of the group that begins at row `first`, in order: computes
/// G(row, i) for first <= i < row, then turns G into L and the diagonal into D(row).
void FinishRow(const ProfileRows& matrix, int row, int first);

/// Σ a[k]·b[k] over 0 <= k < count.
double DotProduct(const double* a, const double* b, int count);

/// y[k] -= factor·x[k] over 0 <= k < count; x and y do not overlap.
void SubtractMultiple(double* y, const double* x, double factor, int count);
