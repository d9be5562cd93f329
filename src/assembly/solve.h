#pragma once

#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "assembly/free_equations.h"
#include "assembly/load_vector.h"
#include "assembly/solution.h"
#include "assembly/solver_kit.h"
#include "numeric/reavecv.h"
#include "problem/problem.h"

namespace morlen {

class BSolver;
class ElementFamilies;

/// The data that all steps of a solution share. All are borrowed.
struct AnalysisTask
{
  const Problem& problem;
  const ElementFamilies& families;
  std::FILE* info;  ///< progress; may be null
  const SolverKit& kit = kPlainKit;
};

/// One load vector and its solution.
struct LoadCase
{
  std::string name;  ///< for messages; may be empty
  ReaVecV loads;     ///< by equation, in the axes of the supports
  std::optional<Settlements> settlements;
  Solution solution;  ///< with its supportLoads before the system is solved
};

/// The components of a node with the mean length of the elements.
ComponentScale ScaleOfComponents(const Meshes& meshes, const NodeComponents& components);

/// Declares the couplings of the nodes and allocates the matrix.
void CreateMatrix(const Meshes& meshes, const NodeComponents& components, BSolver& solver);

/// Adds the stiffness of all elements, in the axes of the supports.
void AddStiffness(const AnalysisTask& task, BSolver& solver);

/// Load cases of load vectors in global axes.
std::vector<LoadCase> MakeLoadCases(const VoidPlex& nodes, const NodeComponents& components,
                                    std::vector<LoadVector> loads);

/// Copies of the load vectors of the cases, to be used as right-hand sides.
std::vector<ReaVecV> LoadsOf(const std::vector<LoadCase>& cases);

/// Imposes the supports on the matrix and on all right-hand sides. cases: of the sides, for their
/// settlements; without any, all sides have those of the problem.
void ApplySupports(const VoidPlex& nodes, const NodeComponents& components, BSolver& solver,
                   std::vector<ReaVecV>& sides, std::span<const LoadCase> cases = {});

/// The solution of a case, with its displacements rotated into global axes.
Solution FinishSolution(const VoidPlex& nodes, const NodeComponents& components, LoadCase& one);

/// The beginning of a message about a case: "load case 'W1': "; empty without a name.
std::string LabelOf(const LoadCase& one);

/// Writes the accuracy of a solution to the information stream, which may be null. Warns of a rough
/// model after a direct solution; an iterated solution has warnings about its residual instead.
void TellAccuracy(const LoadCase& one, SolverType type, std::FILE* info);

/// Ends the run for a structure that could not be solved. result: -1, minus the number of
/// iterations, or the equation of a diagonal that is 0. hint: a line after the message; may be
/// empty.
[[noreturn]] void SolverFailed(const Meshes& meshes, const NodeComponents& components, int result,
                               const std::string& hint = "");

/// Fatal unless the result is 0 and the displacements are finite.
void RequireSolution(const Meshes& meshes, const NodeComponents& components, int result,
                     const ReaVecV& displacements);

}  // namespace morlen
