// The ten-node tetrahedron in its natural coordinates.

#include <gtest/gtest.h>

#include <memory>
#include <numeric>

#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

// The places of the nodes, corners first.
constexpr double kNodes[10][3] = {{0, 0, 0},     {1, 0, 0},     {0, 1, 0},   {0, 0, 1},
                                  {0.5, 0, 0},   {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5},
                                  {0.5, 0, 0.5}, {0, 0.5, 0.5}};

constexpr double kXi = 0.23, kEta = 0.31, kZeta = 0.11;

// The Jacobian at that place; returns its determinant.
double Jacobian(const Elem& elem, double J[3][3])
{
  double d[10][3];
  CalcPlacesFromFirst(elem, 10, d);
  return CalcJ10nod(d, FunctionsAt(TetraPoint{kXi, kEta, kZeta}), J);
}

}  // namespace

TEST(TetraShapeFunctions, AreTheFormulasOfTheirNodes)
{
  const double xi = kXi, eta = kEta, zeta = kZeta, L = 1.0 - xi - eta - zeta;
  const double expected[] = {(2 * L - 1) * L,       xi * (2 * xi - 1), eta * (2 * eta - 1),
                             zeta * (2 * zeta - 1), 4 * xi * L,        4 * xi * eta,
                             4 * eta * L,           4 * zeta * L,      4 * xi * zeta,
                             4 * eta * zeta};
  for (int i = 1; i <= 10; ++i)
    EXPECT_NEAR(GiveN10nod(i, xi, eta, zeta), expected[i - 1], 1e-15) << i;
}

TEST(TetraShapeFunctions, AreOneAtTheirNodeAndZeroAtTheOthers)
{
  for (int i = 1; i <= 10; ++i) {
    for (int j = 0; j < 10; ++j)
      EXPECT_EQ(GiveN10nod(i, kNodes[j][0], kNodes[j][1], kNodes[j][2]), i == j + 1 ? 1.0 : 0.0)
          << i << " at node " << j + 1;
  }
}

TEST(TetraShapeFunctions, AreZeroForOtherNodesAndDirections)
{
  for (const int node : {-1, 0, 11})
    EXPECT_EQ(GiveN10nod(node, kXi, kEta, kZeta), 0.0);
  for (const int node : {0, 11})
    EXPECT_EQ(GiveDerN10nod(node, kXi, kEta, kZeta, 1), 0.0);
  for (const int direction : {0, 4})
    EXPECT_EQ(GiveDerN10nod(1, kXi, kEta, kZeta, direction), 0.0);
}

// Central differences are exact for quadratic functions.
TEST(TetraShapeFunctions, DerivativesAreTheirSlopes)
{
  constexpr double h = 0.25;
  for (int direction = 1; direction <= 3; ++direction) {
    double step[3] = {};
    step[direction - 1] = h;
    double sum = 0.0;
    for (int i = 1; i <= 10; ++i) {
      const double slope = (GiveN10nod(i, kXi + step[0], kEta + step[1], kZeta + step[2]) -
                            GiveN10nod(i, kXi - step[0], kEta - step[1], kZeta - step[2])) /
                           (2.0 * h);
      const double derivative = GiveDerN10nod(i, kXi, kEta, kZeta, direction);
      EXPECT_NEAR(derivative, slope, 1e-14) << i << " by " << direction;
      sum += derivative;
    }
    EXPECT_NEAR(sum, 0.0, 1e-14);
  }
}

TEST(TetraShapeFunctions, PointsHaveSevenDigits)
{
  constexpr double a = 0.5854102, b = 0.1381966;
  const double expected[][3] = {{a, b, b}, {b, a, b}, {b, b, a}, {b, b, b}};
  ASSERT_EQ(std::size(kTetraPoints), 4u);
  for (int g = 0; g < 4; ++g) {
    EXPECT_EQ(kTetraPoints[g].xi, expected[g][0]);
    EXPECT_EQ(kTetraPoints[g].eta, expected[g][1]);
    EXPECT_EQ(kTetraPoints[g].zeta, expected[g][2]);
  }
}

// Integrals of the shape functions over the reference tetrahedron: -1/120 at corners, 1/30 at
// the middles of edges.
TEST(TetraShapeFunctions, PointsIntegrateQuadratics)
{
  for (int i = 1; i <= 10; ++i) {
    double integral = 0.0;
    for (const TetraPoint& at : kTetraPoints)
      integral += GiveN10nod(i, at.xi, at.eta, at.zeta) / 24.0;
    EXPECT_NEAR(integral, i <= 4 ? -1.0 / 120.0 : 1.0 / 30.0, 1e-8) << i;
  }
}

TEST(TetraShapeFunctions, JacobianOfStraightEdgesIsThatOfTheCorners)
{
  const Vector3 corners[] = {{1, 2, 3}, {3, 2.5, 3}, {1.5, 4, 3.25}, {0.5, 2, 6}};
  const auto project =
      ReadProject(OneSolid({corners[0], corners[1], corners[2], corners[3]}, 10).Text());
  const Elem& elem = *project->GiveElem(1);
  double J[3][3];
  const double det = Jacobian(elem, J);
  for (int direction = 0; direction < 3; ++direction) {
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(J[direction][k], corners[direction + 1][k] - corners[0][k], 1e-14);
  }
  const double sixVolumes =
      Dot(corners[1] - corners[0], Cross(corners[2] - corners[0], corners[3] - corners[0]));
  EXPECT_NEAR(det, sixVolumes, 1e-13);
  EXPECT_NEAR(CalcTetraDeterminant(elem), sixVolumes, 1e-13);
}

TEST(TetraShapeFunctions, UnitSolidHasDeterminantOne)
{
  EXPECT_EQ(CalcTetraDeterminant(*ReadProject(UnitSolid(4).Text())->GiveElem(1)), 1.0);
}

// Moving the middle of the edge 1-2 by d adds 4ξL·d to x.
TEST(TetraShapeFunctions, JacobianOfACurvedEdge)
{
  SolidModel model = UnitSolid(10);
  constexpr double d = 0.1;
  model.nodes[4][2] += d;
  const auto project = ReadProject(model.Text());
  double J[3][3];
  Jacobian(*project->GiveElem(1), J);
  const double L = 1.0 - kXi - kEta - kZeta;
  EXPECT_NEAR(J[0][2], 4.0 * d * (L - kXi), 1e-15);
  EXPECT_NEAR(J[1][2], -4.0 * d * kXi, 1e-15);
  EXPECT_NEAR(J[2][2], 1.0 - 4.0 * d * kXi, 1e-15);
  EXPECT_NEAR(J[0][0], 1.0, 1e-15);
}

}  // namespace morlen
