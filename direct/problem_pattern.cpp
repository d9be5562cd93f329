#include "direct/problem_pattern.h"

#include <limits>

#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen::direct {

namespace {

void AddCouplings(const Elem& elem, NodeCouplings& couplings)
{
  for (int i = 0; i < elem.Nnode(); ++i) {
    for (int j = 0; j < elem.Nnode(); ++j) {
      if (elem(i) != elem(j))
        couplings.Add(elem(i)->number - 1, elem(j)->number - 1);
    }
  }
}

}  // namespace

NodePattern PatternOf(const Problem& problem)
{
  NodeCouplings couplings(problem.numNodes, std::numeric_limits<int>::max());
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      AddCouplings(elem, couplings);
  }
  return couplings.MakePattern();
}

}  // namespace morlen::direct
