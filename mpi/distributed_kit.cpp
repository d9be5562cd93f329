#include "mpi/distributed_kit.h"

#include <algorithm>
#include <utility>

#include "assembly/direct_solution.h"
#include "assembly/solve.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "mpi/distributed_solver.h"
#include "mpi/multigrid_solver.h"

namespace morlen::mpi {

SolverType DistributedKit::Settle(SolverType asked) const
{
  if (asked != SolverType::Automatic && asked != SolverType::Direct) {
    Explain("leave out the line of the solver, or write \"Solver: Direct\"");
    Fatal("error: the solvers of morlen-mpi are Automatic and Direct\n");
  }
  return SolverType::Direct;
}

bool DistributedKit::Suits(const Problem& problem) const
{
  return Multigrid::IsAvailable() &&
         std::all_of(problem.meshes.begin(), problem.meshes.end(),
                     [](const auto& mesh) { return mesh->GiveElemType() == Tetrahedra; });
}

bool DistributedKit::Solve(const AnalysisTask& task, std::vector<LoadCase>& cases,
                           const OnSolved& onSolved) const
{
  Progress(task.info, "Iteration with multigrid\n");
  MultigridSolver solver(*model, task.problem);
  CreateMatrix(task, solver);
  AddStiffness(task, solver);
  if (TrySolveDirectly(task, solver, cases, onSolved))
    return true;
  Progress(task.info, "The iteration has failed\n");
  return false;
}

std::unique_ptr<DirectSolver> DistributedKit::MakeDirect(const Problem& problem,
                                                         std::unique_ptr<DirectPlan> /*plan*/) const
{
  return std::make_unique<DistributedSolver>(model->GiveTeam(), problem.numNodes,
                                             problem.components.count);
}

void DistributedKit::CreateMatrix(const AnalysisTask& task, BSolver& solver) const
{
  Progress(task.info, "Dividing the elements between %i ranks\n", model->GiveTeam().Count());
  SolverKit::CreateMatrix(task, solver);
  model->Divide(task.problem, static_cast<DistributedMatrix&>(solver).PartOfNode());
}

void DistributedKit::AddStiffness(const AnalysisTask& task, BSolver& solver) const
{
  Assembled sums = model->Assemble(task.problem);
  for (std::size_t rank = 0; rank < sums.values.size(); ++rank)
    Progress(task.info, "Rank %i: %lld matrix values\n", static_cast<int>(rank),
             static_cast<long long>(sums.values[rank]));
  static_cast<DistributedMatrix&>(solver).Enter(std::move(sums));
}

void DistributedKit::AddForces(const AnalysisTask& task, InternalForces& forces) const
{
  model->AddForces(task.problem, forces);
}

void DistributedKit::FillStrengths(const Problem& problem, const ElementFamilies& /*families*/,
                                   int mesh, Solution& solution) const
{
  model->FillStrengths(problem, mesh, solution);
}

}  // namespace morlen::mpi
