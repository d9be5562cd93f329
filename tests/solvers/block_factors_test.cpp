#include "solvers/block_factors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"
#include "solvers/node_block_matrix.h"
#include "support/processor.h"
#include "support/sparse.h"

namespace morlen {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Nodes of a grid in space in mixed order, each coupled with its up to 26 neighbours.
class NodeGrid
{
public:
  NodeGrid(int side_, int ndof_) : side(side_), ndof(ndof_) {}

  /// The stiffness of springs between the nodes and of a foundation. Each spring has a full
  /// positive definite matrix; they range from weak to stiff.
  NodeBlockMatrix Filled(double foundation = 0.01) const
  {
    NodeCouplings couplings(side * side * side, 200);
    ForEachPair([&](int p, int q) {
      couplings.Add(p, q);
      couplings.Add(q, p);
    });
    NodeBlockMatrix matrix(couplings.MakePattern(), ndof, TestedProcessor());
    unsigned seed = 0;
    ForEachPair([&](int p, int q) { AddSpring(matrix, p, q, ++seed); });
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

  void AddSpring(NodeBlockMatrix& matrix, int p, int q, unsigned seed) const
  {
    const std::vector<double> d = RandomVector(ndof + 1, seed);
    const double stiffness = std::pow(10.0, 2.0 * d[ndof]);
    std::vector<double> own(ndof * ndof), apart(ndof * ndof);
    for (int a = 0; a < ndof; ++a)
      for (int b = 0; b < ndof; ++b) {
        const double k = stiffness * (d[a] * d[b] + (a == b ? 0.1 : 0.0));
        own[a * ndof + b] = k;
        apart[a * ndof + b] = -k;
      }
    matrix.AddNodeBlock(p, p, own.data(), false);
    matrix.AddNodeBlock(q, q, own.data(), false);
    matrix.AddNodeBlock(p, q, apart.data(), false);
    matrix.AddNodeBlock(q, p, apart.data(), true);
  }

  int side;
  int ndof;
};

/// Makes every `step`-th row from `first` on a row of the unit matrix; returns these rows.
std::vector<int> FixRows(NodeBlockMatrix& matrix, int first, int step)
{
  std::vector<int> fixed;
  for (int i = first; i < matrix.GiveSize(); i += step) {
    matrix.Fix_Row_Dalvek(i);
    fixed.push_back(i);
  }
  return fixed;
}

/// Compares with the scalar factors, for a right-hand side that is 0 in the prescribed rows.
void ExpectSameSolutions(const NodeBlockMatrix& blocks, const std::vector<int>& prescribed)
{
  const SparseMatrix rows = InRows(blocks);
  const BlockFactors M(blocks, prescribed);
  const ILUPreconditioner reference(rows);
  ASSERT_TRUE(M.IsComplete());
  const int n = blocks.GiveSize();
  std::vector<double> b = RandomVector(n, 77);
  for (const int i : prescribed)
    b[i] = 0.0;
  std::vector<double> y(n), expected(n);
  M.solve(b.data(), y.data());
  reference.solve(b.data(), expected.data());
  EXPECT_LE(LargestDifference(y, expected), 1e-11 * norm(expected.data(), n));
  std::vector<double> inPlace = b;
  M.solve(inPlace.data(), inPlace.data());
  EXPECT_EQ(inPlace, y);
  M.trans_solve(b.data(), inPlace.data());
  EXPECT_EQ(inPlace, y);
  std::vector<double> other(n), otherAlone(n);
  M.solve(inPlace.data(), otherAlone.data());
  const double* const both[2] = {inPlace.data(), b.data()};
  double* const solutions[2] = {other.data(), b.data()};
  M.SolveTwo(both, solutions);
  EXPECT_EQ(other, otherAlone);
  EXPECT_EQ(b, y);
}

TEST(BlockFactors, SolveLikeTheScalarFactors)
{
  for (const int ndof : {3, 6})
    for (const int side : {1, 2, 3, 5}) {
      NodeBlockMatrix matrix = NodeGrid(side, ndof).Filled();
      ExpectSameSolutions(matrix, {});
      ExpectSameSolutions(matrix, FixRows(matrix, 0, 5));
    }
}

/// Number of iterations of conjugate gradients to 1e-9.
int Iterations(const SystemMatrix& A, const Preconditioner& M, const std::vector<double>& b)
{
  std::vector<double> x(b.size(), 0.0);
  int iterations = 1000;
  double tol = 1e-9;
  EXPECT_EQ(CG(A, x.data(), b.data(), M, iterations, tol, nullptr), 0);
  return iterations;
}

TEST(BlockFactors, IterationsAreThoseOfTheScalarFactors)
{
  for (const int ndof : {3, 6})
    for (const double foundation : {1e-1, 1e-4})
      for (const bool fixed : {false, true}) {
        NodeBlockMatrix matrix = NodeGrid(6, ndof).Filled(foundation);
        std::vector<double> b = RandomVector(matrix.GiveSize(), 5);
        const std::vector<int> prescribed = fixed ? FixRows(matrix, 0, 7) : std::vector<int>();
        for (const int i : prescribed)
          b[i] = 0.0;
        const SparseMatrix rows = InRows(matrix);
        const int iterations = Iterations(matrix, BlockFactors(matrix, prescribed), b);
        EXPECT_NEAR(iterations, Iterations(rows, ILUPreconditioner(rows), b), 1);
        EXPECT_GT(iterations, 5);
      }
}

TEST(BlockFactors, OtherMethodsReachTheSameSolution)
{
  const NodeBlockMatrix A = NodeGrid(3, 3).Filled(1.0);
  const BlockFactors M(A, {});
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
    NodeBlockMatrix matrix = NodeGrid(3, ndof).Filled();
    std::vector<double> b = RandomVector(matrix.GiveSize(), 3);
    const std::vector<int> prescribed = FixRows(matrix, 1, 4);
    for (const int i : prescribed)
      b[i] = i % 8 == 1 ? 0.0 : 0.1 * i;
    std::vector<double> y(b.size());
    BlockFactors(matrix, prescribed).solve(b.data(), y.data());
    for (const int i : prescribed)
      EXPECT_EQ(y[i], b[i]);
  }
}

TEST(BlockFactors, BlocksOfZerosBelongToThePattern)
{
  NodeCouplings couplings(3, 200);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}, {1, 2}, {2, 1}})
    couplings.Add(p, q);
  NodeBlockMatrix matrix(couplings.MakePattern(), 3, TestedProcessor());
  const double block[] = {4, 1, 0, 1, 5, 2, 0, 2, 6};
  const double weak[] = {1, 0, 1, 0, 2, 1, 1, 1, 1};
  for (int p = 0; p < 3; ++p)
    matrix.AddNodeBlock(p, p, block, false);
  for (const auto& [p, q] : {std::pair{0, 1}, {1, 0}})
    matrix.AddNodeBlock(p, q, weak, false);
  ExpectSameSolutions(matrix, {});
}

