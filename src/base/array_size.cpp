#include "base/array_size.h"

#include <limits>

#include "base/errorwriter.h"

namespace morlen {

int ArrayLength(long long count, int each)
{
  constexpr int kMost = std::numeric_limits<int>::max();
  if (count < 0 || each < 0 || (each > 0 && count > kMost / each))
    Fatal("Not space available on heap");
  return static_cast<int>(count * each);
}

}  // namespace morlen
