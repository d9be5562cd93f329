#pragma once

#include <utility>

#include "numeric/matriu.h"
#include "numeric/matriu_kernels.h"
#include "numeric/vector_functions.h"

namespace morlen {

/// A matrix seen transposed; no entry is moved. The view borrows its source,
/// which must outlive it, or owns it when made from a temporary.
///
/// Rows(), Cols() and (i, j) are those of the transposed matrix.
class Transpose
{
public:
  explicit Transpose(const Matriu& m) : borrowed(&m) {}
  explicit Transpose(Matriu&& m) noexcept : owned(std::move(m)) {}
  explicit Transpose(MatriuT& m) noexcept : owned(m) {}  ///< leaves the temporary empty

  int Rows() const { return Source().Cols(); }
  int Cols() const { return Source().Rows(); }
  int Size() const { return Source().Size(); }
  bool Owns() const { return !borrowed; }
  double operator()(int i, int j) const { return Source()(j, i); }

  /// The transposed matrix, its entries moved to their places.
  operator MatriuT() const;
  /// The untransposed matrix: the array itself when the view owns it (which
  /// leaves the view empty), else a copy.
  Matriu t();
  /// The inverse of the untransposed matrix, seen transposed.
  Transpose i() const;

private:
  const Matriu& Source() const { return borrowed ? *borrowed : owned; }

  const Matriu* borrowed = nullptr;  ///< null when the view owns its source
  Matriu owned;
};

// Every operator refuses operands of size 0 first, then shapes that do not fit
// (for a division, a divisor of exactly 0). Messages give the shapes as seen:
// those of a view are the transposed ones.

template <MatrixOperand M>
MatriuT operator-(const M& m)
{
  return matriu_kernels::EntryWise(m, matriu_kernels::Negated());
}

/// Changes the signs in the array of the temporary, which is left empty.
MatriuT operator-(MatriuT& m);
MatriuT operator-(MatriuT&& m);

template <MatrixOperand M>
MatriuT operator+(const M& m, double value)
{
  return matriu_kernels::EntryWise(m, matriu_kernels::Plus{value});
}

template <MatrixOperand M>
MatriuT operator-(const M& m, double value)
{
  return matriu_kernels::EntryWise(m, matriu_kernels::Less{value});
}

template <MatrixOperand M>
MatriuT operator*(const M& m, double value)
{
  return matriu_kernels::EntryWise(m, matriu_kernels::Times{value});
}

template <MatrixOperand M>
MatriuT operator/(const M& m, double value)
{
  return matriu_kernels::EntryWise(m, matriu_kernels::DividedBy{value});
}

template <MatrixOperand A, MatrixOperand B>
MatriuT operator+(const A& a, const B& b)
{
  return matriu_kernels::EntryWise(a, b, matriu_kernels::Sum());
}

template <MatrixOperand A, MatrixOperand B>
MatriuT operator-(const A& a, const B& b)
{
  return matriu_kernels::EntryWise(a, b, matriu_kernels::Difference());
}

template <MatrixOperand A, MatrixOperand B>
MatriuT operator*(const A& a, const B& b)
{
  return matriu_kernels::Product(a, b);
}

/// The product with a column; for a ReaVec, of a matrix of at most three rows.
template <MatrixOperand M, DenseVector V>
typename V::Temporary operator*(const M& m, const V& v)
{
  return matriu_kernels::Product(m, v);
}

/// The columns of b to the right of those of a.
MatriuT operator&(const Matriu& a, const Matriu& b);
/// The rows of b below those of a.
MatriuT operator|(const Matriu& a, const Matriu& b);

/// True when shapes and all entries are equal.
bool operator==(const Matriu& a, const Matriu& b);

}  // namespace morlen
