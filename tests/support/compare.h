#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// How close two numbers of a result file must be.
struct Closeness
{
  double relative = 1e-6;
  /// Part of the largest number of the block, below which a difference is rounding.
  double floor = 1e-10;
  /// The same in a block of zeros.
  double absolute = 1e-12;
};

/// Compares two result files token by token: text, blanks and lines must be the same,
/// numbers close, whole numbers equal. A block, for the floor, is a run of lines that hold
/// numbers only; a whole number at the beginning of a line names its node or element and
/// does not count. Empty when they agree, else a description of the first difference.
std::string Difference(std::string_view actual, std::string_view expected,
                       Closeness closeness = {});

}  // namespace morlen
