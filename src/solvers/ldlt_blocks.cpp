#include "solvers/ldlt_blocks.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace morlen {

namespace {

constexpr std::size_t kBlocksPerSlab = 32;

}  // namespace

LdltBlocks::LdltBlocks(std::vector<int> panelStarts, std::size_t mostBytes)
    : starts(std::move(panelStarts)), mostBlocks(mostBytes / sizeof(Block))
{
  const int panels = static_cast<int>(starts.size());
  std::size_t place = 0;
  for (int panel = 0; panel < panels; ++panel) {
    places.push_back(place);
    place += static_cast<std::size_t>(panel / kPanelsPerChunk - FirstChunk(panel) + 1);
  }
  blocks.assign(place, nullptr);
  neededFrom.assign(starts.size(), std::numeric_limits<int>::max());
  for (int panel = panels - 1; panel > 0; --panel)
    neededFrom[panel - 1] = std::min(neededFrom[panel], starts[panel]);
}

std::size_t LdltBlocks::Place(int panel, int chunk) const
{
  return places[panel] + static_cast<std::size_t>(chunk - FirstChunk(panel));
}

double* LdltBlocks::Find(int panel, int chunk) const
{
  if (chunk < FirstChunk(panel))
    return nullptr;
  Block* const block = blocks[Place(panel, chunk)];
  return block ? block->values : nullptr;
}

double* LdltBlocks::Add(int panel, int chunk)
{
  Block* const block = Acquire();
  blocks[Place(panel, chunk)] = block;
  return block->values;
}

LdltBlocks::Block* LdltBlocks::Acquire()
{
  if (unused.empty()) {
    slabs.push_back(std::make_unique<Block[]>(kBlocksPerSlab));
    for (std::size_t k = kBlocksPerSlab; k > 0; --k)
      unused.push_back(&slabs.back()[k - 1]);
  }
  Block* const block = unused.back();
  unused.pop_back();
  return block;
}

void LdltBlocks::Release(int panel, int chunk)
{
  if (chunk < FirstChunk(panel))
    return;
  Block*& block = blocks[Place(panel, chunk)];
  if (block)
    unused.push_back(block);
  block = nullptr;
}

void LdltBlocks::ReleaseChunk(int chunk, int lastPanel)
{
  for (int panel = chunk * kPanelsPerChunk; panel <= lastPanel; ++panel)
    Release(panel, chunk);
}

void LdltBlocks::EndPanels(int first, int last)
{
  // The new panels may have blocks in chunks that were released before.
  for (int panel = first; panel <= last; ++panel)
    for (int chunk = FirstChunk(panel); chunk < firstKept; ++chunk)
      Release(panel, chunk);
  const int lastChunk = last / kPanelsPerChunk;
  const auto used = [&] { return slabs.size() * kBlocksPerSlab - unused.size(); };
  const auto isNeeded = [&](int chunk) { return (chunk + 1) * kChunkColumns > neededFrom[last]; };
  while (firstKept <= lastChunk && (!isNeeded(firstKept) || used() > mostBlocks))
    ReleaseChunk(firstKept++, last);
}

}  // namespace morlen
