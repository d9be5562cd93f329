#include "solvers/pivot_check.h"

#include <cmath>

#include "base/constants.h"

namespace morlen {

bool AcceptsPivot(double pivot, double diagonal, double lostPart)
{
  const double size = std::fabs(pivot);
  // The comparisons are written so that a pivot that is not a number is refused.
  return size >= (lostPart > 0.0 ? EPSILON : 0.0) && size > lostPart * std::fabs(diagonal);
}

}  // namespace morlen
