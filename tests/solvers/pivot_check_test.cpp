#include "solvers/pivot_check.h"

#include <gtest/gtest.h>

#include <limits>

namespace morlen {

TEST(PivotCheck, ComparesWithZeroAndWithTheDiagonal)
{
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static const struct
  {
    double pivot, diagonal;
    bool accepted;
  } cases[] = {
      {1.0, 1.0, true},
      {-1.0, -1.0, true},
      {0.0, 1.0, false},
      {9.9e-16, 9.9e-16, false},
      {1.1e-15, 1.1e-15, true},
      {9e-9, 1e6, false},  // 1e-14 of the diagonal is 1e-8
      {11e-9, 1e6, true},
      {-9e-9, 1e6, false},
      {9e-9, -1e6, false},
      {std::numeric_limits<double>::quiet_NaN(), 1.0, false},
      {kInfinity, kInfinity, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(AcceptsPivot(c.pivot, c.diagonal), c.accepted) << c.pivot << " " << c.diagonal;
}

TEST(PivotCheck, AcceptsAnyNumberButZeroWithoutALimit)
{
  EXPECT_TRUE(AcceptsPivot(1e-300, 1.0, 0.0));
  EXPECT_TRUE(AcceptsPivot(-1e-300, 1.0, 0.0));
  EXPECT_FALSE(AcceptsPivot(0.0, 1.0, 0.0));
  EXPECT_FALSE(AcceptsPivot(std::numeric_limits<double>::quiet_NaN(), 1.0, 0.0));
}

}  // namespace morlen
