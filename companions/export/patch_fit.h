#pragma once

#include <array>
#include <span>
#include <vector>

namespace morlen {

/// The factors by which the values at some places of a plane give the value at the origin: that of
/// the polynomial of least squares through them, of degree 1 or 2.
///
/// False, without a meaning of the factors, when the places do not determine the polynomial, or
/// when the sum of the squared factors exceeds `mostNoise`: so many times would the variance of a
/// value's error grow. The factors of a polynomial do not depend on the scales and the skewness of
/// the axes.
bool FindPatchFactors(std::span<const std::array<double, 2>> places, int degree, double mostNoise,
                      std::vector<double>& factors);

}  // namespace morlen
