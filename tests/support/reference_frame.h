#pragma once

#include <array>
#include <vector>

#include "support/frame.h"

namespace morlen {

/// What the reference solution gives, six components a node in global axes, twelve end
/// forces a beam in its local axes (the forces that the nodes exert on it).
struct ReferenceSolution
{
  std::vector<std::array<double, 6>> displacements;
  std::vector<std::array<double, 6>> reactions;  ///< of every node, 0 without a support
  std::vector<std::array<double, 12>> endForces;
};

/// Solves a space frame without hinges by the displacement method on full matrices; shares
/// nothing with the program but the directions of local y and z. Sections have no angles.
ReferenceSolution SolveReference(const Frame& frame);

/// A plane frame as a space frame held in its plane. Component k of a node is then
/// component kPlaneComponents[k].
Frame InSpace(const Frame& plane);
constexpr int kPlaneComponents[] = {0, 1, 5};

/// A matrix by columns of unit vectors: the axes with these Euler angles, as the product of
/// three elementary rotations.
std::array<Vector3, 3> AxesOfAngles(const Vector3& angles);

}  // namespace morlen
