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
//
// In both parts the strains are the sum of a constant and of a deviation from it, whose energies do
// not mix. The deviation follows from three numbers: in the membrane the drilling of the nodes, in
// the plate the chords of the edges. Its energy over the points of integration is therefore a 3×3
// matrix, and no row of strains at a point is formed.

#include "assembly/three_node_parts.h"

#include <algorithm>
#include <cmath>

#include "base/constants.h"

namespace morlen {

namespace {

constexpr int kNodes = ThreeNodeShell::kNodes;
constexpr int kColumns = ThreeNodeShell::kColumns;
using Row = ThreeNodeShell::Row;
using Part = ThreeNodeShell::Part;
using Square = double[3][3];

// The columns of node i (from 0).
constexpr int U(int i)
{
  return i;
}
constexpr int V(int i)
{
  return kNodes + i;
}
constexpr int Rz(int i)
{
  return 2 * kNodes + i;
}
constexpr int W(int i)
{
  return i;
}
constexpr int Rx(int i)
{
  return kNodes + i;
}
constexpr int Ry(int i)
{
  return 2 * kNodes + i;
}

constexpr int Next(int i)
{
  return (i + 1) % 3;
}

void CopyMultiple(double factor, const Square& from, Square& to)
{
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b)
      to[a][b] = factor * from[a][b];
  }
}

// sum += factor · mᵀ D m.
void AddCongruent(double factor, const Square& D, const Square& m, Square& sum)
{
  for (int b = 0; b < 3; ++b) {
    double product[3];
    for (int k = 0; k < 3; ++k)
      product[k] = factor * (D[k][0] * m[0][b] + D[k][1] * m[1][b] + D[k][2] * m[2][b]);
    for (int a = 0; a < 3; ++a)
      sum[a][b] += m[0][a] * product[0] + m[1][a] * product[1] + m[2][a] * product[2];
  }
}

// Strains of the basic part: constant in the element, from the displacements of the edges, which
// bend by the drilling of their ends.
void SetBasicStrains(const CornerTriangle& t, const double* f, std::array<Row, 3>& strain)
{
  strain = {};
  for (int i = 0; i < kNodes; ++i) {
    const int j = Next(i);
    strain[0][U(i)] = strain[2][V(i)] = t.gradient[i][0];
    strain[1][V(i)] = strain[2][U(i)] = t.gradient[i][1];
    const double cx = t.edge[i][0];
    const double cy = t.edge[i][1];
    const double bend = std::sqrt(f[i] * f[j]) / (8.0 * t.area);
    const double turned[] = {bend * cy * cy, bend * cx * cx, -2.0 * bend * cx * cy};
    for (int k = 0; k < 3; ++k) {
      strain[k][Rz(i)] -= turned[k];
      strain[k][Rz(j)] += turned[k];
    }
  }
}

// The rotations of the nodes minus that of the corners' linear field.
void SetDrilling(const CornerTriangle& t, std::array<Row, 3>& rows)
{
  rows = {};
  for (int node = 0; node < kNodes; ++node) {
    for (int i = 0; i < kNodes; ++i) {
      rows[node][U(i)] = t.gradient[i][1] / 2.0;
      rows[node][V(i)] = -t.gradient[i][0] / 2.0;
    }
    rows[node][Rz(node)] = 1.0;
  }
}

// The inverse of the matrix whose rows (a², b², a b) / l turn strains into those along the edges,
// edge by edge in closed form, so that slender triangles lose no digits. The strain along the edge
// between two corners comes only from the symmetric product of their gradients g, because the edge
// times them is -1 and 1 and times the third gradient 0.
void InvertEdgeStrains(const CornerTriangle& t, double (&inverse)[3][3])
{
  for (int e = 0; e < 3; ++e) {
    const double* const g = t.gradient[e];
    const double* const h = t.gradient[Next(e)];
    inverse[0][e] = -t.squares[e] * g[0] * h[0];
    inverse[1][e] = -t.squares[e] * g[1] * h[1];
    inverse[2][e] = -t.squares[e] * (g[0] * h[1] + g[1] * h[0]);
  }
}

// The strains along the edges that the deviations of the three nodes cause at a corner: Q1 to Q3 of
// the source, by the numbers of its coefficients.
constexpr int kDeviationStrains[3][3][3] = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}},
                                            {{9, 7, 8}, {3, 1, 2}, {6, 4, 5}},
                                            {{5, 6, 4}, {8, 9, 7}, {2, 3, 1}}};
