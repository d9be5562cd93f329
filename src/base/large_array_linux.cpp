#include <sys/mman.h>

#include "base/large_array.h"

namespace morlen {

// Only whole pages: the last part of the array shares its page with other memory. The result of
// the call is not checked: without large pages the array is only slower.
void AskForLargePages(void* array, std::size_t bytes)
{
  madvise(array, bytes / kLargePage * kLargePage, MADV_HUGEPAGE);
}

}  // namespace morlen
