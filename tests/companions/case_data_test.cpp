// Values along beams in the pages of load cases.

#include "report/case_data.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace morlen {

namespace {

/// Values of two polynomials of this degree at equal distances.
std::vector<double> Polynomials(int degree, int points)
{
  std::vector<double> values;
  for (const double scale : {1.0, -250.0}) {
    for (int i = 0; i < points; ++i)
      values.push_back(scale * (std::pow(static_cast<double>(i) / (points - 1), degree) - 0.3));
  }
  return values;
}

}  // namespace

TEST(CasePage, PolynomialsNeedOnePointMoreThanTheirDegree)
{
  for (int degree = 1; degree <= 4; ++degree) {
    for (const int points : {7, 17, 41})
      EXPECT_EQ(CountOfPoints(Polynomials(degree, points), points), degree + 1) << points;
  }
  EXPECT_EQ(CountOfPoints(Polynomials(0, 17), 17), 2);
}

TEST(CasePage, OtherValuesKeepAllPoints)
{
  EXPECT_EQ(CountOfPoints(Polynomials(5, 17), 17), 17);
  std::vector<double> values = Polynomials(2, 17);
  values[20] += 1e-6;
  EXPECT_EQ(CountOfPoints(values, 17), 17);
  EXPECT_EQ(CountOfPoints(Polynomials(4, 3), 3), 3);
  EXPECT_EQ(CountOfPoints(Polynomials(4, 2), 2), 2);
}

TEST(CasePage, ChosenPointsHaveTheEnds)
{
  EXPECT_EQ(ChosenPoints(2, 17), (std::vector<int>{0, 16}));
  EXPECT_EQ(ChosenPoints(5, 17), (std::vector<int>{0, 4, 8, 12, 16}));
  EXPECT_EQ(ChosenPoints(3, 6), (std::vector<int>{0, 2, 5}));
  EXPECT_EQ(ChosenPoints(4, 4), (std::vector<int>{0, 1, 2, 3}));
}

}  // namespace morlen
