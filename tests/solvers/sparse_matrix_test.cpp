#include "solvers/sparse_matrix.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/dense.h"
#include "support/fatal.h"
#include "support/processor.h"
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

/// Expects that two vectors in one pass get the bits of each by itself.
void ExpectTwoLikeOne(const SparseMatrix& matrix)
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

/// Three nodes in a row, for blocks of ndof equations; nothing added.
SparseMatrix Chain(int ndof)
{
  NodeCouplings couplings(3, 200);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}})
    couplings.Add(p, q);
  return SparseMatrix(couplings.TakePattern(), ndof, TestedProcessor());
}

std::vector<double> Counted(int count)
{
  std::vector<double> numbers;
  for (int k = 1; k <= count; ++k)
    numbers.push_back(k);
  return numbers;
}

constexpr int kNodeSizes[] = {1, 2, 3, 4, 6};

TEST(SparseMatrixOfNodes, StoresBlocksOfThreeAndSixEquations)
{
  for (const int ndof : kNodeSizes) {
    const SparseMatrix matrix = Chain(ndof);
    EXPECT_EQ(matrix.BlockSize(), ndof == 3 || ndof == 6 ? ndof : 1);
    EXPECT_EQ(matrix.GiveSize(), 3 * ndof);
    EXPECT_EQ(matrix.GiveSlots(), 7 * ndof * ndof);
    EXPECT_EQ(matrix.StorageBytes(), 12u * 7 * ndof * ndof + 4u * 3 * ndof);
    EXPECT_EQ(Text(matrix), std::string(3 * ndof, '\n'));
  }
}

TEST(SparseMatrixOfNodes, BlocksAreGivenRowByRow)
{
  for (const int ndof : kNodeSizes) {
    SparseMatrix matrix = Chain(ndof);
    const std::vector<double> m = Counted(ndof * ndof);
    for (int round = 0; round < 2; ++round) {
      matrix.AddNodeBlock(0, 1, m.data(), false);
      matrix.AddNodeBlock(2, 1, m.data(), true);
    }
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b) {
        EXPECT_EQ(matrix(a, ndof + b), 2.0 * m[a * ndof + b]);
        EXPECT_EQ(matrix(2 * ndof + a, ndof + b), 2.0 * m[b * ndof + a]);
        EXPECT_EQ(matrix(ndof + a, b), 0.0);
      }
  }
}

TEST(SparseMatrixOfNodes, ProductsLeaveFreeBlocksOut)
{
  for (const int ndof : kNodeSizes)
    for (const bool complete : {false, true}) {
      SparseMatrix matrix = Chain(ndof);
      const int n = 3 * ndof;
      DenseRows a = DenseZero(n);
      unsigned seed = 0;
      for (const auto& [p, q] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 2}}) {
        if (p == 1 && q == 2 && !complete)
          continue;
        const std::vector<double> m = RandomVector(ndof * ndof, ++seed);
        matrix.AddNodeBlock(p, q, m.data(), false);
        for (int k = 0; k < ndof * ndof; ++k)
          a[p * ndof + k / ndof][q * ndof + k % ndof] = m[k];
      }
      const std::vector<double> x = RandomVector(n, 50);
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

TEST(SparseMatrixOfNodes, EntryGivesItsBlockAllColumns)
{
  SparseMatrix matrix = Chain(3);
  matrix.addToLhs(1, 5, 2.5);
  EXPECT_EQ(matrix(1, 5), 2.5);
  EXPECT_EQ(matrix.set(0, 3), 0.0);
  EXPECT_EQ(Text(matrix), "    4:0    5:0    6:0\n    4:0    5:0    6:2.5\n" +
                              std::string("    4:0    5:0    6:0\n") + std::string(6, '\n'));
  ExpectFatal([&] { matrix.set(0, 0); },
              "Sparse Matrix element (0,0) not in sparse structure -- cannot assign.");
  ExpectFatal([&] { matrix.set(0, 9); },
              "Sparse Matrix element (0,9) not in sparse structure -- cannot assign.");
}

