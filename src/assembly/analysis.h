#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include "assembly/solution.h"
#include "solvers/bsolver.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// Makes the load vectors of a prepared problem, by equation in global axes. It may be called more
/// than once.
using MakeLoads = std::function<std::vector<ReaVecV>(const Problem&, const ElementFamilies&)>;

struct AnalysisOptions
{
  bool renumber = true;       ///< false keeps the numbers of the file
  std::FILE* info = nullptr;  ///< progress; may be null
};

/// The outcome of an analysis.
struct Analysed
{
  std::unique_ptr<BSolver> solver;  ///< with the factors or the assembled matrix
  std::vector<Solution> solutions;  ///< displacements and begun reactions, one for each load vector
};

/// Checks and prepares a problem, chooses the solver, and solves all load vectors with one
/// factorisation. The problem changes in its preparation only: hinges, six-node shells, coplanarity
/// marks, numbers of nodes, and the type of the solver, which becomes the one that was used.
///
/// Small models are solved directly. For large ones the faster solver is taken; where that is the
/// iteration and it fails, the direct one follows it.
Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options,
                 const MakeLoads& makeLoads);

/// The same for the loads of the problem.
Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options);

}  // namespace morlen
