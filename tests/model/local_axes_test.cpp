#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "support/fatal.h"
#include "support/reference_frame.h"

namespace morlen {

namespace {

constexpr double kTol = 1e-14;

// A beam from the origin to a point.
struct Beam
{
  Beam(double x, double y, double z)
  {
    second(1) = x;
    second(2) = y;
    second(3) = z;
    elem(0) = &first;
    elem(1) = &second;
    elem.NewNum(9);
  }
  Matriu Frame(const Material* material = nullptr, PROBLEMTYPE type = kSpace) const
  {
    Matriu T;
    elem.CalcTransfMatrixBeam(T, material, type);
    return T;
  }

  Mesh mesh{100, 100, 3, Linear, 2};
  Node first{3};
  Node second{3};
  Elem elem{&mesh, nullptr};
};

Material WithAngles(double a0, double a1, double a2)
{
  Material material;
  material.eulerGiven = 1;
  material.Euler[0] = a0;
  material.Euler[1] = a1;
  material.Euler[2] = a2;
  return material;
}

void ExpectColumn(const Matriu& T, int column, double x, double y, double z)
{
  EXPECT_NEAR(T(1, column), x, kTol);
  EXPECT_NEAR(T(2, column), y, kTol);
  EXPECT_NEAR(T(3, column), z, kTol);
}

}  // namespace

TEST(BeamAxes, FromTheGeometryInSpace)
{
  static const struct
  {
    double beam[3];
    double y[3];
    double z[3];
  } cases[] = {
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},   {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
      {{-2, 0, 0}, {0, -1, 0}, {0, 0, 1}}, {{0, 0, 3}, {1, 0, 0}, {0, 1, 0}},
      {{0, 0, -3}, {1, 0, 0}, {0, -1, 0}},
  };
  for (const auto& c : cases) {
    const Beam beam(c.beam[0], c.beam[1], c.beam[2]);
    const Matriu T = beam.Frame();
    ASSERT_EQ(T.Rows(), 6);
    ExpectColumn(T, 2, c.y[0], c.y[1], c.y[2]);
    ExpectColumn(T, 3, c.z[0], c.z[1], c.z[2]);
    EXPECT_EQ(T(4, 4), T(1, 1));
    EXPECT_EQ(T(1, 4), 0.0);
  }
}

TEST(BeamAxes, AreRightHandedAndPointUpwardsForEveryInclination)
{
  for (double x = -2; x <= 2; x += 0.7) {
    for (double y = -2; y <= 2; y += 0.9) {
      for (double z = -2; z <= 2; z += 1.1) {
        const Matriu T = Beam(x, y, z).Frame();
        const double L = std::sqrt(x * x + y * y + z * z);
        ExpectColumn(T, 1, x / L, y / L, z / L);
        EXPECT_NEAR(T(3, 2), 0.0, kTol);  // local y is horizontal
        EXPECT_GT(T(3, 3), 0.0);
        EXPECT_NEAR(T.subMatriu(1, 1, 3, 3).det(), 1.0, kTol);
      }
    }
  }
}

TEST(BeamAxes, InAPlane)
{
  const Matriu T = Beam(3, 4, 0).Frame(nullptr, kPlane);
  ASSERT_EQ(T.Rows(), 3);
  ExpectColumn(T, 1, 0.6, 0.8, 0);
  ExpectColumn(T, 2, -0.8, 0.6, 0);
  ExpectColumn(T, 3, 0, 0, 1);
}

TEST(BeamAxes, AlphaTurnsAVerticalBeam)
{
  Beam beam(0, 0, 2);
  beam.elem.alpha = std::numbers::pi / 6;
  ExpectColumn(beam.Frame(), 2, std::sqrt(3.0) / 2, 0.5, 0);

  Beam other(1, 0, 2);
  other.elem.alpha = 0.5;
  ExpectFatal([&] { other.Frame(); },
              "sorry, alpha!=0 with no vertical beams isn't implemented yet");
}

TEST(BeamAxes, EulerAnglesOfTheMaterial)
{
  const Material identity = WithAngles(0, 0, 0);
  const Matriu along = Beam(2, 0, 0).Frame(&identity);
  ExpectColumn(along, 1, 1, 0, 0);
  ExpectColumn(along, 3, 0, 0, 1);

  const Matriu against = Beam(-2, 0, 0).Frame(&identity);  // x and y are turned
  ExpectColumn(against, 1, -1, 0, 0);
  ExpectColumn(against, 2, 0, -1, 0);
  ExpectColumn(against, 3, 0, 0, 1);
}

TEST(BeamAxes, EulerAxesAgainstTheBeamWithZLyingFlatTurnXAndZ)
{
  // A quarter turn about x: y = (0, 0, -1) and z = (0, 1, 0), which does not point upwards.
  const Material lying = WithAngles(0, std::numbers::pi / 2, 0);
  const Matriu T = Beam(-1, 0, 0).Frame(&lying);
  ExpectColumn(T, 1, -1, 0, 0);
  ExpectColumn(T, 2, 0, 0, -1);
  ExpectColumn(T, 3, 0, -1, 0);
}

TEST(BeamAxes, EulerAxesAreTurnedAlongTheBeam)
{
  const Material identity = WithAngles(0, 0, 0);
  const Matriu T = Beam(3, 4, 0).Frame(&identity);
  ExpectColumn(T, 1, 0.6, 0.8, 0);
  ExpectColumn(T, 2, -0.8, 0.6, 0);
  ExpectColumn(T, 3, 0, 0, 1);
}

TEST(BeamAxes, EulerXAtARightAngleIsRefused)
{
  const Material identity = WithAngles(0, 0, 0);
  for (const double y : {1.0, -1.0}) {
    const Beam beam(0, y, 0);
    ExpectFatal([&] { beam.Frame(&identity); },
                "error: Local x axe is orthogonal to the direction of the beam. Element:9\n");
  }
}

TEST(BeamAxes, EulerAnglesOfAPlaneBeamMustKeepZ)
{
  const Material turned = WithAngles(0.3, 0, 0);
  const Matriu T = Beam(2, 1, 0).Frame(&turned, kPlane);
  ASSERT_EQ(T.Rows(), 3);
  ExpectColumn(T, 3, 0, 0, 1);
  const Material tilted = WithAngles(0, 0.5, 0);
  ExpectFatal([&] { Beam(2, 1, 0).Frame(&tilted, kPlane); },
              "error: Local z axe must be (0,0,1) for 2D problems.Element:9\n");
}

TEST(BeamAxes, UnknownProblemType)
{
  ExpectFatal([] { Beam(1, 0, 0).Frame(nullptr, PROBLEMTYPE(2)); },
              "error in Elem::CalcTransfMatrixBeam. Type of problem unknown\n");
}

TEST(BeamAxes, AsEulerAngles)
{
  double a[3];
  Beam(1, 0, 0).elem.GiveEulerAnglesBeam(a, nullptr, kSpace);
  EXPECT_EQ(a[0], 0.0);
  EXPECT_EQ(a[1], 0.0);
  EXPECT_EQ(a[2], 0.0);
}

namespace {

struct Shell
{
  Shell(const ReaVec& a, const ReaVec& b, const ReaVec& c)
  {
    const ReaVec* points[] = {&a, &b, &c};
    for (int i = 0; i < 3; ++i) {
      for (int k = 1; k <= 3; ++k)
        nodes[i](k) = (*points[i])(k);
      elem(i) = &nodes[i];
    }
    elem.NewNum(4);
  }
  Matriu Frame(const Material* material = nullptr) const
  {
    Matriu T, Tbig;
    elem.CalcTransfMatrixTriangle(T, Tbig, material);
    EXPECT_EQ(Tbig.Rows(), 6);
    EXPECT_EQ(Tbig(5, 6), T(2, 3));
    EXPECT_EQ(Tbig(1, 6), 0.0);
    return T;
  }

