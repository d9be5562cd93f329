#pragma once

#include <vector>

#include "solvers/compressed_rows.h"
#include "solvers/system_matrix.h"

namespace morlen {

/// Square matrix of single entries in compressed rows.
///
/// Each row has a fixed number of slots. A slot is free until a number added to the row gives it
/// a column; the free slots of a row come last. They are left out of products, factorisations
/// and dumps. Not used by the analysis itself, whose nodes have three or six equations: see
/// NodeBlockMatrix.
class SparseMatrix : public SystemMatrix
{
public:
  /// One row length for each of the n rows; all slots free. Fatal when n < 1, or when there
  /// are more slots than an int can count.
  SparseMatrix(int n, const int* rowLengths);

  int GiveSlots() const override { return starts.back(); }

  double& set(int i, int j) override;
  double operator()(int i, int j) const override;

  /// Adds v to (i, j), which takes the first free slot of row i when it has none. Fatal when
  /// there is no free slot, and outside the matrix.
  void addToLhs(int i, int j, double v) override;

  void mult(const double* x, double* y) const override;
  void trans_mult(const double* x, double* y) const override;
  double MultiplyVector(int i, const double* x) const override;

  void Fix_Row_Dalvek(int i) override;
  /// The same; fatal when row i has neither column i nor a free slot.
  void Fix_Row(int i);

  void NullifyMatrix() override;
  void PrintTo(std::ostream& out) const override;

  /// Calls visit(column, value) for every slot of row i that has a column, in slot order.
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const
  {
    for (int s = starts[i]; s < starts[i + 1] && columns[s] != kFree; ++s)
      visit(columns[s], values[s]);
  }

private:
  static constexpr int kFree = -1;

  /// The slot of (i, j), else the first free one of row i; starts[i + 1] when there is neither.
  int FindSlot(int i, int j) const;
  CompressedView Rows() const { return {GiveSize(), values.data(), columns.data(), starts.data()}; }

  std::vector<int> starts;   ///< row i has the slots starts[i] to starts[i + 1] - 1
  std::vector<int> columns;  ///< of every slot, or kFree
  std::vector<double> values;
  int freeSlots;  ///< how many there are
};

}  // namespace morlen
