// Values of a point that are not linear in the loads.

#include "cases/derived_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace morlen {

namespace {

// The moment on a section whose normal is at the angle to x'.
double NormalMoment(double Mx, double My, double Mxy, double angle)
{
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return Mx * c * c + My * s * s + 2.0 * Mxy * c * s;
}

// The least of what reinforcement (x, y) carries beyond the moments, over all sections.
double LeastReserve(double x, double y, double Mx, double My, double Mxy)
{
  double least = 1e300;
  for (int i = 0; i < 3600; ++i) {
    const double angle = i * std::numbers::pi / 3600.0;
    least = std::min(least, NormalMoment(x - Mx, y - My, -Mxy, angle));
  }
  return least;
}

}  // namespace

// The reinforcement carries the moment on every section, and the sum of both directions is the
// smallest that does: for moments that a grid search over x finds with y just sufficient.
TEST(WoodArmer, CarriesAllSectionsWithTheLeastSum)
{
  std::mt19937 random(7);
  std::uniform_real_distribution<double> moment(-10.0, 10.0);
  for (int run = 0; run < 200; ++run) {
    const double Mx = moment(random);
    const double My = moment(random);
    const double Mxy = run % 5 == 0 ? 0.0 : moment(random);
    SCOPED_TRACE(testing::Message() << Mx << ' ' << My << ' ' << Mxy);
    const DesignMoments d = WoodArmer(Mx, My, Mxy);
    EXPECT_GE(std::min(d.xPlus, d.yPlus), 0.0);
    EXPECT_LE(std::max(d.xMinus, d.yMinus), 0.0);
    // The sections are 0.05 degrees apart: the error of a minimum between two is 1e-6 of the sizes.
    EXPECT_GE(LeastReserve(d.xPlus, d.yPlus, Mx, My, Mxy), -1e-5);
    EXPECT_GE(LeastReserve(-d.xMinus, -d.yMinus, -Mx, -My, -Mxy), -1e-5);
    double least = 1e300;
    for (double x = 0.0; x <= 40.0; x += 0.02) {
      if (x < Mx || (x == Mx && Mxy != 0.0))
        continue;
      const double needed = x == Mx ? My : My + Mxy * Mxy / (x - Mx);
      least = std::min(least, x + std::max(needed, 0.0));
    }
    EXPECT_LE(d.xPlus + d.yPlus, least + 1e-9);
    EXPECT_GE(d.xPlus + d.yPlus, least - 0.05);
  }
}

TEST(WoodArmer, CasesByHand)
{
  const struct
  {
    double Mx, My, Mxy, xPlus, yPlus, xMinus, yMinus;
  } cases[] = {
      {10, 6, 2, 12, 8, 0, 0},       {-10, -6, 2, 0, 0, -12, -8}, {3, -10, 6, 6.6, 0, -3, -16},
      {-10, 3, -6, 0, 6.6, -16, -3}, {0, 0, 5, 5, 5, -5, -5},     {4, -4, 0, 4, 0, 0, -4},
  };
  for (const auto& c : cases) {
    const DesignMoments d = WoodArmer(c.Mx, c.My, c.Mxy);
    EXPECT_NEAR(d.xPlus, c.xPlus, 1e-12) << c.Mx << ' ' << c.My << ' ' << c.Mxy;
    EXPECT_NEAR(d.yPlus, c.yPlus, 1e-12) << c.Mx << ' ' << c.My << ' ' << c.Mxy;
    EXPECT_NEAR(d.xMinus, c.xMinus, 1e-12) << c.Mx << ' ' << c.My << ' ' << c.Mxy;
    EXPECT_NEAR(d.yMinus, c.yMinus, 1e-12) << c.Mx << ' ' << c.My << ' ' << c.Mxy;
  }
}

TEST(PrincipalStresses, HaveTheInvariantsOfTheTensor)
{
  std::mt19937 random(3);
  std::uniform_real_distribution<double> stress(-5.0, 5.0);
  for (int run = 0; run < 100; ++run) {
    double s[6];
    for (double& value : s)
      value = stress(random);
    double p[3];
    PrincipalStresses(s, p);
    EXPECT_GE(p[0], p[1]);
    EXPECT_GE(p[1], p[2]);
    const double pairs =
        s[0] * s[1] + s[1] * s[2] + s[2] * s[0] - s[3] * s[3] - s[4] * s[4] - s[5] * s[5];
    const double determinant = s[0] * s[1] * s[2] + 2.0 * s[3] * s[4] * s[5] - s[0] * s[5] * s[5] -
                               s[1] * s[4] * s[4] - s[2] * s[3] * s[3];
    EXPECT_NEAR(p[0] + p[1] + p[2], s[0] + s[1] + s[2], 1e-12);
    EXPECT_NEAR(p[0] * p[1] + p[1] * p[2] + p[2] * p[0], pairs, 1e-11);
    EXPECT_NEAR(p[0] * p[1] * p[2], determinant, 1e-10);
  }
  const double plane[] = {4, 0, 0, 3, 0, 0};  // 2 ± √(2² + 3²)
  double p[3];
  PrincipalStresses(plane, p);
  EXPECT_NEAR(p[0], 2.0 + std::sqrt(13.0), 1e-14);
  EXPECT_NEAR(p[1], 0.0, 1e-14);
  const PrincipalPair pair = PrincipalValues(4, 0, 3);
  EXPECT_NEAR(pair.larger, p[0], 1e-14);
  EXPECT_NEAR(pair.smaller, p[2], 1e-14);
}

}  // namespace morlen
