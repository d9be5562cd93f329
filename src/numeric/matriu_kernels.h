#pragma once

#include <algorithm>
#include <concepts>

#include "base/errorwriter.h"
#include "numeric/matriu.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"

namespace morlen {

class Transpose;

/// An operand of the matrix operators: a matrix, a temporary or a transposed view, used
/// through Rows(), Cols() and (i, j).
template <class M>
concept MatrixOperand = std::derived_from<M, Matriu> || std::same_as<M, Transpose>;

/// The kernels of the matrix operators: EntryWise and Product. An operation is
/// a record with the formula of an entry and the texts of its refusals.
namespace matriu_kernels {

struct Negated
{
  double operator()(double x) const { return -x; }
  [[noreturn]] void FatalZeroSize(const auto&) const
  {
    Fatal("Can't change sign a zero size Matriu");
  }
};

struct Plus
{
  double value;
  double operator()(double x) const { return x + value; }
  [[noreturn]] void FatalZeroSize(const auto&) const
  {
    Fatal("Can't add ", value, " to a zero size Matriu");
  }
};

struct Less
{
  double value;
  double operator()(double x) const { return x - value; }
  [[noreturn]] void FatalZeroSize(const Matriu&) const
  {
    Fatal("Can't subtract ", value, " from a zero size Matriu");
  }
  [[noreturn]] void FatalZeroSize(const Transpose&) const
  {
    Fatal("Can't substract ", value, " to a zero size Matriu");
  }
};

struct Times
{
  double value;
  double operator()(double x) const { return x * value; }
  [[noreturn]] void FatalZeroSize(const auto&) const
  {
    Fatal("Can't multiply by ", value, " a zero size Matriu");
  }
};

struct DividedBy
{
  double value;
  double operator()(double x) const { return x / value; }
  [[noreturn]] void FatalZeroSize(const auto&) const
  {
    Fatal("Can't divide by ", value, " a zero size Matriu");
  }
};

struct Sum
{
  static constexpr const char* kZeroText = "Can't add zero sized matrices";
  static constexpr const char* kShapeText = "Can't add two Matriu with diferent sizes\n";
  double operator()(double x, double y) const { return x + y; }
};

struct Difference
{
  static constexpr const char* kZeroText = "Can't subtract zero sized matrices";
  static constexpr const char* kShapeText = "Can't subtract two Matriu with diferent sizes\n";
  double operator()(double x, double y) const { return x - y; }
};

/// Refuses a matrix without entries, and then a divisor of exactly 0.
template <MatrixOperand M, class Op>
void RequireOperand(const M& m, const Op& op)
{
  if (m.Size() == 0)
    op.FatalZeroSize(m);
  if constexpr (std::same_as<Op, DividedBy>)
    if (op.value == 0.0)
      Fatal("Matriu division by zero scalar error");
}

/// Refuses two matrices of which one has no entries.
template <MatrixOperand A, MatrixOperand B>
void RequireEntries(const A& a, const B& b, const char* zeroText)
{
  if (a.Size() == 0 || b.Size() == 0)
    Fatal(zeroText);
}

/// Ends the run with the text and the shapes of the operands; those of a view are transposed.
template <MatrixOperand A, MatrixOperand B, class... Text>
[[noreturn]] void FatalShapes(const A& a, const B& b, const Text&... text)
{
  Fatal(text..., "\tMatriu 1 : nrows=", a.Rows(), ", ncols=", a.Cols(),
        "\n\tMatriu 2 : nrows=", b.Rows(), ", ncols=", b.Cols());
}

template <MatrixOperand A, MatrixOperand B, class Op>
void RequireOperands(const A& a, const B& b, const Op&)
{
  RequireEntries(a, b, Op::kZeroText);
  if (a.Rows() != b.Rows() || a.Cols() != b.Cols())
    FatalShapes(a, b, Op::kShapeText);
}

/// The matrix whose entries are entry(i, j).
template <class Entry>
MatriuT Build(int rows, int cols, const Entry& entry)
{
  MatriuT result(rows, cols);
  for (int i = 1; i <= rows; i++)
    for (int j = 1; j <= cols; j++)
      result(i, j) = entry(i, j);
  return result;
}

/// The matrix of op(m(i, j)).
template <MatrixOperand M, class Op>
MatriuT EntryWise(const M& m, Op op)
{
  RequireOperand(m, op);
  return Build(m.Rows(), m.Cols(), [&](int i, int j) { return op(m(i, j)); });
}

/// The matrix of op(a(i, j), b(i, j)).
template <MatrixOperand A, MatrixOperand B, class Op>
MatriuT EntryWise(const A& a, const B& b, Op op)
{
  RequireOperands(a, b, op);
  return Build(a.Rows(), a.Cols(), [&](int i, int j) { return op(a(i, j), b(i, j)); });
}

/// Replaces each entry x of m by op(x).
template <class Op>
Matriu& EntryWiseInPlace(Matriu& m, Op op)
{
  RequireOperand(m, op);
  std::transform(m.Data(), m.Data() + m.Size(), m.Data(), op);
  return m;
}

/// Replaces each entry x of a by op(x, y), y the entry of b in its place.
template <class Op>
Matriu& EntryWiseInPlace(Matriu& a, const Matriu& b, Op op)
{
  RequireOperands(a, b, op);
  std::transform(a.Data(), a.Data() + a.Size(), b.Data(), a.Data(), op);
  return a;
}

/// The letter for the kinds of the operands of a product in its message.
template <MatrixOperand A, MatrixOperand B>
constexpr char kProductLabel = "ACBD"[2 * std::same_as<A, Transpose> + std::same_as<B, Transpose>];

/// The product of two matrices.
template <MatrixOperand A, MatrixOperand B>
MatriuT Product(const A& a, const B& b)
{
  RequireEntries(a, b, "Can't multiply zero sized matrices");
  if (a.Cols() != b.Rows())
    FatalShapes(a, b, "Incompatible dimensions for multiply -", kProductLabel<A, B>, "-\n");
  MatriuT result(a.Rows(), b.Cols());
  result = 0.0;
  for (int i = 1; i <= a.Rows(); i++)
    for (int k = 1; k <= a.Cols(); k++) {
      const double aik = a(i, k);
      for (int j = 1; j <= b.Cols(); j++)
        result(i, j) += aik * b(k, j);
    }
  return result;
}

/// The product of a matrix and a column.
template <MatrixOperand M, DenseVector V>
typename V::Temporary Product(const M& m, const V& v)
{
  constexpr bool isReaVec = std::same_as<typename V::Owner, ReaVec>;
  if (m.Cols() != v.Size())
    Fatal(isReaVec ? "error in ReaVecT  operator *. No correct size (file Matriu A)\n"
                   : "error in ReaVecT  operator *. No correct size(file Matriu B)\n");
  typename V::Temporary result(m.Rows());
  for (int i = 1; i <= m.Rows(); i++) {
    double sum = 0.0;
    for (int k = 1; k <= m.Cols(); k++)
      sum += m(i, k) * v(k);
    result(i) = sum;
  }
  return result;
}

}  // namespace matriu_kernels

}  // namespace morlen
