#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class DirectSolver;

/// Solves load cases by one factorisation of the assembled matrix and refines them. The refinement
/// also tests the structure: fatal when it can move, or when the model is too rough.
void SolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases);

/// The same, but where that is fatal it returns false, and the cases are as they were.
bool TrySolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases);

}  // namespace morlen
