#include "solvers/block_factors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"
#include "support/sparse.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Nodes of a grid in space, each coupled with those around it, numbered without order.
class NodeGrid
{
public:
  NodeGrid(int side_, int ndof_) : side(side_), ndof(ndof_) {}

  /// The stiffness of springs between the nodes, each with a full positive definite matrix and
  /// from weak to stiff, on foundations; `skew` makes it unsymmetric.
  SparseMatrix Filled(double skew = 0.0, double foundation = 0.01) const
  {
    NodeCouplings couplings(side * side * side, 200);
    ForEachPair([&](int p, int q) {
      couplings.Add(p, q);
      couplings.Add(q, p);
    });
    SparseMatrix matrix(couplings.TakePattern(), ndof);
    unsigned seed = 0;
    ForEachPair([&](int p, int q) { AddSpring(matrix, p, q, skew, ++seed); });
    for (int i = 0; i < matrix.GiveSize(); ++i)
      matrix.addToLhs(i, i, foundation);
    return matrix;
  }

private:
  template <class Visit>
  void ForEachPair(Visit visit) const
  {
    const int nodes = side * side * side;
    const auto number = [nodes](int place) { return static_cast<int>(place * 37LL % nodes); };
    for (int a = 0; a < nodes; ++a)
      for (int b = a + 1; b < nodes; ++b)
        if (std::abs(a % side - b % side) <= 1 &&
            std::abs(a / side % side - b / side % side) <= 1 &&
            b / (side * side) - a / (side * side) <= 1)
          visit(number(a), number(b));
  }

  void AddSpring(SparseMatrix& matrix, int p, int q, double skew, unsigned seed) const
  {
    const std::vector<double> d = RandomVector(ndof + 1, seed);
    const double stiffness = std::pow(10.0, 2.0 * d[ndof]);
    std::vector<double> own(ndof * ndof), apart(ndof * ndof);
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b) {
        const double k = stiffness * (d[a] * d[b] + (a == b ? 0.1 : 0.0));
        own[a * ndof + b] = k;
        apart[a * ndof + b] = -k * (1.0 + (a < b ? skew : 0.0));
      }
    matrix.AddNodeBlock(p, p, own.data(), false);
    matrix.AddNodeBlock(q, q, own.data(), false);
    matrix.AddNodeBlock(p, q, apart.data(), false);
    matrix.AddNodeBlock(q, p, apart.data(), true);
  }

  int side;
  int ndof;
};

void ExpectSameSolutions(const SparseMatrix& blocks)
{
  const SparseMatrix rows = InRows(blocks);
  ASSERT_GT(blocks.BlockSize(), 1);
  ASSERT_EQ(rows.BlockSize(), 1);
  const ILUPreconditioner M(blocks);
  const ILUPreconditioner reference(rows);
  ASSERT_TRUE(M.IsComplete());
  const int n = blocks.GiveSize();
  const std::vector<double> b = RandomVector(n, 77);
  std::vector<double> y(n), expected(n);
  M.solve(b.data(), y.data());
  reference.solve(b.data(), expected.data());
  EXPECT_LE(LargestDifference(y, expected), 1e-11 * norm(expected.data(), n));
  std::vector<double> inPlace = b;
  M.solve(inPlace.data(), inPlace.data());
  EXPECT_EQ(inPlace, y);
  M.trans_solve(b.data(), y.data());
  reference.trans_solve(b.data(), expected.data());
  EXPECT_LE(LargestDifference(y, expected), 1e-11 * norm(expected.data(), n));
  inPlace = b;
  M.trans_solve(inPlace.data(), inPlace.data());
  EXPECT_EQ(inPlace, y);
}

TEST(BlockFactors, SolveLikeTheScalarFactors)
{
  for (const int ndof : {3, 6})
    for (const int side : {1, 2, 3, 5})
      for (const double skew : {0.0, 0.2}) {
        SparseMatrix matrix = NodeGrid(side, ndof).Filled(skew);
        ExpectSameSolutions(matrix);
        for (int i = 0; i < matrix.GiveSize(); i += 5)
          matrix.Fix_Row_Dalvek(i);
        ExpectSameSolutions(matrix);
      }
}

/// Iterations of conjugate gradients to 1e-9.
int Iterations(const SparseMatrix& A, const std::vector<double>& b)
{
  std::vector<double> x(b.size(), 0.0);
  int iterations = 1000;
  double tol = 1e-9;
  EXPECT_EQ(CG(A, x.data(), b.data(), ILUPreconditioner(A), iterations, tol, nullptr), 0);
  return iterations;
}

