#include "assembly/support_axes.h"

#include "base/node_components.h"
#include "model/constraint.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

/// Fills T with the axes of the node's support. Returns false and leaves T when there are none.
bool SupportAxes(const Node& node, int n, Matriu& T)
{
  return node.constraint && node.constraint->CalcTransfMatFromEuler(node.number, T, n, 1) == 0;
}

void TurnAll(const VoidPlex& nodes, Turn turn, ReaVecV& vector, int n)
{
  Matriu T;
  const NodeComponents components = WithRotations(n);
  for (const Node& node : Each<Node>(nodes)) {
    if (SupportAxes(node, n, T))
      TurnVector(T, turn, n, &vector(components.Equation(node.number, 1)));
  }
}

}  // namespace

void ApplyLocalAxestoKMatrix(Matriu& K, const Node* a, const Node* b, int n)
{
  Matriu T;
  if (SupportAxes(*a, n, T))
    TurnRows(T, Turn::ToLocal, K);
  if (SupportAxes(*b, n, T))
    TurnColumns(T, Turn::ToLocal, K);
}

void ConvertGlobalLoadToLocal(const VoidPlex& nodes, ReaVecV& vector, int n)
{
  TurnAll(nodes, Turn::ToLocal, vector, n);
}

void ConvertLocalResultsToGlobal(const VoidPlex& nodes, ReaVecV& vector, int n)
{
  TurnAll(nodes, Turn::ToGlobal, vector, n);
}

}  // namespace morlen
