// The system of equations of the problem: filled, supported, and what its solutions share.

#include "assembly/solve.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "assembly/element_assembly.h"
#include "assembly/element_family.h"
#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "problem/support_checks.h"
#include "solvers/bsolver.h"

namespace morlen {

namespace {

/// Mean distance of the first two nodes of the elements.
double MeanElementLength(const std::vector<std::unique_ptr<Mesh>>& meshes)
{
  double sum = 0.0;
  long long count = 0;
  for (const auto& mesh : meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      sum += std::sqrt(dist2(elem(0), elem(1)));
      ++count;
    }
  }
  return sum > 0.0 ? sum / static_cast<double>(count) : 1.0;
}

// Minus the loads on the components that supports carry, by equation in global axes. The forces of
// the elements are added after the solution.
ReaVecV StartReactions(const Problem& problem, const ReaVecV& loads)
{
  ReaVecV reactions;
  reactions.resize(loads.Size(), 0.0);
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= problem.components.count; ++k) {
      if (node.constraint->Carries(k))
        reactions(problem.Equation(node, k)) += -loads(problem.Equation(node, k));
    }
  }
  return reactions;
}

}  // namespace

ComponentScale ScaleOfComponents(const Problem& problem)
{
  return {problem.components, MeanElementLength(problem.meshes)};
}

void CreateMatrix(const Problem& problem, BSolver& solver)
{
  const int n = problem.components.count;
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < elem.Nnode(); ++i) {
        for (int j = i + 1; j < elem.Nnode(); ++j)
          solver.EnterMaxDiff(elem(i)->number, elem(j)->number, n);
      }
    }
  }
  solver.Create(n);
}

void AddStiffness(const AnalysisTask& task, BSolver& solver)
{
  for (const auto& mesh : task.problem.meshes)
    task.families.Of(*mesh).addStiffness(task.problem, *mesh, kInSupportAxes, solver);
}

std::vector<LoadCase> MakeLoadCases(const Problem& problem, std::vector<ReaVecV> loads)
{
  std::vector<LoadCase> cases;
  for (ReaVecV& global : loads) {
    LoadCase& added = cases.emplace_back();
    added.solution.reactions = StartReactions(problem, global);
    added.loads = std::move(global);
    ConvertGlobalLoadToLocal(problem.GiveNodes(), added.loads, problem.components.count);
  }
  return cases;
}

std::vector<ReaVecV> LoadsOf(const std::vector<LoadCase>& cases)
{
  std::vector<ReaVecV> sides;
  for (const LoadCase& one : cases)
    sides.push_back(one.loads);
  return sides;
}

void ApplySupports(const Problem& problem, BSolver& solver, std::vector<ReaVecV>& sides)
{
  std::vector<ReaVecV*> pointers;
  for (ReaVecV& side : sides)
    pointers.push_back(&side);
  std::vector<double> values(sides.size());
  Matriu stiffness(1, 1);  // added as a block: it may be all that a node without elements has
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= problem.components.count; ++k) {
      const int equation = problem.Equation(node, k);
      const double value = node.constraint->values[k - 1];
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed) {
        std::fill(values.begin(), values.end(), value);
        solver.ApplyConstraint(equation, values, pointers);
      } else if (node.constraint->flags[k - 1] == Constraint::kSpring) {
        stiffness = value;
        solver.AddSubMatriu(equation, equation, stiffness);
      }
    }
  }
}

std::vector<Solution> FinishSolutions(const AnalysisTask& task, std::vector<LoadCase> cases)
{
  const VoidPlex& nodes = task.problem.GiveNodes();
  const int n = task.problem.components.count;
  std::vector<Solution> solutions;
  for (LoadCase& one : cases) {
    Solution& solution = solutions.emplace_back(std::move(one.solution));
    ConvertLocalResultsToGlobal(nodes, solution.displacements, n);
    ConvertLocalResultsToGlobal(nodes, solution.displacementRests, n);
  }
  Progress(task.info, "Solver finished\n");
  return solutions;
}

void TellAccuracy(const AnalysisTask& task, const SolutionAccuracy& accuracy)
{
  Progress(task.info, "Estimated relative error of the displacements= %.1e, residual= %.1e\n",
           accuracy.error, accuracy.residual);
  constexpr double kRoughError = 1e-6;
  constexpr double kRoughResidual = 1e-5;
  if (task.problem.solverSettings.type == SolverType::Sparse)
    return;
  if (accuracy.error > kRoughError || accuracy.residual > kRoughResidual)
    Warn(task.info,
         "warning: the model is rough: the displacements have a relative error of %.1e, and the "
         "forces miss the loads by %.1e of them\n",
         accuracy.error, accuracy.residual);
}

void SolverFailed(const Problem& problem, int result, const std::string& hint)
{
  CheckTypicalConstraintsErrors(problem);
  if (result == -1)
    Fatal("error when solving system. Probably boundary conditions are not correct\n", hint);
  if (result < 0)
    Fatal("error when solving system. Stopped after ", -result,
          " iterations.Probably boundary conditions are not correct\n", hint);
  // Six components a node whatever the problem: plane problems name another one.
  constexpr int kComponents = 6;
  static const char* const names[kComponents] = {"X displ.",   "Y displ.",   "Z displ.",
                                                 "X rotation", "Y rotation", "Z rotation"};
  const int node = problem.meshes.front()->GiveOldNumber((result - 1) / kComponents + 1);
  const int degree = (result - 1) % kComponents + 1;
  Fatal("error when solving system(", result, ").\nOne diagonal=0 in node=", node,
        " (Use Meshing->Mesh View).\nDegree of freedom ", degree, " from 6 (", names[degree - 1],
        ")\nCould not solve system. Probably boundary conditions are not correct\n", hint);
}

void RequireSolution(const Problem& problem, int result, const ReaVecV& displacements)
{
  if (result)
    SolverFailed(problem, result);
  if (!AllFinite(displacements))
    SolverFailed(problem, -1);
}

}  // namespace morlen
