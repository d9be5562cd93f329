#include "results/principal_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/reference_frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;

struct Main
{
  double first, second, angle;
};

Main MainOf(double a, double b, double c)
{
  Main main{};
  CalcMainValuesAndAngle(a, b, c, main.first, main.second, main.angle);
  return main;
}

// Axes with these Euler angles, by the rotations of the test helpers.
Axes AxesWith(const Vector3& angles)
{
  const auto columns = AxesOfAngles(angles);
  const auto vector = [](const Vector3& v) { return ReaVec(v[0], v[1], v[2]); };
  return {vector(columns[0]), vector(columns[1]), vector(columns[2])};
}

}  // namespace

TEST(PrincipalValues, AreTheDiagonalWithoutShear)
{
  for (const double c : {0.0, 0.9e-15, -0.9e-15}) {
    const Main main = MainOf(2.0, 5.0, c);
    EXPECT_EQ(main.first, 2.0);
    EXPECT_EQ(main.second, 5.0);
    EXPECT_EQ(main.angle, 0.0);
  }
}

TEST(PrincipalValues, OfEqualDiagonalsHaveAnAngleOf45Degrees)
{
  const Main main = MainOf(3.0, 3.0, 2.0);
  EXPECT_EQ(main.angle, kPi / 4);
  EXPECT_NEAR(main.first, 1.0, 1e-15);
  EXPECT_NEAR(main.second, 5.0, 1e-15);
}

TEST(PrincipalValues, KeepTheOrderOfTheAxes)
{
  // a < b: the first value is the smaller one.
  const Main main = MainOf(1.0, 4.0, 2.0);
  EXPECT_NEAR(main.angle, 0.5 * std::atan(4.0 / 3.0), 1e-15);
  EXPECT_NEAR(main.first, 0.0, 1e-15);
  EXPECT_NEAR(main.second, 5.0, 1e-15);
  const Main other = MainOf(4.0, 1.0, 2.0);
  EXPECT_NEAR(other.angle, -0.5 * std::atan(4.0 / 3.0), 1e-15);
  EXPECT_NEAR(other.first, 5.0, 1e-15);
  EXPECT_NEAR(other.second, 0.0, 1e-15);
}

// The angle does not depend on the unit of the values: the limits of rounding are relative.
TEST(PrincipalValues, HaveAnAngleInAnyUnit)
{
  for (const double unit : {0x1p-100, 0x1p-40, 0x1p40, 0x1p100}) {  // scale without rounding
    for (const double c : {-4.0, -0.1, 1e-14, 2.0}) {
      for (const double b : {-2.0, 0.0, 4.0}) {
        const Main one = MainOf(3.0, b, c);
        const Main other = MainOf(3.0 * unit, b * unit, c * unit);
        EXPECT_EQ(other.angle, one.angle);
        EXPECT_EQ(other.first, one.first * unit);
        EXPECT_EQ(other.second, one.second * unit);
      }
    }
    EXPECT_EQ(MainOf(2.0 * unit, 5.0 * unit, 4e-15 * unit).angle, 0.0);
    EXPECT_EQ(MainOf(5.0 * unit, 5.0 * unit * (1.0 - 0x1p-51), 2.0 * unit).angle, kPi / 4);
    EXPECT_EQ(MainOf(5.0 * unit, 5.0 * unit, 0.0).angle, 0.0);
  }
  EXPECT_EQ(MainOf(0.0, 0.0, 0.0).angle, 0.0);
}

TEST(PrincipalValues, AreTheEigenvaluesOfAnyTensor)
{
  for (const double a : {-3.0, 0.0, 1.0, 7.5}) {
    for (const double b : {-2.0, 0.0, 1.0}) {
      for (const double c : {-4.0, -0.1, 0.2, 5.0}) {
        const Main main = MainOf(a, b, c);
        EXPECT_NEAR(main.first + main.second, a + b, 1e-13);
        EXPECT_NEAR(main.first * main.second, a * b - c * c, 1e-12);
        // The direction of the first value is the x axis turned by minus the angle.
        const double x = std::cos(-main.angle);
        const double y = std::sin(-main.angle);
        EXPECT_NEAR(a * x + c * y, main.first * x, 1e-12);
        EXPECT_NEAR(c * x + b * y, main.first * y, 1e-12);
      }
    }
  }
}

