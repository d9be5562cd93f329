#pragma once

#include "numeric/reavecv.h"

namespace morlen {

class ElementFamilies;
class VoidPlex;
struct NodeComponents;
struct Problem;

// Load vectors are by equation, in global axes, with Problem::Equations() entries.

/// Adds the loads at nodes.
void AddNodalLoads(const VoidPlex& nodes, const NodeComponents& components, ReaVecV& loads);

/// A load vector of an analysis.
struct LoadVector
{
  ReaVecV values;
  /// The part of the problem's self-weight and element loads that `values` contains: results
  /// between the nodes of beams add its effect there.
  double elementLoads = 1.0;
};

/// All loads of the problem: at nodes, self-weight and loads on elements.
ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families);

}  // namespace morlen
