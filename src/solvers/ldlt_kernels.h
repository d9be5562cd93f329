#pragma once

#include <span>

#include "base/processor.h"
#include "solvers/ldlt_kernel.h"

namespace morlen {

/// The kernels that a processor can run, the fastest first; at least one.
std::span<const LdltKernel* const> LdltKernels(Processor processor = ThisProcessor());

// One kernel a file, each compiled with its own options.

/// With the instructions that the whole program is compiled for.
extern const LdltKernel kPlainLdltKernel;
/// Vectors of four, fused multiply and add.
extern const LdltKernel kAvx2LdltKernel;
/// Vectors of eight, fused multiply and add.
extern const LdltKernel kAvx512LdltKernel;

}  // namespace morlen
