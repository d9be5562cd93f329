// A program without PETSc.

#include "mpi/multigrid.h"

namespace morlen::mpi {

struct Multigrid::Grids
{
};

bool Multigrid::IsAvailable()
{
  return false;
}

Multigrid::Multigrid() = default;

Multigrid::~Multigrid() = default;

void Multigrid::EnterMatrix(const Part& /*part*/, const FreeEquations& /*equations*/,
                            const direct::Coordinates& /*entries*/)
{
}

void Multigrid::MakeGrids(const Part& /*part*/) {}

int Multigrid::Solve(std::span<double> /*side*/)
{
  return -1;
}

void Multigrid::End() {}

}  // namespace morlen::mpi
