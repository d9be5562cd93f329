#include "model/shape_functions.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/elem.h"
#include "numeric/matriu.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr double kNodes[6][2] = {{0, 0}, {1, 0}, {0, 1}, {0.5, 0}, {0.5, 0.5}, {0, 0.5}};
constexpr double kPlaces[][2] = {{0.2, 0.3}, {0.5, 0.0}, {1.0 / 3.0, 1.0 / 3.0}, {0.1, 0.8}};

// A quadratic with all six coefficients, and its derivatives.
double Quadratic(double x, double y)
{
  return 1.0 + 2.0 * x - 3.0 * y + 4.0 * x * x - 5.0 * x * y + 6.0 * y * y;
}

double DerQuadratic(double x, double y, int direction)
{
  return direction == 1 ? 2.0 + 8.0 * x - 5.0 * y : -3.0 - 5.0 * x + 12.0 * y;
}

}  // namespace

TEST(SixNodeTriangle, FunctionsAreOneAtTheirNodeAndZeroAtTheOthers)
{
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j)
      EXPECT_EQ(GiveN6nod(i + 1, kNodes[j][0], kNodes[j][1]), i == j ? 1.0 : 0.0);
  }
}

TEST(SixNodeTriangle, FunctionsReproduceQuadratics)
{
  for (const auto& [xi, eta] : kPlaces) {
    double value = 0.0;
    double slopes[2] = {};
    for (int i = 0; i < 6; ++i) {
      const double at = Quadratic(kNodes[i][0], kNodes[i][1]);
      value += GiveN6nod(i + 1, xi, eta) * at;
      for (int direction = 1; direction <= 2; ++direction)
        slopes[direction - 1] += GiveDerN6nod(i + 1, xi, eta, direction) * at;
    }
    EXPECT_NEAR(value, Quadratic(xi, eta), 1e-13);
    EXPECT_NEAR(slopes[0], DerQuadratic(xi, eta, 1), 1e-13);
    EXPECT_NEAR(slopes[1], DerQuadratic(xi, eta, 2), 1e-13);
  }
}

TEST(SixNodeTriangle, DerivativesAreThoseOfEachFunction)
{
  constexpr double h = 0.25;  // central differences are exact for quadratics
  for (const auto& [xi, eta] : kPlaces) {
    for (int i = 1; i <= 6; ++i) {
      EXPECT_NEAR(GiveDerN6nod(i, xi, eta, 1),
                  (GiveN6nod(i, xi + h, eta) - GiveN6nod(i, xi - h, eta)) / (2.0 * h), 1e-14);
      EXPECT_NEAR(GiveDerN6nod(i, xi, eta, 2),
                  (GiveN6nod(i, xi, eta + h) - GiveN6nod(i, xi, eta - h)) / (2.0 * h), 1e-14);
    }
  }
}

TEST(SixNodeTriangle, OtherNodesAndDirectionsGiveZero)
{
  for (const int node : {-1, 0, 7, 100}) {
    EXPECT_EQ(GiveN6nod(node, 0.2, 0.3), 0.0);
    EXPECT_EQ(GiveDerN6nod(node, 0.2, 0.3, 1), 0.0);
  }
  for (const int direction : {-1, 0, 3})
    EXPECT_EQ(GiveDerN6nod(1, 0.2, 0.3, direction), 0.0);
}

TEST(SixNodeTriangle, JacobianHasTheDerivativesByXiInItsFirstRow)
{
  // x = 1 + 3 xi + eta, y = 2 + xi/2 + 4 eta at all nodes.
  double x[6], y[6];
  for (int i = 0; i < 6; ++i) {
    x[i] = 1.0 + 3.0 * kNodes[i][0] + kNodes[i][1];
    y[i] = 2.0 + 0.5 * kNodes[i][0] + 4.0 * kNodes[i][1];
  }
  for (const auto& [xi, eta] : kPlaces) {
    double J[2][2];
    EXPECT_NEAR(CalcJ6nod(x, y, FunctionsAt(TrianglePoint{xi, eta, 0.0}), J), 11.5, 1e-13);
    EXPECT_NEAR(CalcJ6nod(x, y, xi, eta), 11.5, 1e-13);
    EXPECT_NEAR(J[0][0], 3.0, 1e-14);
    EXPECT_NEAR(J[0][1], 0.5, 1e-14);
    EXPECT_NEAR(J[1][0], 1.0, 1e-14);
    EXPECT_NEAR(J[1][1], 4.0, 1e-14);
    EXPECT_NEAR(CalcJ6nod(y, x, xi, eta), -11.5, 1e-13) << "turned";
  }
}

TEST(SixNodeTriangle, MidEdgePointsIntegrateQuadratics)
{
  // Over the reference triangle, by hand: 1/2, 1/6, 1/6, 1/12, 1/24, 1/12 for 1, x, y, x², xy, y².
  const double exact = 0.5 + 2.0 / 6 - 3.0 / 6 + 4.0 / 12 - 5.0 / 24 + 6.0 / 12;
  double sum = 0.0;
  for (const TrianglePoint& point : kMidEdgePoints)
    sum += point.weight * Quadratic(point.xi, point.eta);
  EXPECT_NEAR(sum, exact, 1e-14);
}

TEST(NodeAreas, ShareAStraightTriangleOutToCornersOrMidSides)
{
  // Area 5.75.
  const double x[] = {1.0, 4.0, 2.0, 2.5, 3.0, 1.5};
  const double y[] = {2.0, 2.5, 6.0, 2.25, 4.25, 4.0};
  double areas[6];
  CalcNodeAreas(3, x, y, areas);
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(areas[i], 5.75 / 3.0, 1e-14);
  CalcNodeAreas(6, x, y, areas);
  for (int i = 0; i < 6; ++i)
    EXPECT_NEAR(areas[i], i < 3 ? 0.0 : 5.75 / 3.0, 1e-14);
}

TEST(LocalCoordinates, BeginAtTheFirstNodeAndFollowTheFrame)
{
  const auto project = ReadProject(
      "problem type 3d\nmesh dimension 3 elemtype Triangle nnode 3\ncoordinates\n"
      "1 5 6 7\n2 5 8 7\n3 5 8 10\nend\nelements\n1 1 2 3 1\nend\n"
      "materials\n1 E 1 G 1 t 1\nend\n");
  const Elem& elem = *project->GiveElem(1);
  Matriu T, Tbig;
  elem.CalcTransfMatrixTriangle(T, Tbig, nullptr);  // normal X: x' = Y, y' = Z
  double x[6], y[6];
  CalcLocalCoordinates(elem, T, x, y);
  const double expected[3][2] = {{0, 0}, {2, 0}, {2, 3}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(x[i], expected[i][0], 1e-14);
    EXPECT_NEAR(y[i], expected[i][1], 1e-14);
  }
}

}  // namespace morlen
