#pragma once

#include <cassert>
#include <cstddef>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <utility>

namespace morlen {

class MatriuT;
class ReaVec;
class ReaVecV;
class Transpose;

/// Dense matrix of doubles on the heap, row by row; indices run from 1. The
/// operators and the transposed view are in matriu_arithmetic.h.
///
/// Expressions return a MatriuT, whose array the target of an assignment takes
/// over; taking over works from a named temporary too and leaves it 0×0.
/// A matrix of size 0 (no rows or no columns) is a legal value, but nearly every operation
/// refuses it. Operations check size 0 first, then the shape, then values. Sizes beyond
/// 2³¹ − 1 are fatal.
///
/// Not used by the analysis itself: I, subMatriu, AddSubmatriu, GiveColumn, the views t(), norms,
/// sums and trace, isZero, scorn, i, det, LinSolve and the input and output of matrices.
class Matriu
{
public:
  Matriu() = default;
  /// Values not initialised. The arguments are wide so that a sum of sizes can be passed unchecked.
  Matriu(long long rows, long long cols) { Reshape(rows, cols); }
  Matriu(const Matriu& m) { *this = m; }
  Matriu(Matriu&& m) noexcept { MoveFrom(m); }
  Matriu(MatriuT& m) noexcept;        ///< leaves the temporary empty
  explicit Matriu(const ReaVec& v);   ///< a column
  explicit Matriu(const ReaVecV& v);  ///< a column
  ~Matriu() = default;

  /// The identity of order n >= 1.
  static MatriuT I(int n);

  Matriu& operator=(const Matriu& m);
  Matriu& operator=(Matriu&& m) noexcept { return MoveFrom(m); }
  Matriu& operator=(MatriuT& m) noexcept;  ///< leaves the temporary empty
  Matriu& operator=(double value);         ///< fills; fatal on size 0

  int Rows() const { return nrows; }
  int Cols() const { return ncols; }
  int Size() const { return nrows * ncols; }
  double* Data() { return data.get(); }
  const double* Data() const { return data.get(); }

  double& operator()(int i, int j) { return data[Position(i, j)]; }
  double operator()(int i, int j) const { return data[Position(i, j)]; }

  /// Changes the shape. The array is kept when the size stays; the values are undefined after.
  void redimension(int rows, int cols);
  /// Rows row0..row1 and columns col0..col1, both ends included; fatal when they
  /// are not inside this matrix.
  MatriuT subMatriu(int row0, int col0, int row1, int col1) const;
  /// Writes m over the entries from (row, col) on: nothing is added. The matrix
  /// is first enlarged with zeros as far as m reaches.
  void AddSubmatriu(int row, int col, const Matriu& m);
  /// Column j of a matrix of at most three rows.
  ReaVec GiveColumn(int j) const;

  Matriu& operator+=(double value);
  Matriu& operator-=(double value);
  Matriu& operator*=(double value);
  Matriu& operator/=(double value);
  Matriu& operator+=(const Matriu& m);
  Matriu& operator-=(const Matriu& m);

  /// The transposed view: borrows this matrix, or takes over the array of an expiring one.
  Transpose t() const&;
  Transpose t() &&;

  double maxAbsVal() const;  ///< largest absolute value of an entry
  double sumAbsVal() const;
  double sumSquare() const;
  double colNorm() const;  ///< largest column sum, signs kept, at least 0
  double rowNorm() const;  ///< largest row sum, signs kept, at least 0
  double trace() const;
  bool isZero() const;     ///< every entry exactly 0; false for size 0
  void scorn(double eps);  ///< sets entries of absolute value <= eps to 0