TEST(PrincipalAxes, AreTheLocalOnesTurnedAboutTheNormal)
{
  const Vector3 angles = {0.4, 1.1, -0.6};
  const Axes axes = AxesWith(angles);
  for (const double turn : {0.0, 0.3, -0.7}) {
    double euler[3];
    CalcNewEulerAngles(axes, turn, euler);
    const Axes turned = AxesWith({euler[0], euler[1], euler[2]});
    const ReaVec x = axes.x * std::cos(turn) + axes.y * std::sin(turn);
    for (int k = 1; k <= 3; ++k) {
      EXPECT_NEAR(turned.x(k), x(k), 1e-12);
      EXPECT_NEAR(turned.z(k), axes.z(k), 1e-12);
    }
  }
}

// Moments of 1e-17 at a point with forces of 4, on an element of size 0.5, are rounding errors and
// keep the local axes. The same is true of such forces at a point with moments of 4.
TEST(MainValues, OfRoundingErrorsKeepTheLocalAxes)
{
  const double noise[] = {3e-17, -1e-17, 2e-17};
  const double strong[] = {1, 4, 2};
  for (const double unit : {1e-20, 1.0, 1e20}) {
    ReaVecV values(16), angles(12);
    for (int k = 0; k < 3; ++k) {
      values(k + 1) = values(k + 12) = unit * strong[k];
      values(k + 4) = values(k + 9) = unit * noise[k];
      values(7) = values(8) = values(15) = values(16) = 0.0;
    }
    ConvertResultsToMainValues(values, 0, 2, angles, 0, AxesWith({0, 0, 0}), nullptr, 0.5);
    const double half = 0.5 * std::atan(4.0 / 3.0);
    ExpectValues(Values(angles), {0, 0, 2 * kPi - half, 0, 0, 0, 0, 0, 0, 0, 0, 2 * kPi - half},
                 1e-12);
    EXPECT_EQ(values(4), unit * noise[0]);
    EXPECT_EQ(values(9), unit * noise[0]);
  }
}

TEST(MainValues, ReplaceTheEightForcesOfEveryPoint)
{
  // Forces with the angle +atan(4/3)/2, moments with -atan(4/3)/2; then a point without shears.
  const std::vector<double> given = {1, 4, 2, 4, 1, 2, 10, 20, 2, 5, 0, 3, 3, 2, 1, 0};
  const double half = 0.5 * std::atan(4.0 / 3.0);
  const double c = std::cos(half);
  const double s = std::sin(half);
  const double r = std::sqrt(0.5);
  const std::vector<double> expected = {0, 5, 0, 5, 0, 0, 10 * c - 20 * s, 10 * s + 20 * c, 2, 5,
                                        0, 1, 5, 0, r, -r};
  const Axes axes = AxesWith({0, 0, 0});
  for (const bool inPlace : {true, false}) {
    ReaVecV values;
    values.resize(20, -1.0);
    std::copy(given.begin(), given.end(), values.begin() + 4);
    ReaVecV angles;
    angles.resize(15, -1.0);
    ReaVecV out;
    out.resize(20, -1.0);
    ConvertResultsToMainValues(values, 4, 2, angles, 3, axes, inPlace ? nullptr : &out);
    const std::vector<double> result = Values(inPlace ? values : out);
    ExpectValues({result.begin() + 4, result.end()}, expected, 1e-14);
    EXPECT_EQ(result[3], -1.0);
    if (!inPlace) {
      EXPECT_EQ((std::vector<double>{values.begin() + 4, values.end()}), given);
    }
    // Turning counter-clockwise by φ in the plane is a first Euler angle of -φ.
    ExpectValues(Values(angles),
                 {-1, -1, -1, 0, 0, 2 * kPi - half, 0, 0, half, 0, 0, 0, 0, 0, 2 * kPi - kPi / 4},
                 1e-12);
  }
}

}  // namespace morlen
