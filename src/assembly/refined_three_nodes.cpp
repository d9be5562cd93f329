// The refined shell triangle of three nodes.
//
// Membrane: the optimal triangle with drilling freedoms of C. A. Felippa, A study of optimal
// membrane triangles with drilling freedoms, Comput. Methods Appl. Mech. Engrg. 192 (2003)
// 2125-2168, with a share of each node in the drilling freedoms; with the shares 0 it is the
// constant strain triangle. What a node has no share in resists by the deviation of its rotation
// from that of the membrane: T. J. R. Hughes, F. Brezzi, On drilling degrees of freedom, Comput.
// Methods Appl. Mech. Engrg. 72 (1989) 105-121.
//
// Plate: DKMT, I. Katili, A new discrete Kirchhoff-Mindlin element based on Mindlin-Reissner plate
// theory and assumed shear strain fields, part I, Int. J. Numer. Methods Engrg. 36 (1993)
// 1859-1883.

#include <algorithm>
#include <cmath>

#include "assembly/refined_triangle.h"
#include "base/constants.h"

namespace morlen {

namespace {

using Rows = ShellRows<3>;
using Row = Rows::Row;

constexpr int Next(int i)
{
  return (i + 1) % 3;
}

// Strains of the basic part: constant in the element, from the displacements of the edges, which
// bend by the drilling of their ends.
void SetBasicStrains(const CornerTriangle& t, const double* f, std::array<Row, 3>& strain)
{
  strain = {};
  for (int i = 0; i < 3; ++i) {
    const int j = Next(i);
    const double cx = t.edge[i][0];
    const double cy = t.edge[i][1];
    const double twoA = 2.0 * t.area;
    const double bend = std::sqrt(f[i] * f[j]) / (8.0 * t.area);
    const double turned[] = {bend * cy * cy, bend * cx * cx, -2.0 * bend * cx * cy};
    for (const int node : {i, j}) {
      strain[0][Rows::U(node)] += cy / twoA;
      strain[1][Rows::V(node)] -= cx / twoA;
      strain[2][Rows::U(node)] -= cx / twoA;
      strain[2][Rows::V(node)] += cy / twoA;
      const double sign = node == i ? -1.0 : 1.0;
      for (int k = 0; k < 3; ++k)
        strain[k][Rows::Rz(node)] += sign * turned[k];
    }
  }
}

// The rotation of a node minus that of the corners' linear field.
Row DrillingOf(const CornerTriangle& t, int node)
{
  Row row{};
  for (int i = 0; i < 3; ++i) {
    row[Rows::U(i)] = t.gradient[i][1] / 2.0;
    row[Rows::V(i)] = -t.gradient[i][0] / 2.0;
  }
  row[Rows::Rz(node)] = 1.0;
  return row;
}

// The inverse of the matrix whose rows (a², b², a b) / l turn strains into those along the edges.
void InvertEdgeStrains(const CornerTriangle& t, double (&inverse)[3][3])
{
  double S[3][3];
  for (int e = 0; e < 3; ++e) {
    const double a = t.edge[e][0];
    const double b = t.edge[e][1];
    S[e][0] = a * a / t.squares[e];
    S[e][1] = b * b / t.squares[e];
    S[e][2] = a * b / t.squares[e];
  }
  double determinant = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int i1 = Next(i), i2 = Next(i1), j1 = Next(j), j2 = Next(j1);
      inverse[j][i] = S[i1][j1] * S[i2][j2] - S[i1][j2] * S[i2][j1];
    }
    determinant += S[0][i] * inverse[i][0];
  }
  for (auto& row : inverse) {
    for (double& value : row)
      value /= determinant;
  }
}

// The strains along the edges that the deviations of the three nodes cause at a corner: Q1 to Q3 of
// the source, by the numbers of its coefficients.
constexpr int kDeviationStrains[3][3][3] = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}},
                                            {{9, 7, 8}, {3, 1, 2}, {6, 4, 5}},
                                            {{5, 6, 4}, {8, 9, 7}, {2, 3, 1}}};
constexpr double kCoefficients[] = {0.0, 1.0, 2.0, 1.0, 0.0, 1.0, -1.0, -1.0, -1.0, -2.0};