constexpr double kCoefficients[] = {0.0, 1.0, 2.0, 1.0, 0.0, 1.0, -1.0, -1.0, -1.0, -2.0};

/// The sums of the strains at both ends of an edge: at the middle of edge e they are
/// area / 3 · kMiddleStrains[e][edge][node] / the squared length of the edge.
constexpr std::array<std::array<std::array<double, 3>, 3>, 3> SumAtMiddles()
{
  std::array<std::array<std::array<double, 3>, 3>, 3> sums{};
  for (int e = 0; e < 3; ++e) {
    for (int edge = 0; edge < 3; ++edge) {
      for (int node = 0; node < 3; ++node)
        sums[e][edge][node] = kCoefficients[kDeviationStrains[e][edge][node]] +
                              kCoefficients[kDeviationStrains[Next(e)][edge][node]];
    }
  }
  return sums;
}

constexpr auto kMiddleStrains = SumAtMiddles();

// Adds the stiffness of the deviations that comes from the strains at the middles of the edges.
void AddHigherStiffness(const CornerTriangle& t, const Square& Dm, double higher, const double* f,
                        Square& stiffness)
{
  Square inverse;
  InvertEdgeStrains(t, inverse);
  Square ofEdges{};
  AddCongruent(0.75 * higher * t.area, Dm, inverse, ofEdges);
  for (int e = 0; e < 3; ++e) {
    Square strains;
    for (int edge = 0; edge < 3; ++edge) {
      const double factor = t.area / (3.0 * t.squares[edge]);
      for (int node = 0; node < kNodes; ++node)
        strains[edge][node] = factor * f[node] * kMiddleStrains[e][edge][node];
    }
    AddCongruent(1.0, ofEdges, strains, stiffness);
  }
}

/// Factors of the chords of the edges, SetChords, in the strains of the plate. The slope along an
/// edge is quadratic; phi is its flexibility in shear divided by that in bending.
struct PlateEdges
{
  double bend[3];   ///< factors in the curvature
  double shear[3];  ///< factors in the shear strain
};

PlateEdges EdgesOf(const CornerTriangle& t, const ShellSection& section)
{
  PlateEdges edges;
  for (int e = 0; e < 3; ++e) {
    const double cx = t.edge[e][0];
    const double cy = t.edge[e][1];
    const double squares = t.squares[e];
    const double q[] = {cx * cx / squares, cy * cy / squares, 2.0 * cx * cy / squares};
    double bending = 0.0;
    for (int a = 0; a < 3; ++a) {
      for (int b = 0; b < 3; ++b)
        bending += q[a] * section.Db[a][b] * q[b];
    }
    const double shear = (section.Ds[0][0] * cx * cx + section.Ds[1][1] * cy * cy) / squares;
    const double phi = 12.0 * bending / (shear * squares);
    edges.bend[e] = -1.5 / (squares * (1.0 + phi));
    edges.shear[e] = phi / (1.0 + phi);
  }
  return edges;
}

// The differences between chord and mean rotation of the edges, times the length.
void SetChords(const CornerTriangle& t, std::array<Row, 3>& rows)
{
  rows = {};
  for (int i = 0; i < 3; ++i) {
    rows[i][W(i)] = -1.0;
    rows[i][W(Next(i))] = 1.0;
    for (const int node : {i, Next(i)}) {
      rows[i][Rx(node)] = -t.edge[i][1] / 2.0;
      rows[i][Ry(node)] = t.edge[i][0] / 2.0;
    }
  }
}

// The curvatures (rows) for the chords of the edges (columns). L: the area coordinates of a point,
// or the differences between those of two points.
void CalcChordCurvatures(const CornerTriangle& t, const PlateEdges& edges, const double* L,
                         Square& curvature)
{
  for (int i = 0; i < 3; ++i) {
    const int j = Next(i);
    double P[2];
    for (int k = 0; k < 2; ++k)
      P[k] = 4.0 * edges.bend[i] * (L[i] * t.gradient[j][k] + L[j] * t.gradient[i][k]);
    curvature[0][i] = P[0] * t.edge[i][0];
    curvature[1][i] = P[1] * t.edge[i][1];
    curvature[2][i] = P[1] * t.edge[i][0] + P[0] * t.edge[i][1];
  }
}

