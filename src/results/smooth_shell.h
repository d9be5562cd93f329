#pragma once

namespace morlen {

struct Problem;
struct Solution;

/// Averages the forces and moments of a mesh (from 0) of shells over the elements that meet at a
/// node and lie in the same plane.
void SmoothShells(const Problem& problem, int mesh, Solution& solution);

}  // namespace morlen
