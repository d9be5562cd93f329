#include "model/euler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "numeric/matriu.h"
#include "numeric/matriu_arithmetic.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTight = 1e-14;

void ExpectNear(const ReaVec& v, double x, double y, double z, double tol = kTight)
{
  ASSERT_EQ(v.Size(), 3);
  EXPECT_NEAR(v(1), x, tol);
  EXPECT_NEAR(v(2), y, tol);
  EXPECT_NEAR(v(3), z, tol);
}

void ExpectRightHanded(const Axes& axes)
{
  EXPECT_NEAR(axes.x.modul(), 1.0, kTight);
  EXPECT_NEAR(axes.y.modul(), 1.0, kTight);
  EXPECT_NEAR(axes.x * axes.y, 0.0, kTight);
  const ReaVec z = VectorProd(axes.x, axes.y);
  ExpectNear(axes.z, z(1), z(2), z(3));
}

TEST(Euler, NoTurnIsTheIdentity)
{
  const double a[3] = {0.0, 0.0, 0.0};
  Matriu T;
  GiveMatriuFromEuler(a, T);
  EXPECT_TRUE(AreVeryEqual(T, Matriu::I(3), kTight));
}

// The columns are the local axes.
TEST(Euler, MatrixOfSingleTurns)
{
  const double t = 0.4, c = std::cos(t), s = std::sin(t);
  static const struct
  {
    double a[3];
    double rows[3][3];
  } cases[] = {
      {{t, 0.0, 0.0}, {{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}}},
      {{0.0, t, 0.0}, {{1.0, 0.0, 0.0}, {0.0, c, s}, {0.0, -s, c}}},
      {{0.0, 0.0, t}, {{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}}},
      {{kPi / 2, kPi / 2, 0.0}, {{0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}}},
      {{0.0, kPi / 2, kPi / 2}, {{0.0, 0.0, 1.0}, {-1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}}},
  };
  for (const auto& k : cases) {
    Matriu T;
    GiveMatriuFromEuler(k.a, T);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j)
        EXPECT_NEAR(T(i + 1, j + 1), k.rows[i][j], kTight) << k.a[0] << ' ' << i << ' ' << j;
    }
  }
}

// The matrix is the product R(a2) · R'(a1) · R(a0) of its single turns.
TEST(Euler, MatrixIsTheProductOfItsTurns)
{
  const double a[3] = {0.3, 0.5, 0.7};
  const double turns[3][3] = {{0.3, 0.0, 0.0}, {0.0, 0.5, 0.0}, {0.0, 0.0, 0.7}};
  Matriu T, T0, T1, T2;
  GiveMatriuFromEuler(a, T);
  GiveMatriuFromEuler(turns[0], T0);
  GiveMatriuFromEuler(turns[1], T1);
  GiveMatriuFromEuler(turns[2], T2);
  const Matriu product = T2 * T1 * T0;
  EXPECT_TRUE(AreVeryEqual(T, product, kTight));
}

TEST(Euler, AnglesAreReadBack)
{
  static const double cases[][3] = {{0.3, 0.5, 0.7}, {0.0, 1.0, 0.0}, {4.0, 0.5, 5.0},
                                    {6.0, 3.0, 1.0}, {2.0, 1.5, 3.5}, {0.0, 0.0, 2.5},
                                    {0.0, 0.0, 6.0}};
  for (const auto& a : cases) {
    Matriu T;
    GiveMatriuFromEuler(a, T);
    double b[3];
    GiveAnglesFromMatriu(T, b);
    for (int i = 0; i < 3; ++i)
      EXPECT_NEAR(b[i], a[i], 1e-12) << a[0] << ' ' << a[1] << ' ' << a[2];
  }
}

TEST(Euler, AnglesGiveTheSameAxesAgain)
{
  std::mt19937 random(5);
  std::uniform_real_distribution<double> angle(-7.0, 7.0);
  for (int step = 0; step < 1000; ++step) {
    const double a[3] = {angle(random), angle(random), angle(random)};
    const Axes axes = AxesFromEuler(a);
    ExpectRightHanded(axes);
    double b[3];
    AnglesFromAxes(axes, b);
    for (int i : {0, 2}) {
      EXPECT_GE(b[i], 0.0);
      EXPECT_LE(b[i], 2.0 * kPi);
    }
    EXPECT_GE(b[1], 0.0);
    EXPECT_LE(b[1], kPi);
    const Axes again = AxesFromEuler(b);
    ExpectNear(again.x, axes.x(1), axes.x(2), axes.x(3), 1e-7);
    ExpectNear(again.z, axes.z(1), axes.z(2), axes.z(3), 1e-7);
  }
}