// The strains at the middle of edge e that the deviations cause.
void SetHigherStrains(const CornerTriangle& t, const double (&inverse)[3][3], int e,
                      const std::array<Row, 3>& deviation, std::array<Row, 3>& strain)
{
  std::array<Row, 3> alongEdges{};
  for (int edge = 0; edge < 3; ++edge) {
    for (int node = 0; node < 3; ++node) {
      double sum = 0.0;
      for (const int corner : {e, Next(e)})
        sum += kCoefficients[kDeviationStrains[corner][edge][node]];
      const double factor = t.area / 3.0 * sum / t.squares[edge];
      for (int c = 0; c < Rows::kColumns; ++c)
        alongEdges[edge][c] += factor * deviation[node][c];
    }
  }
  for (int k = 0; k < 3; ++k) {
    for (int c = 0; c < Rows::kColumns; ++c)
      strain[k][c] = inverse[k][0] * alongEdges[0][c] + inverse[k][1] * alongEdges[1][c] +
                     inverse[k][2] * alongEdges[2][c];
  }
}

void SetMembrane(const CornerTriangle& t, const double* f, double higher, Rows& rows)
{
  SetBasicStrains(t, f, rows.strain[0]);
  rows.strainWeight[0] = t.area;
  std::array<Row, 3> deviation;
  const double remainder = DrillingRemainder(rows.section.thickness, t.area);
  for (int k = 0; k < 3; ++k) {
    const Row row = DrillingOf(t, k);
    rows.scalar[k] = row;
    rows.scalarStiffness[k] = (1.0 - f[k]) * remainder * rows.section.Dm[2][2] * t.area / 3.0;
    for (int c = 0; c < Rows::kColumns; ++c)
      deviation[k][c] = f[k] * row[c];
  }
  double inverse[3][3];
  InvertEdgeStrains(t, inverse);
  for (int e = 0; e < 3; ++e) {
    SetHigherStrains(t, inverse, e, deviation, rows.strain[1 + e]);
    rows.strainWeight[1 + e] = 0.75 * higher * t.area;
  }
}

/// An edge of the plate: the part of its rotation that is not that of a straight normal.
struct PlateEdge
{
  Row e;         ///< row of the difference between chord and mean rotation, times the length
  double bend;   ///< factor of e in the curvature
  double shear;  ///< factor of e in the shear strain
};

PlateEdge EdgeOf(const CornerTriangle& t, const ShellSection& section, int i)
{
  const int j = Next(i);
  const double cx = t.edge[i][0];
  const double cy = t.edge[i][1];
  const double squares = t.squares[i];
  const double q[] = {cx * cx / squares, cy * cy / squares, 2.0 * cx * cy / squares};
  double bending = 0.0;
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b)
      bending += q[a] * section.Db[a][b] * q[b];
  }
  const double shear = (section.Ds[0][0] * cx * cx + section.Ds[1][1] * cy * cy) / squares;
  const double phi = 12.0 * bending / (shear * squares);
  PlateEdge edge{{}, -1.5 / (squares * (1.0 + phi)), phi / (1.0 + phi)};
  edge.e[Rows::W(i)] = -1.0;
  edge.e[Rows::W(j)] = 1.0;
  for (const int node : {i, j}) {
    edge.e[Rows::Ry(node)] = cx / 2.0;
    edge.e[Rows::Rx(node)] = -cy / 2.0;
  }
  return edge;
}

