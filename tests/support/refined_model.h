#pragma once

#include <functional>
#include <string>

#include "support/shell_model.h"
#include "support/sparse.h"

namespace morlen {

/// The model with the setting for refined shells.
ShellModel Refined(ShellModel model);

/// A rectangle of these sides in the plane z = 0 whose inner places are distorted, for GridShell.
std::function<Vector3(double, double)> DistortedRectangle(double width, double height);

/// A block of face_loads with this force per length on all edges whose corners satisfy the
/// condition.
std::string EdgeLoads(const ShellModel& model, const Vector3& force,
                      const std::function<bool(const Vector3&)>& condition);

/// The stiffness of all elements of a model without supports, six rows a node.
DenseRows AssembledMatrix(const ShellModel& model);

}  // namespace morlen