TEST(Euler, VerticalZPutsTheTurnIntoTheThirdAngle)
{
  for (const double z : {1.0, -1.0}) {
    const Axes axes{ReaVec(0.0, 1.0, 0.0), ReaVec(-z, 0.0, 0.0), ReaVec(0.0, 0.0, z)};
    double a[3];
    AnglesFromAxes(axes, a);
    EXPECT_EQ(a[0], 0.0);
    EXPECT_NEAR(a[1], z > 0.0 ? 0.0 : kPi, kTight);
    EXPECT_NEAR(a[2], 1.5 * kPi, kTight);
    const Axes again = AxesFromEuler(a);
    ExpectNear(again.x, 0.0, 1.0, 0.0);
    ExpectNear(again.y, -z, 0.0, 0.0);
  }
}

TEST(Euler, CosinesBeyondOneAreClamped)
{
  const double big = 1.0 + 1e-15;
  double a[3];
  AnglesFromAxes({ReaVec(-big, 0.0, 0.0), ReaVec(0.0, -1.0, 0.0), ReaVec(0.0, 0.0, big)}, a);
  EXPECT_EQ(a[1], 0.0);
  EXPECT_NEAR(a[2], kPi, kTight);
}

TEST(Euler, AnglesOfThreeAxes)
{
  const double a[3] = {0.3, 0.5, 0.7};
  const Axes axes = AxesFromEuler(a);
  double b[3];
  GiveAnglesFromAxes(axes.x, axes.y, axes.z, b);
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(b[i], a[i], 1e-12);
}