// The rows at the point with the area coordinates L.
void SetPlatePoint(const CornerTriangle& t, const std::array<PlateEdge, 3>& edges, const double* L,
                   Rows::PlatePoint& point)
{
  point = {};
  for (int i = 0; i < 3; ++i) {
    const double gx = t.gradient[i][0];
    const double gy = t.gradient[i][1];
    point.curvature[0][Rows::Ry(i)] = gx;
    point.curvature[1][Rows::Rx(i)] = -gy;
    point.curvature[2][Rows::Ry(i)] = gy;
    point.curvature[2][Rows::Rx(i)] = -gx;
  }
  for (int i = 0; i < 3; ++i) {
    const int j = Next(i);
    const double cx = t.edge[i][0];
    const double cy = t.edge[i][1];
    double P[2], S[2];
    for (int k = 0; k < 2; ++k) {
      P[k] = 4.0 * edges[i].bend * (L[i] * t.gradient[j][k] + L[j] * t.gradient[i][k]);
      S[k] = edges[i].shear * (L[i] * t.gradient[j][k] - L[j] * t.gradient[i][k]);
    }
    for (int c = 0; c < Rows::kColumns; ++c) {
      const double e = edges[i].e[c];
      point.curvature[0][c] += P[0] * cx * e;
      point.curvature[1][c] += P[1] * cy * e;
      point.curvature[2][c] += (P[1] * cx + P[0] * cy) * e;
      point.shear[0][c] += S[0] * e;
      point.shear[1][c] += S[1] * e;
    }
  }
}

// The mean of E11 C11 over all directions: the products of the means and of the amplitudes of the
// two waves, of which E11 and C11 consist as functions of the direction.
double MeanOverDirections(const double (&E)[3][3], const double (&C)[3][3])
{
  const double a0 = (3.0 * (E[0][0] + E[1][1]) + 2.0 * E[0][1] + 4.0 * E[2][2]) / 8.0;
  const double a1 = (E[0][0] - E[1][1]) / 2.0;
  const double a2 = (E[0][0] + E[1][1] - 2.0 * E[0][1] - 4.0 * E[2][2]) / 8.0;
  const double c0 = (3.0 * (C[0][0] + C[1][1]) + 2.0 * C[0][1] + C[2][2]) / 8.0;
  const double c1 = (C[0][0] - C[1][1]) / 2.0;
  const double c2 = (C[0][0] + C[1][1] - 2.0 * C[0][1] - C[2][2]) / 8.0;
  return a0 * c0 + (a1 * c1 + a2 * c2) / 2.0;
}

}  // namespace

double HigherMembraneCoefficient(const double (&Dm)[3][3])
{
  constexpr double kLeast = 0.1;
  const double determinant = Dm[0][0] * Dm[1][1] - Dm[0][1] * Dm[1][0];
  const double compliance[3][3] = {{Dm[1][1] / determinant, -Dm[0][1] / determinant, 0.0},
                                   {-Dm[1][0] / determinant, Dm[0][0] / determinant, 0.0},
                                   {0.0, 0.0, 1.0 / Dm[2][2]}};
  return std::max(2.0 / MeanOverDirections(Dm, compliance) - 1.5, kLeast);
}

void ThreeNodeShell::SetSection(const ShellSection& section)
{
  rows.section = section;
  higher = HigherMembraneCoefficient(section.Dm);
}

bool ThreeNodeShell::Set(const double* x, const double* y, const double* shares)
{
  const CornerTriangle triangle(x, y);
  if (!ExceedsRounding(2.0 * triangle.area, std::sqrt(triangle.squares[0] * triangle.squares[2])))
    return false;
  SetMembrane(triangle, shares, higher, rows);
  std::array<PlateEdge, 3> edges;
  for (int i = 0; i < 3; ++i)
    edges[i] = EdgeOf(triangle, rows.section, i);
  constexpr double kMiddles[3][3] = {{0.5, 0.5, 0.0}, {0.0, 0.5, 0.5}, {0.5, 0.0, 0.5}};
  for (int p = 0; p < 3; ++p) {
    SetPlatePoint(triangle, edges, kMiddles[p], rows.plate[p]);
    rows.plateWeight[p] = triangle.area / 3.0;
  }
  constexpr double kCentroid[] = {1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0};
  SetPlatePoint(triangle, edges, kCentroid, centroid);
  return true;
}

void ThreeNodeShell::CalcStrengths(int, const double* displacements, double* strengths) const
{
  CalcShellStrengths(rows, rows.strain[0], centroid, displacements, strengths);
}

double EdgeMoment(double normal, double length, double firstShare, double secondShare)
{
  return std::sqrt(firstShare * secondShare) * normal * length * length / 8.0;
}

}  // namespace morlen
