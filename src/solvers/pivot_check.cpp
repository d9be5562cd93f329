#include "solvers/pivot_check.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/constants.h"

namespace {

/// A pivot not larger than this part of its diagonal entry is rounding error.
constexpr double kLostPart = 1e-14;
/// The same against the sum over the motion.
constexpr double kLostEnergy = 2e-16;
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
}

void PivotCheck::Begin(int row, double diagonal, double* sides, int stride)
{
  diagonals[row] = std::fabs(diagonal);
  for (int probe = 0; probe < kProbes; ++probe)
    sides[probe * stride] = std::sqrt(diagonals[row]) * RandomNumber(random);
}

PivotCheck::Verdict PivotCheck::Judge(int row, double pivot, const double* w, int stride) const
{
  const double energy = std::fabs(pivot);
  // The comparisons are written so that a pivot that is not a number is refused.
  if (!(energy >= EPSILON && energy > kLostPart * diagonals[row]))
    return Verdict::kRefused;
  double largest = 0.0;
  for (int probe = 0; probe < kProbes; ++probe)
    largest = std::max(largest, w[probe * stride] * w[probe * stride]);
  return energy > kEstimateMargin * kLostEnergy * largest ? Verdict::kAccepted : Verdict::kDoubtful;
}

bool PivotCheck::AcceptsMotion(int row, double pivot)
{
  return std::fabs(pivot) > kLostEnergy * MotionScale(row);
}

double PivotCheck::MotionScale(int row)
{
  motion.assign(static_cast<std::size_t>(size), 0.0);
  motion[size - 1 - row] = 1.0;
  double sum = 0.0;
  for (int k = row; k >= 0; --k) {
    double* const v = motion.data() + (size - 1 - k);
    SubtractMultiple(v + 1, matrix.rows[k] + 1, *v, matrix.heights[k] - 1);
    sum += diagonals[k] * *v * *v;
  }
  return sum;
}
