#pragma once

namespace morlen {

struct Problem;
struct Solution;

/// Averages the forces and moments of a mesh (from 0) of shells over the elements that meet at a
/// node and have the same axes, up to the angle of the problem's smoothing.
void SmoothShells(const Problem& problem, int mesh, Solution& solution);

}  // namespace morlen