  Mesh mesh{100, 100, 3, Triangle, 3};
  Node nodes[3] = {Node(3), Node(3), Node(3)};
  Elem elem{&mesh, nullptr};
};

}  // namespace

TEST(TriangleAxes, HorizontalAndUprightPlanes)
{
  const Matriu slab = Shell({0, 0, 0}, {2, 0, 0}, {0, 3, 0}).Frame();
  ExpectColumn(slab, 1, 1, 0, 0);
  ExpectColumn(slab, 2, 0, 1, 0);
  ExpectColumn(slab, 3, 0, 0, 1);
  const Matriu wall = Shell({0, 0, 0}, {0, 1, 0}, {0, 0, 1}).Frame();
  ExpectColumn(wall, 1, 0, 1, 0);
  ExpectColumn(wall, 2, 0, 0, 1);
  ExpectColumn(wall, 3, 1, 0, 0);
}

TEST(TriangleAxes, EulerAnglesOfTheMaterial)
{
  const Material quarter = WithAngles(0, 0, std::numbers::pi / 2);  // x = -Y, y = X
  const Matriu flat = Shell({0, 0, 0}, {2, 0, 0}, {0, 3, 0}).Frame(&quarter);
  ExpectColumn(flat, 1, 0, -1, 0);
  const Material identity = WithAngles(0, 0, 0);
  const Matriu inclined = Shell({0, 0, 0}, {1, 0, 1}, {0, 1, 0}).Frame(&identity);
  const double half = std::sqrt(0.5);
  ExpectColumn(inclined, 1, half, 0, half);
  ExpectColumn(inclined, 2, 0, 1, 0);
  ExpectColumn(inclined, 3, -half, 0, half);
}

TEST(TriangleAxes, MaterialXAlongTheNormalIsRefused)
{
  const Material identity = WithAngles(0, 0, 0);
  const Shell shell({0, 0, 0}, {0, 1, 0}, {0, 0, 1});
  ExpectFatal([&] { shell.Frame(&identity); },
              "error in element 4. Normal to element and X local are parallel\n");
}

namespace {

// A beam in the plane z = 0 whose direction has this cosine with global X.
Beam BeamAtCosine(double cosine)
{
  return {cosine, std::sqrt(1.0 - cosine * cosine), 0.0};
}

// A triangle in the plane of global X that rises by the angle towards Y.
Shell SlopingShell(double angle)
{
  return {{0, 0, 0}, {1, 0, 0}, {0, std::cos(angle), std::sin(angle)}};
}

void ExpectAngles(const double a[3], double a0, double a1, double a2)
{
  // The rounding of an arc cosine away from 0 and pi.
  EXPECT_NEAR(a[0], a0, 1e-13);
  EXPECT_NEAR(a[1], a1, 1e-13);
  EXPECT_NEAR(a[2], a2, 1e-13);
}

}  // namespace

// The cosine of the material's x axis with the beam must be at least 1e-5 in size.
TEST(BeamAxes, EulerXIsRefusedUpToACosineOfOneHundredThousandth)
{
  const Material identity = WithAngles(0, 0, 0);
  for (const double cosine : {2e-5, -2e-5}) {
    const Matriu T = BeamAtCosine(cosine).Frame(&identity);
    const double sine = std::sqrt(1.0 - cosine * cosine);
    ExpectColumn(T, 1, cosine, sine, 0);
    ExpectColumn(T, 2, -sine, cosine, 0);
    ExpectColumn(T, 3, 0, 0, 1);
  }
  for (const double cosine : {0.5e-5, -0.5e-5}) {
    ExpectFatal([&] { BeamAtCosine(cosine).Frame(&identity); },
                "error: Local x axe is orthogonal to the direction of the beam. Element:9\n");
  }
}

// Turned about x, z = (0, s, c) points upwards while c is above 1e-5.
TEST(BeamAxes, EulerAxesAgainstTheBeamTurnZUnlessItPointsUpwards)
{
  static const struct
  {
    double c;
    bool turnsY;
  } cases[] = {{0.5, true}, {2e-5, true}, {0.5e-5, false}, {-2e-5, false}, {-0.5, false}};
  for (const auto& k : cases) {
    const Material turned = WithAngles(0, std::acos(k.c), 0);
    const Matriu T = Beam(-1, 0, 0).Frame(&turned);
    const double s = std::sqrt(1.0 - k.c * k.c);
    const double ySign = k.turnsY ? -1.0 : 1.0;
    ExpectColumn(T, 1, -1, 0, 0);
    ExpectColumn(T, 2, 0, ySign * k.c, -ySign * s);
    ExpectColumn(T, 3, 0, -ySign * s, -ySign * k.c);
  }
}

// x is the direction of the beam to the last digit, for every angle between it and the Euler x.
TEST(BeamAxes, EulerAxesNearlyAlongTheBeamAreTurnedOntoIt)
{
  const Material identity = WithAngles(0, 0, 0);
  for (const double slope : {1e-2, 4e-3, 1e-5, 1e-8, 1e-12, 2e-15}) {
    const double L = std::sqrt(1.0 + slope * slope);
    for (const double sign : {1.0, -1.0}) {
      const Matriu T = Beam(sign, sign * slope, 0).Frame(&identity);
      EXPECT_NEAR(T(2, 1), sign * slope / L, 1e-15 * slope);
      ExpectColumn(T, 1, sign / L, sign * slope / L, 0);
      ExpectColumn(T, 2, -sign * slope / L, sign / L, 0);
      ExpectColumn(T, 3, 0, 0, 1);
      const Matriu plane = Beam(sign, sign * slope, 0).Frame(&identity, kPlane);
      EXPECT_NEAR(plane(2, 1), sign * slope / L, 1e-15 * slope);
      ExpectColumn(plane, 2, -sign * slope / L, sign / L, 0);
    }
  }
}

// The angles of a column that the manual gives, with six decimals: the section stays turned.
TEST(BeamAxes, RoundedEulerAnglesOfAColumnGiveItsDirection)
{
  const Material asWithout = WithAngles(1.570796, 1.570796, 0);
  const Matriu T = Beam(0, 0, 3).Frame(&asWithout);
  EXPECT_EQ(T(1, 1), 0.0);
  EXPECT_EQ(T(2, 1), 0.0);
  EXPECT_EQ(T(3, 1), 1.0);
  // y and z turn about the beam by the square of the angles' rounding, which is 3.3e-7.
  EXPECT_NEAR(T(1, 2), 1.0, 2e-13);
  EXPECT_NEAR(T(2, 3), 1.0, 2e-13);
  EXPECT_NEAR(T(2, 2), 0.0, 2e-13);
  EXPECT_EQ(T(3, 2), 0.0);
}

TEST(BeamAxes, EulerAxesEqualUpToRoundingAreKept)
{
  const Material identity = WithAngles(0, 0, 0);
  const Matriu T = Beam(1, 4e-16, -4e-16).Frame(&identity);
  EXPECT_EQ(T(2, 1), 0.0);
  EXPECT_EQ(T(3, 1), 0.0);
  EXPECT_EQ(T(1, 2), 0.0);
}

TEST(BeamAxes, EulerZOfAPlaneBeamMayDifferByRounding)
{
  for (const double tilt : {4e-16, -4e-16}) {
    const Material rounded = WithAngles(0, tilt, 0);
    ExpectColumn(Beam(2, 0, 0).Frame(&rounded, kPlane), 1, 1, 0, 0);
  }
  for (const double tilt : {1e-14, -1e-14}) {
    const Material tilted = WithAngles(0, tilt, 0);
    ExpectFatal([&] { Beam(2, 0, 0).Frame(&tilted, kPlane); },
                "error: Local z axe must be (0,0,1) for 2D problems.Element:9\n");
  }
}

namespace {

// Unit axes at right angles, right-handed. The tolerance is that of the sums of three products.
void ExpectOrthonormal(const Matriu& T)
{
  for (int i = 1; i <= 3; ++i) {
    for (int j = i; j <= 3; ++j) {
      double product = 0.0;
      for (int k = 1; k <= 3; ++k)
        product += T(k, i) * T(k, j);
      EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-15) << i << ' ' << j;
    }
  }
  EXPECT_NEAR(T.subMatriu(1, 1, 3, 3).det(), 1.0, kTol);
}

}  // namespace

