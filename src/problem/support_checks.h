#pragma once

#include "problem/problem.h"

namespace morlen {

/// Writes typical errors of the supports to the stream of the error writer: no support, only one,
/// or two with a free rotation about the line between them. components: of a node.
void CheckTypicalConstraintsErrors(const Meshes& meshes, int components);

}  // namespace morlen
