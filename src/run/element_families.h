#pragma once

#include "assembly/element_family.h"

namespace morlen {

/// All families that can be analysed: beams, shells of three and six nodes, solids of four and ten.
const ElementFamilies& AllFamilies();

}  // namespace morlen
