// A vector with a second part for the digits that a double lacks. Each sum is split into its
// rounded value and its exact rounding error, so that small corrections are not lost.

#include "numeric/split_vector.h"

#include <utility>

namespace morlen {

namespace {

/// The sum of a and b rounded, and its rounding error, exactly (D. E. Knuth, The Art of Computer
/// Programming, vol. 2, 3rd ed. 1997, section 4.2.2).
double SumWithError(double a, double b, double& error)
{
  const double sum = a + b;
  const double shareOfB = sum - a;
  error = (a - (sum - shareOfB)) + (b - shareOfB);
  return sum;
}

}  // namespace

SplitVector::SplitVector(ReaVecV v) : value(std::move(v)), rest(value.Size())
{
  if (rest.Size() > 0)
    rest = 0.0;
}

void SplitVector::Add(const ReaVecV& correction)
{
  for (int i = 1; i <= value.Size(); ++i) {
    double error = 0.0;
    const double sum = SumWithError(value(i), correction(i), error);
    value(i) = SumWithError(sum, rest(i) + error, rest(i));
  }
}

}  // namespace morlen
