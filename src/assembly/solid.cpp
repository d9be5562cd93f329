#include "assembly/solid.h"

#include "assembly/element_products.h"
#include "base/constants.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"

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

}  // namespace

void ConstructBtetra(const ReaVec& gradient, Matriu& B)
{
  B.redimension(kStresses, 3);
  B = 0.0;
  B(1, 1) = B(4, 2) = B(5, 3) = gradient(1);
  B(2, 2) = B(4, 1) = B(6, 3) = gradient(2);
  B(3, 3) = B(5, 1) = B(6, 2) = gradient(3);
}

void ConstructB10nodes(int node, double xi, double eta, double zeta, const double inverse[3][3],
                       Matriu& B)
{
  ReaVec gradient(3);
  for (int direction = 1; direction <= 3; ++direction) {
    const double derivative = GiveDerN10nod(node, xi, eta, zeta, direction);
    for (int k = 1; k <= 3; ++k)
      gradient(k) += inverse[k - 1][direction - 1] * derivative;
  }
  ConstructBtetra(gradient, B);
}

SolidEvaluator::SolidEvaluator() : D(kStresses, kStresses) {}

void SolidEvaluator::Evaluate(const Elem& elem, const Material& material)
{
  nnode = elem.Nnode();
  material.GiveDMatrixTetra(elem.Num(), D);
  points = nnode == 4 ? 1 : 4;
  if (nnode == 4)
    EvaluateFourNodes(elem);
  else
    EvaluateTenNodes(elem);
}

void SolidEvaluator::EvaluateFourNodes(const Elem& elem)
{
  const double det = CalcTetraDeterminant(elem);
  if (!(det >= EPSILON))
    Fatal("error: element ", elem.Num(), " has jacobian <=0\n");
  const ReaVec e1 = *elem(1) - *elem(0);
  const ReaVec e2 = *elem(2) - *elem(0);
  const ReaVec e3 = *elem(3) - *elem(0);
  const ReaVec second = VectorProd(e2, e3) / det;
  const ReaVec third = VectorProd(e3, e1) / det;
  const ReaVec fourth = VectorProd(e1, e2) / det;
  ConstructBtetra(-(second + third + fourth), point[0].B[0]);
  ConstructBtetra(second, point[0].B[1]);
  ConstructBtetra(third, point[0].B[2]);
  ConstructBtetra(fourth, point[0].B[3]);
  point[0].weight = det / 6.0;
}

void SolidEvaluator::EvaluateTenNodes(const Elem& elem)
{
  for (int g = 0; g < points; ++g) {
    const TetraPoint& at = kTetraPoints[g];
    double J[3][3], inverse[3][3];
    const double det = CalcJ10nod(elem, at, J);
    if (!(det >= EPSILON))
      Fatal("error: element ", elem.Num(), " has jacobian 0\n");
    Invert(J, det, inverse);
    for (int i = 0; i < nnode; ++i)
      ConstructB10nodes(i + 1, at.xi, at.eta, at.zeta, inverse, point[g].B[i]);
    point[g].weight = det / 24.0;
  }
}

void SolidEvaluator::CalcStiffness(int i, int j, Matriu& K) const
{
  K.redimension(3, 3);
  K = 0.0;
  for (int g = 0; g < points; ++g)
    AddtoKMatrix(K, point[g].B[i], D, point[g].B[j], point[g].weight);
}

void SolidEvaluator::AddStrengths(const double* u, ReaVecV& res, int offset) const
{
  for (int g = 0; g < points; ++g) {
    for (int i = 0; i < nnode; ++i)
      AddToStrengthVec(res, offset + kStresses * g, D, point[g].B[i], u + 3 * i);
  }
}
