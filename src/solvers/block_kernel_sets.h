#pragma once

#include "solvers/block_kernel.h"

namespace morlen {

// The loops of block_kernel_loops.h by instruction set and size of the blocks.

extern const BlockKernels kPlainKernels3;
extern const BlockKernels kPlainKernels6;
extern const BlockKernels kAvx2Kernels3;
extern const BlockKernels kAvx2Kernels6;

}  // namespace morlen
