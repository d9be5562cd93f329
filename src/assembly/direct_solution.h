#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class DirectSolver;

/// Solves load cases by one factorisation of the assembled matrix and refines them, a few at a
/// time. The refinement also tests the structure: fatal when it can move, or when the model is too
/// rough. The loads of a case are gone once it is solved. onSolved: for each case, in order.
void SolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases,
                   const OnSolved& onSolved);

/// The same, but where that is fatal it returns false. The cases are then of no further use.
bool TrySolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases,
                      const OnSolved& onSolved);

}  // namespace morlen
