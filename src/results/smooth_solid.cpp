// Stresses at the nodes of solids: the mean over the elements around each node.
//
// The stresses of an element are linear between its four points, or constant with one point. They
// are extrapolated to the corners; the middle of an edge has the mean of its ends.
// Source: E. Hinton, J. S. Campbell, Local and global smoothing of discontinuous finite element
// functions using a least squares method, Int. J. Numer. Meth. Engng 8, 1974.

#include "results/smooth_solid.h"

#include <vector>

#include "assembly/solution.h"
#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/interruption.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

constexpr int kCorners = 4;

// M maps values at the corners to the four points by linear interpolation: row g has the volume
// coordinates of point g.
void CalcLUMatrixForSmooth10n(Matriu& M, Matriu& LU)
{
  M.redimension(kCorners, kCorners);
  for (int g = 1; g <= kCorners; ++g) {
    const TetraPoint& at = kTetraPoints[g - 1];
    M(g, 1) = 1.0 - at.xi - at.eta - at.zeta;
    M(g, 2) = at.xi;
    M(g, 3) = at.eta;
    M(g, 4) = at.zeta;
  }
  LU = M.LU();
}

// Extrapolates one stress of an element from its points (1 or 4) to its nodes.
class NodeValues
{
public:
  explicit NodeValues(int pointCount) : points(pointCount), corners(kCorners)
  {
    CalcLUMatrixForSmooth10n(M, LU);
  }

  // v: the stress at the first point.
  void Calc(const double* v, int nnode, double* atNodes)
  {
    for (int g = 0; g < kCorners; ++g)
      corners(g + 1) = v[points == 4 ? kSolidStresses * g : 0];
    if (points == 4)
      LULinSolve(LU, corners);
    for (int i = 0; i < kCorners; ++i)
      atNodes[i] = corners(i + 1);
    for (int i = kCorners; i < nnode; ++i) {
      const int* edge = kTetraEdges[i - kCorners];
      atNodes[i] = (atNodes[edge[0]] + atNodes[edge[1]]) / 2.0;
    }
  }

private:
  int points;
  Matriu M, LU;
  ReaVecV corners;
};

}  // namespace

void SmoothSolids(const Problem& problem, int mesh, Solution& solution)
{
  const MeshResults& result = solution.results[mesh];
  ReaVecV& nodalStresses = solution.nodalStresses;
  nodalStresses.resize(ArrayLength(problem.numNodes, kSolidStresses), 0.0);
  nodalStresses = 0.0;
  std::vector<int> counts(static_cast<std::size_t>(problem.numNodes), 0);
  NodeValues values(result.points);
  double atNodes[10];
  const double* v = result.strengths.Data();
  for (const Elem& elem : Each<Elem>(*problem.meshes[mesh]->GiveElemPlex())) {
    CheckInterruption();
    for (int k = 0; k < kSolidStresses; ++k) {
      values.Calc(v + k, elem.Nnode(), atNodes);
      for (int i = 0; i < elem.Nnode(); ++i)
        nodalStresses(PlaceOfStresses(elem(i)->number) + k + 1) += atNodes[i];
    }
    for (int i = 0; i < elem.Nnode(); ++i)
      ++counts[elem(i)->number - 1];
    v += result.blockSize;
  }
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    const int count = counts[node.number - 1];
    if (count == 0)
      Fatal("error: node ", problem.meshes.front()->GiveOldNumber(&node),
            " has no elements around\n");
    for (int k = 1; k <= kSolidStresses; ++k)
      nodalStresses(PlaceOfStresses(node.number) + k) /= count;
  }
}

}  // namespace morlen
