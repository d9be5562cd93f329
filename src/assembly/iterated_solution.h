#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class SparseSolver;

/// Solves load cases by iteration, as the problem file asks for it: a residual within the second
/// tolerance is accepted, with a warning. Fatal for a larger one, and when the probe shows that the
/// structure can move.
void SolveByIteration(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases);

/// Solves load cases by iteration. Returns false when one of them, or the probe, has not met all
/// demands of the solver.
bool IterateToTheEnd(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases);

}  // namespace morlen
