#pragma once

#include <random>
#include <vector>

#include "solvers/ldlt_kernel.h"

/// Tells the pivots of a stable structure from the rounding errors that stand in the place
/// of the zero pivots of one that can move.
///
/// A pivot is the energy of a motion: D(j) = vᵀ·A·v, where v has a 1 in equation j, a 0 in
/// the equations behind it, and no force in those before. When v is a motion without
/// strain, what is left of D(j) is the rounding errors of the entries of A times the
/// squares of v, however large or small these are against the diagonal entry of j. So a
/// pivot is refused when it is not larger than 1e-15·Σ |A(k,k)|·v(k)².
///
/// Computing v costs a backward substitution. It is done only where an estimate of the sum
/// asks for it: v(k) is entry (j, k) of the inverse of L, so that with independent random
/// z(k) of mean 0 and variance 1, and w = L⁻¹·(√|A(k,k)|·z(k)), the mean of w(j)² is that sum
/// for every j, and w grows by one dot product a row (the estimate is that of M. F.
/// Hutchinson, A stochastic estimator of the trace of the influence matrix, Communications
/// in Statistics 18 (1989)). The random numbers are the same in every run.
class PivotCheck
{
public:
  /// For the factorisation of n rows, from the first on; borrows the matrix.
  PivotCheck(const ProfileRows& rows, int n);

  /// Whether D(row) can be divided by. To be called for every row in order, from 0, once the
  /// row is factorised; `diagonal` is its diagonal entry before that.
  bool Accepts(int row, double diagonal);

private:
  static constexpr int kProbes = 2;

  /// Computes w(row) of every probe and returns the largest square.
  double AdvanceProbes(int row);

  /// Σ |A(k,k)|·v(k)² for the motion v of a row.
  double MotionScale(int row);

  ProfileRows matrix;
  int size;
  std::minstd_rand random;
  std::vector<double> diagonals;        ///< |A(k,k)| of the rows seen
  std::vector<double> probes[kProbes];  ///< w, last equation first, in step with the rows
  std::vector<double> motion;           ///< v, last equation first
};
