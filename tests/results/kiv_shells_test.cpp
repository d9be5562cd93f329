// The blocks of shells in the post-process results.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/result_files.h"
#include "support/run.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// A triangle with round values: N = (4, 8, 1), M = (2, 1, 0.5), Q = (3, 6).
ShellModel RoundNumbers(const std::string& settings)
{
  ShellModel model;
  model.settings = settings;
  model.material = "E=1200 nu=0 Gxy=200 Gxz=600 Gyz=600 t=1";
  model.nodes = {{0, 0, 0}, {6, 0, 0}, {0, 6, 0}};
  model.triangles = {{1, 2, 3}};
  // Strains 1/300, 1/150, 1/200; curvatures 0.02, 0.01, 0.03; the mean rotation is 0.
  const double ex = 4.0 / 1200, ey = 8.0 / 1200, gxy = 1.0 / 200;
  const double kx = 0.02, ky = 0.01, kxy = 0.03;
  for (int node = 1; node <= 3; ++node) {
    const double x = model.nodes[node - 1][0];
    const double y = model.nodes[node - 1][1];
    const double wx = -kx * (x - 2) - kxy / 2 * (y - 2);
    const double wy = -ky * (y - 2) - kxy / 2 * (x - 2);
    model.Hold(node, "111111", {ex * x + gxy * y, ey * y, 0.006 * x + 0.012 * y, wy, -wx, 0});
  }
  return model;
}

std::string KivOf(const std::string& problem)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.err, "");
  return folder.Read("model.morlen.res");
}

std::string Between(const std::string& text, const std::string& begin, const std::string& end)
{
  const std::size_t from = text.find(begin);
  const std::size_t to = text.find(end);
  if (from == std::string::npos || to == std::string::npos)
    return "(not there)";
  return text.substr(from, to - from);
}

const std::vector<std::string> kLocal = {"Axial Force", "Momentus", "Shear", "Local Axes"};
const std::vector<std::string> kMain = {"Main Ax. Force", "Main Momentus", "Shear in Main",
                                        "L Axes Axial", "L Axes Momentus"};
const std::vector<std::string> kBoth = {"Axial Force",   "Main Ax. Force", "Momentus",
                                        "Main Momentus", "Shear",          "Shear in Main",
                                        "Local Axes",    "L Axes Axial",   "L Axes Momentus"};

std::vector<std::string> WithNodes(std::vector<std::string> names)
{
  names.insert(names.begin(), "Displacements");
  names.insert(names.end(), {"Reactions", "M Reactions"});
  return names;
}

std::string Trimmed(std::string name)
{
  while (!name.empty() && name.back() == ' ')
    name.pop_back();
  return name;
}

}  // namespace

TEST(KivShells, BlocksOfLocalValuesToTheLetter)
{
  EXPECT_EQ(Between(KivOf(RoundNumbers("").Text()), "GaussPoints", "Reactions"),
            "GaussPoints \"Triangles\" ElemType Triangle\n Number of Gauss Points: 1\n"
            "Natural Coordinates: Internal\nEnd gausspoints\n"
            "Displacements   4 1.0 Estatic 2 1 1\nX\nY\nZ\n"
            "1 0 0 0\n2 0.02 0 0.036\n3 0.03 0.04 0.072\n"
            "Axial Force     4 1.0 Estatic 2 2 1 \"Triangles\"\nNx'\nNy'\nNxy'\n1 4 8 1\n"
            "Momentus        4 1.0 Estatic 2 2 1 \"Triangles\"\nMx'\nMy'\nMxy'\n1 2 1 0.5\n"
            "Shear          4 1.0 Estatic 2 2 1 \"Triangles\"\nQx'\nQy'\n0\n1 3 6 0\n"
            "Local Axes      4 1.0 Estatic 6 2 0 \"Triangles\"\n1 0 0 0\n");
}

