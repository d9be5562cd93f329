#include "solvers/ldlt_tiles.h"

namespace morlen {

/// See ldlt_kernels.h.
extern const LdltKernel kPlainLdltKernel;
constinit const LdltKernel kPlainLdltKernel = LdltTiles<2, 2, 4>::Kernel("plain");

}  // namespace morlen