// A beam is vertical up to a lean of 1e-6. Local y is then the global X axis, less its part along
// the beam, wherever the beam leans to.
TEST(BeamAxes, BeamsAreVerticalUpToALeanOfOneMillionth)
{
  for (const double lean : {1e-16, 1e-13, 1e-9, 0.99e-6}) {
    for (double turn = 0.0; turn < 6.2; turn += 0.5) {
      const double x = lean * std::cos(turn), y = lean * std::sin(turn);
      for (const double height : {1.0, -1.0, 250.0}) {
        const Matriu T = Beam(x * height, y * height, height).Frame();
        const double up = height > 0.0 ? 1.0 : -1.0;
        ExpectOrthonormal(T);
        EXPECT_NEAR(T(1, 1), up * x, 1e-18);
        EXPECT_NEAR(T(2, 1), up * y, 1e-18);
        // The squares of the lean are below 1e-12.
        EXPECT_NEAR(T(1, 2), 1.0, 1e-12);
        EXPECT_NEAR(T(2, 2), 0.0, 1e-12);
        EXPECT_NEAR(T(3, 2), -x, 1e-12);
        EXPECT_NEAR(T(2, 3), up, 1e-12);
      }
    }
  }
}

TEST(BeamAxes, BeamsThatLeanMoreHaveAHorizontalYAcrossTheLean)
{
  static const struct
  {
    double x, y;     // horizontal part of a beam of height 1
    double axis[2];  // local y
  } cases[] = {{1.01e-6, 0, {0, 1}},
               {0, 1.01e-6, {-1, 0}},
               {-1e-5, 0, {0, -1}},
               {0, -1e-3, {1, 0}},
               {3e-5, 4e-5, {-0.8, 0.6}}};
  for (const auto& c : cases) {
    const Matriu T = Beam(c.x, c.y, 1).Frame();
    EXPECT_NEAR(T(1, 2), c.axis[0], kTol) << c.x << ' ' << c.y;
    EXPECT_NEAR(T(2, 2), c.axis[1], kTol) << c.x << ' ' << c.y;
    EXPECT_EQ(T(3, 2), 0.0);
  }
}

