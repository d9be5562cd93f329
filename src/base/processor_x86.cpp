#include "base/processor.h"

namespace morlen {

Processor ThisProcessor()
{
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma"))
    return Processor::kPlain;
  const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                    __builtin_cpu_supports("avx512dq");
  return wide ? Processor::kAvx512 : Processor::kAvx2;
}

}  // namespace morlen
