#include "solvers/node_couplings.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace morlen {

namespace {

void Couple(NodeCouplings& couplings, int p, int q)
{
  EXPECT_TRUE(couplings.Add(p, q));
  EXPECT_TRUE(couplings.Add(q, p));
}

std::vector<int> Line(const NodePattern& pattern, int p)
{
  return {pattern.columns.begin() + pattern.starts[p],
          pattern.columns.begin() + pattern.starts[p + 1]};
}

TEST(NodeCouplings, LinesAscendAndHoldTheNodeItself)
{
  for (const int nodes : {1, 2, 30, 150}) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> node(0, nodes - 1);
    std::vector<std::set<int>> expected(nodes);
    NodeCouplings couplings(nodes, 200);
    for (int k = 0; k < 40 * nodes; ++k) {
      const int p = node(random);
      const int q = node(random);
      if (p == q)
        continue;
      Couple(couplings, p, q);
      expected[p].insert(q);
      expected[q].insert(p);
    }
    const NodePattern pattern = couplings.MakePattern();
    ASSERT_EQ(pattern.Lines(), nodes);
    for (int p = 0; p < nodes; ++p) {
      expected[p].insert(p);
      EXPECT_EQ(Line(pattern, p), std::vector<int>(expected[p].begin(), expected[p].end()));
    }
  }
}

TEST(NodeCouplings, LimitCountsDifferentNeighbours)
{
  for (const int limit : {1, 7, 8, 9, 20}) {
    NodeCouplings couplings(limit + 3, limit);
    for (int round = 0; round < 30; ++round)
      for (int q = 1; q <= limit; ++q)
        EXPECT_TRUE(couplings.Add(0, q));
    EXPECT_FALSE(couplings.Add(0, limit + 1));
    EXPECT_TRUE(couplings.Add(0, limit));
  }
}

TEST(NodeCouplings, NodeCoupledWithItselfGetsNoFurtherBlock)
{
  NodeCouplings couplings(3, 200);
  Couple(couplings, 1, 1);
  Couple(couplings, 1, 2);
  const NodePattern pattern = couplings.MakePattern();
  EXPECT_EQ(Line(pattern, 0), std::vector<int>{0});
  EXPECT_EQ(Line(pattern, 1), (std::vector<int>{1, 2}));
  EXPECT_EQ(Line(pattern, 2), (std::vector<int>{1, 2}));
}

TEST(NodeCouplings, WithoutNodesThereAreNoLines)
{
  for (const int nodes : {0, -3})
    EXPECT_EQ(NodeCouplings(nodes, 200).MakePattern().Lines(), 0);
}

}  // namespace

}  // namespace morlen
