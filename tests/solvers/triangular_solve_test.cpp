#include "solvers/triangular_solve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/sparse.h"

namespace morlen {

namespace {

using Solve = void (*)(const CompressedView&, const double*, double*);

/// One of the eight solves: the storage that it needs, and its descriptor.
struct Case
{
  const char* name;
  Solve solve;
  bool byRows, lower, unit;

  std::vector<int> Descriptor() const
  {
    return {kGeneralMatrix, lower ? kLowerTriangle : kUpperTriangle,
            unit ? kUnitDiagonal : kStoredDiagonal};
  }
};

const Case kCases[] = {
    {"CompCol_LowerUnitSolve", CompCol_LowerUnitSolve, false, true, true},
    {"CompCol_LowerDiagSolve", CompCol_LowerDiagSolve, false, true, false},
    {"CompCol_UpperUnitSolve", CompCol_UpperUnitSolve, false, false, true},
    {"CompCol_UpperDiagSolve", CompCol_UpperDiagSolve, false, false, false},
    {"CompRow_LowerUnitSolve", CompRow_LowerUnitSolve, true, true, true},
    {"CompRow_LowerDiagSolve", CompRow_LowerDiagSolve, true, true, false},
    {"CompRow_UpperUnitSolve", CompRow_UpperUnitSolve, true, false, true},
    {"CompRow_UpperDiagSolve", CompRow_UpperDiagSolve, true, false, false},
};

const int kSizes[] = {1, 2, 3, 7, 24};

/// A triangle with some entries missing and a diagonal around 3.
DenseRows Triangle(int n, bool lower, bool unit)
{
  DenseRows a = DenseZero(n);
  const std::vector<double> numbers = RandomVector(n * n, 4);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      if (i == j)
        a[i][j] = unit ? 1.0 : 3.0 + numbers[i * n + j];
      else if (lower == (j < i) && (i * 7 + j * 3) % 4 != 0)
        a[i][j] = numbers[i * n + j] / 4.0;
    }
  return a;
}

/// Compressed storage with ascending lines, without zeros and without a unit diagonal.
CompressedRows Compress(DenseRows a, bool byRows, bool unit)
{
  if (!byRows)
    a = Transposed(a);
  CompressedRows lines;
  const int n = static_cast<int>(a.size());
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      if (a[i][j] != 0.0 && !(unit && i == j))
        lines.Add(j, a[i][j]);
    lines.EndLine();
  }
  return lines;
}

TEST(TriangularSolve, SolvesAndWorksInPlace)
{
  for (const Case& c : kCases)
    for (const int n : kSizes) {
      const DenseRows a = Triangle(n, c.lower, c.unit);
      const CompressedRows lines = Compress(a, c.byRows, c.unit);
      const std::vector<double> expected = RandomVector(n, 8);
      const std::vector<double> b = DenseProduct(a, expected);
      std::vector<double> x(n, 99.0);
      c.solve(lines.View(), b.data(), x.data());
      EXPECT_LE(LargestDifference(x, expected), 1e-13) << c.name << " n=" << n;
      x = b;
      c.solve(lines.View(), x.data(), x.data());
      EXPECT_LE(LargestDifference(x, expected), 1e-13) << c.name << " in place, n=" << n;
    }
}

TEST(TriangularSolve, DispatchersFollowTheDescriptor)
{
  for (const Case& c : kCases)
    for (const int transa : {0, 1})
      for (const int n : kSizes) {
        const DenseRows a = Triangle(n, c.lower, c.unit);
        const CompressedRows lines = Compress(a, c.byRows, c.unit);
        const std::vector<double> expected = RandomVector(n, 9);
        const std::vector<double> b = DenseProduct(transa ? Transposed(a) : a, expected);
        std::vector<double> x(n, 99.0);
        (c.byRows ? dcsrsm : dcscsm)(transa, 1, c.Descriptor().data(), lines.View(), b.data(),
                                     x.data());
        EXPECT_LE(LargestDifference(x, expected), 1e-13) << c.name << " transa=" << transa;
      }
}

TEST(TriangularSolve, DispatchersRefuseOtherDescriptors)
{
  static const struct
  {
    int unitd;
    int descra[3];
    const char* message;
  } cases[] = {
      {1, {3, 1, 0}, "Must have general matrix"},
      {1, {-1, 1, 0}, "Must have general matrix"},
      {1, {0, 0, 0}, "Bad descra[1]"},
      {1, {0, 3, 0}, "Bad descra[1]"},
      {1, {0, 1, 2}, "Bad descra[2]"},
      {1, {0, 2, -1}, "Bad descra[2]"},
      {2, {0, 1, 0}, "unitd != 1 not implemented"},
      {0, {0, 1, 0}, "unitd != 1 not implemented"},
  };
  const CompressedRows lines = Compress({{2.0}}, true, false);
  const double b = 1.0;
  double x = 0.0;
  for (const auto& c : cases) {
    ExpectFatal([&] { dcscsm(0, c.unitd, c.descra, lines.View(), &b, &x); }, c.message);
    ExpectFatal([&] { dcsrsm(0, c.unitd, c.descra, lines.View(), &b, &x); }, c.message);
  }
}

TEST(TriangularSolve, ProductsByRowsAndColumns)
{
  const DenseRows a = GridMatrix(5, 4, 0.4);
  const std::vector<double> x = RandomVector(20, 3);
  const std::vector<double> expected = DenseProduct(a, x);
  std::vector<double> y(20, 99.0);
  CompRowMatVec(Compress(a, true, false).View(), x.data(), y.data());
  EXPECT_LE(LargestDifference(y, expected), 1e-14);
  std::fill(y.begin(), y.end(), 99.0);
  CompColMatVec(Compress(a, false, false).View(), x.data(), y.data());
  EXPECT_LE(LargestDifference(y, expected), 1e-14);
}

}  // namespace

}  // namespace morlen
