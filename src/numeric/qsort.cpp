#include "numeric/qsort.h"

#include <cstddef>
#include <tuple>
#include <utility>

#include "numeric/reavec.h"

namespace morlen {

// Quicksort with the median of three as pivot, which leaves short ranges alone, and a
// straight insertion sort over the whole (R. Sedgewick, "Implementing Quicksort
// programs", Communications of the ACM 21, 1978).

namespace {

using Position = std::ptrdiff_t;

bool Below(int a, int b)
{
  return a < b;
}

// A total order: what is not a number stands behind all numbers.
bool Below(double a, double b)
{
  return a < b || (b != b && a == a);
}

// Keys and the arrays that are moved along with them; positions from 0.
template <class Key, class... Companion>
class Columns
{
public:
  explicit Columns(Key* a, Companion*... b) : key(a), companions(b...) {}

  Key KeyAt(Position i) const { return key[i]; }
  bool InOrder(Position i, Position j) const { return !Below(key[j], key[i]); }

  void Exchange(Position i, Position j) const
  {
    std::swap(key[i], key[j]);
    std::apply([i, j](auto*... b) { (std::swap(b[i], b[j]), ...); }, companions);
  }

  void PutInOrder(Position i, Position j) const
  {
    if (!InOrder(i, j))
      Exchange(i, j);
  }

private:
  Key* key;
  std::tuple<Companion*...> companions;
};

// Positions low..high, both ends included.
struct Range
{
  Position low;
  Position high;
  Position Length() const { return high - low + 1; }
};

// Splits a range into one of keys not above and one of keys not below the median of its
// first, middle and last key. The outer two bound the scans.
template <class Array>
std::pair<Range, Range> Split(const Array& array, Range range)
{
  const auto [low, high] = range;
  const Position middle = low + (high - low) / 2;
  array.PutInOrder(low, middle);
  array.PutInOrder(low, high);
  array.PutInOrder(middle, high);
  const auto pivot = array.KeyAt(middle);
  Position i = low;
  Position j = high;
  for (;;) {
    do
      ++i;
    while (Below(array.KeyAt(i), pivot));
    do
      --j;
    while (Below(pivot, array.KeyAt(j)));
    if (i >= j)
      break;
    array.Exchange(i, j);
  }
  return {{low, i == j ? j - 1 : j}, {i == j ? i + 1 : i, high}};
}

// Ranges of this length or less are left to the insertion sort.
constexpr Position kShort = 4;

// Orders the keys up to short ranges.
template <class Array>
void SortRoughly(const Array& array, Range range)
{
  Range pending[32];  // enough: what is worked on halves with every range put off
  int depth = 0;
  for (;;) {
    while (range.Length() > kShort) {
      auto [work, later] = Split(array, range);
      if (work.Length() > later.Length())
        std::swap(work, later);
      pending[depth++] = later;
      range = work;
    }
    if (depth == 0)
      return;
    range = pending[--depth];
  }
}

template <class Array>
void Sort(const Array& array, Position n)
{
  if (n < 2)
    return;
  SortRoughly(array, {0, n - 1});
  Position smallest = 0;
  for (Position i = 1; i < n && i <= kShort; ++i) {
    if (!array.InOrder(smallest, i))
      smallest = i;
  }
  array.Exchange(0, smallest);
  for (Position i = 2; i < n; ++i) {
    for (Position j = i; !array.InOrder(j - 1, j); --j)  // ends at the smallest, in front
      array.Exchange(j - 1, j);
  }
}

}  // namespace

void QSort(double* a, int start, int n)
{
  Sort(Columns(a + start), n);
}

void QSort(int* a, int start, int n)
{
  Sort(Columns(a + start), n);
}

void QSort(int* a, int* b, int start, int n)
{
  Sort(Columns(a + start, b + start), n);
}

void QSort(int* a, double* b, int start, int n)
{
  Sort(Columns(a + start, b + start), n);
}

void QSort(ReaVec& v, int start, int n)
{
  if (n > 0)
    QSort(v.Data(), ResolveRange(v.Size(), start, n).first, n);
}

}  // namespace morlen
