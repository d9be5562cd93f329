#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// How close two numbers of a result file must be.
struct Closeness
{
  double relative = 1e-6;
  /// Differences below this part of the largest number of the block are rounding.
  double floor = 1e-10;
  /// The limit of differences in a block of zeros.
  double absolute = 1e-12;
};

/// Compares two result files token by token. Text, blanks, lines and whole numbers must be equal,
/// other numbers close. Returns an empty text when the files agree, else a description of the first
/// difference.
///
/// A block, to which the floor refers, is a run of lines that contain only numbers. A whole number
/// at the beginning of a line is the number of a node or element and does not count.
std::string Difference(std::string_view actual, std::string_view expected,
                       Closeness closeness = {});

}  // namespace morlen
