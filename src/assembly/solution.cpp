#include "assembly/solution.h"

#include <algorithm>
#include <cstddef>

namespace morlen {

int MeshResults::Block(int elemNumber) const
{
  // The place is known at once when the elements are numbered without gaps.
  std::size_t place = static_cast<std::size_t>(elemNumber - numbers.front());
  if (place >= numbers.size() || numbers[place] != elemNumber)
    place = static_cast<std::size_t>(std::lower_bound(numbers.begin(), numbers.end(), elemNumber) -
                                     numbers.begin());
  return static_cast<int>(place) * blockSize;
}

}  // namespace morlen
