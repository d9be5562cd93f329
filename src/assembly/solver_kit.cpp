#include "assembly/solver_kit.h"

#include "assembly/internal_forces.h"
#include "assembly/solve.h"
#include "problem/problem.h"
#include "solvers/direct_solver.h"

namespace morlen {

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

bool SolverKit::Solve(const AnalysisTask& /*task*/, std::vector<LoadCase>& /*cases*/) const
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

}  // namespace morlen
