#include "mpi/multigrid_solver.h"

#include <limits>

#include "assembly/free_equations.h"
#include "base/stprintf.h"

namespace morlen::mpi {

MultigridSolver::MultigridSolver(DistributedModel& model_, const Problem& problem_)
    : DistributedMatrix(model_.GiveTeam(), problem_.numNodes, problem_.components.count),
      model(model_),
      problem(problem_)
{
}

int MultigridSolver::Factorise(std::FILE* info)
{
  if (FindRefused())
    return -1;
  const std::vector<std::vector<int>> first = model.FirstFreeEquations(problem);
  team.Order(
      Command::MakeGrids, [&](int rank, ByteWriter& out) { out.PutAll(first[rank]); },
      [](int, ByteReader&) {});
  Progress(info, "Grids made\n");
  factorised = true;
  return 0;
}

void MultigridSolver::Substitute(const RightHandSides& sides, std::FILE* info) const
{
  for (ReaVecV* side : sides)
    Solve(*side, info);
}

void MultigridSolver::Solve(ReaVecV& side, std::FILE* info) const
{
  int iterations = 0;
  ReaVecV solution;
  solution.resize(size, 0.0);
  team.Order(
      Command::Iterate,
      [&](int rank, ByteWriter& out) {
        out.PutAll(model.Gather(problem.components, rank, side.Data()));
      },
      [&](int rank, ByteReader& in) {
        iterations = in.Get<int>();
        model.Scatter(problem.components, rank, in.GetAll<double>(), solution.Data());
      });
  Progress(info, "%i iterations\n", iterations);
  ForEachFree(problem.GiveNodes(), problem.components, [&](int equation, int, double) {
    side(equation) = iterations < 0 ? std::numeric_limits<double>::quiet_NaN() : solution(equation);
  });
}

}  // namespace morlen::mpi
