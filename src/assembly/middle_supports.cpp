#include "assembly/middle_supports.h"

#include <memory>
#include <vector>

#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plane_angle.h"
#include "numeric/plex_range.h"
#include "numeric/vector_functions.h"
#include "problem/problem.h"

namespace morlen {

namespace {

/// An edge that has got a node in its middle.
struct ConvertedEdge
{
  const Node* first = nullptr;
  const Node* second = nullptr;
  Node* middle = nullptr;
  ReaVec normal;  ///< of its first triangle
  int triangles = 0;
  bool folded = false;  ///< true when a triangle is not in the plane of the first
};

ReaVec NormalOf(const Elem& elem)
{
  return VectorProd(*elem(1) - *elem(0), *elem(2) - *elem(0));
}

bool IsFold(const ReaVec& a, const ReaVec& b)
{
  constexpr double kSmallest = 0.02;
  return AngleOfPlanes(a.Data(), b.Data()) > kSmallest;
}

void AddTriangle(const Elem& elem, int firstAdded, std::vector<ConvertedEdge>& edges)
{
  const ReaVec normal = NormalOf(elem);
  for (int i = 0; i < 3; ++i) {
    Node* const middle = elem(i + 3);
    if (middle->number < firstAdded)
      continue;  // the file has this node
    ConvertedEdge& edge = edges[middle->number - firstAdded];
    if (++edge.triangles == 1) {
      edge.first = elem(i);
      edge.second = elem((i + 1) % 3);
      edge.middle = middle;
      edge.normal = normal;
    } else {
      edge.folded = edge.folded || IsFold(edge.normal, normal);
    }
  }
}

bool CarriesSupports(const ConvertedEdge& edge)
{
  return edge.triangles == 1 || edge.triangles > 2 || edge.folded;
}

// Removes the springs. Null when nothing is left.
std::unique_ptr<Constraint> WithoutSprings(std::unique_ptr<Constraint> support, int components)
{
  bool holds = false;
  for (int k = 0; support && k < components; ++k) {
    int& flag = support->flags[k];
    if (flag == Constraint::kSpring) {
      flag = Constraint::kFree;
      support->values[k] = 0.0;
    }
    holds = holds || flag == Constraint::kPrescribed;
  }
  return holds ? std::move(support) : nullptr;
}

}  // namespace

void SupportMiddleNodes(Problem& problem)
{
  const int firstAdded = problem.initialNumNodes + 1;
  std::vector<ConvertedEdge> edges(static_cast<std::size_t>(problem.numNodes) + 1 - firstAdded);
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 6)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      AddTriangle(elem, firstAdded, edges);
  }
  for (const ConvertedEdge& edge : edges) {
    if (!edge.middle || !CarriesSupports(edge))
      continue;
    edge.middle->constraint =
        WithoutSprings(MergeTwoConstraints(problem.components.count, edge.first->constraint.get(),
                                           edge.second->constraint.get(), problem.coplanarityAngle),
                       problem.components.count);
  }
}

}  // namespace morlen
