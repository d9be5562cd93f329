// The loops over blocks for AVX2 and FMA, by the options of this file.

#include "solvers/block_kernel_loops.h"
#include "solvers/block_kernel_sets.h"

namespace morlen {

const BlockKernels kAvx2Kernels3 = MakeKernels<3, 4>();
const BlockKernels kAvx2Kernels6 = MakeKernels<6, 4>();

}  // namespace morlen
