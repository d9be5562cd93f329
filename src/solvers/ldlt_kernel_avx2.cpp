#include "solvers/ldlt_tiles.h"

namespace morlen {

/// See ldlt_kernels.h.
extern const LdltKernel kAvx2LdltKernel;
constinit const LdltKernel kAvx2LdltKernel = LdltTiles<4, 3, 4>::Kernel("AVX2");

}  // namespace morlen
