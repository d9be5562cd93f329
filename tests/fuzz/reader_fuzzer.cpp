#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fuzz/targets.h"

using namespace morlen;

/// What libFuzzer calls with every text that it makes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  if (!ReadText({reinterpret_cast<const char*>(data), size}).IsRight())
    std::abort();
  return 0;
}