TEST(SparseMatrixOfNodes, FreeSlotsTakeColumnsOutsideThePattern)
{
  for (const int ndof : kNodeSizes) {
    SparseMatrix matrix = Chain(ndof);
    const std::vector<double> m = Counted(ndof * ndof);
    matrix.AddNodeBlock(1, 1, m.data(), false);
    matrix.AddNodeBlock(1, 2, m.data(), true);
    matrix.AddNodeBlock(0, 2, m.data(), false);  // takes the place of (0, 0)
    EXPECT_EQ(matrix.BlockSize(), 1);
    matrix.AddNodeBlock(0, 1, m.data(), false);
    matrix.AddNodeBlock(1, 1, m.data(), false);
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b) {
        EXPECT_EQ(matrix(a, 2 * ndof + b), m[a * ndof + b]);
        EXPECT_EQ(matrix(a, ndof + b), m[a * ndof + b]);
        EXPECT_EQ(matrix(ndof + a, ndof + b), 2.0 * m[a * ndof + b]);
        EXPECT_EQ(matrix(ndof + a, 2 * ndof + b), m[b * ndof + a]);
      }
    ExpectFatal([&] { matrix.addToLhs(ndof - 1, 0, 1.0); },
                "Wrong Row " + std::to_string(ndof - 1) + " definition: Row length " +
                    std::to_string(2 * ndof));
  }
}

TEST(SparseMatrixOfNodes, FullLineTakesNoFurtherColumn)
{
  SparseMatrix matrix = Chain(3);
  const std::vector<double> m = Counted(9);
  matrix.AddNodeBlock(0, 0, m.data(), false);
  matrix.AddNodeBlock(0, 1, m.data(), false);
  ExpectFatal([&] { matrix.AddNodeBlock(0, 2, m.data(), false); },
              "Wrong Row 0 definition: Row length 6");
  ExpectFatal([&] { matrix.addToLhs(2, 6, 1.0); }, "Wrong Row 2 definition: Row length 6");
  EXPECT_EQ(matrix.BlockSize(), 3);
}

TEST(SparseMatrixOfNodes, FixedRowPutsOneIntoFreeSlots)
{
  for (const int ndof : kNodeSizes) {
    SparseMatrix matrix = Chain(ndof);
    const int n = 3 * ndof;
    const std::vector<double> m(ndof * ndof, 5.0);
    matrix.AddNodeBlock(1, 1, m.data(), false);
    matrix.Fix_Row(ndof);
    std::vector<double> x = RandomVector(n, 4);
    EXPECT_EQ(matrix.MultiplyVector(ndof, x.data()), x[ndof]);
    matrix.addToLhs(ndof, 0, 0.5);
    EXPECT_EQ(matrix(ndof, 0), 1.5);
    EXPECT_NEAR(matrix.MultiplyVector(ndof, x.data()), x[ndof] + 1.5 * x[0], 1e-15);
    EXPECT_EQ(matrix(2 * ndof - 1, ndof), ndof > 1 ? 5.0 : 1.0);
  }
}

namespace {

/// A pattern in which all of the nodes, some more than four, are coupled except 0 and 1.
SparseMatrix NearlyFull(int nodes, int ndof)
{
  NodeCouplings couplings(nodes, 200);
  for (int p = 0; p < nodes; ++p)
    for (int q = 0; q < nodes; ++q)
      if (p != q && p + q > 1)
        couplings.Add(p, q);
  return SparseMatrix(couplings.TakePattern(), ndof, TestedProcessor());
}

/// Adds an element entry by entry to a dense matrix.
void AddPlainly(const ElementBlocks& element, DenseRows& a)
{
  const int ndof = element.ndof;
  const double* m = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i)
    for (std::size_t j = i; j < element.nodes.size(); ++j, m += ndof * ndof)
      for (int k = 0; k < ndof * ndof; ++k) {
        const int row = (element.nodes[i] - 1) * ndof + k / ndof;
        const int column = (element.nodes[j] - 1) * ndof + k % ndof;
        a[row][column] += m[k];
        if (element.nodes[i] != element.nodes[j])
          a[column][row] += m[k];
      }
}

void ExpectEntries(const SparseMatrix& matrix, const DenseRows& a)
{
  for (int i = 0; i < matrix.GiveSize(); ++i)
    for (int j = 0; j < matrix.GiveSize(); ++j)
      EXPECT_EQ(matrix(i, j), a[i][j]) << i << " " << j;
}

