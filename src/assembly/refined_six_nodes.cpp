// The refined shell triangle of six nodes.
//
// Membrane and plate have quadratic shape functions and are integrated at the middles of the edges.
// The shear stiffness of thin elements is reduced: M. Lyly, R. Stenberg, T. Vihinen, A stable
// bilinear element for the Reissner-Mindlin plate model, Comput. Methods Appl. Mech. Engrg. 110
// (1993) 343-357. In the membrane a mid-side node moves with the linear field of the corners as far
// as it has no share; the deviation from this field has a small stiffness. The rotation about
// the normal follows that of the membrane at the node itself: T. J. R. Hughes, F. Brezzi, On
// drilling degrees of freedom, Comput. Methods Appl. Mech. Engrg. 72 (1989) 105-121.
//
// The points of integration are mid-side nodes, so that all numbers of an element follow from the
// slopes of the shape functions at its six nodes. In the slopes of the membrane the displacements
// of the mid-side nodes are replaced.

#include <algorithm>
#include <cmath>

#include "assembly/refined_triangle.h"
#include "base/constants.h"
#include "model/shape_functions.h"

namespace morlen {

namespace {

constexpr int kNodes = SixNodeShell::kNodes;
constexpr int kCorners = SixNodeShell::kCorners;
using Slopes = SixNodeShell::Slopes;
using Part = ShellStiffness<kNodes>::Part;

constexpr TrianglePoint kNodePlaces[] = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0},
                                         {0.5, 0.0, 0.0}, {0.5, 0.5, 0.0}, {0.0, 0.5, 0.0}};

// The place of component a of node i in a part of the stiffness.
constexpr int Place(int a, int i)
{
  return a * kNodes + i;
}

double Length(const double (&v)[2])
{
  return std::sqrt(v[0] * v[0] + v[1] * v[1]);
}

// row += factor · values. The copy tells the compiler that the two do not overlap.
void AddMultiple(double factor, const double* values, double* row)
{
  std::array<double, kNodes> sum;
  for (int i = 0; i < kNodes; ++i)
    sum[i] = row[i] + factor * values[i];
  std::copy(sum.begin(), sum.end(), row);
}

double Product(const double* a, const double* b)
{
  double sum = 0.0;
  for (int i = 0; i < kNodes; ++i)
    sum += a[i] * b[i];
  return sum;
}

// The functions that add to a part of the stiffness fill only the components a <= b, see
// ShellStiffness. weight: the part of the area.

// Adds the stiffness of the strains at a point.
void AddStrains(const Slopes& at, double weight, const double (&Dm)[3][3], Part& K)
{
  for (int i = 0; i < kNodes; ++i) {
    const double x = weight * at.x[i];
    const double y = weight * at.y[i];
    double* const u = K[Place(0, i)];
    AddMultiple(Dm[0][0] * x, at.x, u);
    AddMultiple(Dm[2][2] * y, at.y, u);
    AddMultiple(Dm[0][1] * x, at.y, u + kNodes);
    AddMultiple(Dm[2][2] * y, at.x, u + kNodes);
    double* const v = K[Place(1, i)] + kNodes;
    AddMultiple(Dm[1][1] * y, at.y, v);
    AddMultiple(Dm[2][2] * x, at.x, v);
  }
}

// Adds the stiffness against the rotation of a node relative to that of the membrane there.
void AddDrilling(const Slopes& at, int node, double stiffness, Part& K)
{
  for (int i = 0; i < kNodes; ++i) {
    const double ofU = stiffness / 2.0 * at.y[i];
    const double ofV = -stiffness / 2.0 * at.x[i];
    AddMultiple(ofU / 2.0, at.y, K[Place(0, i)]);
    AddMultiple(-ofU / 2.0, at.x, K[Place(0, i)] + kNodes);
    AddMultiple(-ofV / 2.0, at.x, K[Place(1, i)] + kNodes);
    K[Place(0, i)][Place(2, node)] += ofU;
    K[Place(1, i)][Place(2, node)] += ofV;
  }
  K[Place(2, node)][Place(2, node)] += stiffness;
}

// Adds the stiffness against the deviation of a mid-side node, the same along x and y.
void AddDeviation(const double* row, double stiffness, Part& K)
{
  for (int i = 0; i < kNodes; ++i) {
    AddMultiple(stiffness * row[i], row, K[Place(0, i)]);
    AddMultiple(stiffness * row[i], row, K[Place(1, i)] + kNodes);
  }
}

// Adds the stiffness of the curvatures at a point.
void AddCurvatures(const Slopes& at, double weight, const double (&Db)[3][3], Part& K)
{
  for (int i = 0; i < kNodes; ++i) {
    const double x = weight * at.x[i];
    const double y = weight * at.y[i];
    double* const rx = K[Place(1, i)] + kNodes;
    AddMultiple(Db[1][1] * y, at.y, rx);
    AddMultiple(Db[2][2] * x, at.x, rx);
    AddMultiple(-Db[0][1] * y, at.x, rx + kNodes);
    AddMultiple(-Db[2][2] * x, at.y, rx + kNodes);
    double* const ry = K[Place(2, i)] + 2 * kNodes;
    AddMultiple(Db[0][0] * x, at.x, ry);
    AddMultiple(Db[2][2] * y, at.y, ry);
  }
}

