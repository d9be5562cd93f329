#pragma once

#include <algorithm>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/vector_functions.h"

namespace morlen {

/// A vector of class V with these components.
template <class V>
V VectorOf(std::initializer_list<double> values)
{
  V v(static_cast<int>(values.size()));
  std::copy(values.begin(), values.end(), v.begin());
  return v;
}

/// The components of a vector, for EXPECT_EQ.
template <DenseVector V>
std::vector<double> Values(const V& v)
{
  return {v.begin(), v.end()};
}

/// A matrix with these entries, given row by row.
inline Matriu MatriuOf(int rows, int cols, const std::vector<double>& entries)
{
  Matriu m(rows, cols);
  std::copy_n(entries.begin(), m.Size(), m.Data());
  return m;
}

/// The entries of a matrix row by row, for EXPECT_EQ; the shape is checked by the caller.
inline std::vector<double> Entries(const Matriu& m)
{
  return {m.Data(), m.Data() + m.Size()};
}

/// The text that operator<< writes.
template <class T>
std::string Text(const T& value)
{
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace morlen
