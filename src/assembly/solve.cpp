// The system of equations of the model: filled, supported, solved.

#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/residual_check.h"
#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/element_family.h"
#include "problem/project.h"
#include "solvers/bsolver.h"
#include "solvers/skymatriu.h"

namespace {

bool AllFinite(const ReaVecV& v)
{
  for (int i = 1; i <= v.Size(); ++i) {
    if (!std::isfinite(v(i)))
      return false;
  }
  return true;
}

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

}  // namespace

void Project::FillMatrixVectorAndSolve(std::FILE* info)
{
  CreateMatrix();
  if (info)
    solver->PrintInfoMem(info);
  Progress(info, "Just before filling global stiffness matrix\n");
  AssembleStiffness(*solver, kInSupportAxes);
  Progress(info, "Stiffness matrix filled\n");
  AddNodalLoads();
  for (const auto& mesh : meshes)
    (this->*FamilyOf(*mesh).addLoads)(mesh.get());
  Progress(info, "Load vector constructed\n");
  Progress(info, "Beginning to apply constraints\n");
  StartReactions();
  ConvertGlobalLoadToLocal(GiveNodes(), displacements, freeDegrees);
  SolveSystem(info);
  ConvertLocalResultsToGlobal(GiveNodes(), displacements, freeDegrees);
  Progress(info, "Solver finished\n");
}

void Project::SolveSystem(std::FILE* info)
{
  if (solverSettings.type == SolverType::SkyLine) {
    SolveChecked(info);
    return;
  }
  ApplySupports();
  Progress(info, "Just before Solver\n");
  RequireSolution(solver->Solver(displacements, info));
}

// A direct solution is kept, with that of a probe, until the stiffness of the elements is at hand
// again to check them.
void Project::SolveChecked(std::FILE* info)
{
  const ResidualCheck check(GiveNodes(), ScaleOfComponents());
  LoadCase model;
  model.loads = displacements;
  ApplySupports();
  check.FindScales(displacements, model);
  LoadCase probe = check.Probe(displacements.Size());
  Progress(info, "Just before Solver\n");
  auto& matrix = static_cast<SkyMatriu&>(*solver);
  RequireSolution(matrix.Solver({&displacements, &probe.displacements}, info));
  model.displacements = displacements;
  checkedSolution = {std::move(model), std::move(probe)};
}

void Project::RequireSolution(int result) const
{
  if (result)
    SolverFailed(result);
  if (!AllFinite(displacements))
    SolverFailed(-1);
}

ComponentScale Project::ScaleOfComponents() const
{
  return {freeDegrees, translations, MeanElementLength(meshes)};
}

void Project::CreateMatrix()
{
  for (const auto& mesh : meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < elem.Nnode(); ++i) {
        for (int j = i + 1; j < elem.Nnode(); ++j)
          solver->EnterMaxDiff(elem(i)->number, elem(j)->number, freeDegrees);
      }
    }
  }
  solver->Create(freeDegrees);
}

void Project::AssembleStiffness(ElementSink& sink, int applyLocalAxes)
{
  struct Restoring  // a fatal error may be thrown
  {
    ~Restoring() { member = nullptr; }
    ElementSink*& member;
  } const restoring{stiffnessSink};
  stiffnessSink = &sink;
  for (const auto& mesh : meshes)
    (this->*FamilyOf(*mesh).addStiffness)(mesh.get(), applyLocalAxes);
}

ElementSink& Project::StiffnessSink() const
{
  return stiffnessSink ? *stiffnessSink : *solver;
}

// A reaction starts at minus the load on its component, taken in global axes before any
// support changes the load vector; the forces of the elements come after the solution.
void Project::StartReactions()
{
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.constraint)
      continue;
    node.constraint->reactions.fill(0.0);  // of a pre-solve
    for (int k = 1; k <= freeDegrees; ++k)
      node.constraint->AddToReaction(k, -displacements(Equation(node, k)));
  }
}

void Project::ApplySupports()
{
  Matriu stiffness(1, 1);  // added as a block: it may be all that a node without elements has
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= freeDegrees; ++k) {
      const int equation = Equation(node, k);
      const double value = node.constraint->values[k - 1];
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed) {
        solver->ApplyConstraint(equation, value, displacements);
      } else if (node.constraint->flags[k - 1] == Constraint::kSpring) {
        stiffness = value;
        solver->AddSubMatriu(equation, equation, stiffness);
      }
    }
  }
}

void Project::SolverFailed(int result) const
{
  CheckTypicalConstraintsErrors();
  if (result == -1)
    Fatal("error when solving system. Probably boundary conditions are not correct\n");
  if (result < 0)
    Fatal("error when solving system. Stopped after ", -result,
          " iterations.Probably boundary conditions are not correct\n");
  // Six components a node whatever the problem: plane problems name another one.
  constexpr int kComponents = 6;
  static const char* const names[kComponents] = {"X displ.",   "Y displ.",   "Z displ.",
                                                 "X rotation", "Y rotation", "Z rotation"};
  const int node = meshes.front()->GiveOldNumber((result - 1) / kComponents + 1);
  const int degree = (result - 1) % kComponents + 1;
  Fatal("error when solving system(", result, ").\nOne diagonal=0 in node=", node,
        " (Use Meshing->Mesh View).\nDegree of freedom ", degree, " from 6 (", names[degree - 1],
        ")\nCould not solve system. Probably boundary conditions are not correct\n");
}