// Every digit of the frame of a plumb beam is that of whole numbers.
TEST(BeamAxes, PlumbBeamsHaveExactAxes)
{
  for (const double height : {0.3, -7.1}) {
    const Matriu T = Beam(0, 0, height).Frame();
    const double up = height > 0.0 ? 1.0 : -1.0;
    const double expected[3][3] = {{0, 1, 0}, {0, 0, up}, {up, 0, 0}};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j)
        EXPECT_EQ(T(i + 1, j + 1), expected[i][j]) << i << ' ' << j;
    }
  }
}

TEST(BeamAxes, AlphaTurnsABeamThatCountsAsVertical)
{
  Beam beam(3e-7, -2e-7, 2);
  beam.elem.alpha = std::numbers::pi / 6;
  const Matriu T = beam.Frame();
  ExpectOrthonormal(T);
  EXPECT_NEAR(T(1, 2), std::sqrt(3.0) / 2, 1e-12);  // the square of the lean
  EXPECT_NEAR(T(2, 2), 0.5, 1e-12);
}

TEST(BeamAxes, LeanIsTheHorizontalPartOfTheLength)
{
  EXPECT_EQ(Beam(0, 0, -3).elem.Lean(), 0.0);
  EXPECT_EQ(Beam(0, 5, 0).elem.Lean(), 1.0);
  EXPECT_NEAR(Beam(3, 4, 12).elem.Lean(), 5.0 / 13.0, kTol);
  EXPECT_NEAR(Beam(3e-4, -4e-4, 100).elem.Lean(), 5e-6, 1e-16);
}

