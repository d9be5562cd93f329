#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>

namespace morlen {

// Loops over plain arrays of n doubles that the iterative methods share. Operations on the same
// vectors are done in one pass, since memory limits the speed.

using WorkArray = std::unique_ptr<double[]>;

/// n doubles, not initialised.
inline WorkArray Work(int n)
{
  return std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(n));
}

/// The sum of term(i) over 0 <= i < n, in four independent sums so that no addition waits.
template <class Term>
double Sum(int n, Term term)
{
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0, sum3 = 0.0;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    sum0 += term(i);
    sum1 += term(i + 1);
    sum2 += term(i + 2);
    sum3 += term(i + 3);
  }
  for (; i < n; ++i)
    sum0 += term(i);
  return (sum0 + sum1) + (sum2 + sum3);
}

/// ‖x‖ from the sum of its squares; computed again, scaled, when the sum is outside the range in
/// which it is accurate.
inline double NormFromSquares(double sum, const double* x, int n)
{
  constexpr double kSmallest = 1e-280;
  constexpr double kLargest = 1e300;
  if (sum >= kSmallest && sum <= kLargest)
    return std::sqrt(sum);
  double largest = 0.0;
  for (int i = 0; i < n; ++i)
    largest = std::fabs(x[i]) <= largest ? largest : std::fabs(x[i]);
  if (largest == 0.0 || !std::isfinite(largest))
    return largest;
  return largest * std::sqrt(Sum(n, [&](int i) { return (x[i] / largest) * (x[i] / largest); }));
}

/// y = x + factor·y.
inline void ScaleAndAdd(double* y, double factor, const double* x, int n)
{
  for (int i = 0; i < n; ++i)
    y[i] = x[i] + factor * y[i];
}

/// x += factor·p.
inline void AddMultiple(double* x, double factor, const double* p, int n)
{
  for (int i = 0; i < n; ++i)
    x[i] += factor * p[i];
}

/// r -= factor·q; returns ‖r‖.
inline double Reduce(double* r, double factor, const double* q, int n)
{
  const double squares = Sum(n, [&](int i) {
    r[i] -= factor * q[i];
    return r[i] * r[i];
  });
  return NormFromSquares(squares, r, n);
}

/// Whether the value is finite and not 0.
inline bool CanDivideBy(double value)
{
  return value != 0.0 && std::isfinite(value);
}

}  // namespace morlen
