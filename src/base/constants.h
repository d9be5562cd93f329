#pragma once

namespace morlen {

/// Limit of pure numbers: cosines, radians, Poisson's ratios, places along an element. A value
/// with a unit is compared with 0, or with EPSILON times another value of that unit, so that
/// the result does not depend on the system of units.
constexpr double EPSILON = 1e-15;
/// Limit of the tests on local axes.
constexpr double EPSILONB = 1e-05;

/// True when a sum is more than the rounding error of terms of this size (same unit, not
/// negative). False for a sum that is not a number.
constexpr bool ExceedsRounding(double sum, double size)
{
  return sum > EPSILON * size;
}

/// Plane problem (3 degrees of freedom a node) or space problem (6; solids have 3).
enum PROBLEMTYPE : int
{
  kPlane = 0,
  kSpace = 1
};

}  // namespace morlen
