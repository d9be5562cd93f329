#include "direct/node_ordering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace morlen::direct {

namespace {

/// A grid of nx by ny nodes, each coupled with its neighbours along both axes, and single nodes
/// after them.
NodePattern Grid(int nx, int ny, int singles = 0)
{
  NodeCouplings couplings(nx * ny + singles, nx * ny + singles);
  const auto couple = [&](int a, int b) {
    couplings.Add(a, b);
    couplings.Add(b, a);
  };
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      if (i + 1 < nx)
        couple(j * nx + i, j * nx + i + 1);
      if (j + 1 < ny)
        couple(j * nx + i, (j + 1) * nx + i);
    }
  }
  return couplings.MakePattern();
}

/// The entries of each column of the factor by elimination on sets: the later neighbours of a node
/// become neighbours of each other.
FactorSize CountByElimination(const NodePattern& pattern, const std::vector<int>& place)
{
  std::vector<std::set<int>> later(place.size());
  for (int p = 0; p < pattern.Lines(); ++p) {
    for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s) {
      const int q = pattern.columns[s];
      if (place[q] > place[p])
        later[place[p]].insert(place[q]);
    }
  }
  FactorSize size;
  for (std::set<int>& column : later) {
    for (const int j : column)
      later[j].insert(column.upper_bound(j), column.end());
    const auto blocks = static_cast<double>(column.size() + 1);
    size.blocks += blocks;
    size.operations += blocks * blocks;
  }
  return size;
}

}  // namespace

TEST(OrderNodes, GivesEveryNodeAPlace)
{
  for (const NodePattern& pattern : {Grid(1, 1), Grid(5000, 1), Grid(30, 20), Grid(7, 3, 4)}) {
    std::vector<int> place = OrderNodes(pattern);
    EXPECT_EQ(OrderNodes(pattern), place);  // the same on every call
    std::sort(place.begin(), place.end());
    for (int k = 0; k < pattern.Lines(); ++k)
      ASSERT_EQ(place[k], k);
  }
}

TEST(OrderNodes, TakesNoNodes)
{
  EXPECT_TRUE(OrderNodes(NodePattern()).empty());
}

// Nested dissection: a square of k by k nodes has about 31/4 k² log2 k entries (A. George, Nested
// dissection of a regular finite element mesh, SIAM Journal on Numerical Analysis 10 (1973)
// 345-363, for nine-point couplings). The numbers of the rows would give k³.
TEST(OrderNodes, FillsLessThanTheProfile)
{
  const NodePattern grid = Grid(100, 100);
  EXPECT_LT(CountFactor(grid, OrderNodes(grid)).blocks, 31.0 / 4.0 * 1e4 * 6.64);
}

TEST(CountFactor, CountsAsEliminationDoes)
{
  for (const NodePattern& pattern : {Grid(1, 1), Grid(40, 1), Grid(9, 13), Grid(6, 6, 3)}) {
    std::vector<int> identity(static_cast<std::size_t>(pattern.Lines()));
    for (int k = 0; k < pattern.Lines(); ++k)
      identity[k] = k;
    for (const std::vector<int>& place : {identity, OrderNodes(pattern)}) {
      const FactorSize expected = CountByElimination(pattern, place);
      const FactorSize found = CountFactor(pattern, place);
      EXPECT_EQ(found.blocks, expected.blocks);
      EXPECT_EQ(found.operations, expected.operations);
    }
  }
}

}  // namespace morlen::direct
