#pragma once

namespace morlen {

class ElementFamilies;
class ReaVecV;
struct Problem;

// Load vectors: by equation, in global axes, of Problem::Equations() components.

/// Adds the loads at nodes.
void AddNodalLoads(const Problem& problem, ReaVecV& loads);

/// All loads of the problem: at nodes, self-weight and loads on elements.
ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families);

}  // namespace morlen
