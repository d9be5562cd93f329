#pragma once

#include <cstdio>

#include "assembly/solver_choice.h"
#include "assembly/solver_kit.h"

namespace morlen {

class ElementFamilies;
struct Problem;

struct AnalysisOptions
{
  bool renumber = true;       ///< false keeps the numbers of the file
  std::FILE* info = nullptr;  ///< progress; may be null
  const SolverKit& kit = kPlainKit;
  int loadVectors = 1;  ///< for the choice of the solver: how many load vectors there will be
};

// The preparation is the only phase after reading that changes a problem. Later phases take it as
// const. It runs once; twice with `Solver Double`, whose first solution is that of another model,
// and when an automatic iteration has failed, since the direct solver works on other numbers.

/// Checks a problem as read and merges its hinges.
void PrepareModel(Problem& problem, const ElementFamilies& families);

/// Converts shells to six nodes where the problem asks for it, settles the type of the solver,
/// numbers the nodes for it and marks coplanar nodes. Returns the solver and the reason for it.
SolverChoice PrepareEquations(Problem& problem, const ElementFamilies& families,
                              const AnalysisOptions& options);

/// Sets the type of the solver to the direct one, numbers the nodes for it and marks coplanar
/// nodes.
void PrepareForSkyline(Problem& problem, bool renumber);

/// The same for either direct solver: SkyLine, or Direct with the present numbers of the nodes.
void PrepareForDirect(Problem& problem, SolverType type, bool renumber);

/// Writes the number of coplanar nodes of a problem with shells to the information stream.
void ReportMarks(const Problem& problem, std::FILE* info);

}  // namespace morlen
