#pragma once

#include "numeric/reavecv.h"

class VoidPlex;

/// How the components of the nodes are counted, and a length that makes a rotation comparable
/// with a translation and a force with a moment.
struct ComponentScale
{
  int components = 0;    ///< of a node
  int translations = 0;  ///< the first of them; the others are rotations
  double length = 1.0;   ///< the mean size of the elements
};

/// Loads in every free equation, in the axes of the supports and the same in every run: they
/// drive every motion that the structure has, whatever the loads of the model are.
///
/// Forces are between one half and one, moments as much times the length, so that the few that a
/// small motion meets do not cancel. Their signs are random as long as the sum of each component
/// stays within limits: a motion meets some of it, yet a slender structure need not carry much
/// more than a single load.
ReaVecV ProbeLoad(const VoidPlex& nodes, const ComponentScale& scale, int equations);
