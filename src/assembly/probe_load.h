#pragma once

#include "numeric/reavecv.h"

namespace morlen {

class VoidPlex;
struct ComponentScale;

/// A load vector with a load in every free equation, in the axes of the supports.
///
/// The probe does work on every motion that the structure has, whatever the loads of the model are.
/// It is the same in every run. The sizes are random: forces between 1/2 and 1, moments that times
/// the length, so that the loads on a small part do not cancel. The signs are random as long as the
/// sum of each component stays between two limits. The lower limit lets the probe work on a motion
/// of the whole structure. The upper limit keeps it small, so that a slender structure need not
/// carry much more than a single load.
ReaVecV ProbeLoad(const VoidPlex& nodes, const ComponentScale& scale, int equations);

}  // namespace morlen
