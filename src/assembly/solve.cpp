// The system of equations of a problem, and the steps that direct and iterated solutions share.

#include "assembly/solve.h"

#include <algorithm>
#include <cmath>
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
#include "problem/support_checks.h"
#include "solvers/bsolver.h"

namespace morlen {

namespace {

/// The mean distance between the first two nodes of an element; 1 without elements.
double MeanElementLength(const Meshes& meshes)
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

// Minus the loads on the components that supports carry, by equation in global axes. A reaction is
// the sum of this and the forces of the elements.
ReaVecV LoadsOnSupports(const VoidPlex& nodes, const NodeComponents& components,
                        const ReaVecV& loads)
{
  ReaVecV negative;
  negative.resize(loads.Size(), 0.0);
  for (const Node& node : Each<Node>(nodes)) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= components.count; ++k) {
      const int equation = components.Equation(node.number, k);
      if (node.constraint->Carries(k))
        negative(equation) -= loads(equation);
    }
  }
  return negative;
}

// The values of one prescribed component, one for each right-hand side.
class PrescribedValues
{
public:
  PrescribedValues(std::span<const LoadCase> cases_, std::size_t sides)
      : cases(cases_), values(sides)
  {
  }

  // inProblem: the value in the problem, which counts for right-hand sides whose load case has no
  // settlements.
  const std::vector<double>& At(int equation, double inProblem)
  {
    std::fill(values.begin(), values.end(), inProblem);
    for (std::size_t k = 0; k < cases.size(); ++k) {
      if (cases[k].settlements)
        values[k] = ValueAt(*cases[k].settlements, equation);
    }
    return values;
  }

private:
  static double ValueAt(const Settlements& settlements, int equation)
  {
    const auto found = std::lower_bound(
        settlements.begin(), settlements.end(), equation,
        [](const PrescribedValue& one, int wanted) { return one.equation < wanted; });
    return found != settlements.end() && found->equation == equation ? found->value : 0.0;
  }

  std::span<const LoadCase> cases;
  std::vector<double> values;
};

}  // namespace

ComponentScale ScaleOfComponents(const Meshes& meshes, const NodeComponents& components)
{
  return {components, MeanElementLength(meshes)};
}

void CreateMatrix(const Meshes& meshes, const NodeComponents& components, BSolver& solver)
{
  const int n = components.count;
  for (const auto& mesh : meshes) {
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

std::vector<LoadCase> MakeLoadCases(const VoidPlex& nodes, const NodeComponents& components,
                                    std::vector<LoadVector> loads)
{
  std::vector<LoadCase> cases;
  cases.reserve(loads.size());
  for (LoadVector& global : loads) {
    LoadCase& added = cases.emplace_back();
    added.name = std::move(global.name);
    added.settlements = std::move(global.settlements);
    added.solution.elementLoads = global.elementLoads;
    added.solution.supportLoads = LoadsOnSupports(nodes, components, global.values);
    added.loads = std::move(global.values);
    ConvertGlobalLoadToLocal(nodes, added.loads, components.count);
  }
  return cases;
}

std::vector<ReaVecV> LoadsOf(const std::vector<LoadCase>& cases)
{
  std::vector<ReaVecV> sides;
  sides.reserve(cases.size());
  for (const LoadCase& one : cases)
    sides.push_back(one.loads);
  return sides;
}

void ApplySupports(const VoidPlex& nodes, const NodeComponents& components, BSolver& solver,
                   std::vector<ReaVecV>& sides, std::span<const LoadCase> cases)
{
  std::vector<ReaVecV*> pointers;
  pointers.reserve(sides.size());
  for (ReaVecV& side : sides)
    pointers.push_back(&side);
  PrescribedValues prescribed(cases, sides.size());
  Matriu stiffness(1, 1);  // a block, because a node without elements may have only this spring
  for (const Node& node : Each<Node>(nodes)) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= components.count; ++k) {
      const int equation = components.Equation(node.number, k);
      const double value = node.constraint->values[k - 1];
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed) {
        solver.ApplyConstraint(equation, prescribed.At(equation, value), pointers);
      } else if (node.constraint->flags[k - 1] == Constraint::kSpring) {
        stiffness = value;
        solver.AddSubMatriu(equation, equation, stiffness);
      }
    }
  }
}

Solution FinishSolution(const VoidPlex& nodes, const NodeComponents& components, LoadCase& one)
{
  Solution solution = std::move(one.solution);
  ConvertLocalResultsToGlobal(nodes, solution.displacements, components.count);
  ConvertLocalResultsToGlobal(nodes, solution.displacementRests, components.count);
  return solution;
}

std::string LabelOf(const LoadCase& one)
{
  return one.name.empty() ? "" : "load case '" + one.name + "': ";
}

void TellAccuracy(const LoadCase& one, SolverType type, std::FILE* info)
{
  const SolutionAccuracy& accuracy = one.solution.accuracy;
  Progress(info, "Estimated relative error of the displacements= %.1e, residual= %.1e\n",
           accuracy.error, accuracy.residual);
  constexpr double kRoughError = 1e-6;
  constexpr double kRoughResidual = 1e-5;
  if (type == SolverType::Sparse)
    return;
  if (accuracy.error > kRoughError || accuracy.residual > kRoughResidual)
    Warn(info,
         "warning: %sthe model is rough: the displacements have a relative error of %.1e, and the "
         "forces miss the loads by %.1e of them\n",
         LabelOf(one).c_str(), accuracy.error, accuracy.residual);
}

void SolverFailed(const Meshes& meshes, const NodeComponents& components, int result,
                  const std::string& hint)
{
  CheckTypicalConstraintsErrors(meshes, components.count);
  if (result == -1)
    Fatal("error when solving system. Probably boundary conditions are not correct\n", hint);
  if (result < 0)
    Fatal("error when solving system. Stopped after ", -result,
          " iterations.Probably boundary conditions are not correct\n", hint);
  // The message assumes six components at each node, also in problems that have three. There it
  // names another node.
  constexpr int kComponents = 6;
  static const char* const names[kComponents] = {"X displ.",   "Y displ.",   "Z displ.",
                                                 "X rotation", "Y rotation", "Z rotation"};
  const int node = meshes.front()->GiveOldNumber((result - 1) / kComponents + 1);
  const int degree = (result - 1) % kComponents + 1;
  Fatal("error when solving system(", result, ").\nOne diagonal=0 in node=", node,
        " (Use Meshing->Mesh View).\nDegree of freedom ", degree, " from 6 (", names[degree - 1],
        ")\nCould not solve system. Probably boundary conditions are not correct\n", hint);
}

void RequireSolution(const Meshes& meshes, const NodeComponents& components, int result,
                     const ReaVecV& displacements)
{
  if (result)
    SolverFailed(meshes, components, result);
  if (!AllFinite(displacements))
    SolverFailed(meshes, components, -1);
}

}  // namespace morlen
