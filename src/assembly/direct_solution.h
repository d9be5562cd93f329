#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class SkyMatriu;

/// Solves load cases by one factorisation of the assembled matrix and refines them. The refinement
/// also tests the structure: fatal when it can move, or when the model is too rough.
void SolveDirectly(const AnalysisTask& task, SkyMatriu& matrix, std::vector<LoadCase>& cases);

}  // namespace morlen
