#pragma once

namespace morlen {

class TextScan;
struct Problem;

// The blocks `constraints` and `nodal_point_loads`, from after the keyword to their end. Fatal on
// an unknown node and on an incomplete record.

void ReadConstraints(TextScan& text, Problem& problem);
void ReadNodalLoads(TextScan& text, Problem& problem);

/// The block `constraints` of a load case: flag 1 sets the value of a component that the problem
/// prescribes, in the axes of its support. Also fatal: flag 1 at another component, flag 2, and
/// Euler angles.
void ReadSettlements(TextScan& text, Problem& problem);

}  // namespace morlen
