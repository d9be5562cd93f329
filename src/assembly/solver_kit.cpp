#include "assembly/solver_kit.h"

#include "assembly/element_family.h"
#include "assembly/internal_forces.h"
#include "assembly/solution.h"
#include "assembly/solve.h"
#include "model/mesh.h"
#include "problem/problem.h"
#include "solvers/direct_solver.h"

namespace morlen {

SolverType SolverKit::Settle(SolverType asked) const
{
  return asked;
}

std::unique_ptr<DirectPlan> SolverKit::PlanDirect(const Problem& /*problem*/, double /*blocks*/,
                                                  double /*mostSeconds*/) const
{
  return nullptr;
}

std::unique_ptr<DirectSolver> SolverKit::MakeDirect(const Problem& /*problem*/,
                                                    std::unique_ptr<DirectPlan> /*plan*/) const
{
  return nullptr;
}

bool SolverKit::Suits(const Problem& /*problem*/) const
{
  return false;
}

bool SolverKit::Solve(const AnalysisTask& /*task*/, std::vector<LoadCase>& /*cases*/,
                      const OnSolved& /*onSolved*/) const
{
  return false;
}

void SolverKit::CreateMatrix(const AnalysisTask& task, BSolver& solver) const
{
  morlen::CreateMatrix(task.problem.meshes, task.problem.components, solver);
}

void SolverKit::AddStiffness(const AnalysisTask& task, BSolver& solver) const
{
  morlen::AddStiffness(task, solver);
}

void SolverKit::AddForces(const AnalysisTask& task, InternalForces& forces) const
{
  morlen::AddForces(task.problem, task.families, forces);
}

void SolverKit::FillStrengths(const Problem& problem, const ElementFamilies& families, int mesh,
                              Solution& solution) const
{
  const Mesh& elements = *problem.meshes[mesh];
  families.Of(elements).calcStrengths(problem, elements, solution, solution.results[mesh]);
}

}  // namespace morlen
