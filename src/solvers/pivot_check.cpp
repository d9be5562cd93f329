#include "solvers/pivot_check.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/constants.h"

namespace {

/// A pivot not larger than this part of its diagonal entry is rounding error.
constexpr double kLostPart = 1e-14;
/// The same against the sum over the motion.
constexpr double kLostEnergy = 1e-15;
/// How far the estimate of that sum may be too low.
constexpr double kEstimateMargin = 1e3;

/// Mean 0, variance 1, evenly spread.
double RandomNumber(std::minstd_rand& random)
{
  const double unit = static_cast<double>(random()) / static_cast<double>(random.max());
  return (2.0 * unit - 1.0) * std::numbers::sqrt3;
}

}  // namespace

PivotCheck::PivotCheck(const ProfileRows& rows, int n) : matrix(rows), size(n)
{
  diagonals.resize(static_cast<std::size_t>(n));
  motion.resize(static_cast<std::size_t>(n));
  for (std::vector<double>& probe : probes)
    probe.resize(static_cast<std::size_t>(n));
}

bool PivotCheck::Accepts(int row, double diagonal)
{
  diagonals[row] = std::fabs(diagonal);
  const double pivot = std::fabs(matrix.rows[row][0]);
  // The comparisons are written so that a pivot that is not a number is refused.
  if (!(pivot >= EPSILON && pivot > kLostPart * diagonals[row]))
    return false;
  if (pivot > kEstimateMargin * kLostEnergy * AdvanceProbes(row))
    return true;
  return pivot > kLostEnergy * MotionScale(row);
}

double PivotCheck::AdvanceProbes(int row)
{
  double largest = 0.0;
  for (std::vector<double>& probe : probes) {
    double* const w = probe.data() + (size - 1 - row);
    *w = std::sqrt(diagonals[row]) * RandomNumber(random) -
         DotProduct(matrix.rows[row] + 1, w + 1, matrix.heights[row] - 1);
    largest = std::max(largest, *w * *w);
  }
  return largest;
}

double PivotCheck::MotionScale(int row)
{
  std::fill(motion.begin(), motion.end(), 0.0);
  motion[size - 1 - row] = 1.0;
  double sum = 0.0;
  for (int k = row; k >= 0; --k) {
    double* const v = motion.data() + (size - 1 - k);
    SubtractMultiple(v + 1, matrix.rows[k] + 1, *v, matrix.heights[k] - 1);
    sum += diagonals[k] * *v * *v;
  }
  return sum;
}
