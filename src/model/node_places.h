#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/large_memory.h"

namespace morlen {

class Node;

/// The node places of the elements of one mesh.
///
/// An element borrows its places, which lie side by side. They never move and are freed all
/// together, with this object: the places of a deleted element stay unused until then.
class NodePlaces
{
public:
  /// The first of n null places. Fatal when there is no memory.
  Node** Acquire(int n)
  {
    if (end - next < n)
      AddChunk(n);
    Node** const places = std::exchange(next, next + n);
    std::fill_n(places, n, nullptr);
    return places;
  }

private:
  void AddChunk(int least);

  std::vector<LargeBlock> chunks;
  std::size_t lastBytes = 0;  ///< size of the last chunk
  Node** next = nullptr;      ///< free places of the last chunk: next to end
  Node** end = nullptr;
};

}  // namespace morlen
