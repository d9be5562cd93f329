#include "base/large_array.h"

namespace morlen {

void AskForLargePages(void*, std::size_t) {}

}  // namespace morlen
