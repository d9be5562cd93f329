#pragma once

#include <vector>

namespace morlen {

struct Problem;

// The shares of nodes in the drilling freedoms of the refined shells.
//
// A share compares the height by which flat triangles differ from a curved surface with the
// thickness. It is 1 in planes, at folds from 40 degrees on and on fine meshes, where drilling
// rotations are freedoms of the membrane. It is near 0 where coarse flat triangles approximate a
// thin curved shell: there the drilling rotation of a triangle is bending of its neighbours, and
// stiffness against it would lock the shell.

/// The part of a fold angle (0 to π/2) that counts as curvature: the whole angle up to 20 degrees,
/// none from 40 degrees on, with a smooth transition.
double CurvatureOfFold(double angle);

/// 1 / (1 + p⁴) for p = curvature · size / thickness.
double ShareOf(double curvature, double size, double thickness);

/// The share of each node, by system number - 1, from the triangles of all meshes; 1 for a node
/// with fewer than two triangles. Fatal when a triangle has no material.
std::vector<double> CalcShellShares(const Problem& problem);

}  // namespace morlen
