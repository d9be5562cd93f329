#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "support/fatal.h"

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

TEST(BeamAxes, EulerAxesAreLaidAlongTheBeam)
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

TEST(BeamAxes, EulerAnglesOfAPlaneBeamMustLeaveZAlone)
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

}  // namespace morlen