// Adds the stiffness of the shear strains at a mid-side node.
void AddShear(const Slopes& at, int node, double weight, const double (&Ds)[2][2], Part& K)
{
  for (int i = 0; i < kNodes; ++i) {
    const double x = weight * Ds[0][0] * at.x[i];
    const double y = weight * Ds[1][1] * at.y[i];
    double* const w = K[Place(0, i)];
    AddMultiple(x, at.x, w);
    AddMultiple(y, at.y, w);
    w[Place(1, node)] -= y;
    w[Place(2, node)] += x;
  }
  K[Place(1, node)][Place(1, node)] += weight * Ds[1][1];
  K[Place(2, node)][Place(2, node)] += weight * Ds[0][0];
}

/// Displacements or forces of the nodes, by components.
using Components = std::array<std::array<double, kNodes>, 6>;

Components ByComponents(const double* displacements)
{
  Components u;
  for (int k = 0; k < 6; ++k) {
    for (int i = 0; i < kNodes; ++i)
      u[k][i] = displacements[6 * i + k];
  }
  return u;
}

void Multiply(const double (&D)[3][3], const double (&strain)[3], double* stress)
{
  for (int k = 0; k < 3; ++k)
    stress[k] = D[k][0] * strain[0] + D[k][1] * strain[1] + D[k][2] * strain[2];
}

// Nx, Ny, Nxy for these displacements.
void CalcMembraneForces(const Slopes& at, const double (&Dm)[3][3], const Components& u,
                        double* stress)
{
  const double strain[] = {Product(at.x, u[0].data()), Product(at.y, u[1].data()),
                           Product(at.y, u[0].data()) + Product(at.x, u[1].data())};
  Multiply(Dm, strain, stress);
}

// Mx, My, Mxy, Qx, Qy at the middle node `node` for these displacements.
void CalcPlateForces(const Slopes& at, int node, const ShellSection& section, double shearFactor,
                     const Components& u, double* stress)
{
  const double curvature[] = {Product(at.x, u[4].data()), -Product(at.y, u[3].data()),
                              Product(at.y, u[4].data()) - Product(at.x, u[3].data())};
  Multiply(section.Db, curvature, stress);
  stress[3] = shearFactor * section.Ds[0][0] * (Product(at.x, u[2].data()) + u[4][node]);
  stress[4] = shearFactor * section.Ds[1][1] * (Product(at.y, u[2].data()) - u[3][node]);
}

// Adds the nodal forces of Mx, My, Mxy, Qx, Qy at the middle node `node`.
void AddPlateForces(const Slopes& at, int node, double weight, const double* stress, Components& f)
{
  AddMultiple(weight * stress[3], at.x, f[2].data());
  AddMultiple(weight * stress[4], at.y, f[2].data());
  AddMultiple(-weight * stress[1], at.y, f[3].data());
  AddMultiple(-weight * stress[2], at.x, f[3].data());
  AddMultiple(weight * stress[0], at.x, f[4].data());
  AddMultiple(weight * stress[2], at.y, f[4].data());
  f[3][node] -= weight * stress[4];
  f[4][node] += weight * stress[3];
}

// Adds the nodal forces of Nx, Ny, Nxy.
void AddMembraneForces(const Slopes& at, double weight, const double* stress, Components& f)
{
  AddMultiple(weight * stress[0], at.x, f[0].data());
  AddMultiple(weight * stress[2], at.y, f[0].data());
  AddMultiple(weight * stress[1], at.y, f[1].data());
  AddMultiple(weight * stress[2], at.x, f[1].data());
}

// Adds the nodal forces of the rotation of a node relative to that of the membrane there.
void AddDrillingForces(const Slopes& at, int node, double drilling, const Components& u,
                       Components& f)
{
  const double turn = (Product(at.x, u[1].data()) - Product(at.y, u[0].data())) / 2.0;
  const double moment = drilling * (u[5][node] - turn);
  AddMultiple(moment / 2.0, at.y, f[0].data());
  AddMultiple(-moment / 2.0, at.x, f[1].data());
  f[5][node] += moment;
}

}  // namespace

SixNodeShell::SixNodeShell()
{
  for (std::size_t k = 0; k < functions.size(); ++k)
    functions[k] = FunctionsAt(kNodePlaces[k]);
}

bool SixNodeShell::Set(const double* x, const double* y, const double* shares)
{
  const CornerTriangle triangle(x, y);
  area = triangle.area;
  if (!CalcSlopes(x, y))
    return false;
  const double remainder = DrillingRemainder(section.thickness, area);
  CalcDeviations(triangle, x, y, shares, remainder);
  ReplaceMiddles(shares);
  for (int k = 0; k < kNodes; ++k)
    drilling[k] = (shares[k] + (1.0 - shares[k]) * remainder) * section.Dm[2][2] * area / 6.0;
  constexpr double kShear = 0.01;
  const double t2 = section.thickness * section.thickness;
  const double h2 = *std::max_element(triangle.squares, triangle.squares + 3);
  shearFactor = t2 / (t2 + kShear * h2);
  return true;
}

