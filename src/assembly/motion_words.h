#pragma once

#include <string>

#include "numeric/reavecv.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// A motion that nothing resists, in words.
struct MotionInWords
{
  int node = 0;      ///< a node of the file that moves or turns most
  std::string text;  ///< "nodes 2 and 3 can move along x: the hinges of beams 1 and 2 allow it"
};

/// True when no element resists a motion by more than rounding errors. The test is relative to the
/// stiffness of each element, so that a soft part beside a stiff one counts as well: in a model
/// that is too rough, the solution of such a part looks like a motion without energy. motion: by
/// equation in global axes; false for 0 and for a motion that is not finite.
bool IsFreeMotion(const Problem& problem, const ElementFamilies& families, const ReaVecV& motion);

/// Describes a motion without energy: the nodes that move, by the numbers of the file, the
/// direction or the axis, and the reason where the hinges, the supports or the connections show it.
/// motion: by equation in global axes, of any size; one of 0 has no words. The problem must be
/// prepared, see preparation.h.
MotionInWords DescribeMotion(const Problem& problem, const ReaVecV& motion);

}  // namespace morlen
