#include "solvers/ldlt_factorisation.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "base/interruption.h"
#include "solvers/ldlt_blocks.h"

namespace morlen {

// The factorisation A = L·D·Lᵀ of a symmetric matrix in profile storage.
//
// Row j of the product gives, for the columns i <= j from the first of its profile,
//
//   G(j,i) = A(j,i) - Σ L(i,k)·G(j,k) over k < i,   L(j,i) = G(j,i) / D(i),   D(j) = G(j,j).
//
// The speed comes from reading each number of L once for many rows:
//
//  - kPanelRows rows form a panel. A panel is copied from its rows, with zeros down to the lowest
//    column among them. An L(i,k) that is read serves all rows of the panel.
//  - The panels whose rows have the numbers of the columns of a chunk form a batch. A block of L
//    that is read serves all panels of the batch.
//
// For each batch, chunk by chunk of columns (FactoriseChunk):
//
//  1. FinishInChunk completes G in the columns of the chunk, divides it by D and keeps the result,
//     L, as a block.
//  2. SubtractChunk subtracts the products of this chunk from all later columns of the batch.
//  3. In the last chunk, that of the batch's own rows, Eliminate works row by row, with the check
//     of each pivot; StoreRows writes the finished rows back.
//
// Storage: A. Jennings, A compact storage scheme for the solution of symmetric linear simultaneous
// equations, The Computer Journal 9 (1966). Blocks: K. Goto, R. A. van de Geijn, Anatomy of
// high-performance matrix multiplication, ACM Transactions on Mathematical Software 34 (2008).

namespace {

/// 1/kKeptPart of the memory of the matrix may be used for blocks, besides keptBytes.
constexpr std::size_t kKeptPart = 8;

int RoundUp(int value, int multiple)
{
  return (value + multiple - 1) / multiple * multiple;
}

/// For each group of `count` rows: the lowest first column of its rows, and at most its first row.
std::vector<int> FirstColumns(const ProfileRows& matrix, int n, int count)
{
  std::vector<int> starts;
  for (int row = 0; row < RoundUp(n, kPanelRows); row += count) {
    starts.push_back(std::min(row, n));
    for (int r = row; r < std::min(row + count, n); ++r)
      starts.back() = std::min(starts.back(), matrix.FirstColumn(r));
  }
  return starts;
}

std::size_t KeptBytes(const ProfileRows& matrix, int n, const LdltOptions& options)
{
  std::size_t entries = 0;
  for (int row = 0; row < n; ++row)
    entries += static_cast<std::size_t>(matrix.heights[row]);
  return options.keptBytes + entries * sizeof(double) / kKeptPart;
}

/// The panel of rows that is being factorised, column by column.
struct Panel
{
  /// A column of the panel's rows.
  struct alignas(64) Column
  {
    double values[kPanelRows];
  };

  int Row() const { return number * kPanelRows; }
  double* At(int column) { return columns[column - origin].values; }

  int number;  ///< first row / kPanelRows
  int origin;  ///< first column held, that of a chunk
  int first;   ///< first column worked on, that of a panel
  std::vector<Column> columns;
  double diagonal[kPanelRows];  ///< entries of the matrix on the diagonal
};

/// One factorisation.
class Factorisation
{
public:
  Factorisation(const ProfileRows& rows, int size, const LdltOptions& ldltOptions);
  /// The first row whose pivot is refused, or -1.
  int Run();

private:
  int RowsOf(const Panel& panel) const { return std::min(kPanelRows, n - panel.Row()); }

  int FactoriseChunk(int chunk);
  void Load(Panel& panel, int number);
  void LoadColumns(Panel& panel, int first, int end);
  void FinishInChunk(Panel& panel, int chunk);
  void SubtractChunk(std::span<Panel> batch, int chunk);
  void ReduceOwnGroup(Panel& panel, int chunk, int group);
  int Eliminate(Panel& panel);
  bool HoldRow(Panel& panel, int r);
  void StoreRows(const Panel& panel, int count) const;

  /// The products of the panel with a block of the chunk, up to column `end`.
  LdltStep StepFor(Panel& panel, int chunk, int end, int blockPanel, const double* block);
  /// The block, as it is kept or packed from the rows of the matrix.
  const double* FindOrPack(int panel, int chunk);
  void PackRow(int row, int chunk);
  /// The offset of row r of a panel in its blocks.
  int RowInBlock(int r) const
  {
    return r / kernel.groupRows * kernel.groupRows * kChunkColumns + r % kernel.groupRows;
  }

