#include "export/shell_corners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace morlen {

namespace {

using Forces = ShellCorners::Forces;
using Axes = std::array<Vec3, 3>;

// The axes turned about z by an angle.
Axes AxesAt(double angle)
{
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return {{{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}}};
}

constexpr double kDegree = std::numbers::pi / 180.0;

// Two triangles with one Gauss point that share the nodes 1 and 2; the axes of the second are
// turned.
struct Pair
{
  explicit Pair(double angle, int mesh = 0)
  {
    model.nodes = {{1, {0, 0, 0}}, {2, {1, 0, 0}}, {3, {0, 1, 0}}, {4, {1, 1, 0}}};
    Add({0, 1, 2}, 0.0, 0);
    Add({1, 3, 2}, angle, mesh);
    points[0].local = {2.0, 0.0, 0.0, 1.0, 0.0, 0.0, 1.0, 0.0};
    points[1].local = {4.0, 0.0, 0.0, 3.0, 0.0, 0.0, 3.0, 0.0};
  }

  void Add(const std::array<int, 3>& nodes, double angle, int mesh)
  {
    model::Element element{};
    element.mesh = mesh;
    element.kind = model::Kind::Shell;
    element.firstPoint = static_cast<int>(points.size());
    element.points = 1;
    element.nodeCount = 3;
    std::copy(nodes.begin(), nodes.end(), element.nodes.begin());
    element.axes = AxesAt(angle);
    model.elements.push_back(element);
    points.emplace_back();
  }

  model::Model model;
  std::vector<results::ShellPoint> points;
};

}  // namespace

TEST(ShellCorners, ContinuesALinearFunction)
{
  // f = 3 + 5 ξ - 2 η at the middles of the edges.
  std::vector<results::ShellPoint> points(3);
  const double middles[3][2] = {{0.5, 0.0}, {0.5, 0.5}, {0.0, 0.5}};
  const double nodes[6][2] = {{0, 0}, {1, 0}, {0, 1}, {0.5, 0.0}, {0.5, 0.5}, {0.0, 0.5}};
  const auto f = [](const double* at) { return 3.0 + 5.0 * at[0] - 2.0 * at[1]; };
  for (int i = 0; i < 3; ++i)
    points[i].local.fill(f(middles[i]));
  for (int i = 0; i < 6; ++i) {
    for (const double value : ForcesAtNode(points, i))
      EXPECT_DOUBLE_EQ(value, f(nodes[i])) << "node " << i;
  }
  for (const double value : ForcesAtNode(std::span(points).first(1), 2))
    EXPECT_DOUBLE_EQ(value, f(middles[0]));
}

TEST(ShellCorners, TurnsUniaxialForces)
{
  // Tension p along an axis at the angle φ is p cos² φ, p sin² φ, p sin φ cos φ.
  const double angle = 0.3;
  const Forces along = {2.0, 0.0, 0.0, 0.0, -1.0, 0.0, 1.0, 0.0};
  const Forces turned = Turned(along, AxesAt(angle), AxesAt(0.0));
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const Forces expected = {2 * c * c, 2 * s * s, 2 * s * c, -s * s, -c * c, s * c, c, s};
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(turned[k], expected[k], 1e-14) << k;  // rounding
}

TEST(ShellCorners, AveragesNeighboursInTheAxesOfTheFirst)
{
  const double angle = 14.0 * kDegree;
  const Pair pair(angle);
  const ShellCorners corners(pair.model, pair.points);
  EXPECT_TRUE(corners.CopiedNodes().empty());
  const double c = std::cos(angle);
  for (const int node : {1, 2}) {
    EXPECT_NEAR(corners.OfNode(node)[0], (2.0 + 4.0 * c * c) / 2.0, 1e-14);
    EXPECT_NEAR(corners.OfNode(node)[6], (1.0 + 3.0 * c) / 2.0, 1e-14);
  }
  EXPECT_EQ(corners.OfNode(0), pair.points[0].local);
  EXPECT_EQ(corners.OfNode(3), pair.points[1].local);
}

TEST(ShellCorners, SeparatesOtherAxesAndOtherMeshes)
{
  for (const Pair& pair : {Pair(16.0 * kDegree), Pair(0.0, 1)}) {
    const ShellCorners corners(pair.model, pair.points);
    ASSERT_EQ(corners.CopiedNodes(), (std::vector<int>{1, 2}));
    EXPECT_EQ(corners.CopyAt(0, 1), -1);
    EXPECT_EQ(corners.CopyAt(1, 0), 0);
    EXPECT_EQ(corners.CopyAt(1, 1), -1);
    EXPECT_EQ(corners.CopyAt(1, 2), 1);
    for (const int k : {0, 1}) {
      EXPECT_EQ(corners.OfNode(1 + k), pair.points[0].local);
      EXPECT_EQ(corners.OfCopy(k), pair.points[1].local);
    }
  }
}

TEST(ShellCorners, NodesWithoutShellsAreNotANumber)
{
  Pair pair(0.0);
  pair.model.nodes.push_back({5, {9, 9, 9}});
  for (const double value : ShellCorners(pair.model, pair.points).OfNode(4))
    EXPECT_TRUE(std::isnan(value));
}

}  // namespace morlen