TEST(BeamAxes, PlanePointsLieAtZero)
{
  Node plane(2), space(3);
  plane(1) = space(1) = 1.0;
  plane(2) = space(2) = 2.0;
  space(3) = 5.0;
  Mesh mesh(100, 100, 3, Linear, 2);
  Elem up(&mesh, nullptr), down(&mesh, nullptr);
  up(0) = down(1) = &plane;
  up(1) = down(0) = &space;
  Matriu T;
  up.CalcTransfMatrixBeam(T, nullptr, kSpace);
  ExpectColumn(T, 1, 0, 0, 1);
  down.CalcTransfMatrixBeam(T, nullptr, kSpace);
  ExpectColumn(T, 1, 0, 0, -1);
}

TEST(BeamAxes, HorizontalBeamsNearlyAlongYHaveYNormalToThem)
{
  for (const double x : {1e-7, -1e-7, 1e-13})
    ExpectColumn(Beam(x, 1, 0).Frame(), 2, -1, x, 0);
}

TEST(BeamAxes, AlphaOfAnInclinedBeamIsZeroUpToRounding)
{
  for (const double alpha : {1e-12, -1e-12}) {
    Beam beam(1, 0, 2);
    beam.elem.alpha = alpha;
    ExpectFatal([&] { beam.Frame(); },
                "sorry, alpha!=0 with no vertical beams isn't implemented yet");
  }
  Beam beam(1, 0, 2);
  beam.elem.alpha = 4e-16;
  ExpectColumn(beam.Frame(), 2, 0, 1, 0);
}

