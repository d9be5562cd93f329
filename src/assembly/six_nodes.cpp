// The conversion of three-node triangles to six-node ones.

#include "assembly/six_nodes.h"

#include <algorithm>
#include <memory>

#include "assembly/coplanarity.h"
#include "base/errorwriter.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

Node*& EdgeNodes::Between(const Node& a, const Node& b)
{
  const auto [low, high] = std::minmax(a.number, b.number);
  if (low >= static_cast<int>(first.size()))
    first.resize(static_cast<std::size_t>(low) + 1, -1);
  for (int i = first[low]; i != -1; i = edges[i].next) {
    if (edges[i].high == high)
      return edges[i].middle;
  }
  edges.push_back({.high = high, .next = first[low], .middle = nullptr});
  first[low] = static_cast<int>(edges.size()) - 1;
  return edges.back().middle;
}

void Project::ConvertTriangleTo6nod(Mesh* mesh, EdgeNodes& edges)
{
  if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 3)
    Fatal("error: trying to convert to 6 nodes a mesh that is not 3-noded triangles\n");
  CountElementsAround(*mesh, numNodes, *meshes.front());
  mesh->ConvertToNewNnode(6);
  for (Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
    for (int i = 0; i < 3; ++i) {
      const Node& a = *elem(i);
      const Node& b = *elem((i + 1) % 3);
      Node*& middle = edges.Between(a, b);
      if (!middle)
        middle = &AddMidSideNode(a, b);
      elem(i + 3) = middle;
    }
  }
}

Node& Project::AddMidSideNode(const Node& a, const Node& b)
{
  auto node = std::make_unique<Node>(3);
  for (int k = 1; k <= 3; ++k)
    (*node)(k) = (a(k) + b(k)) / 2.0;
  node->constraint =
      MergeTwoConstraints(freeDegrees, a.constraint.get(), b.constraint.get(), coplanarityAngle);
  node->number = ++numNodes;
  return Store(GiveNodes(), numNodes, std::move(node));
}

}  // namespace morlen
