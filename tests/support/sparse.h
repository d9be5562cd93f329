#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "solvers/compressed_rows.h"
#include "solvers/sparse_matrix.h"
#include "solvers/system_matrix.h"

namespace morlen {

/// A dense matrix for independent computations. Indices start at 0.
using DenseRows = std::vector<std::vector<double>>;

inline DenseRows DenseZero(int n)
{
  return DenseRows(n, std::vector<double>(n, 0.0));
}

inline std::vector<double> DenseProduct(const DenseRows& a, const std::vector<double>& x)
{
  std::vector<double> y(a.size(), 0.0);
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < x.size(); ++j)
      y[i] += a[i][j] * x[j];
  return y;
}

inline DenseRows DenseProduct(const DenseRows& a, const DenseRows& b)
{
  DenseRows c = DenseZero(static_cast<int>(a.size()));
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t k = 0; k < a.size(); ++k)
      for (std::size_t j = 0; j < a.size(); ++j)
        c[i][j] += a[i][k] * b[k][j];
  return c;
}

inline DenseRows Transposed(const DenseRows& a)
{
  DenseRows t = a;
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < a.size(); ++j)
      t[j][i] = a[i][j];
  return t;
}

/// Gauss-Jordan elimination with row exchanges.
inline std::vector<double> DenseSolve(DenseRows a, std::vector<double> b)
{
  const int n = static_cast<int>(b.size());
  for (int k = 0; k < n; ++k) {
    int pivot = k;
    for (int i = k; i < n; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k]))
        pivot = i;
    std::swap(a[k], a[pivot]);
    std::swap(b[k], b[pivot]);
    for (int i = 0; i < n; ++i) {
      const double factor = i == k ? 0.0 : a[i][k] / a[k][k];
      for (int j = k; j < n; ++j)
        a[i][j] -= factor * a[k][j];
      b[i] -= factor * b[k];
    }
  }
  for (int k = 0; k < n; ++k)
    b[k] /= a[k][k];
  return b;
}

/// The entries other than 0 in unordered slots, as after an assembly, with this number of free
/// slots in each row.
inline SparseMatrix SparseOf(const DenseRows& a, int freeSlots = 0)
{
  const int n = static_cast<int>(a.size());
  std::vector<int> lengths;
  for (const std::vector<double>& row : a)
    lengths.push_back(n - static_cast<int>(std::count(row.begin(), row.end(), 0.0)) + freeSlots);
  SparseMatrix matrix(n, lengths.data());
  std::mt19937 random(1);
  std::vector<int> order(n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      order[j] = j;
    std::shuffle(order.begin(), order.end(), random);
    for (const int j : order)
      if (a[i][j] != 0.0)
        matrix.addToLhs(i, j, a[i][j]);
  }
  return matrix;
}

/// The same matrix in single entries, one for each slot that is in use.
template <class Matrix>
SparseMatrix InRows(const Matrix& matrix)
{
  std::vector<int> lengths(matrix.GiveSize(), 0);
  for (int i = 0; i < matrix.GiveSize(); ++i)
    matrix.ForEachInRow(i, [&](int, double) { ++lengths[i]; });
  SparseMatrix rows(matrix.GiveSize(), lengths.data());
  for (int i = 0; i < matrix.GiveSize(); ++i)
    matrix.ForEachInRow(i, [&](int j, double value) { rows.addToLhs(i, j, value); });
  return rows;
}

inline DenseRows DenseOf(const CompressedView& rows)
{
  DenseRows a = DenseZero(rows.n);
  for (int i = 0; i < rows.n; ++i)
    for (int s = rows.starts[i]; s < rows.starts[i + 1]; ++s)
      a[i][rows.indices[s]] += rows.values[s];
  return a;
}

inline std::vector<double> RandomVector(int n, unsigned seed)
{
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> number(-1.0, 1.0);
  std::vector<double> x(n);
  for (double& component : x)
    component = number(random);
  return x;
}

/// The five-point stencil on a grid, with different couplings and a dominant diagonal. `skew` makes
/// the matrix unsymmetric: for i < j, (i, j) is multiplied by 1 + skew and (j, i) by 1 - skew.
inline DenseRows GridMatrix(int width, int height, double skew = 0.0)
{
  DenseRows a = DenseZero(width * height);
  const std::vector<double> weights = RandomVector(2 * width * height, 5);
  const auto couple = [&](int i, int j, double weight) {
    a[i][j] = -weight * (1.0 + skew);
    a[j][i] = -weight * (1.0 - skew);
    a[i][i] += 1.1 * weight;
    a[j][j] += 1.1 * weight;
  };
  for (int i = 0; i < width * height; ++i) {
    if ((i + 1) % width != 0)
      couple(i, i + 1, 1.5 + weights[2 * i]);
    if (i + width < width * height)
      couple(i, i + width, 1.5 + weights[2 * i + 1]);
  }
  return a;
}

/// The matrix of a chain. Its factors without fill are exact.
inline DenseRows TridiagonalMatrix(int n, double skew = 0.0)
{
  return GridMatrix(n, 1, skew);
}

inline double LargestDifference(const std::vector<double>& a, const std::vector<double>& b)
{
  double largest = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i)
    largest = std::fmax(largest, std::fabs(a[i] - b[i]));
  return largest;
}

/// Expects that a product with two vectors gives the same bits as two single products.
inline void ExpectTwoLikeOne(const SystemMatrix& matrix)
{
  const int n = matrix.GiveSize();
  const std::vector<double> x[] = {RandomVector(n, 51), RandomVector(n, 52)};
  std::vector<double> y[2], expected(n);
  y[0].resize(n);
  y[1].resize(n);
  const double* const from[2] = {x[0].data(), x[1].data()};
  double* const to[2] = {y[0].data(), y[1].data()};
  matrix.MultiplyTwo(from, to);
  for (int v = 0; v < 2; ++v) {
    matrix.mult(x[v].data(), expected.data());
    EXPECT_EQ(y[v], expected);
  }
}

}  // namespace morlen
