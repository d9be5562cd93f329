// The loops over blocks for the base instruction set of the build.

#include "solvers/block_kernel_loops.h"
#include "solvers/block_kernel_sets.h"

namespace morlen {

const BlockKernels kPlainKernels3 = MakeKernels<3, 2>();
const BlockKernels kPlainKernels6 = MakeKernels<6, 2>();

}  // namespace morlen