TEST(BlockFactors, WithoutAPivotNothingIsSolved)
{
  const NodeGrid grid(2, 3);
  for (const double pivot : {0.0, kNaN, std::numeric_limits<double>::infinity()})
    for (const int i : {0, 1, 23}) {
      NodeBlockMatrix matrix = grid.Filled();
      matrix.Fix_Row_Dalvek(i);
      matrix.set(i, i) = pivot;
      const BlockFactors M(matrix, std::vector<int>{i});
      EXPECT_FALSE(M.IsComplete());
      std::vector<double> y(24, 0.0);
      M.solve(y.data(), y.data());
      EXPECT_TRUE(std::isnan(y[5]));
      M.trans_solve(y.data(), y.data());
      EXPECT_TRUE(std::isnan(y[5]));
      std::vector<double> first(24, 0.0), second(24, 0.0);
      double* const both[2] = {first.data(), second.data()};
      M.SolveTwo(both, both);
      EXPECT_TRUE(std::isnan(first[5]) && std::isnan(second[5]));
    }
  NodeCouplings couplings(2, 200);
  NodeBlockMatrix empty(couplings.MakePattern(), 3, TestedProcessor());
  EXPECT_FALSE(BlockFactors(empty, {}).IsComplete());
}

TEST(BlockFactors, OnlyTheUpperHalfIsStored)
{
  for (const int ndof : {3, 6}) {
    const NodeBlockMatrix matrix = NodeGrid(3, ndof).Filled();
    const std::size_t square = static_cast<std::size_t>(ndof) * ndof;
    const std::size_t above = (matrix.GiveSlots() / square - 27) / 2;
    EXPECT_EQ(BlockFactors(matrix, {}).StorageBytes(),
              8 * ((27 + above) * square + 2 * kBlockPadding) + 4 * (above + 28));
  }
}

}  // namespace

}  // namespace morlen