  const ProfileRows matrix;
  const int n;
  const LdltOptions& options;
  const LdltKernel& kernel;
  const int groups;  ///< of a panel's rows
  const std::vector<int> groupStarts;
  const std::vector<int> tileStarts;
  LdltBlocks blocks;
  std::vector<double> pivots;
  Panel panels[kPanelsPerChunk];
  std::vector<double> packed;  ///< a block that is not kept
  RowFetcher nextRows;         ///< of the next batch
};

Factorisation::Factorisation(const ProfileRows& rows, int size, const LdltOptions& ldltOptions)
    : matrix(rows),
      n(size),
      options(ldltOptions),
      kernel(*ldltOptions.kernel),
      groups(kPanelRows / kernel.groupRows),
      groupStarts(FirstColumns(matrix, n, kernel.groupRows)),
      tileStarts(FirstColumns(matrix, n, kernel.tileRows)),
      blocks(FirstColumns(matrix, n, kPanelRows), KeptBytes(matrix, n, ldltOptions)),
      pivots(static_cast<std::size_t>(RoundUp(n, kPanelRows))),
      packed(kBlockSize),
      nextRows(rows)
{
}

int Factorisation::Run()
{
  for (int chunk = 0; chunk * kChunkColumns < n; ++chunk) {
    const int refused = FactoriseChunk(chunk);
    if (refused >= 0)
      return refused;
  }
  return -1;
}

/// Factorises the batch whose rows have the numbers of the chunk's columns. Returns like Run.
int Factorisation::FactoriseChunk(int ownChunk)
{
  const int firstPanel = ownChunk * kPanelsPerChunk;
  int firstChunk = ownChunk;
  int count = 0;
  for (; count < kPanelsPerChunk && (firstPanel + count) * kPanelRows < n; ++count) {
    Load(panels[count], firstPanel + count);
    firstChunk = std::min(firstChunk, blocks.FirstChunk(firstPanel + count));
  }
  const int nextRow = std::min(n, (ownChunk + 1) * kChunkColumns);
  nextRows.Begin(nextRow, std::min(n, nextRow + kChunkColumns));
  const std::span<Panel> batch(panels, static_cast<std::size_t>(count));
  for (int chunk = firstChunk; chunk < ownChunk; ++chunk) {
    for (Panel& panel : batch)
      FinishInChunk(panel, chunk);
    SubtractChunk(batch, chunk);
  }
  for (Panel& panel : batch) {
    FinishInChunk(panel, ownChunk);
    nextRows.FetchSome();
    const int refused = Eliminate(panel);
    StoreRows(panel, refused < 0 ? RowsOf(panel) : refused + 1);
    if (refused >= 0)
      return panel.Row() + refused;
  }
  blocks.EndPanels(firstPanel, batch.back().number);
  return -1;
}

void Factorisation::Load(Panel& panel, int number)
{
  const int end = (number + 1) * kPanelRows;
  panel.number = number;
  panel.origin = blocks.FirstChunk(number) * kChunkColumns;
  panel.first = blocks.PanelStart(number) / kPanelRows * kPanelRows;
  panel.columns.resize(
      std::max(panel.columns.size(), static_cast<std::size_t>(end - panel.origin)));
  for (int r = 0; r < RowsOf(panel); ++r)
    panel.diagonal[r] = matrix.rows[panel.Row() + r][0];
  for (int first = panel.first; first < end; first += kPanelRows)
    LoadColumns(panel, first, first + kPanelRows);
}

void Factorisation::LoadColumns(Panel& panel, int first, int end)
{
  std::fill_n(panel.columns.begin() + (first - panel.origin), end - first, Panel::Column{});
  for (int r = 0; r < RowsOf(panel); ++r) {
    const int row = panel.Row() + r;
    const int last = std::min(end - 1, row);
    double* const to = panel.At(first) + r;
    for (int k = std::max(first, matrix.FirstColumn(row)); k <= last; ++k)
      to[(k - first) * kPanelRows] = matrix.rows[row][row - k];
  }
}

LdltStep Factorisation::StepFor(Panel& panel, int chunk, int end, int blockPanel,
                                const double* block)
{
  return {.target = panel.At(blockPanel * kPanelRows),
          .panel = panel.At(chunk * kChunkColumns),
          .block = block,
          .tileStarts = &tileStarts[panel.number * (kPanelRows / kernel.tileRows)],
          .groupStarts = &groupStarts[blockPanel * groups],
          .chunk = chunk * kChunkColumns,
          .end = end,
          .firstTile = 0};
}

/// Completes G and L of the panel in those columns of the chunk that come before its own rows.
void Factorisation::FinishInChunk(Panel& panel, int chunk)
{
  if (chunk < blocks.FirstChunk(panel.number))
    return;
  double* const own = blocks.Add(panel.number, chunk);
  const int first = std::max(chunk * kChunkColumns, panel.first);
  const int end = std::min((chunk + 1) * kChunkColumns, panel.Row());
  if (first >= end)
    return;
  for (int other = first / kPanelRows; other * kPanelRows < end; ++other)
    kernel.solve(StepFor(panel, chunk, end, other, FindOrPack(other, chunk)), other * kPanelRows,
                 groups);
  kernel.divide(panel.At(first), &pivots[first],
                own + (first - chunk * kChunkColumns) * kernel.groupRows, end - first);
}

/// Subtracts the products of the chunk from the columns after it.
void Factorisation::SubtractChunk(std::span<Panel> batch, int chunk)
{
  const int end = (chunk + 1) * kChunkColumns;
  for (int other = end / kPanelRows; other < batch.back().number; ++other) {
    if (blocks.PanelStart(other) >= end)
      continue;
    CheckInterruption();
    const double* const block = FindOrPack(other, chunk);
    for (Panel& panel : batch) {
      if (panel.number <= other || panel.first >= end)
        continue;
      nextRows.FetchSome();
      kernel.subtract(StepFor(panel, chunk, end, other, block), groups);
    }
  }
  for (Panel& panel : batch)
    for (int group = 0; group < groups && panel.first < end; ++group)
      ReduceOwnGroup(panel, chunk, group);
}

// Works only on the tiles that reach below the diagonal.
void Factorisation::ReduceOwnGroup(Panel& panel, int chunk, int group)
{
  const int row = group * kernel.groupRows;
  const int end = std::min((chunk + 1) * kChunkColumns, panel.Row() + row);
  LdltStep step = StepFor(panel, chunk, end, panel.number, blocks.Find(panel.number, chunk));
  step.target += row * kPanelRows;
  step.block += row * kChunkColumns;
  step.groupStarts += group;
  step.firstTile = row / kernel.tileRows;
  kernel.subtract(step, 1);
}

/// Factorises the block of the panel on the diagonal. Returns the index of the refused row, or -1.
int Factorisation::Eliminate(Panel& panel)
{
  const int chunk = panel.Row() / kChunkColumns;
  double* const own = blocks.Find(panel.number, chunk);
  for (int r = 0; r < RowsOf(panel); ++r) {
    const int row = panel.Row() + r;
    const int group = r / kernel.groupRows;
    if (r % kernel.groupRows == 0)
      ReduceOwnGroup(panel, chunk, group);
    pivots[row] = panel.At(row)[r];
    options.onRow(row);
    if (!AcceptsPivot(pivots[row], panel.diagonal[r], options.lostPart) && !HoldRow(panel, r))
      return r;
    kernel.eliminate({.group = panel.At(panel.Row() + group * kernel.groupRows),
                      .block = own + row % kChunkColumns * kernel.groupRows,
                      .column = r});
  }
  return -1;
}

/// Adds the stiffness of `hold` to the refused pivot of a row. Returns false when there is no
/// `hold` or the sum is 0 or not finite.
bool Factorisation::HoldRow(Panel& panel, int r)
{
  if (!options.hold || !std::isfinite(pivots[panel.Row() + r]))
    return false;
  const int row = panel.Row() + r;
  pivots[row] += options.hold(row, panel.diagonal[r]);
  panel.At(row)[r] = pivots[row];
  return std::isfinite(pivots[row]) && pivots[row] != 0.0;
}

/// Writes the first `count` rows of the panel, which are finished, into the matrix.
void Factorisation::StoreRows(const Panel& panel, int count) const
{
  for (int r = 0; r < count; ++r) {
    const int row = panel.Row() + r;
    if (r + 1 < count)
      FetchRow(matrix.rows[row + 1], matrix.heights[row + 1]);
    double* const entries = matrix.rows[row];
    entries[0] = pivots[row];
    for (int k = matrix.FirstColumn(row), end; k < row; k = end) {
      const int chunk = k / kChunkColumns;
      end = std::min(row, (chunk + 1) * kChunkColumns);
      const double* const l = blocks.Find(panel.number, chunk) + RowInBlock(r);
      for (; k < end; ++k)
        entries[row - k] = l[(k - chunk * kChunkColumns) * kernel.groupRows];
    }
  }
}

const double* Factorisation::FindOrPack(int panel, int chunk)
{
  if (const double* const block = blocks.Find(panel, chunk))
    return block;
  std::fill(packed.begin(), packed.end(), 0.0);
  for (int row = panel * kPanelRows; row < (panel + 1) * kPanelRows; ++row)
    PackRow(row, chunk);
  return packed.data();
}

void Factorisation::PackRow(int row, int chunk)
{
  const int first = chunk * kChunkColumns;
  const int end = std::min(row, first + kChunkColumns);
  double* const to = packed.data() + RowInBlock(row % kPanelRows);
  for (int k = std::max(first, matrix.FirstColumn(row)); k < end; ++k)
    to[(k - first) * kernel.groupRows] = matrix.rows[row][row - k];
}

}  // namespace

int FactoriseLdlt(const ProfileRows& matrix, int n, const LdltOptions& options)
{
  return Factorisation(matrix, n, options).Run();
}

}  // namespace morlen
