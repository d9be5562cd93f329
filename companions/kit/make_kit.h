#pragma once

#include <memory>

#include "assembly/solver_kit.h"

namespace morlen {

/// The solvers of a companion: those of `morlen` in the same build. Call it before other threads
/// run.
std::unique_ptr<SolverKit> MakeKit();

}  // namespace morlen
