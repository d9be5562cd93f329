// The refined shell triangle of six nodes.
//
// Membrane and plate have quadratic shape functions and are integrated at the middles of the edges.
// The shear stiffness of thin elements is reduced: M. Lyly, R. Stenberg, T. Vihinen, A stable
// bilinear element for the Reissner-Mindlin plate model, Comput. Methods Appl. Mech. Engrg. 110
// (1993) 343-357. In the membrane a mid-side node moves with the linear field of the corners as far
// as it has no share; the deviation from this field has a small stiffness. The rotation about
// the normal follows that of the membrane at the node itself: T. J. R. Hughes, F. Brezzi, On
// drilling degrees of freedom, Comput. Methods Appl. Mech. Engrg. 72 (1989) 105-121.

#include <algorithm>
#include <cmath>

#include "assembly/refined_triangle.h"
#include "base/constants.h"
#include "model/shape_functions.h"

namespace morlen {

namespace {

using Rows = ShellRows<6>;
using Row = Rows::Row;

constexpr int kCorners = 3;
constexpr int kNodes = 6;

/// The mid-side nodes: their shares and their area coordinates in the triangle of the corners.
struct MidSides
{
  double share[3];
  double L[3][3];
};

MidSides MidSidesOf(const CornerTriangle& t, const double* x, const double* y, const double* shares)
{
  MidSides mid;
  for (int m = 0; m < 3; ++m) {
    mid.share[m] = shares[kCorners + m];
    for (int c = 0; c < kCorners; ++c)
      mid.L[m][c] = t.gradient[c][0] * (x[kCorners + m] - x[c]) +
                    t.gradient[c][1] * (y[kCorners + m] - y[c]) + 1.0;
  }
  return mid;
}

// Replaces the displacements of the mid-side nodes in a row: u_m by u0 + f (u_m - u0), where u0 is
// the linear field of the corners. component: 0 for u, 1 for v.
void Replace(const MidSides& mid, int component, Row& row)
{
  for (int m = 0; m < 3; ++m) {
    double& own = row[component * kNodes + kCorners + m];
    for (int c = 0; c < kCorners; ++c)
      row[component * kNodes + c] += (1.0 - mid.share[m]) * mid.L[m][c] * own;
    own *= mid.share[m];
  }
}

/// Derivatives of the shape functions by x and y at a point, and their values.
struct PointFunctions
{
  double x[6], y[6], N[6];
  double determinant;  ///< of the Jacobian
  double scale;        ///< the product of the lengths of its rows
};

PointFunctions FunctionsInPlane(const double* x, const double* y, const SixNodeFunctions& at)
{
  double J[2][2];
  PointFunctions out;
  out.determinant = CalcJ6nod(x, y, at, J);
  out.scale = std::hypot(J[0][0], J[0][1]) * std::hypot(J[1][0], J[1][1]);
  for (int i = 0; i < 6; ++i) {
    out.x[i] = (J[1][1] * at.slopes[0][i] - J[0][1] * at.slopes[1][i]) / out.determinant;
    out.y[i] = (J[0][0] * at.slopes[1][i] - J[1][0] * at.slopes[0][i]) / out.determinant;
    out.N[i] = at.N[i];
  }
  return out;
}

void SetStrains(const PointFunctions& at, const MidSides& mid, std::array<Row, 3>& strain)
{
  strain = {};
  for (int i = 0; i < 6; ++i) {
    strain[0][Rows::U(i)] = at.x[i];
    strain[1][Rows::V(i)] = at.y[i];
    strain[2][Rows::U(i)] = at.y[i];
    strain[2][Rows::V(i)] = at.x[i];
  }
  for (Row& row : strain) {
    Replace(mid, 0, row);
    Replace(mid, 1, row);
  }
}

void SetPlatePoint(const PointFunctions& at, Rows::PlatePoint& point)
{
  point = {};
  for (int i = 0; i < 6; ++i) {
    const int w = Rows::W(i);
    const int rx = Rows::Rx(i);
    const int ry = Rows::Ry(i);
    point.curvature[0][ry] = at.x[i];
    point.curvature[1][rx] = -at.y[i];
    point.curvature[2][ry] = at.y[i];
    point.curvature[2][rx] = -at.x[i];
    point.shear[0][w] = at.x[i];
    point.shear[0][ry] = at.N[i];
    point.shear[1][w] = at.y[i];
    point.shear[1][rx] = -at.N[i];
  }
}

// The deviation of mid-side node m from the linear field of the corners.
Row DeviationOf(const MidSides& mid, int m, int component)
{
  Row row{};
  row[component * kNodes + kCorners + m] = 1.0;
  for (int c = 0; c < kCorners; ++c)
    row[component * kNodes + c] = -mid.L[m][c];
  return row;
}

// The rotation of a node minus that of the membrane there.
Row DrillingOf(const PointFunctions& at, const MidSides& mid, int node)
{
  Row row{};
  for (int i = 0; i < 6; ++i) {
    row[Rows::U(i)] = at.y[i] / 2.0;
    row[Rows::V(i)] = -at.x[i] / 2.0;
  }
  Replace(mid, 0, row);
  Replace(mid, 1, row);
  row[Rows::Rz(node)] = 1.0;
  return row;
}

// The small stiffness against the deviations of the mid-side nodes, as far as they have no share.
void SetDeviations(const MidSides& mid, double remainder, Rows& rows)
{
  const double shearStiffness = rows.section.Dm[2][2];
  for (int m = 0; m < 3; ++m) {
    for (int component = 0; component < 2; ++component) {
      rows.scalar[2 * m + component] = DeviationOf(mid, m, component);
      rows.scalarStiffness[2 * m + component] = (1.0 - mid.share[m]) * remainder * shearStiffness;
    }
  }
}

constexpr TrianglePoint kNodePlaces[] = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0},
                                         {0.5, 0.0, 0.0}, {0.5, 0.5, 0.0}, {0.0, 0.5, 0.0}};

}  // namespace

