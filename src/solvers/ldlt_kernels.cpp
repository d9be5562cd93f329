#include "solvers/ldlt_kernels.h"

namespace morlen {

std::span<const LdltKernel* const> LdltKernels(Processor processor)
{
  static constexpr const LdltKernel* kernels[] = {&kAvx512LdltKernel, &kAvx2LdltKernel,
                                                  &kPlainLdltKernel};
  const std::span<const LdltKernel* const> all(kernels);
  switch (processor) {
    case Processor::kAvx512:
      return all;
    case Processor::kAvx2:
      return all.subspan(1);
    case Processor::kPlain:
      break;
  }
  return all.subspan(2);
}

}  // namespace morlen
