#include "solvers/ldlt_tiles.h"

namespace morlen {

/// See ldlt_kernels.h.
extern const LdltKernel kAvx512LdltKernel;
constinit const LdltKernel kAvx512LdltKernel = LdltTiles<8, 3, 8>::Kernel("AVX-512");

}  // namespace morlen
