#pragma once

#include "assembly/element_family.h"

namespace morlen {

struct Problem;

/// The families of a problem: beams, solids of four and ten nodes, and shells of three and six
/// nodes in the formulation that the problem asks for.
const ElementFamilies& FamiliesOf(const Problem& problem);

}  // namespace morlen
