#pragma once

#include "assembly/solver_kit.h"
#include "problem/settings.h"

namespace morlen {

/// The sparse direct solver with the option --solver of this run, else no further solver.
const SolverKit& TestedKit();

/// Puts the solver of the option --solver of this run in the place of the skyline: of `Solver
/// SkyLine`, and of `Solver Automatic`. Without the option nothing changes.
void SetTestedSolver(SolverSettings& settings);

/// True when SetTestedSolver puts the sparse direct solver in the place of the skyline.
bool TestsDirect();

}  // namespace morlen