TEST(KivShells, BlocksOfPrincipalValuesToTheLetter)
{
  // N: 6 ∓ √5, angle atan(1/2)/2 about z; M: 1.5 ± √0.5, angle -π/8.
  EXPECT_EQ(Between(KivOf(RoundNumbers("MainStresses").Text()), "Main Ax.", "Reactions"),
            "Main Ax. Force  4 1.0 Estatic 2 2 1 \"Triangles\"\nN11\nN22\n0\n"
            "1 3.76393 8.23607 0\n"
            "Main Momentus   4 1.0 Estatic 2 2 1 \"Triangles\"\nM11\nM22\n0\n"
            "1 2.20711 0.792893 0\n"
            "Shear in Main  4 1.0 Estatic 2 2 1 \"Triangles\"\nQm1\nQm2\n0\n"
            "1 0.475538 6.69133 0\n"
            "L Axes Axial    4 1.0 Estatic 6 2 0 \"Triangles\"\n1 0 0 6.05136\n"
            "L Axes Momentus 4 1.0 Estatic 6 2 0 \"Triangles\"\n1 0 0 0.392699\n");
}

TEST(KivShells, BlocksByTheStressOutput)
{
  const auto names = [](const std::string& settings) {
    std::vector<std::string> blocks = KivBlockNames(KivOf(RoundNumbers(settings).Text()));
    for (std::string& name : blocks)
      name = Trimmed(name);
    return blocks;
  };
  for (const std::string conversion : {"", "ConvertTo6Nodes\n"}) {
    EXPECT_EQ(names(conversion), WithNodes(kLocal));
    EXPECT_EQ(names(conversion + "MainStresses"), WithNodes(kMain));
    EXPECT_EQ(names(conversion + "MainAndLocalStresses"), WithNodes(kBoth));
  }
}

TEST(KivShells, PointsOfSixNodeTrianglesHaveALineEach)
{
  const std::string kiv = KivOf(RoundNumbers("ConvertTo6Nodes").Text());
  EXPECT_NE(kiv.find(" Number of Gauss Points: 3\n"), std::string::npos);
  EXPECT_NE(kiv.find("Nxy'\n1 4 8 1\n 4 8 1\n 4 8 1\nMomentus"), std::string::npos) << kiv;
  EXPECT_NE(kiv.find("\"Triangles\"\n1 0 0 0\n 0 0 0\n 0 0 0\nReactions"), std::string::npos);
  // Q = 500 (w,x - θa) at the middles of the edges 1-2, 2-3, 3-1.
  const auto shear = KivBlock(kiv, "Shear ").at(1);
  const double points[][2] = {{3, 0}, {3, 3}, {0, 3}};
  for (int g = 0; g < 3; ++g) {
    const auto [x, y] = points[g];
    ExpectValues(shear[g],
                 {500 * (0.006 + 0.02 * (x - 2) + 0.015 * (y - 2)),
                  500 * (0.012 + 0.01 * (y - 2) + 0.015 * (x - 2)), 0},
                 1e-5);
  }
}

TEST(KivShells, FollowTheBeamsInOneFile)
{
  ShellModel model = RoundNumbers("NumOfDivisions 1");
  model.material += " A=1 Iy=1 Iz=1 J=1";
  model.rest =
      "mesh dimension 3 elemtype Linear nnode 2\ncoordinates\nend\nelements\n9 1 2 1\nend\n";
  const std::string kiv = KivOf(model.Text());
  EXPECT_EQ(kiv.find("GaussPoints \"Beams\""), 0U);
  EXPECT_NE(kiv.find("End gausspoints\nGaussPoints \"Triangles\""), std::string::npos);
  // Mesh by mesh: the mesh of shells is the first.
  EXPECT_LT(kiv.find("Displacements "), kiv.find("BDisplacements"));
  EXPECT_LT(kiv.find("Local Axes  "), kiv.find("X'_Shear"));
}

TEST(KivShells, AreWrittenForEveryMesh)
{
  ShellModel model = RoundNumbers("");
  model.rest =
      "mesh dimension 3 elemtype Triangle nnode 3\ncoordinates\nend\nelements\n"
      "5 1 2 3 1\nend\n";
  const std::vector<std::string> names = KivBlockNames(KivOf(model.Text()));
  std::vector<std::string> expected = WithNodes(kLocal);
  expected.insert(expected.begin(), expected.begin(), expected.begin() + 5);
  ASSERT_EQ(names.size(), expected.size());
  for (std::size_t i = 0; i < names.size(); ++i)
    EXPECT_EQ(Trimmed(names[i]), expected[i]);
}

}  // namespace morlen
