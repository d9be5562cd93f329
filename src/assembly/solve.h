#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "assembly/free_equations.h"
#include "assembly/solution.h"
#include "numeric/reavecv.h"

namespace morlen {

class BSolver;
class ElementFamilies;
struct Problem;

/// A prepared problem on its way to its solutions. All is borrowed.
struct AnalysisTask
{
  const Problem& problem;
  const ElementFamilies& families;
  std::FILE* info;  ///< progress; may be null
};

/// One load vector and its solution.
struct LoadCase
{
  ReaVecV loads;      ///< by equation, in the axes of the supports
  Solution solution;  ///< its reactions hold minus the loads at supports until the forces are added
};

/// The components of the problem with the mean size of its elements.
ComponentScale ScaleOfComponents(const Problem& problem);

/// Declares the couplings of the nodes and allocates the matrix.
void CreateMatrix(const Problem& problem, BSolver& solver);

/// Adds the stiffness of all elements, in the axes of the supports.
void AddStiffness(const AnalysisTask& task, BSolver& solver);

/// Load cases for load vectors in global axes.
std::vector<LoadCase> MakeLoadCases(const Problem& problem, std::vector<ReaVecV> loads);

/// The load vectors of the cases, to become right-hand sides.
std::vector<ReaVecV> LoadsOf(const std::vector<LoadCase>& cases);

/// Imposes the supports on the matrix and on all right-hand sides.
void ApplySupports(const Problem& problem, BSolver& solver, std::vector<ReaVecV>& sides);

/// Turns the solved displacements into global axes and hands the solutions over.
std::vector<Solution> FinishSolutions(const AnalysisTask& task, std::vector<LoadCase> cases);

/// Writes the accuracy to the information stream, and warns of a rough model unless the solution is
/// iterated, which has warnings for itself.
void TellAccuracy(const AnalysisTask& task, const SolutionAccuracy& accuracy);

/// Ends the run for a structure that could not be solved. result: -1, minus the number of
/// iterations, or the equation of a diagonal that is 0. hint: a line after the message, may be
/// empty.
[[noreturn]] void SolverFailed(const Problem& problem, int result, const std::string& hint = "");

/// Fatal unless the result is 0 and the displacements are finite.
void RequireSolution(const Problem& problem, int result, const ReaVecV& displacements);

}  // namespace morlen
