#include "base/large_memory.h"

#include <sys/mman.h>

LargeBlock AllocateLarge(std::size_t bytes)
{
  constexpr std::size_t kPage = std::size_t{1} << 21;
  const std::align_val_t alignment{bytes < kPage ? alignof(std::max_align_t) : kPage};
  LargeBlock block(static_cast<char*>(::operator new[](bytes, alignment)), ReleaseLarge{alignment});
  // A hint: without such pages everything works as well. The rest behind the last whole one
  // stays in small pages, so that nothing is taken in vain.
  if (bytes >= kPage)
    madvise(block.get(), bytes / kPage * kPage, MADV_HUGEPAGE);
  return block;
}
