#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class SparseSolver;

/// Solves load cases by iteration, for a problem file that asks for it. A residual within the
/// second tolerance is accepted with a warning. Fatal for a larger residual, and when the probe
/// shows that the structure can move.
void SolveByIteration(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases,
                      const OnSolved& onSolved);

/// Solves load cases by iteration and calls onSolved for each, in order. Returns false when a load
/// case or the probe has not met all demands of the solver.
bool IterateToTheEnd(const AnalysisTask& task, SparseSolver& solver, std::vector<LoadCase>& cases,
                     const OnSolved& onSolved);

}  // namespace morlen
