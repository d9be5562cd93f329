#include "solvers/node_block_matrix.h"

#include <gtest/gtest.h>

#include <sstream>
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

/// Three nodes in a row; nothing added.
NodeBlockMatrix Chain(int ndof)
{
  NodeCouplings couplings(3, 200);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}})
    couplings.Add(p, q);
  return NodeBlockMatrix(couplings.MakePattern(), ndof, TestedProcessor());
}

std::vector<double> Counted(int count)
{
  std::vector<double> numbers;
  for (int k = 1; k <= count; ++k)
    numbers.push_back(k);
  return numbers;
}

constexpr int kNodeSizes[] = {3, 6};

TEST(NodeBlockMatrix, SuitsNodesOfThreeAndSixEquations)
{
  for (int ndof = 0; ndof <= 8; ++ndof)
    EXPECT_EQ(NodeBlockMatrix::Suits(ndof), ndof == 3 || ndof == 6);
}

TEST(NodeBlockMatrix, StartsWithZerosInThePattern)
{
  for (const int ndof : kNodeSizes) {
    NodeBlockMatrix matrix = Chain(ndof);
    EXPECT_EQ(matrix.BlockSize(), ndof);
    EXPECT_EQ(matrix.GiveSize(), 3 * ndof);
    EXPECT_EQ(matrix.GiveColumns(), 3 * ndof);
    EXPECT_EQ(matrix.GiveSlots(), 7 * ndof * ndof);
    EXPECT_EQ(matrix.StorageBytes(), 12u * 7 * ndof * ndof + 4u * 3 * ndof);
    EXPECT_EQ(matrix.set(0, ndof), 0.0);
    EXPECT_EQ(matrix(0, 2 * ndof), 0.0);
  }
}

TEST(NodeBlockMatrix, OutsideThePatternNothingCanBeSet)
{
  NodeBlockMatrix matrix = Chain(3);
  static const struct
  {
    int i, j;
    const char* message;
  } cases[] = {
      {0, 6, "Sparse Matrix element (0,6) not in sparse structure -- cannot assign."},
      {8, 2, "Sparse Matrix element (8,2) not in sparse structure -- cannot assign."},
      {0, 9, "Sparse Matrix element (0,9) not in sparse structure -- cannot assign."},
      {-1, 0, "Sparse Matrix element (-1,0) not in sparse structure -- cannot assign."},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { matrix.set(c.i, c.j); }, c.message);
}

TEST(NodeBlockMatrix, OutsideIsRefused)
{
  NodeBlockMatrix matrix = Chain(3);
  const double x[9] = {};
  for (const auto& [i, j] : {std::pair{-1, 0}, {0, -1}, {9, 0}, {0, 9}}) {
    ExpectFatal([&, i = i, j = j] { matrix(i, j); }, kOutOfBounds);
    ExpectFatal([&, i = i, j = j] { matrix.addToLhs(i, j, 1.0); }, kOutOfBounds);
  }
  for (const int i : {-1, 9}) {
    ExpectFatal([&] { matrix.MultiplyVector(i, x); }, kOutOfBounds);
    ExpectFatal([&] { matrix.Fix_Row_Dalvek(i); }, kOutOfBounds);
  }
  for (const int node : {0, -1, 4}) {
    const std::vector<int> nodes = {1, node};
    ExpectFatal([&] { matrix.Prefetch(nodes, 2); }, kOutOfBounds);
  }
}

