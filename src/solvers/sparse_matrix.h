#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "solvers/compressed_rows.h"

/// Square matrix in compressed row storage; rows, columns and slots run from 0.
///
/// Each row has a fixed number of slots. A slot is free until a number added to the row gives
/// it a column; free slots are left out of products, factorisations and dumps.
class SparseMatrix
{
public:
  /// One row length for each of the n rows; all slots free. Fatal when n < 1, or when there
  /// are more slots than an int can count.
  SparseMatrix(int n, const int* rowLengths);

  int GiveSize() const { return n; }
  int GiveColumns() const { return n; }
  int GiveSlots() const { return rowStart.back(); }

  /// The value at (i, j), which must have a slot.
  double& set(int i, int j);

  /// The value at (i, j); 0 when it has no slot. Fatal outside the matrix.
  double operator()(int i, int j) const;

  /// Adds v to (i, j), which takes the first free slot of row i when it has none. Fatal when
  /// there is no free slot, and outside the matrix.
  void addToLhs(int i, int j, double v);

  /// Adds v[0], v[step], ... to (i, j) to (i, j + count - 1) without a search, for a caller
  /// who has set aside the slots of row i from `slot` (counted in the row) on for these
  /// columns. The others must always be added in this way too; a slot that addToLhs has
  /// nevertheless given to another column is replaced by what addToLhs finds.
  void AddRun(int i, int slot, int j, int count, const double* v, int step);

  /// Whether the given slot of row i, counted in the row, holds column j.
  bool Holds(int i, int slot, int j) const { return columns[rowStart[i] + slot] == j; }
  double& ValueAt(int i, int slot) { return values[rowStart[i] + slot]; }

  /// y = A·x.
  void mult(const double* x, double* y) const;
  /// y = Aᵀ·x.
  void trans_mult(const double* x, double* y) const;
  /// Row i times x.
  double MultiplyVector(int i, const double* x) const;

  /// Makes row i the equation of a prescribed value: 1 in the slots of column i and in free
  /// ones, 0 in the others. Column i of the other rows stays.
  void Fix_Row_Dalvek(int i);
  /// The same; fatal when row i has neither column i nor a free slot.
  void Fix_Row(int i);

  /// Sets all values to 0; the columns stay.
  void NullifyMatrix();
  void Nullify() { NullifyMatrix(); }

  /// Calls visit(column, value) for every slot of row i that has a column, in slot order.
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const
  {
    for (int s = rowStart[i]; s < rowStart[i + 1]; ++s)
      if (columns[s] != kFree)
        visit(columns[s], values[s]);
  }

  /// A double and an int for every slot, an int for every row.
  std::size_t StorageBytes() const
  {
    return values.size() * (sizeof(double) + sizeof(int)) +
           static_cast<std::size_t>(n) * sizeof(int);
  }

private:
  static constexpr int kFree = -1;

  CompressedView View() const { return {n, values.data(), columns.data(), rowStart.data()}; }
  bool IsInside(int i, int j) const { return i >= 0 && i < n && j >= 0 && j < n; }
  void RequireInside(int i, int j) const;

  /// The first slot of row i that holds the column; GiveSlots() when there is none.
  int FindSlot(int i, int column) const;
  int RowLength(int i) const { return rowStart[i + 1] - rowStart[i]; }
  void Give(int slot, int column);

  int n;
  std::vector<int> rowStart;  ///< n + 1; row i has the slots rowStart[i] to rowStart[i + 1] - 1
  std::vector<int> columns;   ///< of every slot, or kFree
  std::vector<double> values;
  int freeSlots;  ///< how many there are
};

/// One line a row: four blanks, the column from 1, ':' and the value for every slot that has
/// a column.
std::ostream& operator<<(std::ostream& out, const SparseMatrix& matrix);
