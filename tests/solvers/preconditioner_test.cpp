#include "solvers/preconditioner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "solvers/ilu_preconditioner.h"
#include "support/fatal.h"
#include "support/sparse.h"

namespace morlen {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<double> Solved(const Preconditioner& M, const std::vector<double>& x)
{
  std::vector<double> y(x.size(), 99.0);
  M.solve(x.data(), y.data());
  return y;
}

std::vector<double> TransSolved(const Preconditioner& M, const std::vector<double>& x)
{
  std::vector<double> y(x.size(), 99.0);
  M.trans_solve(x.data(), y.data());
  return y;
}

void ExpectNaN(const std::vector<double>& y)
{
  for (const double component : y)
    EXPECT_TRUE(std::isnan(component));
}

/// The unit matrix plus the entries strictly below the diagonal.
DenseRows UnitLower(const CompressedView& L)
{
  DenseRows a = DenseOf(L);
  for (int i = 0; i < L.n; ++i)
    a[i][i] += 1.0;
  return a;
}

TEST(Preconditioner, KnowsItsName)
{
  const SparseMatrix matrix = SparseOf({{4.0}});
  const DiagPreconditioner diagonal(matrix);
  const ICPreconditioner cholesky(matrix);
  const ILUPreconditioner ilu(matrix);
  EXPECT_STREQ(diagonal.Name(), "Diagonal");
  EXPECT_STREQ(cholesky.Name(), "Cholesky");
  EXPECT_STREQ(ilu.Name(), "ILU");
  static const struct
  {
    const char* text;
    bool diagonal, cholesky, ilu;
  } cases[] = {
      {"Diagonal", true, false, false},     {"dIAGONAL", true, false, false},
      {"cholesky", false, true, false},     {"ilu", false, false, true},
      {"ILU", false, false, true},          {"Preconditioner", true, true, true},
      {"PRECONDITIONER", true, true, true}, {"IL", false, false, false},
      {"ILUx", false, false, false},        {"", false, false, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(diagonal.AreYou(c.text), c.diagonal) << c.text;
    EXPECT_EQ(cholesky.AreYou(c.text), c.cholesky) << c.text;
    EXPECT_EQ(ilu.AreYou(c.text), c.ilu) << c.text;
  }
}

TEST(Preconditioner, RefusesANewMatrix)
{
  const SparseMatrix matrix = SparseOf({{4.0}});
  ExpectFatal([&] { DiagPreconditioner(matrix).New_Matrix(matrix); },
              "Wrong use of DiagPreconditioner::New_Matrix");
  ExpectFatal([&] { ICPreconditioner(matrix).New_Matrix(matrix); },
              "Wrong use of ICPreconditioner::New_Matrix");
  ExpectFatal([&] { ILUPreconditioner(matrix).New_Matrix(matrix); },
              "Wrong use of ILUPreconditioner::New_Matrix");
}

TEST(DiagPreconditioner, DividesByTheDiagonal)
{
  const SparseMatrix matrix = SparseOf({{2.0, 7.0}, {0.0, -4.0}});
  const DiagPreconditioner M(matrix);
  EXPECT_EQ(Solved(M, {1.0, 2.0}), (std::vector<double>{0.5, -0.5}));
  EXPECT_EQ(TransSolved(M, {1.0, 2.0}), (std::vector<double>{0.5, -0.5}));
}

TEST(DiagPreconditioner, RefusesAZeroOnTheDiagonal)
{
  ExpectFatal(
      [] {
        DiagPreconditioner(SparseOf({{1.0, 2.0}, {3.0, 0.0}}));
      },
      "Diagonal preconditioner failure.\nZero detected in element1");
  SparseMatrix matrix = SparseOf({{1.0, 2.0}, {2.0, 1.0}});
  matrix.set(0, 0) = 0.0;
  ExpectFatal([&] { DiagPreconditioner M(matrix); },
              "Diagonal preconditioner failure.\nZero detected in element0");
}

TEST(ICPreconditioner, IsExactOnAChain)
{
  for (const int n : {1, 2, 9, 40}) {
    const DenseRows a = TridiagonalMatrix(std::max(n, 2));
    const ICPreconditioner M(SparseOf(a, 1));
    ASSERT_TRUE(M.IsComplete());
    // l(i,i-1) = a(i,i-1)/l(i-1,i-1), l(i,i)² = a(i,i) - l(i,i-1)².
    const DenseRows L = DenseOf(M.GiveL());
    double before = std::sqrt(a[0][0]);
    EXPECT_NEAR(L[0][0], before, 1e-14);
    for (std::size_t i = 1; i < a.size(); ++i) {
      const double beside = a[i][i - 1] / before;
      before = std::sqrt(a[i][i] - beside * beside);
      EXPECT_NEAR(L[i][i - 1], beside, 1e-14);
      EXPECT_NEAR(L[i][i], before, 1e-14);
    }
    const std::vector<double> b = RandomVector(static_cast<int>(a.size()), 6);
    EXPECT_LE(LargestDifference(Solved(M, b), DenseSolve(a, b)), 1e-12);
    EXPECT_EQ(TransSolved(M, b), Solved(M, b));
  }
}

TEST(ICPreconditioner, AgreesWithTheMatrixOnItsPattern)
{
  const DenseRows a = GridMatrix(6, 5);
  const ICPreconditioner M(SparseOf(a));
  const DenseRows L = DenseOf(M.GiveL());
  const DenseRows product = DenseProduct(L, Transposed(L));
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < a.size(); ++j) {
      if (a[i][j] != 0.0) {
        EXPECT_NEAR(product[i][j], a[i][j], 1e-14);
      } else {
        EXPECT_EQ(L[i][j], 0.0);
      }
    }
  const std::vector<double> b = RandomVector(30, 7);
  EXPECT_LE(LargestDifference(Solved(M, b), DenseSolve(product, b)), 1e-12);
}

TEST(ICPreconditioner, NeedsTheDiagonal)
{
  ExpectFatal(
      [] {
        ICPreconditioner(SparseOf({{1.0, 2.0}, {2.0, 0.0}}));
      },
      "IC Preconditioner: diagonal not found!");
  ExpectFatal(
      [] {
        ICPreconditioner(SparseOf({{1.0, 0.0}, {0.0, 0.0}}, 2));
      },
      "IC Preconditioner: diagonal not found!");
}

TEST(ICPreconditioner, WithoutARootGivesNaN)
{
  for (const double pivot : {0.0, -1.0, 4.0, kNaN, kInfinity}) {
    SparseMatrix matrix = SparseOf({{1.0, 2.0}, {2.0, 5.0}});
    matrix.set(1, 1) = pivot;  // 4 leaves 0
    const ICPreconditioner M(matrix);
    EXPECT_FALSE(M.IsComplete());
    ExpectNaN(Solved(M, {0.0, 0.0}));
  }
}

TEST(ILUPreconditioner, IsExactOnAChain)
{
  for (const int n : {2, 3, 9, 40}) {
    const DenseRows a = TridiagonalMatrix(n, 0.3);
    const ILUPreconditioner M(SparseOf(a, 1));
    ASSERT_TRUE(M.IsComplete());
    // l(i,i-1) = a(i,i-1)/u(i-1,i-1), u(i,i) = a(i,i) - l(i,i-1)·a(i-1,i).
    const DenseRows L = DenseOf(M.GiveL());
    const DenseRows U = DenseOf(M.GiveU());
    EXPECT_EQ(U[0][0], a[0][0]);
    for (int i = 1; i < n; ++i) {
      EXPECT_NEAR(L[i][i - 1], a[i][i - 1] / U[i - 1][i - 1], 1e-14);
      EXPECT_NEAR(U[i][i], a[i][i] - L[i][i - 1] * a[i - 1][i], 1e-14);
      EXPECT_EQ(U[i - 1][i], a[i - 1][i]);
    }
    const std::vector<double> b = RandomVector(n, 6);
    EXPECT_LE(LargestDifference(Solved(M, b), DenseSolve(a, b)), 1e-12);
    EXPECT_LE(LargestDifference(TransSolved(M, b), DenseSolve(Transposed(a), b)), 1e-12);
  }
}

TEST(ILUPreconditioner, IsExactOnAFullMatrix)
{
  const int n = 12;
  DenseRows a = DenseZero(n);
  const std::vector<double> numbers = RandomVector(n * n, 11);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      a[i][j] = numbers[i * n + j] + (i == j ? n : 0.0);
  const ILUPreconditioner M(SparseOf(a));
  const DenseRows product = DenseProduct(UnitLower(M.GiveL()), DenseOf(M.GiveU()));
  for (int i = 0; i < n; ++i)
    EXPECT_LE(LargestDifference(product[i], a[i]), 1e-13);
}

TEST(ILUPreconditioner, AgreesWithTheMatrixOnItsPattern)
{
  const DenseRows a = GridMatrix(6, 5, 0.4);
  const ILUPreconditioner M(SparseOf(a));
  const DenseRows L = UnitLower(M.GiveL());
  const DenseRows U = DenseOf(M.GiveU());
  const DenseRows product = DenseProduct(L, U);
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < a.size(); ++j) {
      if (a[i][j] != 0.0) {
        EXPECT_NEAR(product[i][j], a[i][j], 1e-14);
      } else {
        EXPECT_EQ(L[i][j] + U[i][j], 0.0);
      }
    }
  const std::vector<double> b = RandomVector(30, 7);
  EXPECT_LE(LargestDifference(Solved(M, b), DenseSolve(product, b)), 1e-12);
  EXPECT_LE(LargestDifference(TransSolved(M, b), DenseSolve(Transposed(product), b)), 1e-12);
}

