#pragma once

namespace morlen {

class ElementFamilies;
class ReaVecV;
class VoidPlex;
struct NodeComponents;
struct Problem;

// Load vectors are by equation, in global axes, with Problem::Equations() entries.

/// Adds the loads at nodes.
void AddNodalLoads(const VoidPlex& nodes, const NodeComponents& components, ReaVecV& loads);

/// All loads of the problem: at nodes, self-weight and loads on elements.
ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families);

}  // namespace morlen
