#include "assembly/load_vector.h"

#include "assembly/element_family.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"
#include "problem/problem.h"

namespace morlen {

void AddNodalLoads(const Problem& problem, ReaVecV& loads)
{
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (!node.load)
      continue;
    for (int k = 1; k <= problem.components.count; ++k)
      loads(problem.Equation(node, k)) += node.load->values[k - 1];
  }
}

ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families)
{
  ReaVecV loads;
  loads.resize(problem.Equations(), 0.0);
  AddNodalLoads(problem, loads);
  for (const auto& mesh : problem.meshes)
    families.Of(*mesh).addLoads(problem, *mesh, loads);
  return loads;
}

}  // namespace morlen
