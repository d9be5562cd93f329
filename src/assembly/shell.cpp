#include "assembly/shell.h"

#include <algorithm>
#include <cmath>

#include "assembly/relative_motion.h"
#include "base/constants.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

// The part of the bending stiffness that resists the rotation of a folded node about the normals of
// its triangles. It joins planes that differ only by rounding errors of the coordinates (1e-7) to
// one plate. It has no visible effect on a real fold, which is much steeper.
constexpr double kTurnAboutNormal = 1e-10;

}  // namespace

void ConstructB(int i, const double* a, const double* b, const double* c, double twoA, double xc,
                double yc, NodeNumbers& B)
{
  B = {b[i] / twoA, c[i] / twoA, (a[i] + b[i] * xc + c[i] * yc) / twoA};
}

double ConstructB6nodesAndJ(const Elem& elem, const double* x, const double* y,
                            const SixNodeFunctions& at, std::array<NodeNumbers, 6>& B)
{
  double J[2][2];
  const double det = CalcJ6nod(x, y, at, J);
  if (!ExceedsRounding(det, std::hypot(J[0][0], J[0][1]) * std::hypot(J[1][0], J[1][1])))
    Fatal("error: element ", elem.Num(), " has jacobian 0\n");
  for (int i = 0; i < 6; ++i) {
    const double Nxi = at.slopes[0][i];
    const double Neta = at.slopes[1][i];
    B[i] = {(J[1][1] * Nxi - J[0][1] * Neta) / det, (J[0][0] * Neta - J[1][0] * Nxi) / det,
            at.N[i]};
  }
  return det;
}

ShellEvaluator::ShellEvaluator() : Dm(3, 3), Db(3, 3), Ds(2, 2)
{
  for (int g = 0; g < 3; ++g)
    functions[g] = FunctionsAt(kMidEdgePoints[g]);
}

void ShellEvaluator::Evaluate(const Elem& elem, const Material& material)
{
  nnode = elem.Nnode();
  elem.CalcTransfMatrixTriangle(T, Tbig, &material);
  if (&material != materialOfD)
    material.GiveDMatrix(elem.Num(), Dm, Db, Ds);
  materialOfD = &material;
  CalcLocalCoordinates(elem, T, x, y);
  points = GaussPointCount(Triangle, nnode);
  if (nnode == 3)
    EvaluateThreeNodes(elem);
  else
    EvaluateSixNodes(elem);
  area = 0.0;
  for (int g = 0; g < points; ++g)
    area += point[g].weight;
  CalcTurns();
}

void ShellEvaluator::CalcTurns()
{
  for (int i = 0; i < nnode; ++i) {
    turn[i][0] = turn[i][1] = 0.0;
    for (int g = 0; g < points; ++g) {
      const double share = point[g].weight / area / 2.0;
      turn[i][0] += share * point[g].B[i][1];
      turn[i][1] -= share * point[g].B[i][0];
    }
  }
}

void ShellEvaluator::EvaluateThreeNodes(const Elem& elem)
{
  const double twoA = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
  if (!ExceedsRounding(twoA,
                       std::hypot(x[1] - x[0], y[1] - y[0]) * std::hypot(x[2] - x[0], y[2] - y[0])))
    Fatal("error: element ", elem.Num(), " has jacobian <=0\n");
  double a[3], b[3], c[3];
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    a[i] = x[j] * y[k] - x[k] * y[j];
    b[i] = y[j] - y[k];
    c[i] = x[k] - x[j];
  }
  point[0].weight = twoA / 2.0;
  for (int i = 0; i < 3; ++i)
    ConstructB(i, a, b, c, twoA, (x[0] + x[1] + x[2]) / 3.0, (y[0] + y[1] + y[2]) / 3.0,
               point[0].B[i]);
}

void ShellEvaluator::EvaluateSixNodes(const Elem& elem)
{
  for (int g = 0; g < points; ++g) {
    const double det = ConstructB6nodesAndJ(elem, x, y, functions[g], point[g].B);
    point[g].weight = det * kMidEdgePoints[g].weight;
  }
}

void ShellEvaluator::CalcStiffness(int i, int j, Matriu& K) const
{
  PairSums sums(point[0].weight, point[0].B[i], point[0].B[j]);
  for (int g = 1; g < points; ++g)
    sums.Add(point[g].weight, point[g].B[i], point[g].B[j]);
  AddtoKMatrix(sums, Dm, Db, Ds, K);
}

