#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "solvers/ldlt_kernel.h"

namespace morlen {

/// The finished rows of L in the form in which the kernel reads them: for every panel of rows
/// and every chunk of columns that it reaches, a block. They are kept until no later panel
/// reaches the chunk, or, from the lowest columns on, until they would take too much memory.
///
/// Panels, chunks and columns count from 0. Fatal when there is no memory.
class LdltBlocks
{
public:
  /// `panelStarts`: the first column of every panel.
  LdltBlocks(std::vector<int> panelStarts, std::size_t mostBytes);

  int PanelStart(int panel) const { return starts[panel]; }
  int FirstChunk(int panel) const { return starts[panel] / kChunkColumns; }

  /// Null when it is not kept, or when the panel does not reach the chunk.
  double* Find(int panel, int chunk) const;

  /// A block to be filled.
  double* Add(int panel, int chunk);

  /// After the panels first to `last`: gives back what no panel behind them needs, or what there
  /// is no room for.
  void EndPanels(int first, int last);

private:
  struct alignas(64) Block
  {
    double values[kBlockSize];
  };

  std::size_t Place(int panel, int chunk) const;
  Block* Take();
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
