#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <functional>
#include <istream>
#include <ostream>
#include <span>

#include "base/errorwriter.h"

namespace morlen {

class Matriu;
class ReaVecV;

/// Part of a vector: the position of its first component, from 0, and its length.
struct VectorRange
{
  int first;
  int length;
};

/// The part [start, start + length) of a vector of n components: start counts
/// from 1, or from the end when negative (-1 is the last component); length 0
/// means up to the end. Fatal when it is not inside the vector.
VectorRange ResolveRange(int n, int start, int length);

/// The length of two vectors together; fatal when it is beyond the lengths of vectors.
int JoinedLength(int na, int nb);

/// The rows of a matrix of one column; fatal for another matrix.
int ColumnLength(const Matriu& m);

/// "Out of Dimension in Vector".
[[noreturn]] void FatalVectorIndex();
/// "Can't create a vector of size ".
[[noreturn]] void FatalVectorSize(long long length);
/// "Different lenght vectors ".
[[noreturn]] void FatalVectorLengths(int na, int nb);

/// Writes the text of operator<< below.
void WriteVector(std::ostream& out, std::span<const double> values);

/// The members that both vectors share, in terms of V::Size() and V::Data(). The analysis itself
/// does not use min, max, their positions, index, apply, fill, reverse, product and quotient.
template <class V>
class VectorMembers
{
public:
  double* begin() { return Self().Data(); }
  double* end() { return begin() + Self().Size(); }
  const double* begin() const { return Self().Data(); }
  const double* end() const { return begin() + Self().Size(); }

  /// Euclidean norm.
  double modul() const { return std::sqrt(sumsq()); }
  double sumsq() const
  {
    return reduce([](double total, double value) { return total + value * value; }, 0.0);
  }
  double sum() const { return reduce(std::plus<>(), 0.0); }

  /// Smallest and largest component; fatal on an empty vector.
  double min() const { return Self()(min_index()); }
  double max() const { return Self()(max_index()); }
  /// Position from 1 of the first smallest or largest component; 0 for an empty vector.
  int min_index() const { return PositionOf(std::min_element(begin(), end())); }
  int max_index() const { return PositionOf(std::max_element(begin(), end())); }

  /// Position from 1 of the first component that equals the value exactly, or 0.
  int index(double value) const { return PositionOf(std::find(begin(), end(), value)); }

  /// Folds f(accumulator, component) from init over the components in order.
  template <class F, class T>
  T reduce(F f, T init) const
  {
    for (const double component : *this)
      init = f(init, component);
    return init;
  }
  /// Calls f on each component in order.
  template <class F>
  void apply(F f) const
  {
    std::for_each(begin(), end(), f);
  }

  /// Sets `length` components from `start` on, both read as by ResolveRange.
  void fill(double value, int start, int length)
  {
    const VectorRange range = ResolveRange(Self().Size(), start, length);
    std::fill_n(begin() + range.first, range.length, value);
  }
  void reverse() { std::reverse(begin(), end()); }

  /// Multiply or divide each component by that of the other vector, of equal length.
  template <class W>
  V& product(const W& other)
  {
    return CombineInPlace(std::multiplies<>(), Self(), other);
  }
  template <class W>
  V& quotient(const W& other)
  {
    return CombineInPlace(std::divides<>(), Self(), other);
  }

private:
  V& Self() { return static_cast<V&>(*this); }
  const V& Self() const { return static_cast<const V&>(*this); }

