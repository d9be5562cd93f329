#pragma once

#include <span>

#include "base/processor.h"
#include "solvers/ldlt_kernel.h"

namespace morlen {

/// The kernels that a processor can run, the fastest first; at least one.
std::span<const LdltKernel* const> LdltKernels(Processor processor = ThisProcessor());

// The kernels by the file that each is compiled in.

/// With the instructions that the whole program is compiled for.
extern const LdltKernel kPlainLdltKernel;
/// Vectors of four, multiply and add in one.
extern const LdltKernel kAvx2LdltKernel;
/// Vectors of eight.
extern const LdltKernel kAvx512LdltKernel;

}  // namespace morlen
