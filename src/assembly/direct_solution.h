#pragma once

#include <vector>

#include "assembly/solve.h"

namespace morlen {

class SkyMatriu;

/// Solves load cases by one factorisation of the assembled matrix, refines them, and judges the
/// structure by the refinement. Fatal when the structure can move or the model is too rough.
void SolveDirectly(const AnalysisTask& task, SkyMatriu& matrix, std::vector<LoadCase>& cases);

}  // namespace morlen
