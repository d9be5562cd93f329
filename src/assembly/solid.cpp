#include "assembly/solid.h"

#include <algorithm>
#include <cmath>

#include "base/constants.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

constexpr int kStresses = 6;

void Invert(const double J[3][3], double det, double inverse[3][3])
{
  for (int i = 0; i < 3; ++i) {
    const int i1 = (i + 1) % 3;
    const int i2 = (i + 2) % 3;
    for (int j = 0; j < 3; ++j) {
      const int j1 = (j + 1) % 3;
      const int j2 = (j + 2) % 3;
      inverse[j][i] = (J[i1][j1] * J[i2][j2] - J[i1][j2] * J[i2][j1]) / det;
    }
  }
}

// a × b / divisor.
NodeNumbers CrossOver(const double a[3], const double b[3], double divisor)
{
  return {(a[1] * b[2] - a[2] * b[1]) / divisor, (a[2] * b[0] - a[0] * b[2]) / divisor,
          (a[0] * b[1] - a[1] * b[0]) / divisor};
}

// The product of the lengths of three vectors.
double BoxVolume(const double (*edges)[3])
{
  double volume = 1.0;
  for (int i = 0; i < 3; ++i) {
    const double* e = edges[i];
    volume *= std::sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
  }
  return volume;
}

}  // namespace

double ConstructBtetra(const Elem& elem, const double (*d)[3], std::array<NodeNumbers, 10>& B)
{
  const NodeNumbers n = CrossOver(d[2], d[3], 1.0);
  const double det = d[1][0] * n[0] + d[1][1] * n[1] + d[1][2] * n[2];
  if (!ExceedsRounding(det, BoxVolume(d + 1)))
    Fatal("error: element ", elem.Num(), " has jacobian <=0\n");
  B[1] = CrossOver(d[2], d[3], det);
  B[2] = CrossOver(d[3], d[1], det);
  B[3] = CrossOver(d[1], d[2], det);
  for (int k = 0; k < 3; ++k)
    B[0][k] = -(B[1][k] + B[2][k] + B[3][k]);
  return det;
}

double ConstructB10nodesAndJ(const Elem& elem, const double (*d)[3], const TenNodeFunctions& at,
                             std::array<NodeNumbers, 10>& B)
{
  double J[3][3], inverse[3][3];
  const double det = CalcJ10nod(d, at, J);
  if (!ExceedsRounding(det, BoxVolume(J)))
    Fatal("error: element ", elem.Num(), " has jacobian 0\n");
  Invert(J, det, inverse);
  for (int i = 0; i < 10; ++i) {
    for (int k = 0; k < 3; ++k)
      B[i][k] = inverse[k][0] * at.slopes[0][i] + inverse[k][1] * at.slopes[1][i] +
                inverse[k][2] * at.slopes[2][i];
  }
  return det;
}

SolidEvaluator::SolidEvaluator() : D(kStresses, kStresses)
{
  for (int g = 0; g < 4; ++g)
    functions[g] = FunctionsAt(kTetraPoints[g]);
}

void SolidEvaluator::Evaluate(const Elem& elem, const Material& material)
{
  nnode = elem.Nnode();
  if (&material != materialOfD)
    material.GiveDMatrixTetra(elem.Num(), D);
  materialOfD = &material;
  double d[10][3];
  CalcPlacesFromFirst(elem, nnode, d);
  points = GaussPointCount(Tetrahedra, nnode);
  if (nnode == 4)
    point[0].weight = ConstructBtetra(elem, d, point[0].B) / 6.0;
  for (int g = 0; g < points && nnode == 10; ++g)
    point[g].weight = ConstructB10nodesAndJ(elem, d, functions[g], point[g].B) / 24.0;
}

void SolidEvaluator::CalcStiffness(int i, int j, double* K) const
{
  PairSums sums(point[0].weight, point[0].B[i], point[0].B[j]);
  for (int g = 1; g < points; ++g)
    sums.Add(point[g].weight, point[g].B[i], point[g].B[j]);
  AddtoKMatrix(sums, D, K);
}

std::array<double, kStresses> SolidEvaluator::StrainsAt(const SolidPoint& at, const double* u) const
{
  double H[3][3] = {};  // the derivatives of the displacements (columns) by x, y, z (rows)
  for (int i = 0; i < nnode; ++i) {
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c)
        H[r][c] += at.B[i][r] * u[3 * i + c];
    }
  }
  return {H[0][0], H[1][1], H[2][2], H[1][0] + H[0][1], H[2][0] + H[0][2], H[2][1] + H[1][2]};
}

void SolidEvaluator::AddStrengths(const double* u, ReaVecV& res, int offset) const
{
  for (int g = 0; g < points; ++g)
    AddToStrengthVec(res, offset + kStresses * g, D, StrainsAt(point[g], u).data());
}

void SolidEvaluator::CalcForces(const double* u, double* forces) const
{
  std::fill_n(forces, 3 * nnode, 0.0);
  const double* d = D.Data();
  for (int g = 0; g < points; ++g) {
    const std::array<double, kStresses> strains = StrainsAt(point[g], u);
    double s[kStresses];
    for (int i = 0; i < kStresses; ++i) {
      s[i] = 0.0;
      for (int j = 0; j < kStresses; ++j)
        s[i] += d[kStresses * i + j] * strains[j];
      s[i] *= point[g].weight;
    }
    for (int i = 0; i < nnode; ++i) {
      const auto [x, y, z] = point[g].B[i];
      double* f = forces + 3 * i;
      f[0] += x * s[0] + y * s[3] + z * s[4];
      f[1] += y * s[1] + x * s[3] + z * s[5];
      f[2] += z * s[2] + x * s[4] + y * s[5];
    }
  }
}

}  // namespace morlen
