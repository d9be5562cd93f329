#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "solvers/ldlt_kernel.h"

namespace morlen {

/// The finished rows of L in the form in which the kernel reads them: a block for every panel of
/// rows and every chunk of columns that the panel reaches.
///
/// Method: rows are factorised in order, so that a later panel reads a chunk only if its profile
/// goes back that far. A chunk is released when no later panel reaches it. When the kept blocks
/// exceed the limit of memory, the chunks of the lowest columns are released first: they are
/// needed least often. A block that was released is packed again from the matrix where it is
/// needed. Memory comes in slabs of several blocks; released blocks are reused.
///
/// Panels, chunks and columns count from 0. Fatal when there is no memory.
class LdltBlocks
{
public:
  /// `panelStarts`: the first column of every panel.
  LdltBlocks(std::vector<int> panelStarts, std::size_t mostBytes);

  int PanelStart(int panel) const { return starts[panel]; }
  int FirstChunk(int panel) const { return starts[panel] / kChunkColumns; }

  /// The block; null when it is not kept, or when the panel does not reach the chunk.
  double* Find(int panel, int chunk) const;

  /// A new block, to be filled by the caller.
  double* Add(int panel, int chunk);

  /// To be called when the panels first to `last` are finished: releases the blocks that no later
  /// panel reads, and those beyond the limit of memory.
  void EndPanels(int first, int last);

private:
  struct alignas(64) Block
  {
    double values[kBlockSize];
  };

  std::size_t Place(int panel, int chunk) const;
  Block* Acquire();
  void Release(int panel, int chunk);
  void ReleaseChunk(int chunk, int lastPanel);

  std::vector<int> starts;
  std::vector<int> neededFrom;      ///< by panel: the first column that a later panel reaches
  std::vector<std::size_t> places;  ///< by panel: the place of its first chunk in `blocks`
  std::vector<Block*> blocks;
  std::vector<Block*> unused;
  std::vector<std::unique_ptr<Block[]>> slabs;  ///< own all blocks
  std::size_t mostBlocks;
  int firstKept = 0;  ///< no block of a chunk before this one is kept
};

}  // namespace morlen