TEST(NodeBlockMatrix, BlocksAreGivenRowByRow)
{
  for (const int ndof : kNodeSizes) {
    NodeBlockMatrix matrix = Chain(ndof);
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

TEST(NodeBlockMatrix, Products)
{
  for (const int ndof : kNodeSizes)
    for (const bool complete : {false, true}) {
      NodeBlockMatrix matrix = Chain(ndof);
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

/// The springs 0-1 and 1-2; with `wide`, nodes 0 and 2 have blocks of zeros too.
NodeBlockMatrix Springs(int ndof, bool wide)
{
  NodeCouplings couplings(3, 200);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}, {0, 2}, {2, 0}})
    if (wide || p + q != 2)
      couplings.Add(p, q);
  NodeBlockMatrix matrix(couplings.MakePattern(), ndof, TestedProcessor());
  for (const std::vector<int>& nodes : {std::vector{1, 2}, {2, 3}})
    matrix.AddElement({nodes, ndof, RandomVector(3 * ndof * ndof, nodes[0]).data()});
  return matrix;
}

// Sums start from +0, and adding ±0 changes no bit of a sum.
TEST(NodeBlockMatrix, BlocksOfZerosDoNotChangeABitOfAProduct)
{
  for (const int ndof : kNodeSizes) {
    const NodeBlockMatrix narrow = Springs(ndof, false);
    const NodeBlockMatrix wide = Springs(ndof, true);
    ASSERT_EQ(wide.GiveSlots(), narrow.GiveSlots() + 2 * ndof * ndof);
    const int n = 3 * ndof;
    const std::vector<double> x = RandomVector(n, 8);
    std::vector<double> y(n), expected(n);
    narrow.mult(x.data(), expected.data());
    wide.mult(x.data(), y.data());
    EXPECT_EQ(y, expected);
    narrow.trans_mult(x.data(), expected.data());
    wide.trans_mult(x.data(), y.data());
    EXPECT_EQ(y, expected);
  }
}

TEST(NodeBlockMatrix, NullifyKeepsThePattern)
{
  for (const bool shortName : {false, true}) {
    NodeBlockMatrix matrix = Springs(3, false);
    shortName ? matrix.Nullify() : matrix.NullifyMatrix();
    for (int i = 0; i < 9; ++i)
      for (int j = 0; j < 9; ++j)
        EXPECT_EQ(matrix(i, j), 0.0);
    EXPECT_EQ(matrix.set(0, 3), 0.0);
  }
}

TEST(NodeBlockMatrix, CopiesAreIndependent)
{
  NodeBlockMatrix matrix = Springs(3, false);
  const double before = matrix(0, 0);
  const NodeBlockMatrix copy(matrix);
  NodeBlockMatrix assigned = Chain(6);
  assigned = matrix;
  matrix.set(0, 0) = before + 1.0;
  EXPECT_EQ(copy(0, 0), before);
  EXPECT_EQ(assigned(0, 0), before);
  EXPECT_EQ(assigned.GiveSize(), 9);
}

TEST(NodeBlockMatrix, DumpHasAllEntriesOfTheBlocks)
{
  NodeCouplings couplings(2, 200);
  couplings.Add(0, 1);
  couplings.Add(1, 0);
  NodeBlockMatrix matrix(couplings.MakePattern(), 3, TestedProcessor());
  matrix.addToLhs(1, 5, 2.5);
  matrix.addToLhs(3, 0, -1.0);
  const std::string zeros = "    1:0    2:0    3:0    4:0    5:0    6:0\n";
  EXPECT_EQ(Text(matrix), zeros + "    1:0    2:0    3:0    4:0    5:0    6:2.5\n" + zeros +
                              "    1:-1    2:0    3:0    4:0    5:0    6:0\n" + zeros + zeros);
}

TEST(NodeBlockMatrix, OutsideThePatternNothingCanBeAdded)
{
  NodeBlockMatrix matrix = Chain(3);
  const std::vector<double> m = Counted(9);
  ExpectFatal([&] { matrix.AddNodeBlock(0, 2, m.data(), false); },
              "Wrong Row 0 definition: Row length 6");
  ExpectFatal([&] { matrix.addToLhs(2, 6, 1.0); }, "Wrong Row 2 definition: Row length 6");
  ExpectFatal(
      [&] {
        matrix.AddElement({std::vector{2, 3, 1}, 3, RandomVector(54, 1).data()});
      },
      "Wrong Row 6 definition: Row length 6");
}

TEST(NodeBlockMatrix, FixedRowIsAnEquationByItself)
{
  for (const int ndof : kNodeSizes) {
    NodeBlockMatrix matrix = Springs(ndof, false);
    const int n = 3 * ndof;
    const int fixed = ndof + 1;
    const double stays = matrix(0, fixed);
    ASSERT_NE(stays, 0.0);
    matrix.Fix_Row_Dalvek(fixed);
    for (int j = 0; j < n; ++j)
      EXPECT_EQ(matrix(fixed, j), j == fixed ? 1.0 : 0.0);
    EXPECT_EQ(matrix(0, fixed), stays);
    const std::vector<double> x = RandomVector(n, 4);
    EXPECT_EQ(matrix.MultiplyVector(fixed, x.data()), x[fixed]);
  }
}

namespace {

/// A matrix in which all nodes are coupled except 0 and 1.
NodeBlockMatrix NearlyFull(int nodes, int ndof)
{
  NodeCouplings couplings(nodes, 200);
  for (int p = 0; p < nodes; ++p)
    for (int q = 0; q < nodes; ++q)
      if (p != q && p + q > 1)
        couplings.Add(p, q);
  return NodeBlockMatrix(couplings.MakePattern(), ndof, TestedProcessor());
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

void ExpectEntries(const NodeBlockMatrix& matrix, const DenseRows& a)
{
  for (int i = 0; i < matrix.GiveSize(); ++i)
    for (int j = 0; j < matrix.GiveSize(); ++j)
      EXPECT_EQ(matrix(i, j), a[i][j]) << i << " " << j;
}

const std::vector<std::vector<int>> kElements = {
    {5, 2}, {1, 3}, {7, 4, 1}, {6, 3, 5, 7}, {2, 7, 3, 4, 6, 5}, {3, 3}, {4}};

}  // namespace

TEST(NodeBlockMatrix, ElementsAreAddedWithTheirMirrorImages)
{
  for (const int ndof : kNodeSizes) {
    NodeBlockMatrix matrix = NearlyFull(7, ndof);
    DenseRows a = DenseZero(7 * ndof);
    unsigned seed = 0;
    for (int round = 0; round < 2; ++round)
      for (const std::vector<int>& nodes : kElements) {
        const std::vector<double> m = RandomVector(21 * ndof * ndof, ++seed);
        matrix.AddElement({nodes, ndof, m.data()});
        AddPlainly({nodes, ndof, m.data()}, a);
      }
    ExpectEntries(matrix, a);
    const std::vector<double> x = RandomVector(7 * ndof, 50);
    std::vector<double> y(7 * ndof, 99.0);
    matrix.mult(x.data(), y.data());
    EXPECT_LE(LargestDifference(y, DenseProduct(a, x)), 1e-13);
    ExpectTwoLikeOne(matrix);
  }
}

TEST(NodeBlockMatrix, AnnouncedElementsMayComeOrNot)
{
  const std::vector<int> announced = {5, 2, 1, 3, 6, 7};
  const std::vector<std::vector<std::vector<int>>> added = {
      {{5, 2}, {1, 3}, {6, 7}}, {{5, 2}, {6, 7}},   {{1, 3}, {5, 2}, {1, 3}},
      {{5, 2, 6}, {5, 2}},      {{5}, {2}, {5, 2}}, {{5, 2}, {1, 3}, {6, 7}, {5, 2}}};
  for (const int ndof : kNodeSizes)
    for (const auto& elements : added) {
      NodeBlockMatrix matrix = NearlyFull(7, ndof);
      DenseRows a = DenseZero(7 * ndof);
      const std::vector<double> m = RandomVector(6 * ndof * ndof, 1);
      matrix.Prefetch(announced, 2);
      ExpectEntries(matrix, a);
      for (const std::vector<int>& nodes : elements) {
        matrix.AddElement({nodes, ndof, m.data()});
        AddPlainly({nodes, ndof, m.data()}, a);
      }
      ExpectEntries(matrix, a);
    }
}

TEST(NodeBlockMatrix, SizesOutOfRangeAreRefused)
{
  ExpectFatal([] { NodeBlockMatrix(NodePattern(), 3); },
              "Sparse Matrix size must be greater than 0");
  NodePattern pattern;
  pattern.starts = {0, 60000000};
  ExpectFatal([&] { NodeBlockMatrix(pattern, 6); }, "Not space available on heap");
}

}  // namespace

}  // namespace morlen
