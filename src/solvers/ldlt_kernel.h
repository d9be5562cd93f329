#pragma once

namespace morlen {

/// The inner loops of the L·D·Lᵀ factorisation, for one family of processors each.
///
/// They work on copies of rows, so that vectors run across rows and every load is a contiguous
/// one. A *panel* is kPanelRows rows being factorised, column by column: the entry of row r in
/// a column is element r of its kPanelRows doubles. A *block* is what the finished panels are
/// kept in: their rows of L in the columns of one chunk, in groups of `groupRows` rows, each
/// group column by column like the panel. Columns count from 0, absolute; nothing is checked.
/// The files of the kernels share no function, since one that was compiled for another
/// processor could be linked in the place of its namesake.

constexpr int kPanelRows = 24;
/// Columns of a chunk, whole panels: the panel's part of a chunk stays in the first cache.
constexpr int kChunkColumns = 96;
constexpr int kPanelsPerChunk = kChunkColumns / kPanelRows;
constexpr int kBlockSize = kPanelRows * kChunkColumns;

/// The columns of a panel that belong to the rows of one block, and what is subtracted there:
///   G(j,i) -= Σ G(j,k)·L(i,k) over `chunk` <= k < `end`.
struct LdltStep
{
  double* target;          ///< the panel's column that belongs to the block's first row
  const double* panel;     ///< its column `chunk`
  const double* block;     ///< L(i,k)
  const int* tileStarts;   ///< first column of each tile of the panel's rows
  const int* groupStarts;  ///< first column of each group of the block
  int chunk;               ///< first column of the chunk
  int end;                 ///< behind its last column that is finished
  int firstTile;           ///< the tiles before this one are left out
};

/// A column that is eliminated from the rest of its panel.
struct LdltPivot
{
  double* group;  ///< the panel's columns of the group that it belongs to
  double* block;  ///< the panel's own block at this column: element 0 of the first group
  int column;     ///< within the panel
};

/// A family of processors. `groupRows` and `tileRows` divide kPanelRows.
struct LdltKernel
{
  const char* name;
  int groupRows;
  int tileRows;  ///< rows of the panel that are worked on at a time

  /// A step for `count` groups of the block.
  void (*subtract)(const LdltStep& step, int count);

  /// The same for the groups of a block within the chunk, which `target` is a column of: sums
  /// up to each group's own columns, then solves for these, so that G there is finished.
  void (*solve)(const LdltStep& step, int column, int count);

  /// L(j,k) = G(j,k) / D(k) for `count` columns; block as in LdltPivot.
  void (*divide)(const double* panel, const double* pivots, double* block, int count);

  /// Takes the finished column G(j,k) of a panel, whose pivot is G(k,k), out of the later columns
  /// of its group, and puts L(j,k) into the block.
  void (*eliminate)(const LdltPivot& pivot);
};

}  // namespace morlen
