#include "solvers/bsolver.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <vector>

#include "numeric/matriu.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/processor.h"

namespace morlen {

namespace {

/// Fills a matrix of two coupled nodes of one component.
void Fill(BSolver& matrix, double first, double beside, double last)
{
  matrix.EnterMaxDiff(1, 2, 1);
  matrix.Create(1);
  matrix.AddSubMatriu(1, 1, MatriuOf(1, 1, {first}));
  matrix.AddSubMatriu(1, 2, MatriuOf(1, 1, {beside}));
  matrix.AddSubMatriu(2, 2, MatriuOf(1, 1, {last}));
}

TEST(AreEqual, ComparesAllEntriesOfAnyTwoSolvers)
{
  SkyMatriu sky(2, TestedProcessor());
  Fill(sky, 4.0, 1.0, 5.0);
  static const struct
  {
    double first, beside, last, tol;
    bool equal;
  } cases[] = {
      {4.0, 1.0, 5.0, 1e-12, true},
      {4.5, 1.0, 5.0, 0.5, false},
      {4.5, 1.0, 5.0, 0.51, true},
      {4.0, 0.5, 5.0, 0.5, false},
      {4.0, 1.0, 5.5, 0.5, false},
      {4.0, 1.0, 5.0, 0.0, false},
      {4.0, 1.0, std::numeric_limits<double>::quiet_NaN(), 1.0, false},
  };
  for (const auto& c : cases) {
    SparseSolver sparse(2, 1, TestedProcessor());
    Fill(sparse, c.first, c.beside, c.last);
    EXPECT_EQ(AreEqual(sky, sparse, c.tol), c.equal);
    EXPECT_EQ(AreEqual(sparse, sky, c.tol), c.equal);
  }
}

/// Entry (i, j), from 0, of the stiffness of an element: symmetric.
double Stiffness(int i, int j)
{
  return 1.0 / (i + j + 1);
}

TEST(BSolver, AddsTheBlocksOfElements)
{
  constexpr int kNodes = 4;
  for (const int ndof : {1, 3, 6}) {
    SkyMatriu sky(kNodes * ndof, TestedProcessor());
    SparseSolver sparse(kNodes, ndof, TestedProcessor());
    Matriu expected(kNodes * ndof, kNodes * ndof);
    expected = 0.0;
    for (BSolver* solver : std::initializer_list<BSolver*>{&sky, &sparse}) {
      for (int p = 1; p <= kNodes; ++p)
        for (int q = p + 1; q <= kNodes; ++q)
          solver->EnterMaxDiff(p, q, ndof);
      solver->Create(ndof);
    }
    for (const std::vector<int>& nodes : {std::vector{1, 2, 3, 4}, {3, 1, 4, 2}, {4, 2}}) {
      const int size = static_cast<int>(nodes.size());
      std::vector<double> blocks;
      for (int i = 0; i < size; ++i)
        for (int j = 0; j < size; ++j)
          for (int k = 0; k < ndof * ndof; ++k) {
            const double value = Stiffness(i * ndof + k / ndof, j * ndof + k % ndof);
            expected((nodes[i] - 1) * ndof + k / ndof + 1, (nodes[j] - 1) * ndof + k % ndof + 1) +=
                value;
            if (j >= i)
              blocks.push_back(value);
          }
      for (BSolver* solver : std::initializer_list<BSolver*>{&sky, &sparse}) {
        solver->Prefetch(nodes, size);
        solver->AddElement({nodes, ndof, blocks.data()});
      }
    }
    EXPECT_TRUE(AreEqual(sky, sparse, 1e-14));
    for (int i = 1; i <= sparse.GiveSize(); ++i)
      for (int j = 1; j <= sparse.GiveSize(); ++j)
        EXPECT_NEAR(sparse(i, j), expected(i, j), 1e-14);
  }
}

TEST(AreEqual, SizesMustAgree)
{
  SkyMatriu two(2), three(3, TestedProcessor());
  two.Create(1);
  three.Create(1);
  EXPECT_FALSE(AreEqual(two, three, 1e9));
  EXPECT_TRUE(AreEqual(two, two, 1e-9));
}

TEST(AreEqual, EntriesThatASolverDoesNotHaveEndTheRun)
{
  SkyMatriu sky(2, TestedProcessor());
  sky.Create(1);
  SparseSolver sparse(2, 1, TestedProcessor());
  sparse.Create(1);
  ExpectFatal([&] { AreEqual(sky, sparse, 1.0); },
              "Sparse Matrix element (0,0) not in sparse structure -- cannot assign.");
}

}  // namespace

}  // namespace morlen
