// For a BLAS that has one set of kernels.

#include "direct/blas_kernels.h"

namespace morlen::direct {

void ChooseBlasKernels(Processor /*processor*/) {}

const char* BlasKernels()
{
  return "";
}

}  // namespace morlen::direct
