#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include "assembly/load_vector.h"
#include "assembly/preparation.h"
#include "assembly/solution.h"
#include "assembly/solver_account.h"
#include "solvers/bsolver.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// Makes the load vectors of a prepared problem. It may be called more than once: `Solver Double`
/// solves two models, of different numbers of equations.
using MakeLoads = std::function<std::vector<LoadVector>(const Problem&, const ElementFamilies&)>;

/// Receives the solution of a load vector (from 0) as soon as it is known. Where an iteration fails
/// and the direct solver follows, all come again.
using UseSolution = std::function<void(std::size_t, Solution&&)>;

/// The loads that the problem has, as its only load vector.
std::vector<LoadVector> LoadsOfProblem(const Problem& problem, const ElementFamilies& families);

/// The outcome of an analysis.
struct Analysed
{
  std::unique_ptr<BSolver> solver;  ///< with the factors or the assembled matrix
  /// One for each load vector, with displacements and supportLoads.
  std::vector<Solution> solutions;
  SolverAccount account = {};
};

/// Checks and prepares a problem, chooses the solver, and solves all load vectors with one
/// factorisation. The problem changes in its preparation only, see preparation.h. The type of the
/// solver in its settings becomes the one that was used.
///
/// With an automatic choice of the solver, small models are solved directly and large ones by the
/// solver that is estimated to be faster. When that is the iteration and it fails, the direct
/// solver follows, if the memory has room for it.
///
/// use: receives the solutions, which then are not in the result: only a few are in memory at a
/// time.
Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options,
                 const MakeLoads& makeLoads = LoadsOfProblem, const UseSolution& use = {});

/// Assembles and solves a problem after PrepareModel and PrepareEquations for all load vectors,
/// with one factorisation. `solver`: empty, of the problem's size, a SparseSolver when the settings
/// say Sparse, else a DirectSolver.
std::vector<Solution> SolvePrepared(const Problem& problem, const ElementFamilies& families,
                                    BSolver& solver, const MakeLoads& makeLoads, std::FILE* info,
                                    const SolverKit& kit = kPlainKit);

}  // namespace morlen
