#include "model/node_places.h"

#include "base/large_array.h"

namespace morlen {

// Chunks grow with their number, so that a small mesh stays small and a large one has large
// pages.
void NodePlaces::AddChunk(int least)
{
  constexpr std::size_t kFirst = std::size_t{1} << 12;
  constexpr std::size_t kLargest = kLargePage;
  const std::size_t needed = static_cast<std::size_t>(least) * sizeof(Node*);
  lastBytes = std::max(std::clamp(4 * lastBytes, kFirst, kLargest), needed);
  chunks.push_back(AllocateLarge(lastBytes));
  next = static_cast<Node**>(static_cast<void*>(chunks.back().get()));
  end = next + lastBytes / sizeof(Node*);
}

}  // namespace morlen
