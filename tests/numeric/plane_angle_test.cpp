// The angle between planes.

#include "numeric/plane_angle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace morlen {

namespace {

double AngleOf(double ax, double ay, double az, double bx, double by, double bz)
{
  const double a[] = {ax, ay, az};
  const double b[] = {bx, by, bz};
  return AngleOfPlanes(a, b);
}

}  // namespace

TEST(AngleOfPlanes, IsThatOfTheNormalsWhateverTheirSignsAndLengths)
{
  constexpr double kQuarter = std::numbers::pi / 4.0;
  EXPECT_DOUBLE_EQ(AngleOf(0, 0, 1, 0, 3, 3), kQuarter);
  EXPECT_DOUBLE_EQ(AngleOf(0, 0, -7, 0, 3, 3), kQuarter);
  EXPECT_DOUBLE_EQ(AngleOf(2, 0, 0, 0, 0, -5), 2.0 * kQuarter);
  EXPECT_EQ(AngleOf(1, 2, 3, -2, -4, -6), 0.0);
}

TEST(AngleOfPlanes, KeepsTheDigitsOfSmallAngles)
{
  // cos(1e-9) is 1 in double precision.
  EXPECT_DOUBLE_EQ(AngleOf(0, 0, 1, 0, std::sin(1e-9), std::cos(1e-9)), 1e-9);
}

TEST(CrossProduct, IsAcrossBothVectors)
{
  const double a[] = {1, 2, 3};
  const double b[] = {-2, 5, 7};
  double c[3];
  CrossProduct(a, b, c);
  EXPECT_EQ(c[0], 2 * 7 - 3 * 5);
  EXPECT_EQ(c[1], 3 * -2 - 1 * 7);
  EXPECT_EQ(c[2], 1 * 5 - 2 * -2);
}

}  // namespace morlen
