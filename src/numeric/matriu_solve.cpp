// Inverse, determinant and direct solution of small dense systems.
//
// Up to order 4, determinants are expanded by cofactors and the inverse is the adjugate over the
// determinant; above, the inverse is a Gauss-Jordan elimination in place. LinSolve eliminates
// (Gauss), LU factors after Crout: L with its diagonal, U with a unit diagonal. Only LinSolve
// exchanges rows, and only for a pivot below 1e-30. Elimination and factors after G. H. Golub and
// C. F. Van Loan, "Matrix Computations", 4th ed. 2013, chapter 3.

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "base/errorwriter.h"
#include "numeric/matriu.h"
#include "numeric/matriu_arithmetic.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

constexpr double kPivotThreshold = 1e-30;
constexpr int kMaxClosedForm = 4;  ///< order up to which determinants are expanded

/// A square matrix of order n <= 4, row by row.
struct SmallMatrix
{
  int n;
  double entries[kMaxClosedForm * kMaxClosedForm];
};

bool IsNegligible(double pivot)
{
  return std::abs(pivot) < kPivotThreshold;
}

/// Refuses a matrix without entries, then one that is not square. `name` is the result for the
/// message.
void RequireSquare(const Matriu& m, const char* name)
{
  if (m.Size() == 0)
    Fatal("Can't compute the ", name, " of a zero size Matriu");
  if (m.Rows() != m.Cols())
    Fatal("Can't compute the ", name, " of a rectangular Matriu\n\tnrows =", m.Rows(),
          ", ncols =", m.Cols());
}

[[noreturn]] void FatalSingular(int n)
{
  Fatal("Inverse of a singular Matriu. Size = (", n, " X ", n, ")");
}

SmallMatrix Small(const Matriu& m)
{
  SmallMatrix small{m.Rows(), {}};
  std::copy_n(m.Data(), m.Size(), small.entries);
  return small;
}

/// The matrix without one row and one column, both counted from 0.
SmallMatrix Minor(const SmallMatrix& m, int row, int col)
{
  SmallMatrix minor{m.n - 1, {}};
  double* out = minor.entries;
  for (int i = 0; i < m.n; i++)
    for (int j = 0; j < m.n; j++)
      if (i != row && j != col)
        *out++ = m.entries[i * m.n + j];
  return minor;
}

double Cofactor(const SmallMatrix& m, int row, int col);

/// The determinant by cofactor expansion along the first row; 1 for order 0.
double Determinant(const SmallMatrix& m)
{
  if (m.n == 0)
    return 1.0;
  if (m.n == 2)
    return m.entries[0] * m.entries[3] - m.entries[1] * m.entries[2];
  double det = 0.0;
  for (int j = 0; j < m.n; j++)
    det += m.entries[j] * Cofactor(m, 0, j);
  return det;
}

double Cofactor(const SmallMatrix& m, int row, int col)
{
  const double minor = Determinant(Minor(m, row, col));
  return (row + col) % 2 == 0 ? minor : -minor;
}

MatriuT AdjugateInverse(const Matriu& m)
{
  const SmallMatrix small = Small(m);
  const double det = Determinant(small);
  if (det == 0.0)
    FatalSingular(small.n);
  MatriuT inverse(small.n, small.n);
  for (int i = 1; i <= small.n; i++)
    for (int j = 1; j <= small.n; j++)
      inverse(i, j) = Cofactor(small, j - 1, i - 1) / det;
  return inverse;
}

/// Step k of the Gauss-Jordan inversion in place, with the diagonal entry as pivot.
void GaussJordanStep(Matriu& a, int k)
{
  const int n = a.Rows();
  const double pivot = a(k, k);
  if (pivot == 0.0)
    FatalSingular(n);
  for (int j = 1; j <= n; j++)
    a(k, j) /= -pivot;
  for (int i = 1; i <= n; i++) {
    if (i == k)
      continue;
    const double factor = a(i, k);
    for (int j = 1; j <= n; j++)
      if (j != k)
        a(i, j) += factor * a(k, j);
  }
  for (int i = 1; i <= n; i++)
    a(i, k) /= pivot;
  a(k, k) = 1.0 / pivot;
}

