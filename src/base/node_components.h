#pragma once

#include "base/constants.h"

namespace morlen {

/// The most components that a node has.
constexpr int kMaxComponents = 6;

/// The components of a node: displacements along the axes, then rotations about them.
struct NodeComponents
{
  int count = 0;
  int translations = 0;  ///< the first components; the others are rotations

  constexpr int Rotations() const { return count - translations; }

  /// The equation of component k of the node with this system number; all from 1.
  constexpr int Equation(int systemNumber, int k) const { return (systemNumber - 1) * count + k; }

  friend constexpr bool operator==(const NodeComponents&, const NodeComponents&) = default;
};

/// Nodes of solids have no rotations.
constexpr NodeComponents kSolidComponents = {.count = 3, .translations = 3};

/// Nodes with `count` components that have rotations too: 2 translations of 3, 3 of 6.
constexpr NodeComponents WithRotations(int count)
{
  return {.count = count, .translations = (count - 1) / 2 + 1};
}

/// Nodes of beams and shells.
constexpr NodeComponents ComponentsOf(PROBLEMTYPE type)
{
  return WithRotations(type == kPlane ? 3 : 6);
}

}  // namespace morlen