TEST(ILUPreconditioner, RowsOfTheFactorsAreSorted)
{
  const ILUPreconditioner M(SparseOf(GridMatrix(6, 5)));
  for (const CompressedView& rows : {M.GiveL(), M.GiveU()})
    for (int i = 0; i < rows.n; ++i)
      for (int s = rows.starts[i] + 1; s < rows.starts[i + 1]; ++s)
        EXPECT_LT(rows.indices[s - 1], rows.indices[s]);
  for (int i = 0; i < 30; ++i)
    EXPECT_EQ(M.GiveU().indices[M.GiveU().starts[i]], i);
}

TEST(ILUPreconditioner, StorageIsADoubleAndAnIntForEveryEntry)
{
  const ILUPreconditioner M(SparseOf(TridiagonalMatrix(4)));
  EXPECT_EQ(M.StorageBytes(), 12u * 10 + 4u * 2 * 5);
}

TEST(ILUPreconditioner, SolvesInPlace)
{
  const ILUPreconditioner M(SparseOf(GridMatrix(6, 5, 0.2)));
  const std::vector<double> b = RandomVector(30, 7);
  std::vector<double> x = b;
  M.solve(x.data(), x.data());
  EXPECT_EQ(x, Solved(M, b));
  x = b;
  M.trans_solve(x.data(), x.data());
  EXPECT_EQ(x, TransSolved(M, b));
}

