#include "assembly/coplanarity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/messages.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// Two squares of two triangles each. The second square is turned up by the angle about the edge
// 2-5.
ShellModel Fold(double angle)
{
  return GridShell(2, 1, [&](double u, double v) {
    const double s = 2.0 * u;
    const double beyond = std::max(s - 1.0, 0.0);
    return Vector3{std::min(s, 1.0) + beyond * std::cos(angle), v, beyond * std::sin(angle)};
  });
}

std::vector<int> MarksOf(const ShellModel& model)
{
  const auto project = ReadProject(model.Text());
  project->CalcCoplanarityVector();
  return project->problem.coplanarity;
}

// `count` triangles around the node 1.
ShellModel Fan(int count)
{
  ShellModel model;
  model.nodes = {{0, 0, 0}};
  for (int i = 0; i < count; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / count;
    model.nodes.push_back({std::cos(angle), std::sin(angle), 0.0});
    model.triangles.push_back({1, i + 2, (i + 1) % count + 2});
  }
  for (int i = 0; i < count; ++i)
    model.Hold(i + 2, "111111");
  return model;
}

// Moves the triangles from `first` on to a second mesh, which shares the nodes.
std::string InTwoMeshes(const ShellModel& model, int first)
{
  std::string text = model.Text();
  const std::size_t at = text.find("\n" + std::to_string(first) + " ", text.find("elements"));
  return text.insert(at + 1,
                     "end elements\nmesh dimension 3 elemtype Triangle nnode 3\ncoordinates\nend\n"
                     "elements\n");
}

const std::vector<int> kAll(6, 1);
const std::vector<int> kAllButTheFold = {1, 0, 1, 1, 0, 1};

}  // namespace

TEST(Coplanarity, MarksEveryNodeOfAPlate)
{
  EXPECT_EQ(MarksOf(Fold(0.0)), kAll);
}

TEST(Coplanarity, DoesNotMarkAFold)
{
  for (const double angle : {1.5, -1.5, 0.01, 2e-7, std::numbers::pi / 2})
    EXPECT_EQ(MarksOf(Fold(angle)), kAllButTheFold) << angle;
}

TEST(Coplanarity, TreatsAFoldWithinTheAngleAsFlat)
{
  EXPECT_EQ(MarksOf(Fold(0.5e-7)), kAll);
  ShellModel model = Fold(0.01);
  model.settings = "CoplanarityAngle 0.011";
  EXPECT_EQ(MarksOf(model), kAll);
  model.settings = "CoplanarityAngle 0.009";
  EXPECT_EQ(MarksOf(model), kAllButTheFold);
}

TEST(Coplanarity, RefusesOppositeNormals)
{
  const std::string message =
      "error: Elements 1 and 3 have normals in opposite directions. "
      "It is necessary to swap normals\n";
  for (const double angle : {0.0, 0.5e-7}) {
    ShellModel model = Fold(angle);
    std::swap(model.triangles[2][1], model.triangles[2][2]);
    std::swap(model.triangles[3][1], model.triangles[3][2]);
    ExpectFatal([&] { MarksOf(model); }, message);
    model.settings = "ConvertTo6Nodes";
    ExpectFatal([&] { Solved{model.Text()}; }, message);
  }
}

TEST(Coplanarity, AcceptsAnOppositeNormalAcrossAFold)
{
  ShellModel model = Fold(1.0);
  std::swap(model.triangles[2][1], model.triangles[2][2]);
  std::swap(model.triangles[3][1], model.triangles[3][2]);
  EXPECT_EQ(MarksOf(model), kAllButTheFold);
}

// Of several such pairs, the message names the one at the node of the lowest number.
TEST(Coplanarity, NamesThePairAtTheFirstNode)
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {5, 0, 0}, {6, 0, 0}, {5, 1, 0}, {4, 1, 0}};
  model.triangles = {{4, 5, 6}, {4, 7, 6}, {1, 2, 3}, {1, 3, 2}};
  ExpectFatal([&] { MarksOf(model); },
              "error: Elements 3 and 4 have normals in opposite directions. "
              "It is necessary to swap normals\n");
}

// A sheet that is folded back onto itself also has opposite normals.
TEST(Coplanarity, RefusesASheetFoldedByHalfATurn)
{
  ExpectFatal([] { MarksOf(Fold(std::numbers::pi)); },
              "error: Elements 1 and 3 have normals in opposite directions. "
              "It is necessary to swap normals\n");
}

TEST(Coplanarity, ComparesEveryTriangleAroundANode)
{
  // The opposite triangle is the last of three at node 1, after a fold.
  ShellModel model;
  model.nodes = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, -1, 0}, {-1, 0, 0}};
  model.triangles = {{1, 2, 3}, {1, 3, 4}, {1, 5, 6}, {1, 6, 5}};
  ExpectFatal([&] { MarksOf(model); },
              "error: Elements 1 and 3 have normals in opposite directions. "
              "It is necessary to swap normals\n");
}

TEST(Coplanarity, RefusesATriangleWithoutANormal)
{
  ShellModel model = Fold(0.0);
  model.nodes[2] = model.nodes[1];
  ExpectFatal([&] { MarksOf(model); }, "error: element 3 is not correct\n");
  model = Fold(0.0);
  model.nodes[2] = {1.5, 0.5, 0.0};  // on the line from node 2 to node 6
  ExpectFatal([&] { Solved{model.Text()}; }, "error: element 3 is not correct\n");
}

