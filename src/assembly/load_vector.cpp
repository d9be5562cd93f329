#include "assembly/load_vector.h"

#include <algorithm>
#include <cmath>

#include "assembly/element_family.h"
#include "base/node_components.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"
#include "problem/problem.h"

namespace morlen {

void AddNodalLoads(const VoidPlex& nodes, const NodeComponents& components, ReaVecV& loads)
{
  for (const Node& node : Each<Node>(nodes)) {
    if (!node.load)
      continue;
    for (int k = 1; k <= components.count; ++k)
      loads(components.Equation(node.number, k)) += node.load->values[k - 1];
  }
}

Settlements SettlementsOf(const VoidPlex& nodes, const NodeComponents& components)
{
  Settlements settlements;
  for (const Node& node : Each<Node>(nodes)) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= components.count; ++k) {
      const double value = node.constraint->values[k - 1];
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed &&
          (value != 0.0 || std::signbit(value)))
        settlements.push_back({components.Equation(node.number, k), value});
    }
  }
  std::sort(settlements.begin(), settlements.end(),
            [](const auto& a, const auto& b) { return a.equation < b.equation; });
  return settlements;
}

ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families)
{
  ReaVecV loads;
  loads.resize(problem.Equations(), 0.0);
  AddNodalLoads(problem.GiveNodes(), problem.components, loads);
  for (const auto& mesh : problem.meshes)
    families.Of(*mesh).addLoads(problem, *mesh, loads);
  return loads;
}

}  // namespace morlen
