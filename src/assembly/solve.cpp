// The system of equations of the model: filled, supported, solved.

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "assembly/element_assembly.h"
#include "assembly/free_equations.h"
#include "assembly/probe_load.h"
#include "assembly/refinement.h"
#include "assembly/support_axes.h"
#include "base/array_size.h"
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
#include "solvers/sparse_solver.h"

namespace {

bool AllFinite(const ReaVecV& v)
{
  for (int i = 1; i <= v.Size(); ++i) {
    if (!std::isfinite(v(i)))
      return false;
  }
  return true;
}

/// A line for a model that is refused although it may stand; empty for one that can move.
std::string RoughModelHint(const RefinedCases& cases, Refinement::Verdict verdict)
{
  if (verdict == Refinement::Verdict::Moves && !cases.probe.Diverges())
    return "";
  return "The model is too rough: its stiffnesses or lengths differ so much that the digits of the "
         "arithmetic are not enough for its displacements\n";
}

/// Whether the iteration of a probe has met a motion without energy.
bool MovesFreely(const IterationReport& probe)
{
  return probe.smallestQuotient >= 0.0 && probe.smallestQuotient < IterationDemands::kLeastQuotient;
}

/// Whether a probe has come so far that most structures that can move are ruled out.
bool HasAlmostConverged(const IterationReport& probe, double tolerance)
{
  constexpr double kAlmost = 1e-2;
  return probe.residual <= std::max(tolerance, kAlmost);
}

/// Why an iteration that has converged is refused.
std::string UnprovenHint(const IterationReport& probe)
{
  std::ostringstream text;
  stprintf(
      text,
      "The loads are held, but a test with a load in every equation has not converged (residual "
      "%.1e): the structure may be able to move\n",
      probe.residual);
  return text.str();
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
  AssembleStiffness(*solver, kInSupportAxes);
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

// The result of SparseSolver::Solver. A probe is iterated as well.
int Project::Iterate(std::FILE* info)
{
  ApplySupports();
  ReaVecV probe = ProbeLoad(GiveNodes(), ScaleOfComponents(), displacements.Size());
  auto& sparse = static_cast<SparseSolver&>(*solver);
  Progress(info, "Just before Solver\n");
  const int result = sparse.Solver(displacements, probe, info);
  accuracy.error = sparse.ModelReport().error;
  accuracy.residual = sparse.ModelReport().residual;
  displacementRests.resize(displacements.Size(), 0.0);
  displacementRests = 0.0;
  return result;
}

// False when the iteration has not come to an end that can be trusted.
bool Project::IterateToTheEnd(std::FILE* info)
{
  const int result = Iterate(info);
  const auto& sparse = static_cast<const SparseSolver&>(*solver);
  const bool reached = sparse.ModelReport().reached && sparse.ProbeReport().reached;
  if (result != 0 || !reached || !AllFinite(displacements))
    return false;
  TellAccuracy(info);
  return true;
}

// As the problem file asks for it: a residual within the second tolerance is taken, with a warning,
// unless the probe shows that the structure can move.
void Project::SolveByIteration(std::FILE* info)
{
  RequireSolution(Iterate(info));
  const auto& sparse = static_cast<const SparseSolver&>(*solver);
  const IterationReport& model = sparse.ModelReport();
  const IterationReport& probe = sparse.ProbeReport();
  const bool unproven = model.reached && !HasAlmostConverged(probe, sparse.Tolerance());
  if (!probe.reached && (unproven || MovesFreely(probe)))
    SolverFailed(-std::max(probe.iterations, 1), UnprovenHint(probe));
  if (!model.reached)
    Warn(info,
         "warning: the iteration ended before its tolerance, with a residual of %.1e. The results "
         "may be wrong by much more than that\n",
         model.residual);
  else if (!probe.reached)
    Warn(info,
         "warning: a test with a load in every equation has not converged (residual %.1e): the "
         "structure may be able to move\n",
         probe.residual);
  TellAccuracy(info);
}

void Project::SolveDirectly(std::FILE* info)
{
  const ReaVecV loads = displacements;
  ApplySupports();
  Progress(info, "Just before Solver\n");
  RefinedCases cases;
  if (const int failed = SolveCases(loads, cases, info))
    SolverFailed(failed, RefusedPivotHint(loads));
  const Refinement refinement = MakeRefinement();
  const Refinement::Verdict verdict = refinement.Run(cases);
  if (verdict == Refinement::Verdict::Moves)
    SolverFailed(refinement.LargestMotion(cases.probe), RoughModelHint(cases, verdict));
  if (verdict == Refinement::Verdict::TooRough)
    SolverFailed(-1, RoughModelHint(cases, verdict));
  accuracy = {.error = cases.model.LastCorrection(), .residual = cases.model.LastResidual()};
  displacements = std::move(cases.model.u.value);
  displacementRests = std::move(cases.model.u.rest);
  elementForces = std::move(cases.model.elementForces);
  TellAccuracy(info);
}

// From the right-hand side in the displacements to the solutions before their refinement. Returns
// what SolverFailed takes, or 0.
int Project::SolveCases(const ReaVecV& loads, RefinedCases& cases, std::FILE* info)
{
  using Norm = RefinedCase::Norm;
  const ComponentScale scale = ScaleOfComponents();
  const ReaVecV probeLoads = ProbeLoad(GiveNodes(), scale, loads.Size());
  ReaVecV ofProbe = probeLoads;
  const double size = SizeOnFree(Norm::Euclidean, GiveNodes(), scale, displacements);
  const double sizeOfProbe = SizeOnFree(Norm::Largest, GiveNodes(), scale, ofProbe);
  if (const int refused = Skyline().Solver({&displacements, &ofProbe}, info))
    return refused;
  if (!AllFinite(displacements))
    return -1;
  cases.model = RefinedCase(loads, Norm::Euclidean, size, displacements);
  cases.probe = RefinedCase(probeLoads, Norm::Largest, sizeOfProbe, std::move(ofProbe));
  return 0;
}

// A refused pivot tells nothing about why it is small. Without the limit for pivots that have lost
// digits, the refinement can often tell.
std::string Project::RefusedPivotHint(const ReaVecV& loads)
{
  Skyline().SetToZero();
  AssembleStiffness(*solver, kInSupportAxes);
  displacements = loads;
  ApplySupports();
  Skyline().AcceptLostPivots();
  RefinedCases cases;
  if (SolveCases(loads, cases, nullptr) != 0)
    return "";
  return RoughModelHint(cases, MakeRefinement().Run(cases));
}

SkyMatriu& Project::Skyline() const
{
  return static_cast<SkyMatriu&>(*solver);
}

Refinement Project::MakeRefinement() const
{
  return {Skyline(), GiveNodes(), ScaleOfComponents(), [this](InternalForces& f) { AddForces(f); }};
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
