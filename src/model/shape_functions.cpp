// Quadratic shape functions of the triangle and the tetrahedron, with Jacobians and shares of
// loads.
//
// With the natural coordinates L of the corners (their sum is 1; ξ, η, ζ are those of corners 2,
// 3, 4), the function of a corner is L (2L - 1) and that of a node on an edge 4 La Lb. A
// derivative by ξ changes the first corner's L by -1 and the second one's by 1. Source: O. C.
// Zienkiewicz, R. L. Taylor, The Finite Element Method, vol. 1, Butterworth-Heinemann, 5th ed.
// 2000, chapter 8.

#include "model/shape_functions.h"

#include <algorithm>

#include "model/elem.h"
#include "model/node.h"
#include "numeric/matriu.h"

namespace morlen {

double GiveN6nod(int node, double xi, double eta)
{
  const double L = 1.0 - xi - eta;
  switch (node) {
    case 1:
      return L * (2.0 * L - 1.0);
    case 2:
      return xi * (2.0 * xi - 1.0);
    case 3:
      return eta * (2.0 * eta - 1.0);
    case 4:
      return 4.0 * xi * L;
    case 5:
      return 4.0 * xi * eta;
    case 6:
      return 4.0 * eta * L;
    default:
      return 0.0;
  }
}

double GiveDerN6nod(int node, double xi, double eta, int direction)
{
  if (node < 1 || node > 6 || direction < 1 || direction > 2)
    return 0.0;
  const double L = 1.0 - xi - eta;
  const double byXi[] = {1.0 - 4.0 * L, 4.0 * xi - 1.0, 0.0, 4.0 * (L - xi), 4.0 * eta, -4.0 * eta};
  const double byEta[] = {1.0 - 4.0 * L, 0.0,      4.0 * eta - 1.0,
                          -4.0 * xi,     4.0 * xi, 4.0 * (L - eta)};
  return direction == 1 ? byXi[node - 1] : byEta[node - 1];
}

SixNodeFunctions FunctionsAt(const TrianglePoint& at)
{
  SixNodeFunctions functions;
  for (int i = 0; i < 6; ++i) {
    functions.N[i] = GiveN6nod(i + 1, at.xi, at.eta);
    for (int direction = 0; direction < 2; ++direction)
      functions.slopes[direction][i] = GiveDerN6nod(i + 1, at.xi, at.eta, direction + 1);
  }
  return functions;
}

double CalcJ6nod(const double* x, const double* y, const SixNodeFunctions& at, double J[2][2])
{
  for (int direction = 0; direction < 2; ++direction) {
    double* row = J[direction];
    row[0] = row[1] = 0.0;
    for (int i = 0; i < 6; ++i) {
      row[0] += at.slopes[direction][i] * x[i];
      row[1] += at.slopes[direction][i] * y[i];
    }
  }
  return J[0][0] * J[1][1] - J[0][1] * J[1][0];
}

double CalcJ6nod(const double* x, const double* y, double xi, double eta)
{
  double J[2][2];
  return CalcJ6nod(x, y, FunctionsAt(TrianglePoint{xi, eta, 0.0}), J);
}

void CalcLocalCoordinates(const Elem& elem, const Matriu& T, double* x, double* y)
{
  const Node& origin = *elem(0);
  for (int i = 0; i < elem.Nnode(); ++i) {
    x[i] = y[i] = 0.0;
    for (int k = 1; k <= 3; ++k) {
      const double d = (*elem(i))(k)-origin(k);
      x[i] += T(k, 1) * d;
      y[i] += T(k, 2) * d;
    }
  }
}

void CalcNodeAreas(int nnode, const double* x, const double* y, double* areas)
{
  if (nnode == 3) {
    const double twoA = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    std::fill_n(areas, 3, twoA / 6.0);
    return;
  }
  std::fill_n(areas, 6, 0.0);
  for (const TrianglePoint& point : kMidEdgePoints) {
    const double weight = CalcJ6nod(x, y, point.xi, point.eta) * point.weight;
    for (int i = 0; i < 6; ++i)
      areas[i] += GiveN6nod(i + 1, point.xi, point.eta) * weight;
  }
}

double GiveN10nod(int node, double xi, double eta, double zeta)
{
  if (node < 1 || node > 10)
    return 0.0;
  const double corner[] = {1.0 - xi - eta - zeta, xi, eta, zeta};
  if (node <= 4)
    return corner[node - 1] * (2.0 * corner[node - 1] - 1.0);
  const int* edge = kTetraEdges[node - 5];
  return 4.0 * corner[edge[0]] * corner[edge[1]];
}

double GiveDerN10nod(int node, double xi, double eta, double zeta, int direction)
{
  if (node < 1 || node > 10 || direction < 1 || direction > 3)
    return 0.0;
  const double corner[] = {1.0 - xi - eta - zeta, xi, eta, zeta};
  double slope[] = {-1.0, 0.0, 0.0, 0.0};
  slope[direction] = 1.0;
  if (node <= 4)
    return slope[node - 1] * (4.0 * corner[node - 1] - 1.0);
  const int* edge = kTetraEdges[node - 5];
  return 4.0 * (slope[edge[0]] * corner[edge[1]] + corner[edge[0]] * slope[edge[1]]);
}

TenNodeFunctions FunctionsAt(const TetraPoint& at)
{
  TenNodeFunctions functions;
  for (int i = 0; i < 10; ++i) {
    functions.N[i] = GiveN10nod(i + 1, at.xi, at.eta, at.zeta);
    for (int direction = 0; direction < 3; ++direction)
      functions.slopes[direction][i] = GiveDerN10nod(i + 1, at.xi, at.eta, at.zeta, direction + 1);
  }
  return functions;
}

void CalcPlacesFromFirst(const Elem& elem, int count, double (*d)[3])
{
  const double* first = elem(0)->Data();
  for (int i = 0; i < count; ++i) {
    for (int k = 0; k < 3; ++k)
      d[i][k] = elem(i)->Data()[k] - first[k];
  }
}

double CalcJ10nod(const double (*d)[3], const TenNodeFunctions& at, double J[3][3])
{
  for (int direction = 0; direction < 3; ++direction) {
    for (int k = 0; k < 3; ++k) {
      J[direction][k] = 0.0;
      for (int i = 0; i < 10; ++i)
        J[direction][k] += at.slopes[direction][i] * d[i][k];
    }
  }
  return J[0][0] * (J[1][1] * J[2][2] - J[1][2] * J[2][1]) -
         J[0][1] * (J[1][0] * J[2][2] - J[1][2] * J[2][0]) +
         J[0][2] * (J[1][0] * J[2][1] - J[1][1] * J[2][0]);
}

double CalcTetraDeterminant(const Elem& elem)
{
  const ReaVec origin = *elem(0);
  return (*elem(1) - origin) * VectorProd(*elem(2) - origin, *elem(3) - origin);
}

}  // namespace morlen
