#pragma once

namespace morlen {

/// The inner loops of the L·D·Lᵀ factorisation, for one family of processors each.
///
/// They work on copies of rows, so that vectors run across rows and every load is contiguous. A
/// *panel* has kPanelRows rows that are being factorised, column by column: the entry of row r in
/// a column is element r of its kPanelRows doubles. A *block* has the finished rows of L of a
/// panel in the columns of one chunk, in groups of `groupRows` rows, each group column by column
/// like the panel. Columns count from 0, absolute; nothing is checked. The files of the kernels
/// share no function, because the linker could pick the copy that was compiled for another
/// processor.

constexpr int kPanelRows = 24;
/// Columns of a chunk, whole panels: the panel's part of a chunk stays in the first cache.
constexpr int kChunkColumns = 96;
constexpr int kPanelsPerChunk = kChunkColumns / kPanelRows;
constexpr int kBlockSize = kPanelRows * kChunkColumns;

/// The update of the columns of a panel that have the numbers of the rows of one block:
///   G(j,i) -= Σ G(j,k)·L(i,k) over `chunk` <= k < `end`.
struct LdltStep
{
  double* target;          ///< the panel's column with the number of the block's first row
  const double* panel;     ///< its column `chunk`
  const double* block;     ///< L(i,k)
  const int* tileStarts;   ///< first column of each tile of the panel's rows
  const int* groupStarts;  ///< first column of each group of the block
  int chunk;               ///< first column of the chunk
  int end;                 ///< one past its last finished column
  int firstTile;           ///< the tiles before this one are skipped
};

/// A column that is eliminated from the rest of its panel.
struct LdltPivot
{
  double* group;  ///< the panel's columns of the group that it belongs to
  double* block;  ///< the panel's own block at this column: element 0 of the first group
  int column;     ///< within the panel
};

/// The loops for one family of processors. `groupRows` and `tileRows` divide kPanelRows.
struct LdltKernel
{
  const char* name;
  int groupRows;
  int tileRows;  ///< rows of the panel that are worked on at a time

  /// A step for `count` groups of the block.
  void (*subtract)(const LdltStep& step, int count);

  /// The same for a block whose rows have numbers within the chunk, from `column` on: subtracts up
  /// to each group's own columns, then solves for these, so that G is complete there.
  void (*solve)(const LdltStep& step, int column, int count);

  /// L(j,k) = G(j,k) / D(k) for `count` columns; block as in LdltPivot.
  void (*divide)(const double* panel, const double* pivots, double* block, int count);

  /// Subtracts the products of the finished column G(j,k) of a panel, whose pivot is G(k,k), from
  /// the later columns of its group, and stores L(j,k) in the block.
  void (*eliminate)(const LdltPivot& pivot);
};

}  // namespace morlen