TEST(Coplanarity, JudgesTrianglesOfAnySize)
{
  for (const double unit : {1e-12, 1.0, 1e12}) {
    ShellModel model = GridShell(1, 1, [unit](double u, double v) {
      return Vector3{unit * u, unit * v, 0.0};
    });
    EXPECT_EQ(MarksOf(model), (std::vector<int>{1, 1, 1, 1}));
    // On a line up to rounding.
    model.nodes = {
        {0, 0, 0}, {0.1 * unit, 0.3 * unit, 0}, {0.2 * unit, 0, 0}, {0.7 * unit, 2.1 * unit, 0}};
    ExpectFatal([&] { MarksOf(model); }, "error: element 1 is not correct\n");
  }
}

TEST(Coplanarity, AcceptsTwentyFiveTrianglesAroundANodeAndNoMore)
{
  const std::string message = "error: Node 1 has too many elements around (more than 25)\n";
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    ShellModel fan = Fan(25);
    fan.settings = settings;
    fan.Load(1, {0, 0, 1, 0, 0, 0});
    EXPECT_GT(Solved(fan.Text()).Displacement(1)[2], 0.0);
    fan = Fan(26);
    fan.settings = settings;
    ExpectFatal([&] { Solved{fan.Text()}; }, message);
    ExpectFatal([&] { Solved(fan.Text(), false); }, message);
  }
}

TEST(Coplanarity, DoesNotMarkNodesWithoutTriangles)
{
  ShellModel model = Fold(0.0);
  model.nodes.push_back({5, 5, 5});
  EXPECT_EQ(MarksOf(model), (std::vector<int>{1, 1, 1, 1, 1, 1, 0}));
}

TEST(Coplanarity, ComparesTheTrianglesOfAllMeshes)
{
  const auto marks = [](const std::string& text) {
    const auto project = ReadProject(text);
    project->CalcCoplanarityVector();
    return project->problem.coplanarity;
  };
  EXPECT_EQ(marks(InTwoMeshes(Fold(0.0), 3)), kAll);
  EXPECT_EQ(marks(InTwoMeshes(Fold(0.3), 3)), kAllButTheFold);
  // Between meshes, opposite normals are the same plane.
  ShellModel turned = Fold(0.0);
  std::swap(turned.triangles[2][1], turned.triangles[2][2]);
  std::swap(turned.triangles[3][1], turned.triangles[3][2]);
  EXPECT_EQ(marks(InTwoMeshes(turned, 3)), kAll);
}

TEST(Coplanarity, CountsTrianglesAroundANodeMeshByMesh)
{
  // A fan of 40 triangles in two meshes.
  ShellModel fan = Fan(40);
  fan.Load(1, {0, 0, 1, 0, 0, 0});
  EXPECT_GT(Solved(InTwoMeshes(fan, 21)).Displacement(1)[2], 0.0);
}

TEST(Coplanarity, IsReportedWithTheNodesOfTheConversion)
{
  ShellModel model = Fold(0.4);
  model.Hold(1, "111111");
  model.Hold(4, "111111");
  const auto messages = [&] {
    const auto project = ReadProject(model.Text());
    return MessagesOf([&](std::FILE* info) { project->Calc(1, info); });
  };
  EXPECT_NE(messages().find("4 out of 6 nodes are coplanar\n"), std::string::npos);
  model.settings = "ConvertTo6Nodes";
  const std::string text = messages();
  // 9 edges; the middle of the fold is not coplanar either.
  EXPECT_NE(text.find("Mesh converted to internal 6-noded representation\n"
                      "12 out of 15 nodes are coplanar\n"),
            std::string::npos)
      << text;
}

// The stiffness of the rotation about the normal is the sum of area times E over the triangles
// around the node. It acts against the ground.
TEST(Coplanarity, GivesNodesAStiffnessAboutTheNormal)
{
  ShellModel model = Fold(0.0);
  model.material = "Ex=1000 Ey=500 nuXY=0.125 nuYX=0.25 G=400 t=0.1";
  for (const int node : {1, 2, 3, 4, 6})
    model.Hold(node, "111111");
  model.Hold(5, "111110");
  model.Load(5, {0, 0, 0, 0, 0, 7.5});
  // Three triangles of area 1/2 around the node 5.
  EXPECT_NEAR(Solved(model.Text()).Displacement(5)[5], 7.5 / (1.5 * 1000), 1e-15);
  model.settings = "ConvertTo6Nodes";
  EXPECT_NEAR(Solved(model.Text()).Displacement(5)[5], 7.5 / (1.5 * 1000), 1e-15);
}

// Two flanges in one plane and a web below them, with a common edge.
TEST(Coplanarity, RefusesOppositeFlangesOfATeeInAnyOrder)
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {1, 0, 0}, {0.5, 0, -1}, {0.5, 1, 0}, {0.5, -1, 0}};
  const std::vector<std::vector<std::vector<int>>> orders = {{{1, 2, 3}, {1, 2, 4}, {1, 2, 5}},
                                                             {{1, 2, 4}, {1, 2, 3}, {1, 2, 5}},
                                                             {{1, 2, 4}, {1, 2, 5}, {1, 2, 3}}};
  for (const auto& order : orders) {
    model.triangles = order;
    const std::string message = FatalCaught([&] { MarksOf(model); });
    EXPECT_TRUE(message.ends_with(
        " have normals in opposite directions. It is necessary to swap normals\n"))
        << message;
  }
  model.triangles = {{1, 2, 3}, {1, 2, 4}, {2, 1, 5}};
  EXPECT_EQ(MarksOf(model), (std::vector<int>{0, 0, 1, 1, 1}));
}

}  // namespace morlen
