#include "solvers/ldlt_kernels.h"

// What the processor can do is asked once.

namespace {

struct Choice
{
  Choice()
  {
    if (__builtin_cpu_supports("avx512f"))
      kernels[count++] = &kAvx512LdltKernel;
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
      kernels[count++] = &kAvx2LdltKernel;
    kernels[count++] = &kPlainLdltKernel;
  }

  const LdltKernel* kernels[3];
  std::size_t count = 0;
};

}  // namespace

std::span<const LdltKernel* const> LdltKernels()
{
  static const Choice choice;
  return {choice.kernels, choice.count};
}
