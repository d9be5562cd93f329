#include "direct/blas_kernels.h"

#include <cstdlib>
#include <cstring>

extern "C" {
char* openblas_get_corename();
void gotoblas_dynamic_init();
void gotoblas_dynamic_quit();
}

namespace morlen::direct {

void ChooseBlasKernels(Processor processor)
{
  constexpr const char* kVariable = "OPENBLAS_CORETYPE";
  constexpr const char* kOldest = "Prescott";
  if (processor == Processor::kPlain || std::getenv(kVariable) ||
      std::strcmp(openblas_get_corename(), kOldest) != 0)
    return;
  setenv(kVariable, processor == Processor::kAvx512 ? "SkylakeX" : "Haswell", 1);
  gotoblas_dynamic_quit();
  gotoblas_dynamic_init();
  unsetenv(kVariable);
}

const char* BlasKernels()
{
  return openblas_get_corename();
}

}  // namespace morlen::direct