TEST(Euler, AxesOfAGivenX)
{
  static const struct
  {
    double given[3], y[3], z[3];
  } cases[] = {
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},          {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
      {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},          {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
      {{0.6, 0, 0.8}, {0, 1, 0}, {-0.8, 0, 0.6}},
  };
  for (const auto& c : cases) {
    const ReaVec x(c.given[0], c.given[1], c.given[2]);
    const Axes axes = AxesGivenX(x);
    ExpectRightHanded(axes);
    ExpectNear(axes.x, x(1), x(2), x(3));
    ExpectNear(axes.y, c.y[0], c.y[1], c.y[2]);
    ExpectNear(axes.z, c.z[0], c.z[1], c.z[2]);
    Matriu T;
    CalcMatGivenAxeX(x, T);
    ExpectNear(T.GiveColumn(2), c.y[0], c.y[1], c.y[2]);
  }
}

TEST(Euler, AxesOfAGivenNormal)
{
  static const struct
  {
    double normal[3], x[3], y[3];
  } cases[] = {
      {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
      {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
      {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
  };
  for (const auto& c : cases) {
    const ReaVec n(c.normal[0], c.normal[1], c.normal[2]);
    const Axes axes = AxesGivenZ(n);
    ExpectRightHanded(axes);
    ExpectNear(axes.x, c.x[0], c.x[1], c.x[2]);
    ExpectNear(axes.y, c.y[0], c.y[1], c.y[2]);
    Matriu T;
    CalcMatGivenOneAxe(n, T);
    ExpectNear(T.GiveColumn(1), c.x[0], c.x[1], c.x[2]);
    ExpectNear(T.GiveColumn(3), n(1), n(2), n(3));
  }
}

TEST(Euler, NearlyVerticalEndsAtOneSixtyFourth)
{
  const auto tilted = [](double x, double y) {
    return ReaVec(x, y, std::sqrt(1.0 - x * x - y * y));
  };
  EXPECT_NEAR(AxesGivenX(tilted(0.0156, -0.0156)).y * ReaVec(0.0, 1.0, 0.0), 0.0, kTight);
  EXPECT_NEAR(AxesGivenX(tilted(0.015625, 0.001)).y * ReaVec(0.0, 0.0, 1.0), 0.0, kTight);
  EXPECT_NEAR(AxesGivenZ(tilted(0.0, 0.015625)).x * ReaVec(0.0, 0.0, 1.0), 0.0, kTight);
}

TEST(Euler, AxesOfXAndAnApproximateY)
{
  const Axes axes = AxesGivenXY(ReaVec(1.0, 0.0, 0.0), ReaVec(3.0, 0.0, 2.0));
  ExpectRightHanded(axes);
  ExpectNear(axes.y, 0.0, 0.0, 1.0);
  ExpectNear(axes.z, 0.0, -1.0, 0.0);
  Matriu T;
  CalcMatGivenXYAxes(ReaVec(1.0, 0.0, 0.0), ReaVec(3.0, 0.0, 2.0), T);
  ExpectNear(T.GiveColumn(3), 0.0, -1.0, 0.0);
}

TEST(Euler, FrameRepeatsTheAxesOnTheDiagonal)
{
  const double a[3] = {0.3, 0.5, 0.7};
  const Axes axes = AxesFromEuler(a);
  Matriu T3, T6(6, 6);
  const double* before = T6.Data();
  FillFrame(axes, 3, T3);
  FillFrame(axes, 6, T6);
  EXPECT_EQ(T6.Data(), before);
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j) {
      const bool inBlock = (i - 1) / 3 == (j - 1) / 3;
      EXPECT_EQ(T6(i, j), inBlock ? T3((i - 1) % 3 + 1, (j - 1) % 3 + 1) : 0.0);
    }
  }
  double b[3];
  GiveAnglesFromMatriu(T6, b);
  EXPECT_NEAR(b[1], 0.5, 1e-12);
}

TEST(Euler, EqualityGoesAroundTheFullTurn)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  static const struct
  {
    double a[3], b[3];
    int equal;
  } cases[] = {
      {{1, 1, 1}, {1, 1, 1}, 1},
      {{1, 1, 1}, {1.05, 0.95, 1.09}, 1},
      {{1, 1, 1}, {1.11, 1, 1}, 0},
      {{1, 1, 1}, {1, 1.11, 1}, 0},
      {{1, 1, 1}, {1, 1, 1.11}, 0},
      {{2 * kPi - 0.02, 1, 1}, {0.02, 1, 1}, 1},
      {{0.02, 1, 1}, {2 * kPi - 0.02, 1, 1}, 1},
      {{1, 1, 0.0}, {1, 1, 2 * kPi}, 1},
      {{1, 1, 2 * kPi - 0.09}, {1, 1, 0.05}, 0},
      {{2 * kPi - 0.15, 1, 1}, {2 * kPi - 0.07, 1, 1}, 1},
      {{2 * kPi - 0.15, 1, 1}, {0.01, 1, 1}, 0},
      {{1, 0.0, 1}, {1, 2 * kPi, 1}, 0},
      {{nan, 1, 1}, {1, 1, 1}, 0},
      {{1, nan, 1}, {1, nan, 1}, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AreEulerAnglesEqual(c.a, c.b, 0.1), c.equal) << c.a[0] << ' ' << c.b[0];
    EXPECT_EQ(AreEulerAnglesEqual(c.b, c.a, 0.1), c.equal) << c.a[0] << ' ' << c.b[0];
  }
}

TEST(Euler, MeanOfEqualAnglesIsThatAngle)
{
  const double a[3] = {0.3, 0.5, 0.7};
  double mean[3];
  MeanEulerAngles(a, a, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 1e-12));
  MeanEulerAngles(a, a, a, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 1e-12));
}

// The mean of the directions 350° and 10° is 0°; the mean of the numbers would be 180°.
TEST(Euler, MeanIsThatOfTheAxes)
{
  const double degree = kPi / 180.0;
  const double a[3] = {0.0, 0.0, 350.0 * degree};
  const double b[3] = {0.0, 0.0, 10.0 * degree};
  const double c[3] = {0.0, 0.0, 30.0 * degree};
  const double d[3] = {0.0, 0.0, 0.0};
  double mean[3];
  MeanEulerAngles(a, b, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, d, 1e-7));
  MeanEulerAngles(a, b, c, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, b, 1e-7));
  // e: the axes of b with other angles, which exist because z is vertical.
  const double e[3] = {20.0 * degree, 0.0, 350.0 * degree};
  MeanEulerAngles(b, e, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, b, 1e-7));
}

