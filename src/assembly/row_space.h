#pragma once

#include <array>
#include <vector>

namespace morlen {

/// A rigid motion as six numbers of the same unit: the displacement of the centre of a body, then
/// its rotation times the size of the body. Also a linear form on such motions.
using SixNumbers = std::array<double, 6>;

/// Independent rows in reduced form (Gauss-Jordan elimination): each has a pivot column, where it
/// is 1 and the other rows are 0.
class RowSpace
{
public:
  /// A row that depends on the rows before adds nothing.
  void Add(SixNumbers row);

  /// A basis of the motions on which all rows vanish, among those with the given components (from
  /// 0): one for each column that is no pivot column.
  std::vector<SixNumbers> FreeMotions(const std::vector<int>& columns) const;

private:
  struct Reduced
  {
    int column;
    SixNumbers values;
  };

  std::vector<Reduced> rows;
};

}  // namespace morlen
