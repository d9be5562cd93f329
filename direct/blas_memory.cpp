#include "base/memory_limit.h"
#include "direct/blas_kernels.h"

extern "C" void dtrsm_(const char* side, const char* triangle, const char* transposed,
                       const char* diagonal, const int* rows, const int* columns,
                       const double* factor, const double* a, const int* lda, double* b,
                       const int* ldb);

namespace morlen::direct {

// The first product makes BLAS map its memory. The address space for it is tried before.
void ReserveBlasMemory()
{
  RequireAddressSpace(kBlasBytes);
  constexpr int kOne = 1;
  constexpr double kFactor = 1.0;
  const double a = 1.0;
  double b = 1.0;
  dtrsm_("L", "L", "N", "U", &kOne, &kOne, &kFactor, &a, &kOne, &b, &kOne);
}

}  // namespace morlen::direct
