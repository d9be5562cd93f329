// Stresses at the nodes of solids.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/elem.h"
#include "support/fatal.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

// Two tetrahedra on the two sides of the face x = 0, with all displacements prescribed.
SolidModel Pair(int nnode, const std::function<Vector3(const Vector3&)>& field)
{
  SolidModel model;
  model.material = "E 1000 nu 0";
  model.nodes = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}};
  model.elements = {{1, 2, 3, 4}, {1, 3, 5, 4}};
  if (nnode == 10)
    model.ToTenNodes();
  return model.Prescribe(model.OuterNodes(), field);
}

// Strain 0.01 on the right, 0.03 on the left.
Vector3 Kinked(const Vector3& x)
{
  return {(x[0] > 0.0 ? 0.01 : 0.03) * x[0], 0, 0};
}

double StressX(const Solved& solved, int node)
{
  return StressAt(solved, node)[0];
}

}  // namespace

class SmoothSolid : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Nodes, SmoothSolid, testing::Values(4, 10),
                         [](const auto& instance) { return std::to_string(instance.param); });

TEST_P(SmoothSolid, IsTheMeanOfTheElementsAroundANode)
{
  const SolidModel model = Pair(GetParam(), Kinked);
  const Solved solved(model.Text());
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const double x = model.nodes[i][0];
    EXPECT_NEAR(StressX(solved, static_cast<int>(i) + 1),
                x > 0   ? 10.0
                : x < 0 ? 30.0
                        : 20.0,
                1e-10)
        << i + 1;
  }
}

// Large and small elements have the same weight.
TEST_P(SmoothSolid, DoesNotWeighTheElements)
{
  SolidModel model = Pair(GetParam(), Kinked);
  for (Vector3& node : model.nodes)
    node[0] *= node[0] < 0.0 ? 10.0 : 1.0;
  model.Prescribe(model.OuterNodes(), Kinked);
  EXPECT_NEAR(StressX(Solved(model.Text()), 1), 20.0, 1e-10);
}

TEST_P(SmoothSolid, IsOnByDefault)
{
  SolidModel model = Pair(GetParam(), Kinked);
  EXPECT_TRUE(ReadProject(model.Text())->problem.smoothing.on);
  model.settings = "DoSmoothing 0.5";
  EXPECT_NEAR(StressX(Solved(model.Text()), 1), 20.0, 1e-10);
}

// ux = x²/10 with nu = 0: the stress is 200 x at the corners, extrapolated from the inner points.
TEST(SmoothSolidOfTenNodes, ExtrapolatesLinearly)
{
  const auto square = [](const Vector3& x) { return Vector3{0.1 * x[0] * x[0], 0, 0}; };
  const SolidModel model = Pair(10, square);
  const Solved solved(model.Text());
  for (std::size_t i = 0; i < model.nodes.size(); ++i)
    EXPECT_NEAR(StressX(solved, static_cast<int>(i) + 1), 200.0 * model.nodes[i][0], 2e-5) << i;
}

// In one element the middle of an edge has the mean of its ends.
TEST(SmoothSolidOfTenNodes, MiddlesHaveTheMeanOfTheirCorners)
{
  SolidModel model = UnitSolid(10);
  model.nodes[4] = {0.45, 0.05, 0.02};  // a curved edge
  model.Prescribe({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, [](const Vector3& x) {
    return Vector3{0.1 * x[0] * x[0], 0.2 * x[0] * x[1], 0.05 * x[2] * x[1]};
  });
  const Solved solved(model.Text());
  const std::vector<int>& elem = model.elements[0];
  for (int a = 0; a < 4; ++a) {
    for (int b = a + 1; b < 4; ++b) {
      const Tensor first = StressAt(solved, elem[a]);
      const Tensor second = StressAt(solved, elem[b]);
      const Tensor middle = StressAt(solved, elem[MiddleOf(a, b)]);
      for (int k = 0; k < 6; ++k)
        EXPECT_NEAR(middle[k], (first[k] + second[k]) / 2.0, 1e-11);
    }
  }
}

// Linear interpolation between the extrapolated corners gives the values at the points again.
TEST(SmoothSolidOfTenNodes, PointsLieBetweenTheCornerValues)
{
  SolidModel model = UnitSolid(10);
  model.Prescribe({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, [](const Vector3& x) {
    return Vector3{x[0] * x[1], 0.3 * x[2] * x[2], 0.7 * x[0] * x[0]};
  });
  const Solved solved(model.Text());
  const ReaVecV& points = solved.Result().results[0].strengths;
  ASSERT_EQ(points.Size(), 24);
  constexpr double a = 0.5854102, b = 0.1381966;
  for (int g = 0; g < 4; ++g) {  // point g is nearest to corner g + 1, the last one to corner 0
    for (int k = 0; k < 6; ++k) {
      double value = 0.0;
      for (int corner = 0; corner < 4; ++corner)
        value += (corner == (g + 1) % 4 ? a : b) * StressAt(solved, corner + 1)[k];
      EXPECT_NEAR(points(6 * g + k + 1), value, 1e-10);
    }
  }
}

TEST_P(SmoothSolid, NodeWithoutElementsEndsTheRun)
{
  SolidModel model = Pair(GetParam(), Kinked);
  // A node in the middle of the numbers: the message would differ after renumbering.
  for (std::vector<int>& elem : model.elements) {
    for (int& node : elem)
      node += node >= 3 ? 1 : 0;
  }
  model.nodes.insert(model.nodes.begin() + 2, Vector3{7, 7, 7});
  model.supports.clear();
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node)
    model.supports[node] = {};
  for (const bool renumber : {false, true})
    ExpectFatal([&] { Solved solved(model.Text(), renumber); },
                "error: node 3 has no elements around\n");
}

}  // namespace morlen
