#pragma once

#include <span>
#include <vector>

namespace morlen {

struct Solution;

/// A solution as bytes, as ImageOf(Problem).
std::vector<char> ImageOf(const Solution& solution);

/// Fills an empty solution. Fatal for bytes that are not a whole image of this version.
void ReadImage(std::span<const char> image, Solution& solution);

}  // namespace morlen