// Computes `slopes` and `weight`. False for a degenerate element.
bool SixNodeShell::CalcSlopes(const double* x, const double* y)
{
  for (int k = 0; k < kNodes; ++k) {
    double J[2][2];
    const double determinant = CalcJ6nod(x, y, functions[k], J);
    if (!ExceedsRounding(determinant, Length(J[0]) * Length(J[1])))
      return false;
    const double* const byXi = functions[k].slopes[0];
    const double* const byEta = functions[k].slopes[1];
    const double inverse = 1.0 / determinant;
    for (int i = 0; i < kNodes; ++i) {
      slopes[k].x[i] = inverse * (J[1][1] * byXi[i] - J[0][1] * byEta[i]);
      slopes[k].y[i] = inverse * (J[0][0] * byEta[i] - J[1][0] * byXi[i]);
    }
    if (k >= kCorners)
      weight[k - kCorners] = determinant / 6.0;
  }
  return true;
}

// The deviations of the mid-side nodes from the linear field of the corners, and their small
// stiffness, as far as the nodes have no share.
void SixNodeShell::CalcDeviations(const CornerTriangle& triangle, const double* x, const double* y,
                                  const double* shares, double remainder)
{
  for (int m = 0; m < 3; ++m) {
    const int node = kCorners + m;
    std::fill_n(deviation[m], kNodes, 0.0);
    deviation[m][node] = 1.0;
    for (int c = 0; c < kCorners; ++c)
      deviation[m][c] = -1.0 - triangle.gradient[c][0] * (x[node] - x[c]) -
                        triangle.gradient[c][1] * (y[node] - y[c]);
    deviationStiffness[m] = (1.0 - shares[node]) * remainder * section.Dm[2][2];
  }
}

// The slopes of the membrane are those with the displacement u_m of a mid-side node replaced by
// u0 + f (u_m - u0), where u0 is the linear field of the corners there and f the share of the node.
void SixNodeShell::ReplaceMiddles(const double* shares)
{
  membrane = slopes;
  for (int m = 0; m < 3; ++m) {
    const double lost = 1.0 - shares[kCorners + m];
    for (Slopes& at : membrane) {
      AddMultiple(-lost * at.x[kCorners + m], deviation[m], at.x);
      AddMultiple(-lost * at.y[kCorners + m], deviation[m], at.y);
    }
  }
}

void SixNodeShell::CalcStiffness(ShellStiffness<kNodes>& stiffness) const
{
  std::fill_n(&stiffness.membrane[0][0], 9 * kNodes * kNodes, 0.0);
  std::fill_n(&stiffness.plate[0][0], 9 * kNodes * kNodes, 0.0);
  for (int k = 0; k < kNodes; ++k)
    AddDrilling(membrane[k], k, drilling[k], stiffness.membrane);
  for (int p = 0; p < 3; ++p) {
    const int node = kCorners + p;
    AddStrains(membrane[node], weight[p], section.Dm, stiffness.membrane);
    AddCurvatures(slopes[node], weight[p], section.Db, stiffness.plate);
    AddShear(slopes[node], node, shearFactor * weight[p], section.Ds, stiffness.plate);
    if (deviationStiffness[p] != 0.0)
      AddDeviation(deviation[p], deviationStiffness[p], stiffness.membrane);
  }
}

void SixNodeShell::CalcForces(const double* displacements, double* forces) const
{
  const Components u = ByComponents(displacements);
  Components f{};
  for (int k = 0; k < kNodes; ++k)
    AddDrillingForces(membrane[k], k, drilling[k], u, f);
  for (int p = 0; p < 3; ++p) {
    const int node = kCorners + p;
    double stress[5];
    CalcMembraneForces(membrane[node], section.Dm, u, stress);
    AddMembraneForces(membrane[node], weight[p], stress, f);
    CalcPlateForces(slopes[node], node, section, shearFactor, u, stress);
    AddPlateForces(slopes[node], node, weight[p], stress, f);
    for (int k = 0; k < 2; ++k) {
      const double force = deviationStiffness[p] * Product(deviation[p], u[k].data());
      AddMultiple(force, deviation[p], f[k].data());
    }
  }
  for (int k = 0; k < 6; ++k) {
    for (int i = 0; i < kNodes; ++i)
      forces[6 * i + k] = f[k][i];
  }
}

void SixNodeShell::CalcStrengths(int point, const double* displacements, double* strengths) const
{
  const Components u = ByComponents(displacements);
  const int node = kCorners + point;
  CalcMembraneForces(membrane[node], section.Dm, u, strengths);
  CalcPlateForces(slopes[node], node, section, shearFactor, u, strengths + 3);
}

}  // namespace morlen
