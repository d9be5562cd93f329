#include "base/large_memory.h"

#include "base/large_array.h"

namespace morlen {

LargeBlock AllocateLarge(std::size_t bytes)
{
  const bool large = bytes >= kLargePage;
  if (large)
    bytes += -bytes % kLargePage;  // whole pages
  const std::align_val_t alignment{large ? kLargePage : alignof(std::max_align_t)};
  LargeBlock block(static_cast<char*>(::operator new[](bytes, alignment)), ReleaseLarge{alignment});
  if (large)
    AskForLargePages(block.get(), bytes);
  return block;
}

}  // namespace morlen
