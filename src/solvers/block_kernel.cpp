#include "solvers/block_kernel.h"

#include "solvers/block_kernel_sets.h"

namespace morlen {

const BlockKernels* GiveBlockKernels(int size, Processor processor)
{
  const bool plain = processor == Processor::kPlain;
  if (size == 3)
    return plain ? &kPlainKernels3 : &kAvx2Kernels3;
  if (size == 6)
    return plain ? &kPlainKernels6 : &kAvx2Kernels6;
  return nullptr;
}

}  // namespace morlen