TEST(BlockFactors, IterationsAreThoseOfTheScalarFactors)
{
  for (const int ndof : {3, 6})
    for (const double foundation : {1e-1, 1e-4})
      for (const bool fixed : {false, true}) {
        SparseMatrix matrix = NodeGrid(6, ndof).Filled(0.0, foundation);
        std::vector<double> b = RandomVector(matrix.GiveSize(), 5);
        for (int i = 0; fixed && i < matrix.GiveSize(); i += 7) {
          matrix.Fix_Row_Dalvek(i);
          b[i] = 0.0;
        }
        const int iterations = Iterations(matrix, b);
        EXPECT_NEAR(iterations, Iterations(InRows(matrix), b), 1);
        EXPECT_GT(iterations, 5);
      }
}

TEST(BlockFactors, OtherMethodsReachTheSameSolution)
{
  const SparseMatrix A = NodeGrid(3, 3).Filled(0.1, 1.0);
  const ILUPreconditioner M(A);
  const int n = A.GiveSize();
  const std::vector<double> b = RandomVector(n, 6);
  for (int method = 0; method < 3; ++method) {
    std::vector<double> x(n, 0.0), product(n);
    int iterations = 500;
    double tol = 1e-11;
    const int result = method == 0   ? BiCG(A, x.data(), b.data(), M, iterations, tol, nullptr)
                       : method == 1 ? CGS(A, x.data(), b.data(), M, iterations, tol)
                                     : BiCGSTAB(A, x.data(), b.data(), M, iterations, tol, nullptr);
    EXPECT_EQ(result, 0);
    A.mult(x.data(), product.data());
    EXPECT_LE(LargestDifference(product, b), 1e-9);
  }
}

TEST(BlockFactors, ReplacedRowsStayApart)
{
  for (const int ndof : {3, 6}) {
    SparseMatrix matrix = NodeGrid(3, ndof).Filled();
    std::vector<double> b = RandomVector(matrix.GiveSize(), 3);
    for (int i = 1; i < matrix.GiveSize(); i += 4) {
      matrix.Fix_Row_Dalvek(i);
      b[i] = i % 8 == 1 ? 0.0 : 0.1 * i;
    }
    std::vector<double> y(b.size());
    ILUPreconditioner(matrix).solve(b.data(), y.data());
    for (int i = 1; i < matrix.GiveSize(); i += 4)
      EXPECT_EQ(y[i], b[i]);
  }
}

TEST(BlockFactors, FreeBlocksAreLeftOut)
{
  NodeCouplings couplings(3, 200);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}, {2, 2}})
    couplings.Add(p, q);
  SparseMatrix matrix(couplings.TakePattern(), 3);
  const double block[] = {4, 1, 0, 1, 5, 2, 0, 2, 6};
  for (int p = 0; p < 3; ++p)
    matrix.AddNodeBlock(p, p, block, false);
  matrix.AddNodeBlock(0, 1, block, false);
  ExpectSameSolutions(matrix);
}

TEST(BlockFactors, WithoutAPivotNothingIsSolved)
{
  const NodeGrid grid(2, 3);
  for (const double pivot : {0.0, kNaN, std::numeric_limits<double>::infinity()})
    for (const int i : {0, 1, 23}) {
      SparseMatrix matrix = grid.Filled();
      matrix.Fix_Row_Dalvek(i);
      matrix.set(i, i) = pivot;
      const ILUPreconditioner M(matrix);
      EXPECT_FALSE(M.IsComplete());
      std::vector<double> y(24, 0.0);
      M.solve(y.data(), y.data());
      EXPECT_TRUE(std::isnan(y[5]));
      M.trans_solve(y.data(), y.data());
      EXPECT_TRUE(std::isnan(y[5]));
    }
  NodeCouplings couplings(2, 200);
  SparseMatrix empty(couplings.TakePattern(), 3);
  EXPECT_FALSE(ILUPreconditioner(empty).IsComplete());
}

TEST(BlockFactors, StorageIsADoubleForEveryEntryAndAnIntForEveryBlock)
{
  for (const int ndof : {3, 6}) {
    const SparseMatrix matrix = NodeGrid(3, ndof).Filled();
    const std::size_t slots = matrix.GiveSlots();
    const std::size_t blocks = slots / ndof / ndof;
    EXPECT_EQ(ILUPreconditioner(matrix).StorageBytes(),
              8 * (slots + 2 * kBlockPadding) + 4 * (blocks + 2 * 28));
  }
}

}  // namespace
