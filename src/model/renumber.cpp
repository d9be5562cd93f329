// Numbers the nodes outward from the extreme node of the model. Nodes at a similar
// distance from it lie in one band of a compact mesh and get neighbouring numbers, which
// keeps the profile of the skyline matrix narrow.

#include <algorithm>
#include <vector>

#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

const Node* mxnod = nullptr;

namespace {

// The node farthest from the centroid; the first of several.
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
  std::vector<Node*> sorted;
  for (Node& node : Each<Node>(*nodes))
    sorted.push_back(&node);
  const int count = static_cast<int>(sorted.size());
  if (count == 0)
    return;
  mxnod = ExtremeNode(nodes, count);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Node* a, const Node* b) { return CompareNodePointers(&a, &b) < 0; });
  std::vector<int> old(sorted.size());
  for (int k = 1; k <= count; ++k) {
    old[k - 1] = GiveOldNumber(sorted[k - 1]);
    sorted[k - 1]->number = k;
  }
  oldNumbers = std::move(old);
}
