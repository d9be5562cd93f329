#include "numeric/qsort.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "numeric/reavec.h"

namespace morlen {

namespace {

// Sorts pairs of keys and companions, then takes them apart again.
template <class Companion>
void SortPairs(int* a, Companion* b, int n)
{
  using Pair = std::pair<int, Companion>;
  std::vector<Pair> pairs;
  pairs.reserve(static_cast<std::size_t>(std::max(n, 0)));
  for (int i = 0; i < n; ++i)
    pairs.emplace_back(a[i], b[i]);
  std::sort(pairs.begin(), pairs.end(),
            [](const Pair& x, const Pair& y) { return x.first < y.first; });
  for (const auto& [key, companion] : pairs) {
    *a++ = key;
    *b++ = companion;
  }
}

}  // namespace

void QSort(double* a, int start, int n)
{
  // A total order, with everything that is not a number after all numbers.
  const auto isBelow = [](double x, double y) {
    return x < y || (std::isnan(y) && !std::isnan(x));
  };
  if (n > 0)
    std::sort(a + start, a + start + n, isBelow);
}

void QSort(int* a, int start, int n)
{
  if (n > 0)
    std::sort(a + start, a + start + n);
}

void QSort(int* a, int* b, int start, int n)
{
  SortPairs(a + start, b + start, n);
}

void QSort(int* a, double* b, int start, int n)
{
  SortPairs(a + start, b + start, n);
}

void QSort(ReaVec& v, int start, int n)
{
  if (n > 0)
    QSort(v.Data(), ResolveRange(v.Size(), start, n).first, n);
}

}  // namespace morlen
