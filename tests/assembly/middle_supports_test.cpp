#include "assembly/middle_supports.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "assembly/six_nodes.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/refined_model.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

std::unique_ptr<Project> Converted(const ShellModel& model)
{
  auto project = ReadProject(model.Text());
  EXPECT_TRUE(ConvertTriangles(project->problem));
  return project;
}

// The support of the middle of an edge (from 0) of a triangle (from 1) after the conversion, as
// flags; "" without a support.
std::string FlagsAt(const Project& project, int triangle, int edge)
{
  const Constraint* support = (*project.GiveElem(triangle))(3 + edge)->constraint.get();
  std::string flags;
  for (int k = 0; support && k < 6; ++k)
    flags += static_cast<char>('0' + support->flags[k]);
  return flags;
}

// The triangles 1 2 3 and 2 1 4, the second turned up about the common edge, from 1 to 2.
ShellModel TwoTriangles(double fold)
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {1, -std::cos(fold), std::sin(fold)}};
  model.triangles = {{1, 2, 3}, {2, 1, 4}};
  for (int node = 1; node <= 4; ++node)
    model.Hold(node, "111010");
  return Refined(model);
}

}  // namespace

TEST(MiddleSupports, OfBordersAreThoseOfTheCorners)
{
  const auto project = Converted(TwoTriangles(0.0));
  for (const int triangle : {1, 2}) {
    EXPECT_EQ(FlagsAt(*project, triangle, 1), "111010");
    EXPECT_EQ(FlagsAt(*project, triangle, 2), "111010");
  }
}

TEST(MiddleSupports, InsideASmoothShellThereAreNone)
{
  for (const double fold : {0.0, 0.0199, -0.0199})
    EXPECT_EQ(FlagsAt(*Converted(TwoTriangles(fold)), 1, 0), "") << fold;
  for (const double fold : {0.0201, -0.0201, 0.5, 1.57, 3.1})
    EXPECT_EQ(FlagsAt(*Converted(TwoTriangles(fold)), 1, 0), "111010") << fold;
}

// Only the planes count, not the directions of their normals.
TEST(MiddleSupports, DoNotDependOnTheOrderOfTheNodes)
{
  ShellModel model = TwoTriangles(0.01);
  model.triangles[1] = {4, 1, 2};
  EXPECT_EQ(FlagsAt(*Converted(model), 1, 0), "");
  model.triangles[1] = {4, 2, 1};
  EXPECT_EQ(FlagsAt(*Converted(model), 1, 0), "");
  EXPECT_EQ(FlagsAt(*Converted(model), 2, 1), "");
}

TEST(MiddleSupports, WhereThreeTrianglesMeetAreThoseOfTheCorners)
{
  ShellModel model = TwoTriangles(0.0);
  model.nodes.push_back({1, 1, 0.001});
  model.triangles.push_back({1, 2, 5});
  EXPECT_EQ(FlagsAt(*Converted(model), 1, 0), "111010");
}

TEST(MiddleSupports, CountTrianglesOfAllMeshes)
{
  for (const bool folded : {false, true}) {
    ShellModel model = TwoTriangles(folded ? 0.5 : 0.0);
    model.triangles.pop_back();
    model.rest =
        "mesh dimension 3 elemtype Triangle nnode 3\ncoordinates\nend\nelements\n2 2 1 4 1\n"
        "end elements\n";
    EXPECT_EQ(FlagsAt(*Converted(model), 1, 0), folded ? "111010" : "");
  }
}

