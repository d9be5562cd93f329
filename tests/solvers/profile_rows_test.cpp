#include "solvers/profile_rows.h"

#include <gtest/gtest.h>

#include <cmath>

namespace morlen {

namespace {

/// Pseudo-random numbers in -1..1.
double Noise(int k)
{
  return std::sin(12.9898 * k + 78.233);
}

}  // namespace

TEST(ProfileRows, FirstColumn)
{
  const int heights[] = {1, 2, 1};
  const ProfileRows matrix{nullptr, heights};
  EXPECT_EQ(matrix.FirstColumn(0), 0);
  EXPECT_EQ(matrix.FirstColumn(1), 0);
  EXPECT_EQ(matrix.FirstColumn(2), 2);
}

TEST(ProfileRows, DotProductOfEveryLength)
{
  double a[40], b[40];
  for (int k = 0; k < 40; ++k) {
    a[k] = Noise(k);
    b[k] = Noise(1000 + k);
  }
  double expected = 0.0;
  for (int count = 0; count < 39; ++count) {
    EXPECT_NEAR(DotProduct(a + 1, b, count), expected, 1e-14) << count;
    expected += a[count + 1] * b[count];
  }
}

TEST(ProfileRows, SubtractMultipleTouchesOnlyItsRange)
{
  for (int count = 0; count < 19; ++count) {
    double x[20], y[20];
    for (int k = 0; k < 20; ++k) {
      x[k] = Noise(k);
      y[k] = k;
    }
    SubtractMultiple(y, x, 0.5, count);
    for (int k = 0; k < 20; ++k)
      EXPECT_NEAR(y[k], k < count ? k - 0.5 * x[k] : k, 1e-15) << count << " " << k;
  }
}

}  // namespace morlen
