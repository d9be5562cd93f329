#pragma once

#include <string>

namespace morlen {

class ReaVecV;
struct Problem;

/// A motion that no element resists, in words.
struct MotionInWords
{
  int node = 0;      ///< a node of the file that moves or turns most
  std::string text;  ///< "nodes 2 and 3 can move along x: the hinges of beams 1 and 2 allow it"
};

/// Describes a motion without energy: the nodes that move, by the numbers of the file, the
/// direction or the axis, and the reason where the hinges, the supports or the connections show it.
/// motion: by equation in global axes, of any size; one of 0 has no words. The problem must be
/// prepared, see preparation.h.
MotionInWords DescribeMotion(const Problem& problem, const ReaVecV& motion);

}  // namespace morlen