  int PositionOf(const double* component) const
  {
    return component == end() ? 0 : static_cast<int>(component - begin()) + 1;
  }
};

/// ReaVec, ReaVecV and ReaVecVT. V::Owner is ReaVec or ReaVecV; V::Temporary is
/// the class in which a new vector of that family is returned.
template <class V>
concept DenseVector = std::derived_from<V, VectorMembers<typename V::Owner>>;

/// A dense vector of the same family as V: both inside the object, or both on the heap.
template <class W, class V>
concept SameFamily = DenseVector<W> && std::same_as<typename W::Owner, typename V::Owner>;

/// Fatal unless both vectors have the same length.
template <class A, class B>
void RequireEqualLengths(const A& a, const B& b)
{
  if (a.Size() != b.Size())
    FatalVectorLengths(a.Size(), b.Size());
}

/// The new vector of f(v_i).
template <class F, DenseVector V>
typename V::Temporary map(F f, const V& v)
{
  typename V::Temporary result(v.Size());
  std::transform(v.begin(), v.end(), result.begin(), f);
  return result;
}

/// The new vector of f(a_i, b_i); fatal when the lengths differ.
template <class F, DenseVector A, SameFamily<A> B>
typename A::Temporary combine(F f, const A& a, const B& b)
{
  RequireEqualLengths(a, b);
  typename A::Temporary result(a.Size());
  std::transform(a.begin(), a.end(), b.begin(), result.begin(), f);
  return result;
}

/// a_i becomes f(a_i).
template <class F, DenseVector V>
V& MapInPlace(F f, V& a)
{
  std::transform(a.begin(), a.end(), a.begin(), f);
  return a;
}

/// a_i becomes f(a_i, b_i); fatal when the lengths differ.
template <class F, DenseVector A, SameFamily<A> B>
A& CombineInPlace(F f, A& a, const B& b)
{
  RequireEqualLengths(a, b);
  std::transform(a.begin(), a.end(), b.begin(), a.begin(), f);
  return a;
}

/// Merges the components of both in their order; the next of a comes first while
/// cmp(next of a, next of b) is below 1. Not used by the analysis itself.
template <DenseVector A, SameFamily<A> B, class Compare>
typename A::Temporary merge(const A& a, const B& b, Compare cmp)
{
  typename A::Temporary result(JoinedLength(a.Size(), b.Size()));
  const double* nextA = a.begin();
  const double* nextB = b.begin();
  double* out = result.begin();
  while (nextA != a.end() && nextB != b.end())
    *out++ = cmp(*nextA, *nextB) < 1 ? *nextA++ : *nextB++;
  std::copy(nextB, b.end(), std::copy(nextA, a.end(), out));
  return result;
}

/// The components of a followed by those of b.
template <DenseVector A, SameFamily<A> B>
typename A::Temporary operator&(const A& a, const B& b)
{
  typename A::Temporary result(JoinedLength(a.Size(), b.Size()));
  std::copy(b.begin(), b.end(), std::copy(a.begin(), a.end(), result.begin()));
  return result;
}

/// A copy with the components in reverse order.
template <DenseVector V>
typename V::Temporary reverse(const V& v)
{
  typename V::Temporary result(v.Size());
  std::reverse_copy(v.begin(), v.end(), result.begin());
  return result;
}

template <DenseVector A, SameFamily<A> B>
typename A::Temporary operator+(const A& a, const B& b)
{
  return combine(std::plus<>(), a, b);
}

template <DenseVector A, SameFamily<A> B>
typename A::Temporary operator-(const A& a, const B& b)
{
  return combine(std::minus<>(), a, b);
}

/// The new vector of a_i b_i.
template <DenseVector A, SameFamily<A> B>
typename A::Temporary product(const A& a, const B& b)
{
  return combine(std::multiplies<>(), a, b);
}

/// The new vector of a_i / b_i.
template <DenseVector A, SameFamily<A> B>
typename A::Temporary quotient(const A& a, const B& b)
{
  return combine(std::divides<>(), a, b);
}

template <DenseVector V>
typename V::Temporary operator+(const V& v, double scalar)
{
  return map([scalar](double value) { return value + scalar; }, v);
}

template <DenseVector V>
typename V::Temporary operator-(const V& v, double scalar)
{
  return map([scalar](double value) { return value - scalar; }, v);
}

template <DenseVector V>
typename V::Temporary operator*(const V& v, double scalar)
{
  return map([scalar](double value) { return value * scalar; }, v);
}

template <DenseVector V>
typename V::Temporary operator/(const V& v, double scalar)
{
  return map([scalar](double value) { return value / scalar; }, v);
}

template <DenseVector V>
typename V::Temporary operator-(const V& v)
{
  return map(std::negate<>(), v);
}

template <DenseVector A, SameFamily<A> B>
A& operator+=(A& a, const B& b)
{
  return CombineInPlace(std::plus<>(), a, b);
}

template <DenseVector A, SameFamily<A> B>
A& operator-=(A& a, const B& b)
{
  return CombineInPlace(std::minus<>(), a, b);
}

template <DenseVector V>
V& operator+=(V& v, double scalar)
{
  return MapInPlace([scalar](double value) { return value + scalar; }, v);
}

template <DenseVector V>
V& operator-=(V& v, double scalar)
{
  return MapInPlace([scalar](double value) { return value - scalar; }, v);
}

template <DenseVector V>
V& operator*=(V& v, double scalar)
{
  return MapInPlace([scalar](double value) { return value * scalar; }, v);
}

/// Fatal on a zero divisor when the vector is on the heap.
template <DenseVector V>
V& operator/=(V& v, double scalar)
{
  if (std::same_as<typename V::Owner, ReaVecV> && scalar == 0.0)
    Fatal("Division by zero.");
  return MapInPlace([scalar](double value) { return value / scalar; }, v);
}

/// The dot product.
template <DenseVector A, SameFamily<A> B>
double operator*(const A& a, const B& b)
{
  RequireEqualLengths(a, b);
  double total = 0.0;
  for (int i = 0; i < a.Size(); i++)
    total += a.begin()[i] * b.begin()[i];
  return total;
}

template <DenseVector A, SameFamily<A> B>
bool operator==(const A& a, const B& b)
{
  return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

/// True when every component equals the value. The value's type is a parameter: with double
/// some compilers consider this operator for two numbers.
template <DenseVector V, std::convertible_to<double> Value>
bool operator==(const V& v, Value value)
{
  return std::all_of(v.begin(), v.end(), [value](double component) { return component == value; });
}

/// The cross product, of length 3. An operand of length 2 has a third component
/// 0; other lengths than 2 and 3 are fatal.
template <DenseVector A, SameFamily<A> B>
typename A::Temporary VectorProd(const A& a, const B& b)
{
  const auto isPlaneOrSpace = [](int n) { return n == 2 || n == 3; };
  if (!isPlaneOrSpace(a.Size()) || !isPlaneOrSpace(b.Size()))
    Fatal("VectorProd can only be made in 2D or 3D\n");
  const double a3 = a.Size() == 3 ? a(3) : 0.0;
  const double b3 = b.Size() == 3 ? b(3) : 0.0;
  typename A::Temporary result(3);
  result(1) = a(2) * b3 - b(2) * a3;
  result(2) = a3 * b(1) - b3 * a(1);
  result(3) = a(1) * b(2) - b(1) * a(2);
  return result;
}

/// Writes each component, after two blanks, in scientific notation in a field of
/// the stream's precision + 7, and flushes; the format flags are left as they were.
template <DenseVector V>
std::ostream& operator<<(std::ostream& out, const V& v)
{
  WriteVector(out, {v.begin(), v.end()});
  return out;
}

/// Reads as many doubles as the vector has components; fatal on an empty vector on the heap.
template <DenseVector V>
std::istream& operator>>(std::istream& in, V& v)
{
  if (std::same_as<typename V::Owner, ReaVecV> && v.Size() == 0)
    Fatal("\t(Zero size vector)\n");
  for (double& component : v)
    in >> component;
  return in;
}

}  // namespace morlen