TEST(ILUPreconditioner, WithoutAPivotGivesNaN)
{
  static const struct
  {
    const char* name;
    DenseRows a;
  } cases[] = {
      {"missing at the start", {{0.0, 1.0}, {1.0, 1.0}}},
      {"missing at the end", {{1.0, 0.0}, {1.0, 0.0}}},
      {"empty row", {{1.0, 0.0}, {0.0, 0.0}}},
      {"eliminated", {{1.0, 2.0}, {2.0, 4.0}}},
      {"NaN", {{1.0, 2.0}, {2.0, kNaN}}},
      {"infinite", {{kInfinity, 2.0}, {2.0, 4.0}}},
      {"overflow", {{1e-300, 1e300}, {1e300, 1.0}}},
  };
  for (const auto& c : cases) {
    const ILUPreconditioner M(SparseOf(c.a, 1));
    EXPECT_FALSE(M.IsComplete()) << c.name;
    ExpectNaN(Solved(M, {0.0, 1.0}));
    ExpectNaN(TransSolved(M, {0.0, 1.0}));
  }
  SparseMatrix zero = SparseOf({{1.0, 2.0}, {2.0, 5.0}});
  zero.set(0, 0) = 0.0;
  EXPECT_FALSE(ILUPreconditioner(zero).IsComplete());
}

TEST(ILUPreconditioner, ReplacedRowsStayApart)
{
  // With row 1 replaced, its solution is exactly its right-hand side; a residual of 0 there does
  // not change the others.
  SparseMatrix matrix = SparseOf(GridMatrix(3, 2));
  matrix.Fix_Row_Dalvek(1);
  std::vector<double> b = RandomVector(6, 3);
  b[1] = 0.0;
  EXPECT_EQ(Solved(ILUPreconditioner(matrix), b)[1], 0.0);
}

}  // namespace

}  // namespace morlen
