// The conversion of three-node triangles to six-node triangles.

#include "assembly/six_nodes.h"

#include <algorithm>
#include <memory>

#include "assembly/coplanarity.h"
#include "assembly/middle_supports.h"
#include "base/errorwriter.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

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

namespace {

// The means of the prescribed values, as MergeTwoConstraints makes them.
void SetMeanValues(const Constraint& a, const Constraint& b, Constraint& middle)
{
  for (int k = 0; k < kMaxComponents; ++k) {
    if (middle.flags[k] == Constraint::kPrescribed)
      middle.values[k] = (a.values[k] + b.values[k]) / 2.0;
  }
}

Node& AddMidSideNode(const Node& a, const Node& b, Problem& problem)
{
  auto node = std::make_unique<Node>(3);
  for (int k = 1; k <= 3; ++k)
    (*node)(k) = (a(k) + b(k)) / 2.0;
  if (problem.shellFormulation == ShellFormulation::Standard)
    node->constraint = MergeTwoConstraints(problem.components.count, a.constraint.get(),
                                           b.constraint.get(), problem.coplanarityAngle);
  node->number = ++problem.numNodes;
  return Store(problem.GiveNodes(), problem.numNodes, std::move(node));
}

}  // namespace

void ConvertTriangleTo6nod(Problem& problem, Mesh& mesh, EdgeNodes& edges)
{
  if (mesh.GiveElemType() != Triangle || mesh.GiveNnode() != 3)
    Fatal("error: trying to convert to 6 nodes a mesh that is not 3-noded triangles\n");
  CountElementsAround(mesh, problem.numNodes, *problem.meshes.front());
  mesh.ConvertToNewNnode(6);
  for (Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    for (int i = 0; i < 3; ++i) {
      const Node& a = *elem(i);
      const Node& b = *elem((i + 1) % 3);
      Node*& middle = edges.Between(a, b);
      if (!middle)
        middle = &AddMidSideNode(a, b, problem);
      elem(i + 3) = middle;
    }
  }
}

void SetMiddleValues(Problem& problem)
{
  const Mesh& numbers = *problem.meshes.front();
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 6)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        const Node& middle = *elem(i + 3);
        if (middle.constraint && numbers.GiveOldNumber(&middle) > problem.initialNumNodes)
          SetMeanValues(*elem(i)->constraint, *elem((i + 1) % 3)->constraint, *middle.constraint);
      }
    }
  }
}

bool ConvertTriangles(Problem& problem)
{
  EdgeNodes edges;
  bool converted = false;
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 3)
      continue;
    ConvertTriangleTo6nod(problem, *mesh, edges);
    converted = true;
  }
  if (converted && problem.shellFormulation == ShellFormulation::Refined)
    SupportMiddleNodes(problem);
  return converted;
}

}  // namespace morlen