void CalcChordShear(const CornerTriangle& t, const PlateEdges& edges, const double* L,
                    double (&shear)[2][3])
{
  for (int i = 0; i < 3; ++i) {
    const int j = Next(i);
    for (int k = 0; k < 2; ++k)
      shear[k][i] = edges.shear[i] * (L[i] * t.gradient[j][k] - L[j] * t.gradient[i][k]);
  }
}

constexpr double kCentroid[] = {1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0};
constexpr double kMiddles[3][3] = {{0.5, 0.5, 0.0}, {0.0, 0.5, 0.5}, {0.5, 0.0, 0.5}};

// The mean curvatures, which are those at the centroid.
void SetMeanCurvatures(const CornerTriangle& t, const PlateEdges& edges, Part& part)
{
  Square ofChords;
  CalcChordCurvatures(t, edges, kCentroid, ofChords);
  for (int k = 0; k < 3; ++k) {
    for (int c = 0; c < kColumns; ++c)
      part.mean[k][c] = ofChords[k][0] * part.further[0][c] + ofChords[k][1] * part.further[1][c] +
                        ofChords[k][2] * part.further[2][c];
  }
  for (int i = 0; i < kNodes; ++i) {
    part.mean[0][Ry(i)] += t.gradient[i][0];
    part.mean[1][Rx(i)] -= t.gradient[i][1];
    part.mean[2][Ry(i)] += t.gradient[i][1];
    part.mean[2][Rx(i)] -= t.gradient[i][0];
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

void SetMembrane(const CornerTriangle& t, const double* shares, const ShellSection& section,
                 double higher, Part& part)
{
  SetBasicStrains(t, shares, part.mean);
  CopyMultiple(t.area, section.Dm, part.elastic);
  SetDrilling(t, part.further);
  const double remainder = DrillingRemainder(section.thickness, t.area);
  std::fill_n(&part.furtherStiffness[0][0], 9, 0.0);
  for (int k = 0; k < kNodes; ++k)
    part.furtherStiffness[k][k] = (1.0 - shares[k]) * remainder * section.Dm[2][2] * t.area / 3.0;
  AddHigherStiffness(t, section.Dm, higher, shares, part.furtherStiffness);
}

// The curvature is linear in the element, and the points of integration are around the centroid. So
// mean and deviation from it have no energy in common.
void SetPlate(const CornerTriangle& t, const ShellSection& section, Part& part,
              double (&shearAtCentroid)[2][3])
{
  const PlateEdges edges = EdgesOf(t, section);
  SetChords(t, part.further);
  SetMeanCurvatures(t, edges, part);
  CopyMultiple(t.area, section.Db, part.elastic);
  std::fill_n(&part.furtherStiffness[0][0], 9, 0.0);
  for (const double* L : kMiddles) {
    const double fromCentroid[] = {L[0] - kCentroid[0], L[1] - kCentroid[1], L[2] - kCentroid[2]};
    Square curvature;
    CalcChordCurvatures(t, edges, fromCentroid, curvature);
    AddCongruent(t.area / 3.0, section.Db, curvature, part.furtherStiffness);
    double shear[2][3];
    CalcChordShear(t, edges, L, shear);
    for (int k = 0; k < 2; ++k) {
      for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3; ++b)
          part.furtherStiffness[a][b] +=
              t.area / 3.0 * section.Ds[k][k] * shear[k][a] * shear[k][b];
      }
    }
  }
  CalcChordShear(t, edges, kCentroid, shearAtCentroid);
}

double HigherMembraneCoefficient(const double (&Dm)[3][3])
{
  constexpr double kLeast = 0.1;
  const double determinant = Dm[0][0] * Dm[1][1] - Dm[0][1] * Dm[1][0];
  const double compliance[3][3] = {{Dm[1][1] / determinant, -Dm[0][1] / determinant, 0.0},
                                   {-Dm[1][0] / determinant, Dm[0][0] / determinant, 0.0},
                                   {0.0, 0.0, 1.0 / Dm[2][2]}};
  return std::max(2.0 / MeanOverDirections(Dm, compliance) - 1.5, kLeast);
}

}  // namespace morlen