// What both ends hold, with the mean of given displacements, and no springs.
TEST(MiddleSupports, CombineThoseOfTheEnds)
{
  ShellModel model = TwoTriangles(0.0);
  model.constraints.clear();
  model.Hold(1, "102200", {0.5, 0, 300, 40, 0, 0});
  model.Hold(2, "002000", {0, 0, 300, 0, 0, 0});
  model.Hold(3, "112200", {1, 2, 500, 60, 0, 0});
  const auto project = Converted(model);
  const Constraint* support = (*project->GiveElem(1))(5)->constraint.get();
  ASSERT_TRUE(support);
  EXPECT_EQ(support->flags, (std::array<int, 6>{1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(support->values, (std::array<double, 6>{0.75, 0, 0, 0, 0, 0}));
  EXPECT_EQ(FlagsAt(*project, 1, 1), "") << "springs only";
  EXPECT_EQ(FlagsAt(*project, 2, 2), "") << "no support at node 4";
}

TEST(MiddleSupports, KeepTheLocalAxesOfTheEnds)
{
  ShellModel model = TwoTriangles(0.0);
  model.constraints.clear();
  for (const int node : {1, 3})
    model.constraints +=
        std::to_string(node) + " 010000 0 0.01 0 0 0 0 Euler1=0.3 Euler2=0.2 Euler3=0.1\n";
  const auto project = Converted(model);
  const Constraint* support = (*project->GiveElem(1))(5)->constraint.get();
  ASSERT_TRUE(support);
  EXPECT_TRUE(support->localAxes);
  EXPECT_NEAR(support->euler[0], 0.3, 1e-12);
  EXPECT_NEAR(support->euler[2], 0.1, 1e-12);
  EXPECT_EQ(support->values[1], 0.01);
}

TEST(MiddleSupports, OfStandardShellsAreThoseOfTheCornersEverywhere)
{
  ShellModel model = TwoTriangles(0.0);
  model.settings.clear();
  model.constraints.clear();
  for (int node = 1; node <= 4; ++node)
    model.Hold(node, "112000", {0, 0, 7, 0, 0, 0});
  const auto project = Converted(model);
  for (int edge = 0; edge < 3; ++edge)
    EXPECT_EQ(FlagsAt(*project, 1, edge), "112000") << edge;
}

TEST(MiddleSupports, OfSixNodeFilesAreThoseOfTheFile)
{
  ShellModel model = WithMidSideNodes(TwoTriangles(0.0));
  model.settings += "ConvertTo6Nodes\n";
  const Solved solved(model.Text());
  for (int node = 5; node <= 9; ++node)
    EXPECT_FALSE(solved.Model().FindNode(node)->constraint) << node;
}

namespace {

// A square plate of 2 × 2 that springs hold at all nodes.
double SettlementOnSprings(const std::string& settings)
{
  ShellModel plate = GridShell(2, 2, [](double u, double v) { return Vector3{2 * u, 2 * v, 0}; });
  plate.settings = settings;
  plate.material = "E=1e9 nu=0.2 G=4.166666667e8 t=0.5";
  for (int node = 1; node <= 9; ++node)
    plate.Hold(node, node == 1 ? "112001" : node == 3 ? "012000" : "002000", {0, 0, 250, 0, 0, 0});
  for (int node = 1; node <= 9; ++node)
    plate.Load(node, {0, 0, -1, 0, 0, 0});
  return Solved(plate.Text()).Displacement(5)[2];
}

// The middle of a plate of 4 × 4 on its border, along which it does not turn, under uniform load.
// At two corners of the plate a diagonal of the mesh joins two supported nodes.
double PlateDeflection(int n)
{
  ShellModel plate = Refined(GridShell(n, n, [](double u, double v) {
    return Vector3{4 * u, 4 * v, 0};
  }));
  plate.settings += "ConvertTo6Nodes\n";
  plate.material = "E=3e7 nu=0.2 G=1.25e7 t=0.2";
  for (int j = 0; j <= n; ++j) {
    for (int i = 0; i <= n; ++i) {
      const bool alongY = i == 0 || i == n, alongX = j == 0 || j == n;
      const std::string inPlane = i + j == 0 ? "11" : i == n && j == 0 ? "01" : "00";
      if (alongX || alongY)
        plate.Hold(i + 1 + (n + 1) * j,
                   inPlane + "1" + (alongY ? "1" : "0") + (alongX ? "1" : "0") + "0");
    }
  }
  plate.rest = Block("global_pressure_loads", plate.OnAll("0 0 -10"));
  return Solved(plate.Text()).Displacement((n + 1) * (n + 1) / 2 + 1)[2];
}

}  // namespace

// Nine springs of 250 carry nine loads of 1.
TEST(MiddleSupports, SpringsCountOnce)
{
  EXPECT_NEAR(SettlementOnSprings("ShellFormulation Refined"), -9 / (9 * 250.0), 1e-7);
  EXPECT_NEAR(SettlementOnSprings("ShellFormulation Refined\nConvertTo6Nodes"), -9 / (9 * 250.0),
              1e-7);  // the plate bends a little
}

// The series of Navier for a simply supported square plate (S. Timoshenko, S. Woinowsky-Krieger,
// Theory of Plates and Shells, 2nd ed., McGraw-Hill 1959, article 30) gives 0.00406235 q a⁴/D.
// Shear adds 0.0736713 q a²/(5/6 G t), the deflection of a membrane with this tension.
TEST(MiddleSupports, APlateOnItsBorderIsNotHeldByItsDiagonals)
{
  const double D = 3e7 * 0.008 / (12 * (1 - 0.04));
  const double expected =
      -0.00406235 * 10 * 256 / D - 0.0736713 * 10 * 16 / (5.0 / 6.0 * 1.25e7 * 0.2);
  EXPECT_NEAR(PlateDeflection(4) / expected, 1.0, 0.06);
  EXPECT_NEAR(PlateDeflection(16) / expected, 1.0, 0.003);
}

namespace {

// A strip of two spans of 4 along x and width 1, supported at its ends and by a line of nodes in
// the middle, under a uniform load. The deflection of the middle of the first span.
double DeflectionOfTwoSpans(int n)
{
  ShellModel slab = Refined(GridShell(2 * n, 2, [](double u, double v) {
    return Vector3{8 * u, v, 0};
  }));
  slab.settings += "ConvertTo6Nodes\n";
  slab.material = "E=3e7 nu=0 G=1.5e7 t=0.2";
  for (const int node : NodesWhere(
           slab, [](const Vector3& x) { return std::fabs(std::remainder(x[0], 4.0)) < 1e-9; }))
    slab.Hold(node, node == 1 ? "111001" : node == 2 * (2 * n + 1) + 1 ? "101000" : "001000");
  slab.rest = Block("global_pressure_loads", slab.OnAll("0 0 -10"));
  return Solved(slab.Text()).Displacement(2 * n + 1 + n / 2 + 1)[2];
}

}  // namespace

// The line of supports inside the slab has corners only. Two spans under uniform load deflect by
// qL⁴/192EI in the middle of a span; shear adds 1 %.
TEST(MiddleSupports, LinesOfSupportsInsideASlabConverge)
{
  const double expected = -10.0 * 256 / (192 * 3e7 * 0.008 / 12);
  const double coarse = DeflectionOfTwoSpans(4) / expected;
  const double fine = DeflectionOfTwoSpans(16) / expected;
  EXPECT_NEAR(coarse, 1.0, 0.1);
  EXPECT_NEAR(fine, 1.01, 0.02);
}

}  // namespace morlen