const std::vector<std::vector<int>> kElements = {
    {5, 2}, {1, 3}, {7, 4, 1}, {6, 3, 5, 7}, {2, 7, 3, 4, 6, 5}, {3, 3}, {4}};

}  // namespace

TEST(SparseMatrixOfNodes, ElementsAreAddedWithTheirMirrorImages)
{
  for (const int ndof : kNodeSizes) {
    SparseMatrix matrix = NearlyFull(7, ndof);
    DenseRows a = DenseZero(7 * ndof);
    unsigned seed = 0;
    for (int round = 0; round < 2; ++round)
      for (const std::vector<int>& nodes : kElements) {
        const std::vector<double> m = RandomVector(21 * ndof * ndof, ++seed);
        matrix.AddElement({nodes, ndof, m.data()});
        AddPlainly({nodes, ndof, m.data()}, a);
      }
    ExpectEntries(matrix, a);
    EXPECT_EQ(matrix.BlockSize(), ndof == 3 || ndof == 6 ? ndof : 1);
    // Blocks that no element has named are still free.
    const std::vector<double> x = RandomVector(7 * ndof, 50);
    std::vector<double> y(7 * ndof, 99.0);
    matrix.mult(x.data(), y.data());
    EXPECT_LE(LargestDifference(y, DenseProduct(a, x)), 1e-13);
    ExpectTwoLikeOne(matrix);
  }
}

TEST(SparseMatrixOfNodes, ExpectedElementsMayComeOrNot)
{
  const std::vector<int> expected = {5, 2, 1, 3, 6, 7};
  const std::vector<std::vector<std::vector<int>>> added = {
      {{5, 2}, {1, 3}, {6, 7}}, {{5, 2}, {6, 7}},   {{1, 3}, {5, 2}, {1, 3}},
      {{5, 2, 6}, {5, 2}},      {{5}, {2}, {5, 2}}, {{5, 2}, {1, 3}, {6, 7}, {5, 2}}};
  for (const int ndof : {1, 3, 6})
    for (const auto& elements : added) {
      SparseMatrix matrix = NearlyFull(7, ndof);
      DenseRows a = DenseZero(7 * ndof);
      const std::vector<double> m = RandomVector(6 * ndof * ndof, 1);
      matrix.Expect(expected, 2);
      EXPECT_EQ(Text(matrix), std::string(7 * ndof, '\n'));
      for (const std::vector<int>& nodes : elements) {
        matrix.AddElement({nodes, ndof, m.data()});
        AddPlainly({nodes, ndof, m.data()}, a);
      }
      ExpectEntries(matrix, a);
    }
}

TEST(SparseMatrixOfNodes, ElementOutsideThePatternTakesFreeSlots)
{
  for (const int ndof : kNodeSizes) {
    const std::vector<double> m = RandomVector(3 * ndof * ndof, 1);
    SparseMatrix matrix = NearlyFull(7, ndof);
    DenseRows a = DenseZero(7 * ndof);
    for (const std::vector<int>& nodes : {std::vector{1, 2}, {1, 3}, {4, 5}}) {
      matrix.AddElement({nodes, ndof, m.data()});
      AddPlainly({nodes, ndof, m.data()}, a);
    }
    ExpectEntries(matrix, a);
    EXPECT_EQ(matrix.BlockSize(), 1);
    SparseMatrix chain = Chain(ndof);
    for (const std::vector<int>& nodes : {std::vector{1, 2}, {2, 3}})
      chain.AddElement({nodes, ndof, m.data()});
    ExpectFatal(
        [&] {
          chain.AddElement({std::vector{1, 3}, ndof, m.data()});
        },
        "Wrong Row 0 definition: Row length " + std::to_string(2 * ndof));
  }
}

TEST(SparseMatrixOfNodes, SizesOutOfRangeAreRefused)
{
  ExpectFatal([] { SparseMatrix(NodePattern(), 3); }, "Sparse Matrix size must be greater than 0");
  NodePattern pattern;
  pattern.starts = {0, 60000000};
  ExpectFatal([&] { SparseMatrix(pattern, 6); }, "Not space available on heap");
}

}  // namespace

}  // namespace morlen
