// Numbering of the nodes for a narrow profile of the skyline matrix.
//
// The node farthest from the centroid of all nodes gets number 1; the others follow by their
// distance from it. In a compact mesh the nodes of one element have similar distances and so
// similar numbers: each row of the matrix then begins near its diagonal. Nodes at the same
// distance keep their order, so that the numbering is the same on every machine. The cost is
// that of one sort; the connections between the nodes are not used.

#include <algorithm>
#include <utility>
#include <vector>

#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

constinit thread_local const Node* mxnod = nullptr;

namespace {

// The node farthest from the centroid; of several, the first.
const Node* ExtremeNode(const VoidPlex* nodes, int count)
{
  Node centroid(3);
  for (const Node& node : Each<Node>(*nodes)) {
    for (int i = 1; i <= node.Size(); ++i)
      centroid(i) += node(i);
  }
  centroid /= count;
  const Node* extreme = nullptr;
  double largest = 0.0;
  for (const Node& node : Each<Node>(*nodes)) {
    const double distance = dist2(&node, &centroid);
    if (!extreme || distance > largest) {
      largest = distance;
      extreme = &node;
    }
  }
  return extreme;
}

// A node and the square of its distance. The distances are computed once, so that the sort
// reads no node.
struct RankedNode
{
  double distance;
  Node* node;
};

std::vector<RankedNode> ByDistance(const VoidPlex& nodes, const Node& from)
{
  std::vector<RankedNode> ranked;
  for (Node& node : Each<Node>(nodes))
    ranked.push_back({dist2(&node, &from), &node});
  std::stable_sort(ranked.begin(), ranked.end(), [](const RankedNode& a, const RankedNode& b) {
    return a.distance < b.distance;
  });
  return ranked;
}

}  // namespace

int CompareNodePointers(const void* a, const void* b)
{
  const Node* first = *static_cast<Node* const*>(a);
  const Node* second = *static_cast<Node* const*>(b);
  if (!first || !second)
    return (first == nullptr) - (second == nullptr);
  const double firstDistance = dist2(first, mxnod);
  const double secondDistance = dist2(second, mxnod);
  return (firstDistance > secondDistance) - (firstDistance < secondDistance);
}

void Mesh::RenumberNodes()
{
  const int count = nodes->Count();
  if (count == 0)
    return;
  mxnod = ExtremeNode(nodes, count);
  std::vector<int> old;
  old.reserve(static_cast<std::size_t>(count));
  for (const RankedNode& ranked : ByDistance(*nodes, *mxnod)) {
    old.push_back(GiveOldNumber(ranked.node));
    ranked.node->number = static_cast<int>(old.size());
  }
  oldNumbers = std::move(old);
}

void Mesh::RestoreNumbers()
{
  if (oldNumbers.empty())
    return;
  for (Node& node : Each<Node>(*nodes))
    node.number = GiveOldNumber(&node);
  oldNumbers.clear();
}

}  // namespace morlen
