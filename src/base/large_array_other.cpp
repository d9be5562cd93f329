#include "base/large_array.h"

void AskForLargePages(void*, std::size_t) {}
