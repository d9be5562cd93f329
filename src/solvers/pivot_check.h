#pragma once

#include <random>
#include <vector>

#include "solvers/ldlt_kernel.h"
#include "solvers/profile_rows.h"

/// Tells the pivots of a stable structure from the rounding errors that stand in the place
/// of the zero pivots of one that can move.
///
/// A pivot is the energy of a motion: D(j) = vᵀ·A·v, where v has a 1 in equation j, a 0 in
/// the equations behind it, and no force in those before. When v is a motion without
/// strain, what is left of D(j) is the rounding errors of the entries of A times the
/// squares of v, however large or small these are against the diagonal entry of j. So a
/// pivot is refused when it is not larger than 2e-16·Σ |A(k,k)|·v(k)².
///
/// Computing v costs a backward substitution. It is done only where an estimate of the sum
/// asks for it: v(k) is entry (j, k) of the inverse of L, so that with independent random
/// z(k) of mean 0 and variance 1, and w = L⁻¹·(√|A(k,k)|·z(k)), the mean of w(j)² is that sum
/// for every j (the estimate is that of M. F. Hutchinson, A stochastic estimator of the trace
/// of the influence matrix, Communications in Statistics 18 (1989)). These *probes*, kProbes
/// of them, are right-hand sides that the factorisation carries along. The random numbers are
/// the same in every run.
class PivotCheck
{
public:
  enum class Verdict
  {
    kAccepted,
    kRefused,
    kDoubtful,  ///< AcceptsMotion decides
  };

  /// For the factorisation of n rows, from the first on; borrows the matrix.
  PivotCheck(const ProfileRows& rows, int n);

  /// To be called for every row in order, from 0, with its diagonal entry before the
  /// factorisation. Puts √|A(row,row)|·z(row) of every probe into sides[0], sides[stride] ...
  void Begin(int row, double diagonal, double* sides, int stride);

  /// Of the pivot D(row), when w(row) of the probes is at w[0], w[stride] ...
  Verdict Judge(int row, double pivot, const double* w, int stride) const;

  /// Whether a doubtful pivot can be divided by. Rows 0 to `row` must hold L.
  bool AcceptsMotion(int row, double pivot);

private:
  /// Σ |A(k,k)|·v(k)² for the motion v of a row.
  double MotionScale(int row);

  ProfileRows matrix;
  int size;
  std::minstd_rand random;
  std::vector<double> diagonals;  ///< |A(k,k)| of the rows begun
  std::vector<double> motion;     ///< v, last equation first
};
