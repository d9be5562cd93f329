#include "base/array_size.h"

#include <limits>

#include "base/errorwriter.h"

namespace morlen {

int ArrayLength(long long count, int each)
{
  constexpr int kMost = std::numeric_limits<int>::max();
  if (count < 0 || each < 0)
    Fatal("Not space available on heap");
  if (each > 0 && count > kMost / each)
    TooManyToCount("values of an array");
  return static_cast<int>(count * each);
}

void TooManyToCount(const char* what)
{
  Explain("the model is too large: it has more than ", std::numeric_limits<int>::max(), " ", what);
  Fatal("Not space available on heap");
}

}  // namespace morlen
