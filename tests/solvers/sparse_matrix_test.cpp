#include "solvers/sparse_matrix.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/dense.h"
#include "support/fatal.h"
#include "support/sparse.h"

namespace morlen {

namespace {

constexpr const char* kOutOfBounds = "Sparse Matrix accessing exception -- out of bounds.";

SparseMatrix WithLengths(const std::vector<int>& lengths)
{
  return SparseMatrix(static_cast<int>(lengths.size()), lengths.data());
}

/// (0,0) = 1, (0,2) = 2, (1,1) = 3, (2,0) = 4, (2,2) = 5; row 1 has one more slot, free.
SparseMatrix Example()
{
  SparseMatrix matrix = WithLengths({2, 2, 2});
  matrix.addToLhs(0, 2, 2.0);
  matrix.addToLhs(0, 0, 1.0);
  matrix.addToLhs(1, 1, 3.0);
  matrix.addToLhs(2, 2, 5.0);
  matrix.addToLhs(2, 0, 4.0);
  return matrix;
}

TEST(SparseMatrix, SizeMustBePositive)
{
  const int length = 1;
  for (const int n : {0, -1})
    ExpectFatal([&] { SparseMatrix(n, &length); }, "Sparse Matrix size must be greater than 0");
}

TEST(SparseMatrix, MoreSlotsThanAnIntCountsAreRefused)
{
  ExpectFatal(
      [] {
        WithLengths({1000000000, 1000000000, 147483648});
      },
      "Not space available on heap");
  ExpectFatal([] { WithLengths({1, -1}); }, "Not space available on heap");
}

TEST(SparseMatrix, StartsWithFreeSlots)
{
  const SparseMatrix matrix = WithLengths({2, 0, 1});
  EXPECT_EQ(matrix.GiveSize(), 3);
  EXPECT_EQ(matrix.GiveColumns(), 3);
  EXPECT_EQ(matrix.GiveSlots(), 3);
  EXPECT_EQ(matrix.StorageBytes(), 12u * 3 + 4u * 3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      EXPECT_EQ(matrix(i, j), 0.0);
  EXPECT_EQ(Text(matrix), "\n\n\n");
}

TEST(SparseMatrix, NumbersOfOneEntryAreSummed)
{
  SparseMatrix matrix = Example();
  matrix.addToLhs(0, 0, 0.25);
  EXPECT_EQ(matrix(0, 0), 1.25);
  EXPECT_EQ(matrix(0, 2), 2.0);
  EXPECT_EQ(matrix(0, 1), 0.0);
}

TEST(SparseMatrix, FullRowTakesNoFurtherColumn)
{
  SparseMatrix matrix = Example();
  ExpectFatal([&] { matrix.addToLhs(2, 1, 1.0); }, "Wrong Row 2 definition: Row length 2");
  SparseMatrix empty = WithLengths({1, 0});
  ExpectFatal([&] { empty.addToLhs(1, 1, 1.0); }, "Wrong Row 1 definition: Row length 0");
}

TEST(SparseMatrix, OutsideIsRefused)
{
  SparseMatrix matrix = Example();
  const double x[3] = {};
  const std::pair<int, int> places[] = {{-1, 0}, {0, -1}, {3, 0}, {0, 3}};
  for (const auto& [i, j] : places) {
    ExpectFatal([&, i = i, j = j] { matrix(i, j); }, kOutOfBounds);
    ExpectFatal([&, i = i, j = j] { matrix.addToLhs(i, j, 1.0); }, kOutOfBounds);
  }
  for (const int i : {-1, 3}) {
    ExpectFatal([&] { matrix.MultiplyVector(i, x); }, kOutOfBounds);
    ExpectFatal([&] { matrix.Fix_Row_Dalvek(i); }, kOutOfBounds);
    ExpectFatal([&] { matrix.Fix_Row(i); }, kOutOfBounds);
  }
}

TEST(SparseMatrix, SetNeedsASlotWithTheColumn)
{
  SparseMatrix matrix = Example();
  matrix.set(0, 2) = 7.0;
  EXPECT_EQ(matrix(0, 2), 7.0);
  static const struct
  {
    int i, j;
    const char* message;
  } cases[] = {
      {0, 1, "Sparse Matrix element (0,1) not in sparse structure -- cannot assign."},
      {1, 0, "Sparse Matrix element (1,0) not in sparse structure -- cannot assign."},
      {1, -1, "Sparse Matrix element (1,-1) not in sparse structure -- cannot assign."},
      {3, 0, "Sparse Matrix element (3,0) not in sparse structure -- cannot assign."},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { matrix.set(c.i, c.j); }, c.message);
}

TEST(SparseMatrix, ProductsLeaveFreeSlotsOut)
{
  for (const int freeSlots : {0, 2})
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {5, 4}, {11, 7}}) {
      const DenseRows a = GridMatrix(width, height, 0.3);
      const SparseMatrix matrix = SparseOf(a, freeSlots);
      const int n = matrix.GiveSize();
      const std::vector<double> x = RandomVector(n, 2);
      std::vector<double> y(n, 99.0);
      matrix.mult(x.data(), y.data());
      EXPECT_LE(LargestDifference(y, DenseProduct(a, x)), 1e-14);
      for (int i = 0; i < n; ++i)
        EXPECT_NEAR(matrix.MultiplyVector(i, x.data()), y[i], 1e-14);
      matrix.trans_mult(x.data(), y.data());
      EXPECT_LE(LargestDifference(y, DenseProduct(Transposed(a), x)), 1e-14);
      ExpectTwoLikeOne(matrix);
    }
}

TEST(SparseMatrix, FixedRowBecomesAnEquationOfItsOwn)
{
  SparseMatrix matrix = Example();
  matrix.Fix_Row_Dalvek(2);
  EXPECT_EQ(matrix(2, 0), 0.0);
  EXPECT_EQ(matrix(2, 2), 1.0);
  EXPECT_EQ(matrix(0, 2), 2.0);  // its column stays
  SparseMatrix validated = Example();
  validated.Fix_Row(2);
  EXPECT_EQ(Text(validated), Text(matrix));
}

TEST(SparseMatrix, FixedRowPutsOneIntoFreeSlots)
{
  SparseMatrix matrix = Example();
  matrix.Fix_Row_Dalvek(1);
  EXPECT_EQ(matrix(1, 1), 1.0);
  const double x[] = {10.0, 20.0, 30.0};
  EXPECT_EQ(matrix.MultiplyVector(1, x), 20.0);
  matrix.addToLhs(1, 2, 0.5);
  EXPECT_EQ(matrix(1, 2), 1.5);
}

TEST(SparseMatrix, RowWithoutRoomForTheDiagonalCannotBeFixed)
{
  SparseMatrix matrix = WithLengths({1, 1});
  matrix.addToLhs(0, 1, 4.0);
  ExpectFatal([&] { matrix.Fix_Row(0); }, "Wrong Row 0 boundary condition");
  EXPECT_EQ(matrix(0, 1), 4.0);
  matrix.Fix_Row(1);
  matrix.Fix_Row_Dalvek(0);
  EXPECT_EQ(matrix(0, 1), 0.0);
}

TEST(SparseMatrix, NullifyKeepsTheColumns)
{
  for (const bool shortName : {false, true}) {
    SparseMatrix matrix = Example();
    shortName ? matrix.Nullify() : matrix.NullifyMatrix();
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j)
        EXPECT_EQ(matrix(i, j), 0.0);
    EXPECT_EQ(matrix.set(0, 2), 0.0);
    ExpectFatal([&] { matrix.set(0, 1); },
                "Sparse Matrix element (0,1) not in sparse structure -- cannot assign.");
  }
}

TEST(SparseMatrix, CopiesAreIndependent)
{
  SparseMatrix matrix = Example();
  SparseMatrix copy(matrix);
  SparseMatrix assigned = WithLengths({1});
  assigned = matrix;
  matrix.set(0, 0) = -1.0;
  EXPECT_EQ(copy(0, 0), 1.0);
  EXPECT_EQ(assigned(0, 0), 1.0);
  EXPECT_EQ(assigned.GiveSize(), 3);
  copy.addToLhs(1, 0, 6.0);
  EXPECT_EQ(copy(1, 0), 6.0);
  EXPECT_EQ(matrix(1, 0), 0.0);
}

TEST(SparseMatrix, DumpHasALineForEveryRow)
{
  EXPECT_EQ(Text(Example()), "    3:2    1:1\n    2:3\n    3:5    1:4\n");
}

}  // namespace

}  // namespace morlen
