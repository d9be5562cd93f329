#pragma once

#include "numeric/reavecv.h"

namespace morlen {

class VoidPlex;
struct ComponentScale;

/// Loads in every free equation, in the axes of the supports and the same in every run: they
/// drive every motion that the structure has, whatever the loads of the model are.
///
/// Forces are between one half and one, moments as much times the length, so that the few that a
/// small motion meets do not cancel. Their signs are random as long as the sum of each component
/// stays within limits: a motion meets some of it, yet a slender structure need not carry much
/// more than a single load.
ReaVecV ProbeLoad(const VoidPlex& nodes, const ComponentScale& scale, int equations);

}  // namespace morlen
