#include "direct/direct_kit.h"

#include "direct/blas_kernels.h"
#include "direct/mumps_solver.h"
#include "problem/problem.h"

namespace morlen::direct {

DirectKit::DirectKit()
{
  ChooseBlasKernels();
}

std::unique_ptr<DirectSolver> DirectKit::MakeDirect(const Problem& problem) const
{
  return std::make_unique<MumpsSolver>(problem.numNodes, problem.components.count, busy);
}

}  // namespace morlen::direct
