#pragma once

namespace morlen {

struct Problem;
struct Solution;

/// The stresses of a node of solids.
constexpr int kSolidStresses = 6;

/// The place (from 0) of the first stress of a node in Solution::nodalStresses.
constexpr int PlaceOfStresses(int systemNumber)
{
  return (systemNumber - 1) * kSolidStresses;
}

/// Computes the stresses at the nodes of a mesh (from 0) of solids: the mean over the elements
/// around each node. Fatal for a node without elements.
void SmoothSolids(const Problem& problem, int mesh, Solution& solution);

}  // namespace morlen