  /// The inverse. Orders 1 to 4: adjugate over determinant; above: Gauss-Jordan
  /// without pivoting. Fatal on size 0, on a rectangular matrix, and on a
  /// determinant or pivot of exactly 0.
  MatriuT i() const;
  /// The determinant of a matrix of order 1 to 4.
  double det() const;
  /// Solves A x = b by elimination, exchanging rows only for a pivot below
  /// 1e-30. Overwrites this square matrix and b. Returns 0, or 1 when singular.
  int LinSolve(ReaVec& b, ReaVec& x);
  int LinSolve(ReaVecV& b, ReaVecV& x);
  /// Crout factors in one matrix: L with its diagonal, U above with unit diagonal. No pivoting.
  MatriuT LU() const;

  /// Reads the existing entries row by row; the shape is not read.
  void ReadAscii(std::FILE* file);
  void WriteAscii(std::FILE* file) const;
  /// Always fatal: the raw format holds no shape.
  void ReadBinary(std::FILE* file);
  /// Raw doubles row by row, no header.
  void WriteBinary(std::FILE* file) const;

protected:
  /// Takes over the array of m and leaves it 0×0.
  Matriu& MoveFrom(Matriu& m) noexcept;

  /// Gives the array away and becomes 0×0.
  std::unique_ptr<double[]> Release() noexcept;

private:
  std::ptrdiff_t Position(int i, int j) const
  {
    assert(i >= 1 && i <= nrows && j >= 1 && j <= ncols);
    return static_cast<std::ptrdiff_t>(i - 1) * ncols + (j - 1);
  }
  void Reshape(long long rows, long long cols);
  void Enlarge(long long rows, long long cols);

  int nrows = 0;
  int ncols = 0;
  std::unique_ptr<double[]> data = nullptr;  ///< null, or exactly nrows × ncols doubles
};

/// A result on its way to its owner: a Matriu that gives its array away. Its
/// assigning operators return it as such, so that chains work on one array.
class MatriuT : public Matriu
{
public:
  using Matriu::Matriu;
  using Matriu::operator=;
  using Matriu::Release;

  MatriuT() = default;
  MatriuT(MatriuT& m) noexcept : Matriu(m) {}
  MatriuT(MatriuT&& m) noexcept : Matriu(m) {}
  explicit MatriuT(const Matriu& m) : Matriu(m) {}
  explicit MatriuT(Matriu&& m) noexcept : Matriu(std::move(m)) {}
  ~MatriuT() = default;

  MatriuT& operator=(MatriuT& m) noexcept;
  MatriuT& operator=(MatriuT&& m) noexcept { return *this = m; }

  /// The operand is a double, a matrix or a transposed view.
  template <class Operand>
  MatriuT& operator+=(const Operand& operand)
  {
    Matriu::operator+=(operand);
    return *this;
  }
  template <class Operand>
  MatriuT& operator-=(const Operand& operand)
  {
    Matriu::operator-=(operand);
    return *this;
  }
  MatriuT& operator*=(double value)
  {
    Matriu::operator*=(value);
    return *this;
  }
  MatriuT& operator/=(double value)
  {
    Matriu::operator/=(value);
    return *this;
  }

  /// The transposed view, which takes over the array.
  Transpose t();
};

inline Matriu::Matriu(MatriuT& m) noexcept
{
  MoveFrom(m);
}

inline Matriu& Matriu::operator=(MatriuT& m) noexcept
{
  return MoveFrom(m);
}

inline MatriuT& MatriuT::operator=(MatriuT& m) noexcept
{
  MoveFrom(m);
  return *this;
}

/// False when the shapes differ or a pair of entries differs by more than tol. Not used by the
/// analysis itself.
bool AreVeryEqual(const Matriu& a, const Matriu& b, double tol);

/// Solves with the factors of Matriu::LU, overwriting b with the solution.
/// Returns 0, or 1 as soon as a diagonal entry of L is below 1e-30.
int LULinSolve(const Matriu& lu, ReaVecV& b);

/// Column numbers, then each row with its number; not ended by a newline.
std::ostream& operator<<(std::ostream& out, const Matriu& m);

}  // namespace morlen
