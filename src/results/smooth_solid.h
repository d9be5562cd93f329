#pragma once

namespace morlen {

struct Problem;
struct Solution;

/// Computes the stresses at the nodes of a mesh (from 0) of solids: the mean over the elements
/// around each node. Fatal for a node without elements.
void SmoothSolids(const Problem& problem, int mesh, Solution& solution);

}  // namespace morlen
