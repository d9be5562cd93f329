#pragma once

#include <vector>

#include "assembly/solver_kit.h"
#include "solvers/node_couplings.h"

namespace morlen::direct {

/// A plan that has the couplings and the order of the nodes.
struct OrderPlan : DirectPlan
{
  NodePattern pattern;
  std::vector<int> order;  ///< places of the nodes, see OrderNodes
};

}  // namespace morlen::direct
