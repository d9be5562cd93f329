#pragma once

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

/// Σ a[k]·b[k] over 0 <= k < count.
double DotProduct(const double* a, const double* b, int count);

/// y[k] -= factor·x[k] over 0 <= k < count; x and y do not overlap.
void SubtractMultiple(double* y, const double* x, double factor, int count);