void ShellEvaluator::AddTurnsAboutNormal(int i, int j, const std::array<bool, 6>& folded,
                                         Matriu& K) const
{
  const double stiffness = kTurnAboutNormal * Db(1, 1);
  for (int k = 0; k < nnode; ++k) {
    if (!folded[k])
      continue;
    const double row[] = {turn[i][0], turn[i][1], k == i ? 1.0 : 0.0};
    const double column[] = {turn[j][0], turn[j][1], k == j ? 1.0 : 0.0};
    constexpr int kPlaces[] = {1, 2, 6};
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c)
        K(kPlaces[r], kPlaces[c]) += stiffness * row[r] * column[c];
    }
  }
}

std::array<double, 8> ShellEvaluator::StrainsAt(const ShellPoint& at, const double* local) const
{
  std::array<double, 8> strains = {};
  for (int i = 0; i < nnode; ++i) {
    const auto [Nx, Ny, N] = at.B[i];
    const double* u = local + 6 * i;
    const double slopes[] = {-u[4], u[3]};
    strains[0] += Nx * u[0];
    strains[1] += Ny * u[1];
    strains[2] += Ny * u[0] + Nx * u[1];
    strains[3] -= Nx * slopes[0];
    strains[4] -= Ny * slopes[1];
    strains[5] -= Ny * slopes[0] + Nx * slopes[1];
    strains[6] += Nx * u[2] - N * slopes[0];
    strains[7] += Ny * u[2] - N * slopes[1];
  }
  return strains;
}

void ShellEvaluator::AddStrengths(const double* local, ReaVecV& res, int offset) const
{
  constexpr int kValues = 8;
  for (int g = 0; g < points; ++g) {
    const std::array<double, 8> strains = StrainsAt(point[g], local);
    const int start = offset + g * kValues;
    AddToStrengthVec(res, start, Dm, &strains[0]);
    AddToStrengthVec(res, start + 3, Db, &strains[3]);
    AddToStrengthVec(res, start + 6, Ds, &strains[6]);
  }
}

void ShellEvaluator::CalcRelative(const Elem& elem, const std::array<bool, 6>& folded,
                                  const SplitView& u, double* local) const
{
  CalcRelativeShell(elem, T, x, y, folded, u, local);
}

void ShellEvaluator::CalcForces(const double* local, const std::array<bool, 6>& folded,
                                double* forces) const
{
  std::fill_n(forces, 6 * nnode, 0.0);
  for (int g = 0; g < points; ++g) {
    const std::array<double, 8> e = StrainsAt(point[g], local);
    double n[3], m[3], q[2];
    for (int i = 0; i < 3; ++i) {
      n[i] = point[g].weight * (Dm(i + 1, 1) * e[0] + Dm(i + 1, 2) * e[1] + Dm(i + 1, 3) * e[2]);
      m[i] = point[g].weight * (Db(i + 1, 1) * e[3] + Db(i + 1, 2) * e[4] + Db(i + 1, 3) * e[5]);
    }
    for (int i = 0; i < 2; ++i)
      q[i] = point[g].weight * (Ds(i + 1, 1) * e[6] + Ds(i + 1, 2) * e[7]);
    for (int i = 0; i < nnode; ++i) {
      const auto [Nx, Ny, N] = point[g].B[i];
      double* f = forces + 6 * i;
      f[0] += Nx * n[0] + Ny * n[2];
      f[1] += Ny * n[1] + Nx * n[2];
      f[2] += Nx * q[0] + Ny * q[1];
      f[3] -= Ny * m[1] + Nx * m[2] + N * q[1];
      f[4] += Nx * m[0] + Ny * m[2] + N * q[0];
    }
  }
  AddTurningForces(local, folded, forces);
}

void ShellEvaluator::AddTurningForces(const double* local, const std::array<bool, 6>& folded,
                                      double* forces) const
{
  double membraneTurn = 0.0;
  for (int i = 0; i < nnode; ++i)
    membraneTurn += turn[i][0] * local[6 * i] + turn[i][1] * local[6 * i + 1];
  double sum = 0.0;
  for (int k = 0; k < nnode; ++k) {
    const double own = local[6 * k + 5];
    const double moment =
        folded[k] ? kTurnAboutNormal * Db(1, 1) * (membraneTurn + own) : TurnAgainstGround() * own;
    forces[6 * k + 5] += moment;
    sum += folded[k] ? moment : 0.0;
  }
  for (int i = 0; i < nnode; ++i) {
    forces[6 * i] += turn[i][0] * sum;
    forces[6 * i + 1] += turn[i][1] * sum;
  }
}

}  // namespace morlen
