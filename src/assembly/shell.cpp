#include "assembly/shell.h"

#include <algorithm>
#include <utility>

#include "assembly/element_products.h"
#include "base/constants.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"

namespace {

constexpr int kComponents = 5;

// Part of the bending stiffness that resists the turn of a node of a fold about the normals
// beside it. Where the planes differ by rounding errors of the coordinates (1e-7), it holds
// them together as one plate; a fold that is meant is too steep to feel it.
constexpr double kTurnAboutNormal = 1e-10;

// The blocks are written over the slopes θa, θb of the normal (∂w/∂x', ∂w/∂y' when there is
// no shear strain); the nodes have the rotations r about x' and y', with θa = -r_y' and
// θb = r_x'. So the column of r_x' is that of θb, and the column of r_y' minus that of θa.
void TurnSlopesToRotations(Matriu& B)
{
  for (int row = 1; row <= B.Rows(); ++row)
    B(row, 5) = -std::exchange(B(row, 4), B(row, 5));
}

void TurnSlopesToRotations(ShellBlocks& blocks)
{
  TurnSlopesToRotations(blocks.Bm);
  TurnSlopesToRotations(blocks.Bb);
  TurnSlopesToRotations(blocks.Bs);
}

// The blocks of a node with the derivatives Nx, Ny of its shape function and its value N.
void WriteBlocks(double Nx, double Ny, double N, ShellBlocks& blocks)
{
  blocks.Bm(1, 1) = blocks.Bm(3, 2) = Nx;
  blocks.Bm(2, 2) = blocks.Bm(3, 1) = Ny;
  blocks.Bb(1, 4) = blocks.Bb(3, 5) = -Nx;
  blocks.Bb(2, 5) = blocks.Bb(3, 4) = -Ny;
  blocks.Bs(1, 3) = Nx;
  blocks.Bs(2, 3) = Ny;
  blocks.Bs(1, 4) = blocks.Bs(2, 5) = -N;
}

void Clear(ShellBlocks& blocks)
{
  blocks.Bm = 0.0;
  blocks.Bb = 0.0;
  blocks.Bs = 0.0;
}

}  // namespace

void ConstructB(int i, const double* a, const double* b, const double* c, double twoA, double xc,
                double yc, ShellBlocks& blocks)
{
  WriteBlocks(b[i] / twoA, c[i] / twoA, (a[i] + b[i] * xc + c[i] * yc) / twoA, blocks);
}

double ConstructB6nodesAndJ(const Elem& elem, int node, const double* x, const double* y, double xi,
                            double eta, ShellBlocks& blocks)
{
  double J[2][2];
  const double det = CalcJ6nod(x, y, xi, eta, J);
  if (!(det >= EPSILON))
    Fatal("error: element ", elem.Num(), " has jacobian 0\n");
  const double Nxi = GiveDerN6nod(node, xi, eta, 1);
  const double Neta = GiveDerN6nod(node, xi, eta, 2);
  WriteBlocks((J[1][1] * Nxi - J[0][1] * Neta) / det, (J[0][0] * Neta - J[1][0] * Nxi) / det,
              GiveN6nod(node, xi, eta), blocks);
  return det;
}

ShellEvaluator::ShellEvaluator() : Dm(3, 3), Db(3, 3), Ds(2, 2)
{
  for (ShellPoint& p : point) {
    for (ShellBlocks& blocks : p.nodes) {
      blocks.Bm.redimension(3, kComponents);
      blocks.Bb.redimension(3, kComponents);
      blocks.Bs.redimension(2, kComponents);
    }
  }
}

void ShellEvaluator::Evaluate(const Elem& elem, const Material& material)
{
  nnode = elem.Nnode();
  elem.CalcTransfMatrixTriangle(T, Tbig, &material);
  material.GiveDMatrix(elem.Num(), Dm, Db, Ds);
  CalcLocalCoordinates(elem, T, x, y);
  points = nnode == 3 ? 1 : 3;
  for (int g = 0; g < points; ++g) {
    for (int i = 0; i < nnode; ++i)
      Clear(point[g].nodes[i]);
  }
  if (nnode == 3)
    EvaluateThreeNodes(elem);
  else
    EvaluateSixNodes(elem);
  area = 0.0;
  for (int g = 0; g < points; ++g) {
    area += point[g].weight;
    for (int i = 0; i < nnode; ++i)
      TurnSlopesToRotations(point[g].nodes[i]);
  }
  CalcTurns();
}

void ShellEvaluator::CalcTurns()
{
  for (int i = 0; i < nnode; ++i) {
    turn[i][0] = turn[i][1] = 0.0;
    for (int g = 0; g < points; ++g) {
      const Matriu& Bm = point[g].nodes[i].Bm;
      const double share = point[g].weight / area / 2.0;
      turn[i][0] += share * Bm(2, 2);
      turn[i][1] -= share * Bm(1, 1);
    }
  }
}

void ShellEvaluator::EvaluateThreeNodes(const Elem& elem)
{
  const double twoA = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
  if (!(twoA >= EPSILON))
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
               point[0].nodes[i]);
}

void ShellEvaluator::EvaluateSixNodes(const Elem& elem)
{
  for (int g = 0; g < points; ++g) {
    const TrianglePoint& at = kMidEdgePoints[g];
    for (int i = 0; i < nnode; ++i) {
      const double det = ConstructB6nodesAndJ(elem, i + 1, x, y, at.xi, at.eta, point[g].nodes[i]);
      point[g].weight = det * at.weight;
    }
  }
}

void ShellEvaluator::CalcStiffness(int i, int j, Matriu& K)
{
  K.redimension(6, 6);
  K = 0.0;
  for (int g = 0; g < points; ++g) {
    const ShellBlocks& first = point[g].nodes[i];
    const ShellBlocks& second = point[g].nodes[j];
    const double weight = point[g].weight;
    AddtoKMatrix(K, first.Bm, Dm, second.Bm, weight);
    AddtoKMatrix(K, first.Bb, Db, second.Bb, weight);
    AddtoKMatrix(K, first.Bs, Ds, second.Bs, weight);
  }
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

void ShellEvaluator::AddStrengths(const double* local, ReaVecV& res, int offset)
{
  constexpr int kValues = 8;
  for (int g = 0; g < points; ++g) {
    const int start = offset + g * kValues;
    for (int i = 0; i < nnode; ++i) {
      const ShellBlocks& blocks = point[g].nodes[i];
      AddToStrengthVec(res, start, Dm, blocks.Bm, local + 6 * i);
      AddToStrengthVec(res, start + 3, Db, blocks.Bb, local + 6 * i);
      AddToStrengthVec(res, start + 6, Ds, blocks.Bs, local + 6 * i);
    }
  }
}