SixNodeShell::SixNodeShell()
{
  for (std::size_t p = 0; p < atPoints.size(); ++p)
    atPoints[p] = FunctionsAt(kMidEdgePoints[p]);
  for (std::size_t k = 0; k < atNodes.size(); ++k)
    atNodes[k] = FunctionsAt(kNodePlaces[k]);
}

bool SixNodeShell::Set(const double* x, const double* y, const double* shares)
{
  const CornerTriangle triangle(x, y);
  const MidSides mid = MidSidesOf(triangle, x, y, shares);
  for (int p = 0; p < 3; ++p) {
    const PointFunctions at = FunctionsInPlane(x, y, atPoints[p]);
    if (!ExceedsRounding(at.determinant, at.scale))
      return false;
    SetStrains(at, mid, rows.strain[p]);
    SetPlatePoint(at, rows.plate[p]);
    rows.strainWeight[p] = rows.plateWeight[p] = at.determinant * kMidEdgePoints[p].weight;
  }
  const double remainder = DrillingRemainder(rows.section.thickness, triangle.area);
  SetDeviations(mid, remainder, rows);
  for (int k = 0; k < kNodes; ++k) {
    const PointFunctions at = FunctionsInPlane(x, y, atNodes[k]);
    if (!ExceedsRounding(at.determinant, at.scale))
      return false;
    rows.scalar[6 + k] = DrillingOf(at, mid, k);
    rows.scalarStiffness[6 + k] =
        (shares[k] + (1.0 - shares[k]) * remainder) * rows.section.Dm[2][2] * triangle.area / 6.0;
  }
  constexpr double kShear = 0.01;
  const double t2 = rows.section.thickness * rows.section.thickness;
  const double h2 = *std::max_element(triangle.squares, triangle.squares + 3);
  rows.shearFactor = t2 / (t2 + kShear * h2);
  return true;
}

void SixNodeShell::CalcStrengths(int point, const double* displacements, double* strengths) const
{
  CalcShellStrengths(rows, rows.strain[point], rows.plate[point], displacements, strengths);
}

}  // namespace morlen
