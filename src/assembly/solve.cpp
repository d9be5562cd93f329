// The system of equations of the model: filled, supported, solved.

#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/free_equations.h"
#include "assembly/support_axes.h"
#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"
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

}  // namespace

void Project::FillMatrixVectorAndSolve(std::FILE* info)
{
  PrepareSystem(info);
  if (solverSettings.type == SolverType::Sparse)
    SolveByIteration(info);
  else
    SolveDirectly(info);
  FinishSolution(info);
}

// Up to the loads in the axes of the supports; these come into the matrix by the solution.
void Project::PrepareSystem(std::FILE* info)
{
  displacements.resize(ArrayLength(numNodes, freeDegrees), 0.0);
  displacements = 0.0;
  elementForces = ReaVecV();
  CreateMatrix();
  if (!solverReason.empty())
    Progress(info, "Solver %s taken: %s\n",
             solverSettings.type == SolverType::Sparse ? "Sparse" : "SkyLine",
             solverReason.c_str());
  if (info)
    solver->PrintInfoMem(info);
  Progress(info, "Just before filling global stiffness matrix\n");
  AssembleStiffness();
  Progress(info, "Stiffness matrix filled\n");
  AddNodalLoads();
  for (const auto& mesh : meshes)
    (this->*FamilyOf(*mesh).addLoads)(mesh.get());
  Progress(info, "Load vector constructed\n");
  Progress(info, "Beginning to apply constraints\n");
  StartReactions();
  ConvertGlobalLoadToLocal(GiveNodes(), displacements, freeDegrees);
}

void Project::FinishSolution(std::FILE* info)
{
  ConvertLocalResultsToGlobal(GiveNodes(), displacements, freeDegrees);
  ConvertLocalResultsToGlobal(GiveNodes(), displacementRests, freeDegrees);
  Progress(info, "Solver finished\n");
}

void Project::TellAccuracy(std::FILE* info) const
{
  Progress(info, "Estimated relative error of the displacements= %.1e, residual= %.1e\n",
           accuracy.error, accuracy.residual);
  constexpr double kRoughError = 1e-6;
  constexpr double kRoughResidual = 1e-5;
  if (solverSettings.type == SolverType::Sparse)
    return;
  if (accuracy.error > kRoughError || accuracy.residual > kRoughResidual)
    Warn(info,
         "warning: the model is rough: the displacements have a relative error of %.1e, and the "
         "forces miss the loads by %.1e of them\n",
         accuracy.error, accuracy.residual);
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

void Project::AssembleStiffness()
{
  for (const auto& mesh : meshes)
    (this->*FamilyOf(*mesh).addStiffness)(mesh.get(), kInSupportAxes);
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

void Project::SolverFailed(int result, const std::string& hint) const
{
  CheckTypicalConstraintsErrors();
  if (result == -1)
    Fatal("error when solving system. Probably boundary conditions are not correct\n", hint);
  if (result < 0)
    Fatal("error when solving system. Stopped after ", -result,
          " iterations.Probably boundary conditions are not correct\n", hint);
  // Six components a node whatever the problem: plane problems name another one.
  constexpr int kComponents = 6;
  static const char* const names[kComponents] = {"X displ.",   "Y displ.",   "Z displ.",
                                                 "X rotation", "Y rotation", "Z rotation"};
  const int node = meshes.front()->GiveOldNumber((result - 1) / kComponents + 1);
  const int degree = (result - 1) % kComponents + 1;
  Fatal("error when solving system(", result, ").\nOne diagonal=0 in node=", node,
        " (Use Meshing->Mesh View).\nDegree of freedom ", degree, " from 6 (", names[degree - 1],
        ")\nCould not solve system. Probably boundary conditions are not correct\n", hint);
}

}  // namespace morlen
