#pragma once

namespace morlen {

class TextScan;
struct Problem;

// The blocks `constraints` and `nodal_point_loads`, from after the keyword to their end. Fatal on
// an unknown node and on an incomplete record.

void ReadConstraints(TextScan& text, Problem& problem);
void ReadNodalLoads(TextScan& text, Problem& problem);

}  // namespace morlen
