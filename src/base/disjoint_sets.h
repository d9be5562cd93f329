#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace morlen {

/// A partition of the positions 0 to size - 1 into sets that can be joined (union-find with path
/// halving: R. E. Tarjan and J. van Leeuwen, "Worst-case analysis of set union algorithms", 1984).
class DisjointSets
{
public:
  explicit DisjointSets(std::size_t size) : parent(size)
  {
    std::iota(parent.begin(), parent.end(), std::size_t{0});
  }

  /// The lowest position of the set.
  std::size_t Find(std::size_t i)
  {
    while (parent[i] != i)
      i = parent[i] = parent[parent[i]];
    return i;
  }

  void Join(std::size_t a, std::size_t b)
  {
    a = Find(a);
    b = Find(b);
    parent[std::max(a, b)] = std::min(a, b);
  }

private:
  std::vector<std::size_t> parent;
};

}  // namespace morlen
