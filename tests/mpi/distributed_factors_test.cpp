#include "mpi/distributed_factors.h"

#include <gtest/gtest.h>
#include <mpi.h>

#include <numeric>
#include <vector>

#include "direct/factor_files.h"

namespace morlen::mpi {

namespace {

// The library of messages for a group of this one process.
class DistributedFactorsTest : public testing::Test
{
protected:
  static void SetUpTestSuite()
  {
    int started = 0;
    MPI_Initialized(&started);
    if (!started)
      MPI_Init(nullptr, nullptr);
  }
  static void TearDownTestSuite() { MPI_Finalize(); }
};

// Springs of stiffness 1 between n masses in a row. The ends are tied to the ground by springs of
// the same stiffness, or free.
struct Row
{
  Row(int n_, bool tied) : n(n_)
  {
    for (int i = 1; i <= n; ++i) {
      const bool end = i == 1 || i == n;
      Add(i, i, end && !tied ? 1.0 : 2.0);
      if (i < n)
        Add(i, i + 1, -1.0);
    }
  }

  void Add(int row, int column, double value)
  {
    rows.push_back(row);
    columns.push_back(column);
    values.push_back(value);
  }
  direct::Coordinates Entries() { return {rows, columns, values.data()}; }

  int n;
  std::vector<int> rows;
  std::vector<int> columns;
  std::vector<double> values;
};

std::vector<int> InOrder(int n)
{
  std::vector<int> places(static_cast<std::size_t>(n));
  std::iota(places.begin(), places.end(), 1);
  return places;
}

}  // namespace

// Mass i under loads of 1 moves by i (n + 1 - i) / 2. The numbers are small integers: 1e-12 allows
// for the roundings of 300 pivots.
TEST_F(DistributedFactorsTest, SolveInMemoryAndOutOfCore)
{
  constexpr int n = 300;
  for (const bool outOfCore : {false, true}) {
    Row row(n, true);
    DistributedFactors factors;
    ASSERT_EQ(factors.Analyse(n, row.Entries(), InOrder(n)).outcome.status, 0);
    EXPECT_EQ(factors.Factorise(outOfCore).status, 0) << outOfCore;
    std::vector<double> sides(2 * n, 1.0);
    std::fill(sides.begin() + n, sides.end(), -2.0);
    EXPECT_EQ(factors.Solve(sides, 2).status, 0) << outOfCore;
    for (int i = 1; i <= n; ++i) {
      const double expected = 0.5 * i * (n + 1 - i);
      EXPECT_NEAR(sides[i - 1], expected, 1e-12 * n * n);
      EXPECT_NEAR(sides[n + i - 1], -2.0 * expected, 1e-12 * n * n);
    }
    factors.End();
  }
}

// In their order the masses fill nothing in: the factors have the diagonal and the springs between
// two masses, and at most the zeros of the joined columns beside them. The free bytes of a folder
// change while other programs run: half and twice the number.
TEST_F(DistributedFactorsTest, TellTheSizesBeforehand)
{
  constexpr int n = 3000;
  constexpr double entries = 2 * n - 1;
  const double free = static_cast<double>(direct::FactorFiles().FreeBytes());
  Row row(n, true);
  DistributedFactors factors;
  const FactorAnalysis analysis = factors.Analyse(n, row.Entries(), InOrder(n));
  EXPECT_GE(analysis.sizes.entries, entries);
  EXPECT_LE(analysis.sizes.entries, 100 * entries);
  EXPECT_GT(analysis.sizes.operations, entries);
  EXPECT_EQ(analysis.files.needed, static_cast<double>(analysis.sizes.fileBytes));
  EXPECT_GE(analysis.files.needed, sizeof(double) * entries);
  EXPECT_GT(analysis.files.left, 0.5 * free);
  EXPECT_LT(analysis.files.left, 2.0 * free);
  EXPECT_TRUE(analysis.memory.Fits());
  EXPECT_TRUE(analysis.memoryLeast.Fits());
  EXPECT_GT(analysis.memoryLeast.needed, 0.0);
  factors.End();
}

// The last pivot of a free row is 0: it becomes a small part of its diagonal, and the motion of the
// whole row is very large.
TEST_F(DistributedFactorsTest, GoOnAfterAPivotOfZero)
{
  constexpr int n = 40;
  Row row(n, false);
  DistributedFactors factors;
  ASSERT_EQ(factors.Analyse(n, row.Entries(), InOrder(n)).outcome.status, 0);
  EXPECT_FALSE(factors.Factorise(false).IsSingular());
  std::vector<double> side(n, 1.0);
  EXPECT_EQ(factors.Solve(side, 1).status, 0);
  for (const double u : side)
    EXPECT_GT(std::fabs(u), 1e9);
  factors.End();
}

}  // namespace morlen::mpi