/// The first row from k on whose entry in column k is not negligible, or 0.
int FindPivotRow(const Matriu& a, int k)
{
  for (int row = k; row <= a.Rows(); row++)
    if (!IsNegligible(a(row, k)))
      return row;
  return 0;
}

template <DenseVector V>
void ExchangeRows(Matriu& a, V& b, int row1, int row2)
{
  for (int j = 1; j <= a.Cols(); j++)
    std::swap(a(row1, j), a(row2, j));
  std::swap(b(row1), b(row2));
}

/// Eliminates column k from the rows below row k.
template <DenseVector V>
void EliminateBelow(Matriu& a, V& b, int k)
{
  const int n = a.Rows();
  for (int i = k + 1; i <= n; i++) {
    const double factor = a(i, k) / a(k, k);
    for (int j = k + 1; j <= n; j++)
      a(i, j) -= factor * a(k, j);
    b(i) -= factor * b(k);
  }
}

template <DenseVector V>
void SubstituteBack(const Matriu& a, const V& b, V& x)
{
  const int n = a.Rows();
  for (int i = n; i >= 1; i--) {
    double rest = b(i);
    for (int j = i + 1; j <= n; j++)
      rest -= a(i, j) * x(j);
    x(i) = rest / a(i, i);
  }
}

template <DenseVector V>
int SolveByElimination(Matriu& a, V& b, V& x)
{
  const int n = a.Rows();
  assert(a.Cols() == n && b.Size() == n);
  for (int k = 1; k <= n; k++) {
    const int row = FindPivotRow(a, k);
    if (row == 0)
      return 1;
    if (row != k)
      ExchangeRows(a, b, k, row);
    EliminateBelow(a, b, k);
  }
  x.resize(n, 0.0);
  SubstituteBack(a, b, x);
  return 0;
}

/// a(row, col) less the product of row `row` of L and column `col` of U, over
/// the first `count` terms.
double LessKnownFactors(const Matriu& a, const Matriu& lu, int row, int col, int count)
{
  double rest = a(row, col);
  for (int k = 1; k <= count; k++)
    rest -= lu(row, k) * lu(k, col);
  return rest;
}

}  // namespace

MatriuT Matriu::i() const
{
  RequireSquare(*this, "inverse");
  if (nrows <= kMaxClosedForm)
    return AdjugateInverse(*this);
  MatriuT inverse(*this);
  for (int k = 1; k <= nrows; k++)
    GaussJordanStep(inverse, k);
  return inverse;
}

double Matriu::det() const
{
  RequireSquare(*this, "determinant");
  if (nrows > kMaxClosedForm)
    Fatal("Not implemented yet determinant for a Matriu greater than 4");
  return Determinant(Small(*this));
}

int Matriu::LinSolve(ReaVec& b, ReaVec& x)
{
  return SolveByElimination(*this, b, x);
}

int Matriu::LinSolve(ReaVecV& b, ReaVecV& x)
{
  return SolveByElimination(*this, b, x);
}

MatriuT Matriu::LU() const
{
  RequireSquare(*this, "crout decomposition");
  MatriuT lu(nrows, ncols);
  for (int j = 1; j <= ncols; j++) {
    for (int i = 1; i < j; i++)
      lu(i, j) = LessKnownFactors(*this, lu, i, j, i - 1) / lu(i, i);
    for (int i = 1; i <= j; i++)
      lu(j, i) = LessKnownFactors(*this, lu, j, i, i - 1);
  }
  return lu;
}

int LULinSolve(const Matriu& lu, ReaVecV& b)
{
  const int n = lu.Rows();
  assert(lu.Cols() == n && b.Size() == n);
  for (int i = 1; i <= n; i++) {
    if (IsNegligible(lu(i, i)))
      return 1;
    for (int k = 1; k < i; k++)
      b(i) -= lu(i, k) * b(k);
    b(i) /= lu(i, i);
  }
  for (int i = n; i >= 1; i--)
    for (int k = i + 1; k <= n; k++)
      b(i) -= lu(i, k) * b(k);
  return 0;
}

}  // namespace morlen
