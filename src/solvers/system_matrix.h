#pragma once

#include <cstddef>
#include <ostream>

namespace morlen {

/// The square matrix of a system of equations, stored by rows; rows, columns and slots run from 0.
/// The iterative methods know a matrix by this interface.
///
/// A slot is the storage of one entry. Entries without a slot are 0. The analysis itself does not
/// use set, operator(), trans_mult, MultiplyVector, NullifyMatrix and PrintTo.
class SystemMatrix
{
public:
  virtual ~SystemMatrix() = default;

  int GiveSize() const { return n; }
  int GiveColumns() const { return n; }
  virtual int GiveSlots() const = 0;

  /// The value at (i, j). Fatal when it has no slot.
  virtual double& set(int i, int j) = 0;

  /// The value at (i, j); 0 when it has no slot. Fatal outside the matrix.
  virtual double operator()(int i, int j) const = 0;

  /// Adds v to (i, j). Fatal when there is no slot for it, and outside the matrix.
  virtual void addToLhs(int i, int j, double v) = 0;

  /// y = A·x.
  virtual void mult(const double* x, double* y) const = 0;
  /// The same for two vectors; the result of each is bit for bit that of a separate call. The
  /// default makes these calls.
  virtual void MultiplyTwo(const double* const x[2], double* const y[2]) const;
  /// y = Aᵀ·x.
  virtual void trans_mult(const double* x, double* y) const = 0;
  /// Row i times x.
  virtual double MultiplyVector(int i, const double* x) const = 0;

  /// Makes row i the equation of a prescribed value: 1 on the diagonal, 0 in the other slots (1 in
  /// those that are free, see SparseMatrix). Column i of the other rows stays.
  virtual void Fix_Row_Dalvek(int i) = 0;

  /// Sets all values to 0; the columns of the slots stay.
  virtual void NullifyMatrix() = 0;
  void Nullify() { NullifyMatrix(); }

  /// One line a row: four blanks, the column from 1, ':' and the value for every slot that has
  /// a column, in slot order.
  virtual void PrintTo(std::ostream& out) const = 0;

  /// The memory that the matrix is reported to take: a double and an int for every slot, an int
  /// for every row.
  std::size_t StorageBytes() const;

protected:
  explicit SystemMatrix(int n_) : n(n_) {}
  SystemMatrix(const SystemMatrix&) = default;
  SystemMatrix& operator=(const SystemMatrix&) = default;

  void RequireInside(int i, int j) const;
  bool IsInside(int i, int j) const { return i >= 0 && i < n && j >= 0 && j < n; }

private:
  int n;
};

/// SystemMatrix::PrintTo.
std::ostream& operator<<(std::ostream& out, const SystemMatrix& matrix);

// Shared by the matrices.

/// Ends the run: an index is outside a matrix.
[[noreturn]] void OutOfBounds();

/// Ends the run: (i, j) has no slot and is to be set.
[[noreturn]] void NotInStructure(int i, int j);

/// Ends the run: row i, of so many slots, has none for a further column.
[[noreturn]] void RowIsFull(int i, int slots);

/// Row i times x, for a matrix with ForEachInRow.
template <class Matrix>
double RowTimesVector(const Matrix& matrix, int i, const double* x)
{
  double sum = 0.0;
  matrix.ForEachInRow(i, [&](int j, double value) { sum += value * x[j]; });
  return sum;
}

/// SystemMatrix::PrintTo for a matrix with ForEachInRow.
template <class Matrix>
void PrintRows(const Matrix& matrix, std::ostream& out)
{
  for (int i = 0; i < matrix.GiveSize(); ++i) {
    matrix.ForEachInRow(i, [&](int j, double value) { out << "    " << j + 1 << ":" << value; });
    out << "\n";
  }
}

}  // namespace morlen