TEST(Euler, MeanOfTiltedAxesIsAFrame)
{
  const double a[3] = {0.3, 0.5, 0.7};
  const double b[3] = {0.4, 0.4, 0.8};
  double mean[3];
  MeanEulerAngles(a, b, mean);
  const Axes m = AxesFromEuler(mean);
  ExpectRightHanded(m);
  const Axes first = AxesFromEuler(a), second = AxesFromEuler(b);
  EXPECT_NEAR(m.z * first.z, m.z * second.z, 1e-12);
  EXPECT_GT(m.x * first.x, 0.99);
}

TEST(Euler, MeanOfOppositeAxesIsTheFirst)
{
  const double a[3] = {0.0, 0.0, 0.5};
  const double b[3] = {0.0, 0.0, 0.5 + kPi};
  const double c[3] = {0.0, kPi, 0.5};
  double mean[3];
  MeanEulerAngles(a, b, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 0.0));
  MeanEulerAngles(a, c, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 0.0));
}

// Up to 1 - cos = 1e-15, z counts as vertical: the first angle is 0, the third the sum of the
// turns.
TEST(Euler, AnglesOfAFrameWithNearlyVerticalZ)
{
  static const struct
  {
    double tilt;
    bool vertical;
    double tolerance;  // of the two turns, from a cosine with an error of 1e-16
  } cases[] = {{1e-3, false, 1e-8}, {1e-7, false, 0.1}, {3e-8, true, 1e-7}};
  for (const auto& c : cases) {
    for (const bool down : {false, true}) {
      const double a[3] = {0.3, down ? kPi - c.tilt : c.tilt, 0.7};
      double b[3];
      AnglesFromAxes(AxesFromEuler(a), b);
      EXPECT_NEAR(b[0], c.vertical ? 0.0 : 0.3, c.tolerance) << c.tilt;
      EXPECT_NEAR(b[1], a[1], 0.1 * c.tilt) << c.tilt;
      EXPECT_NEAR(b[2], !c.vertical ? 0.7 : down ? 0.4 : 1.0, c.tolerance) << c.tilt;
    }
  }
}

TEST(Euler, MeanOfNearlyOppositeAxes)
{
  // The sum of the x axes has the length 1e-4, which leaves 12 digits.
  const double x1[3] = {0.0, 0.0, 0.5};
  const double x2[3] = {0.0, 0.0, 0.5 + kPi - 1e-4};
  const double halfway[3] = {0.0, 0.0, 0.5 + kPi / 2 - 0.5e-4};
  double mean[3];
  MeanEulerAngles(x1, x2, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, halfway, 1e-10));
  // That of the z axes; the first angle is the arc cosine of 1, which has half the digits.
  const double z2[3] = {0.0, kPi - 1e-4, 0.5};
  const double upright[3] = {0.0, kPi / 2 - 0.5e-4, 0.5};
  MeanEulerAngles(x1, z2, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, upright, 1e-6));
}

TEST(Euler, MeanOfAxesThatCancelIsTheFirst)
{
  const double a[3] = {0.0, 0.0, 0.5};
  double mean[3];
  for (const double rest : {2e-6, -2e-6}) {
    const double x[3] = {0.0, 0.0, 0.5 + kPi - rest};
    MeanEulerAngles(a, x, mean);
    EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 0.0));
  }
  // The sum of the z axes has the length 0.8e-5, its product with that of x twice of it.
  const double z[3] = {0.0, kPi - 0.8e-5, 0.5};
  MeanEulerAngles(a, z, mean);
  EXPECT_TRUE(AreEulerAnglesEqual(mean, a, 0.0));
}

TEST(Euler, AxesOfDirectionsAgainstTheGlobalAxes)
{
  for (const double side : {1.0, -1.0}) {
    const Axes alongX = AxesGivenX(ReaVec(-1.0, 0.0, 0.0) * side);
    ExpectNear(alongX.y, 0.0, -side, 0.0);
    const Axes alongY = AxesGivenX(ReaVec(0.0, -1.0, 0.0) * side);
    ExpectNear(alongY.y, side, 0.0, 0.0);
    const Axes wallX = AxesGivenZ(ReaVec(-1.0, 0.0, 0.0) * side);
    ExpectNear(wallX.x, 0.0, -side, 0.0);
    ExpectNear(wallX.y, 0.0, 0.0, 1.0);
    const Axes wallY = AxesGivenZ(ReaVec(0.0, -1.0, 0.0) * side);
    ExpectNear(wallY.x, side, 0.0, 0.0);
    ExpectNear(wallY.y, 0.0, 0.0, 1.0);
  }
}

}  // namespace

}  // namespace morlen
