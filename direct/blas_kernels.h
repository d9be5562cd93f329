#pragma once

#include <cstddef>

#include "base/processor.h"

namespace morlen::direct {

/// Lets BLAS use the vector instructions that the processor has. The library chooses its kernels by
/// a list of processors, and takes the oldest for one that is newer than the list. An environment
/// variable OPENBLAS_CORETYPE is left to decide. Call it before other threads run.
void ChooseBlasKernels(Processor processor = ThisProcessor());

/// The address space that BLAS maps.
constexpr std::size_t kBlasBytes = (std::size_t{128} << 20) + (std::size_t{1} << 20);

/// Lets BLAS allocate its working memory, which it keeps. Fatal when there is too little: BLAS
/// itself would try for ever.
void ReserveBlasMemory();

/// The name of the kernels that BLAS uses; "" when it has only one set.
const char* BlasKernels();

}  // namespace morlen::direct
