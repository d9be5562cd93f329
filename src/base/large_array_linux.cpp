#include <sys/mman.h>

#include "base/large_array.h"

namespace morlen {

// A page that the array does not fill is left to what comes behind it. The answer does not
// matter: without large pages the array is just slower.
void AskForLargePages(void* array, std::size_t bytes)
{
  madvise(array, bytes / kLargePage * kLargePage, MADV_HUGEPAGE);
}

}  // namespace morlen