TEST(BeamAxes, AsEulerAnglesOfTheMaterial)
{
  const Material material = WithAngles(0.3, 0.5, 0.7);
  const auto axes = AxesOfAngles({0.3, 0.5, 0.7});
  double a[3];
  Beam(axes[0][0], axes[0][1], axes[0][2]).elem.GiveEulerAnglesBeam(a, &material, kSpace);
  ExpectAngles(a, 0.3, 0.5, 0.7);
  // Without angles local y is horizontal and local z points upwards.
  Beam(0, 3, 4).elem.GiveEulerAnglesBeam(a, nullptr, kSpace);
  const auto upright = AxesOfAngles({a[0], a[1], a[2]});
  EXPECT_NEAR(upright[0][1], 0.6, kTol);
  EXPECT_NEAR(upright[0][2], 0.8, kTol);
  EXPECT_NEAR(upright[1][0], -1.0, kTol);
}

TEST(BeamAxes, AsEulerAnglesInAPlane)
{
  double a[3];
  Beam(3, 4, 0).elem.GiveEulerAnglesBeam(a, nullptr, kPlane);
  ExpectAngles(a, 0, 0, 2 * std::numbers::pi - std::atan2(4.0, 3.0));
  const Material tilted = WithAngles(0, 0.5, 0);
  ExpectFatal([&] { Beam(3, 4, 0).elem.GiveEulerAnglesBeam(a, &tilted, kPlane); },
              "error: Local z axe must be (0,0,1) for 2D problems.Element:9\n");
}

TEST(TriangleAxes, AsEulerAngles)
{
  const Material material = WithAngles(0.3, 0.5, 0.7);
  const auto axes = AxesOfAngles({0.3, 0.5, 0.7});
  const Shell shell({0, 0, 0}, {axes[0][0], axes[0][1], axes[0][2]},
                    {axes[1][0], axes[1][1], axes[1][2]});
  double a[3];
  shell.elem.GiveEulerAnglesTriangle(a, &material);
  ExpectAngles(a, 0.3, 0.5, 0.7);
  // Local x = Y, y = Z, z = X.
  Shell({0, 0, 0}, {0, 1, 0}, {0, 0, 1}).elem.GiveEulerAnglesTriangle(a, nullptr);
  ExpectAngles(a, std::numbers::pi, std::numbers::pi / 2, std::numbers::pi / 2);
}

// 1 - cos is 4.5e-16 for the first angle and 5e-15 for the second; the limit is 1e-15.
TEST(TriangleAxes, EulerAxesAreKeptWhileZIsTheNormal)
{
  const Material turned = WithAngles(0, 0, 0.5);
  const Matriu kept = SlopingShell(3e-8).Frame(&turned);
  EXPECT_EQ(kept(2, 3), 0.0);
  EXPECT_EQ(kept(3, 1), 0.0);
  const Matriu rebuilt = SlopingShell(1e-7).Frame(&turned);
  EXPECT_NEAR(rebuilt(2, 3), -1e-7, kTol);
  EXPECT_NEAR(rebuilt(3, 1), -1e-7 * std::sin(0.5), kTol);
}

TEST(TriangleAxes, MaterialXNearlyAlongTheNormalIsEnough)
{
  const Material identity = WithAngles(0, 0, 0);
  const auto tilted = [](double angle) { return ReaVec(-std::sin(angle), std::cos(angle), 0); };
  const Matriu T = Shell({0, 0, 0}, tilted(1e-9), {0, 0, 1}).Frame(&identity);
  ExpectColumn(T, 2, 0, 0, -1);
  ExpectColumn(T, 1, 1e-9, -1, 0);
  ExpectFatal(
      [&] {
        Shell({0, 0, 0}, tilted(4e-16), {0, 0, 1}).Frame(&identity);
      },
      "error in element 4. Normal to element and X local are parallel\n");
}

}  // namespace morlen
