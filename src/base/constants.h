#pragma once

namespace morlen {

/// Limit of pure numbers: cosines, radians, Poisson's ratios, places along an element. A value
/// with a unit is compared with 0, or with this part of another of its unit, so that no system
/// of units decides.
constexpr double EPSILON = 1e-15;
/// Tests on local axes.
constexpr double EPSILONB = 1e-05;

/// Whether a sum is more than rounding leaves of terms of this size (same unit, not negative).
/// False for a sum that is not a number.
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
