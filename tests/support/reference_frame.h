#pragma once

#include <array>
#include <vector>

#include "support/frame.h"

namespace morlen {

/// The reference solution: six components at each node in global axes, and twelve end forces of
/// each beam in its local axes (the forces that the nodes exert on it).
struct ReferenceSolution
{
  std::vector<std::array<double, 6>> displacements;
  std::vector<std::array<double, 6>> reactions;  ///< of every node, 0 without a support
  std::vector<std::array<double, 12>> endForces;
};

/// Solves a space frame without hinges by the displacement method with full matrices. It shares
/// only the directions of local y and z with the program. Sections have no angles.
ReferenceSolution SolveReference(const Frame& frame);

/// A plane frame as a space frame that is held in its plane. Component k of a node becomes
/// component kPlaneComponents[k].
Frame InSpace(const Frame& plane);
constexpr int kPlaneComponents[] = {0, 1, 5};

/// The axes with these Euler angles, as columns of a matrix: the product of three elementary
/// rotations.
std::array<Vector3, 3> AxesOfAngles(const Vector3& angles);

}  // namespace morlen
