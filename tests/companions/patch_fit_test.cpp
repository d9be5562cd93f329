#include "export/patch_fit.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <numeric>
#include <vector>

namespace morlen {

namespace {

using Place = std::array<double, 2>;

// Irregular places around (0.3, 0.2), mapped by a matrix.
std::vector<Place> PlacesOn(double xx, double xy, double yx, double yy)
{
  const std::vector<Place> plain = {{-0.7, -0.4}, {0.1, -0.8}, {0.9, -0.6}, {1.2, 0.3},
                                    {0.6, 0.9},   {-0.2, 1.1}, {-0.9, 0.7}, {0.2, 0.15},
                                    {0.5, -0.1},  {-0.3, 0.2}};
  std::vector<Place> mapped;
  for (const Place& p : plain)
    mapped.push_back({xx * p[0] + xy * p[1], yx * p[0] + yy * p[1]});
  return mapped;
}

double ValueAtOrigin(const std::vector<Place>& places, const std::vector<double>& factors,
                     const std::function<double(double, double)>& f)
{
  double value = 0.0;
  for (std::size_t i = 0; i < places.size(); ++i)
    value += factors[i] * f(places[i][0], places[i][1]);
  return value;
}

}  // namespace

TEST(PatchFit, ReproducesPolynomialsOfItsDegree)
{
  const auto linear = [](double x, double y) { return 7.0 + 3.0 * x - 2.0 * y; };
  const auto quadratic = [&](double x, double y) {
    return linear(x, y) + x * x - 4.0 * x * y + 2.0 * y * y;
  };
  for (const std::vector<Place>& places :
       {PlacesOn(1, 0, 0, 1), PlacesOn(5e-3, 0, 0, 5), PlacesOn(1, 1, 1, 1.001)}) {
    std::vector<double> factors;
    // Rounding: in the skew axes differences of 1e-3 count, squared in PᵀP.
    ASSERT_TRUE(FindPatchFactors(places, 1, 10.0, factors));
    EXPECT_NEAR(ValueAtOrigin(places, factors, linear), 7.0, 1e-9);
    ASSERT_TRUE(FindPatchFactors(places, 2, 10.0, factors));
    EXPECT_NEAR(ValueAtOrigin(places, factors, linear), 7.0, 1e-9);
    EXPECT_NEAR(ValueAtOrigin(places, factors, quadratic), 7.0, 1e-9);
  }
}

TEST(PatchFit, IsOfLeastSquares)
{
  // Against a value at one place the factor is the derivative of the fit by it: for equal places in
  // a star around the origin each has 1 / n in degree 1.
  const std::vector<Place> star = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  std::vector<double> factors;
  ASSERT_TRUE(FindPatchFactors(star, 1, 10.0, factors));
  for (const double factor : factors)
    EXPECT_DOUBLE_EQ(factor, 0.25);
}

TEST(PatchFit, OfOneTriangleContinuesItsPlane)
{
  const std::vector<Place> middles = {{0.5, 0.0}, {0.5, 0.5}, {0.0, 0.5}};
  std::vector<double> factors;
  ASSERT_TRUE(FindPatchFactors(middles, 1, 3.1, factors));
  EXPECT_NEAR(factors[0], 1.0, 1e-14);  // rounding
  EXPECT_NEAR(factors[1], -1.0, 1e-14);
  EXPECT_NEAR(factors[2], 1.0, 1e-14);
  // The sum of the squares is 3.
  EXPECT_FALSE(FindPatchFactors(middles, 1, 2.9, factors));
}

TEST(PatchFit, RefusesPlacesThatDoNotDetermineIt)
{
  std::vector<double> factors;
  EXPECT_FALSE(FindPatchFactors(std::vector<Place>{{0, 1}, {1, 0}}, 1, 1e9, factors));
  const std::vector<Place> line = {{0, 0}, {1, 2}, {2, 4}, {3, 6}, {4, 8}, {5, 10}, {6, 12}};
  EXPECT_FALSE(FindPatchFactors(line, 1, 1e9, factors));
  const std::vector<Place> point(8, Place{1.0, 1.0});
  EXPECT_FALSE(FindPatchFactors(point, 1, 1e9, factors));
  // On a circle x² + y² is a constant.
  std::vector<Place> circle;
  for (const double t : {-2.0, -1.0, -0.5, 0.0, 0.5, 1.0, 2.0})
    circle.push_back({(1 - t * t) / (1 + t * t), 2 * t / (1 + t * t)});
  EXPECT_TRUE(FindPatchFactors(circle, 1, 1e9, factors));
  EXPECT_FALSE(FindPatchFactors(circle, 2, 1e9, factors));
}

}  // namespace morlen
