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

// A square of n by n cells of two triangles, the diagonals in turn, with a field at the Gauss
// points.
struct Square
{
  template <class Field>
  Square(int n, int pointsOfShell, Field field)
  {
    for (int j = 0; j <= n; ++j) {
      for (int i = 0; i <= n; ++i)
        model.nodes.push_back({i + j * (n + 1) + 1, {1.0 * i, 0.3 * j, 0.0}});
    }
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < n; ++i) {
        const int a = i + j * (n + 1);
        const int d = a + n + 1;
        const bool even = (i + j) % 2 == 0;
        Add({a, a + 1, even ? d + 1 : d}, pointsOfShell, field);
        Add({even ? a : a + 1, d + 1, d}, pointsOfShell, field);
      }
    }
  }

  template <class Field>
  void Add(const std::array<int, 3>& nodes, int count, Field field)
  {
    model::Element element{};
    element.kind = model::Kind::Shell;
    element.firstPoint = static_cast<int>(points.size());
    element.points = count;
    element.nodeCount = 3;
    std::copy(nodes.begin(), nodes.end(), element.nodes.begin());
    element.axes = AxesAt(0.0);
    model.elements.push_back(element);
    const auto at = [&](int i) -> const Vec3& { return model.nodes[nodes[i % 3]].x; };
    for (int k = 0; k < count; ++k) {
      Vec3 place{};
      for (int c = 0; c < 3; ++c)
        place[c] =
            count == 1 ? (at(0)[c] + at(1)[c] + at(2)[c]) / 3 : (at(k)[c] + at(k + 1)[c]) / 2;
      points.emplace_back().local.fill(field(place[0], place[1]));
    }
  }

  model::Model model;
  std::vector<results::ShellPoint> points;
};

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

TEST(ShellCorners, AreExactForFieldsOfTheDegreeOfTheShells)
{
  const int n = 5;
  const auto linear = [](double x, double y) { return 3.0 + 5.0 * x - 2.0 * y; };
  const auto quadratic = [&](double x, double y) { return linear(x, y) + x * y - 2.0 * x * x; };
  const Square one(n, 1, linear);
  const Square three(n, 3, linear);
  const Square curved(n, 3, quadratic);
  const ShellCorners ofOne(one.model, one.points);
  const ShellCorners ofThree(three.model, three.points);
  const ShellCorners ofCurved(curved.model, curved.points);
  EXPECT_TRUE(ofOne.CopiedNodes().empty());
  for (int node = 0; node < (n + 1) * (n + 1); ++node) {
    const Vec3& x = one.model.nodes[node].x;
    // Rounding of values up to 60.
    EXPECT_NEAR(ofOne.OfNode(node).forces[0], linear(x[0], x[1]), 1e-11) << node;
    EXPECT_NEAR(ofThree.OfNode(node).forces[7], linear(x[0], x[1]), 1e-11) << node;
    const int column = node % (n + 1);
    const int row = node / (n + 1);
    // On the border the points of few shells are used.
    if (column > 0 && column < n && row > 0 && row < n) {
      EXPECT_NEAR(ofCurved.OfNode(node).forces[4], quadratic(x[0], x[1]), 1e-11) << node;
    }
  }
}

TEST(ShellCorners, ExceedThePointsByHalfTheirRangeAtMost)
{
  // Three triangles at a node of a straight border: the plane through their centres is steep.
  int reached = 0;
  for (int signs = 0; signs < 8; ++signs) {
    Square fan(0, 1, [](double, double) { return 0.0; });
    fan.model.nodes = {
        {1, {0, 0, 0}}, {2, {-1, 0, 0}}, {3, {0, 1, 0}}, {4, {1, 1, 0}}, {5, {1, 0, 0}}};
    for (int k = 0; k < 3; ++k)
      fan.Add({0, k + 2, k + 1}, 1,
              [&](double, double) { return (signs >> k & 1) != 0 ? 1.0 : -1.0; });
    const ShellCorners corners(fan.model, fan.points);
    const double value = std::fabs(corners.OfNode(0).forces[0]);
    EXPECT_LE(value, 1.0 + 0.5 * 2.0) << signs;
    reached += value == 2.0 ? 1 : 0;
  }
  EXPECT_GT(reached, 0);
}

TEST(ShellCorners, HaveCopiesAtBeams)
{
  // The field jumps at x = 2, where beams are.
  Square square(4, 3, [](double, double) { return 0.0; });
  for (std::size_t e = 0; e < square.model.elements.size(); ++e) {
    const model::Element& shell = square.model.elements[e];
    double middle = 0.0;
    for (int i = 0; i < 3; ++i)
      middle += square.model.nodes[shell.nodes[i]].x[0] / 3.0;
    for (int k = 0; k < 3; ++k)
      square.points[shell.firstPoint + k].local.fill(middle < 2.0 ? 1.0 : -1.0);
  }
  for (int j = 0; j < 4; ++j) {
    model::Element beam{};
    beam.kind = model::Kind::Beam;
    beam.nodeCount = 2;
    beam.nodes = {2 + 5 * j, 7 + 5 * j};
    square.model.elements.push_back(beam);
  }
  const ShellCorners corners(square.model, square.points);
  EXPECT_EQ(corners.CopiedNodes(), (std::vector<int>{2, 7, 12, 17, 22}));
  for (int node = 0; node < 25; ++node)
    EXPECT_NEAR(corners.OfNode(node).forces[6], node % 5 <= 2 ? 1.0 : -1.0, 1e-13) << node;
  for (int copy = 0; copy < 5; ++copy)
    EXPECT_NEAR(corners.OfCopy(copy).forces[6], -1.0, 1e-13) << copy;  // rounding
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
    EXPECT_NEAR(corners.OfNode(node).forces[0], (2.0 + 4.0 * c * c) / 2.0, 1e-14);
    EXPECT_NEAR(corners.OfNode(node).forces[6], (1.0 + 3.0 * c) / 2.0, 1e-14);
  }
  EXPECT_EQ(corners.OfNode(0).forces, pair.points[0].local);
  EXPECT_EQ(corners.OfNode(3).forces, pair.points[1].local);
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
      EXPECT_EQ(corners.OfNode(1 + k).forces, pair.points[0].local);
      EXPECT_EQ(corners.OfCopy(k).forces, pair.points[1].local);
    }
  }
}

TEST(ShellCorners, NodesWithoutShellsAreNotANumber)
{
  Pair pair(0.0);
  pair.model.nodes.push_back({5, {9, 9, 9}});
  const ShellCorners corners(pair.model, pair.points);
  for (const double value : corners.OfNode(4).forces)
    EXPECT_TRUE(std::isnan(value));
}

}  // namespace morlen
