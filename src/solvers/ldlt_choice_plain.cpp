#include "solvers/ldlt_kernels.h"

std::span<const LdltKernel* const> LdltKernels()
{
  static constexpr const LdltKernel* kernels[] = {&kPlainLdltKernel};
  return kernels;
}
