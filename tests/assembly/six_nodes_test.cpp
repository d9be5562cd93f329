#include "assembly/six_nodes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "support/fatal.h"
#include "support/result_files.h"
#include "support/run.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// A square of two triangles, 1 2 3 and 1 3 4.
ShellModel Square()
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {2, 0, 0}, {2, 2, 1}, {0, 2, 1}};
  model.triangles = {{1, 2, 3}, {1, 3, 4}};
  return model;
}

// The project after the conversion of all its meshes.
std::unique_ptr<Project> Converted(const std::string& text)
{
  auto project = ReadProject(text);
  EdgeNodes edges;
  for (const auto& mesh : project->problem.meshes)
    project->ConvertTriangleTo6nod(mesh.get(), edges);
  return project;
}

std::vector<int> NumbersOf(const Project& project, int elem)
{
  const Elem& triangle = *project.GiveElem(elem);
  std::vector<int> numbers;
  for (int i = 0; i < triangle.Nnode(); ++i)
    numbers.push_back(triangle(i)->number);
  return numbers;
}

std::string MeshBlock(const std::string& elements)
{
  return "mesh dimension 3 elemtype Triangle nnode 3\ncoordinates\nend\nelements\n" + elements +
         "end elements\n";
}

}  // namespace

TEST(SixNodes, LieInTheMiddleOfTheEdgesAndAreShared)
{
  const auto project = Converted(Square().Text());
  EXPECT_EQ(project->problem.numNodes, 9);
  EXPECT_EQ(project->problem.initialNumNodes, 4);
  EXPECT_EQ(NumbersOf(*project, 1), (std::vector<int>{1, 2, 3, 5, 6, 7}));
  EXPECT_EQ(NumbersOf(*project, 2), (std::vector<int>{1, 3, 4, 7, 8, 9}));
  const Vector3 expected[] = {{1, 0, 0}, {2, 1, 0.5}, {1, 1, 0.5}, {1, 2, 1}, {0, 1, 0.5}};
  for (int i = 0; i < 5; ++i) {
    const Node& node = *project->FindNode(5 + i);
    EXPECT_EQ((Vector3{node(1), node(2), node(3)}), expected[i]);
    EXPECT_EQ(node.number, 5 + i);
  }
}

TEST(SixNodes, AnEdgeOfSeveralTrianglesHasOne)
{
  ShellModel model = Square();
  model.nodes.push_back({0, 0, 3});
  model.nodes.push_back({3, 0, -3});
  model.triangles.push_back({1, 5, 3});
  model.triangles.push_back({3, 1, 6});
  const auto project = Converted(model.Text());
  EXPECT_EQ(project->problem.numNodes, 6 + 9);
  EXPECT_EQ(NumbersOf(*project, 3)[5], 7 + 2);
  EXPECT_EQ(NumbersOf(*project, 4)[3], 7 + 2);
}

TEST(SixNodes, AnEdgeOfSeveralMeshesHasOne)
{
  ShellModel model = Square();
  model.triangles.pop_back();
  model.rest = MeshBlock("2 1 3 4 1\n");
  const auto project = Converted(model.Text());
  EXPECT_EQ(project->problem.numNodes, 9);
  EXPECT_EQ(NumbersOf(*project, 2), (std::vector<int>{1, 3, 4, 7, 8, 9}));
}

TEST(SixNodes, AreRefusedForOtherMeshes)
{
  const std::string message =
      "error: trying to convert to 6 nodes a mesh that is not 3-noded triangles\n";
  ExpectFatal([] { Converted(SpaceProblem().Text()); }, message);
  ExpectFatal([] { Converted(WithMidSideNodes(Square()).Text()); }, message);
}

TEST(SixNodes, GetTheSupportsThatBothCornersHave)
{
  ShellModel model = Square();
  model.Hold(1, "111100", {1, 2, 3, 0.5, 0, 0});
  model.Hold(2, "101001", {3, 0, 4, 0, 0, 0.25});
  model.Hold(3, "020011", {0, 5, 0, 0, 0, 0});
  model.Hold(4, "020000", {0, 7, 0, 0, 0, 0});
  const auto project = Converted(model.Text());
  const auto support = [&](int node) { return project->FindNode(node)->constraint.get(); };
  ASSERT_TRUE(support(5));
  EXPECT_EQ(support(5)->flags, (std::array<int, 6>{1, 0, 1, 0, 0, 0}));
  EXPECT_EQ(support(5)->values, (std::array<double, 6>{2, 0, 3.5, 0, 0, 0}));
  ASSERT_TRUE(support(6));
  EXPECT_EQ(support(6)->flags, (std::array<int, 6>{0, 0, 0, 0, 0, 1}));
  EXPECT_FALSE(support(7)) << "1-3 share no flag of the same kind";
  ASSERT_TRUE(support(8));
  EXPECT_EQ(support(8)->flags, (std::array<int, 6>{0, 2, 0, 0, 0, 0}));
  EXPECT_EQ(support(8)->values[1], 6.0);
  EXPECT_FALSE(support(9));
}

TEST(SixNodes, KeepTheirNumbersAfterARenumbering)
{
  auto project = ReadProject(Square().Text());
  project->problem.meshes.front()->RenumberNodes();
  EdgeNodes edges;
  project->ConvertTriangleTo6nod(project->problem.meshes.front().get(), edges);
  project->problem.meshes.front()->RenumberNodes();
  std::set<int> old;
  for (int number = 1; number <= 9; ++number)
    old.insert(project->problem.meshes.front()->GiveOldNumber(number));
  EXPECT_EQ(old, (std::set<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
  for (int number = 1; number <= 9; ++number)
    EXPECT_EQ(project->problem.meshes.front()->GiveOldNumber(project->FindNode(number)), number);
}

TEST(SixNodes, DoNotAppearInTheResults)
{
  ShellModel model = Square();
  model.settings = "ConvertTo6Nodes";
  model.Hold(1, "111111");
  model.Hold(2, "111111");
  model.Hold(3, "001000");
  const TemporaryFolder folder;
  folder.Write("model.dat", model.Text());
  const RunResult run = RunProgram(folder, {"-p", "model.dat", "model.txt"});
  EXPECT_EQ(run.err, "");
  const TextResults text = ParseTextResults(folder.Read("model.txt"));
  EXPECT_EQ(text.displacements.size(), 4U);
  EXPECT_EQ(text.reactions.size(), 3U);
  const std::string kiv = folder.Read("model.morlen.res");
  for (const char* block : {"Displacements", "Reactions", "M Reactions"})
    EXPECT_EQ(KivBlock(kiv, block).size(), 4U) << block;
  EXPECT_EQ(KivBlock(kiv, "Axial Force").at(1).size(), 3U) << "points";
  EXPECT_NE(folder.Read("model.morlen.bon").find("\n2 4 7\nnode x y z\n"), std::string::npos);
}

// A strip under an edge load. The corners of the supported edge also get the reactions of its
// middle.
TEST(SixNodes, AddTheReactionsOfTheMiddleToTheCorners)
{
  ShellModel model = GridShell(1, 1, [](double u, double v) { return Vector3{u, v, 0}; });
  model.material = "E=1000 nu=0 G=500 t=0.1";
  model.settings = "ConvertTo6Nodes";
  model.Hold(1, "111111");
  model.Hold(3, "111111");
  model.rest = "face_loads\n1 1 6 0 0\nend\n";
  const Solved solved(model.Text());
  EXPECT_NEAR(solved.Reaction(1)[0] + solved.Reaction(3)[0], -6.0, 1e-12);
  EXPECT_NEAR(solved.Reaction(1)[0], -3.0, 1e-12);
  const Node& middle = *solved.Model().GiveElem(2)->operator()(5);
  ASSERT_TRUE(middle.constraint);
  EXPECT_EQ(middle.constraint->reactions[0], 0.0);
}

TEST(SixNodes, OfTheFileKeepTheirReactions)
{
  ShellModel model = WithMidSideNodes(GridShell(1, 1, [](double u, double v) {
    return Vector3{u, v, 0};
  }));
  model.material = "E=1000 nu=0 G=500 t=0.1";
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[0] == 0.0; }))
    model.Hold(node, "111111");
  model.rest = "face_loads\n1 1 6 0 0\nend\n";
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    model.settings = settings;
    const Solved solved(model.Text());
    EXPECT_NEAR(solved.Reaction(1)[0], -1.0, 1e-12);
    EXPECT_NEAR(solved.Reaction(3)[0], -1.0, 1e-12);
    EXPECT_NEAR(solved.Reaction(model.triangles[1][5])[0], -4.0, 1e-12);
  }
}

TEST(SixNodes, MixWithSixNodeTrianglesOfTheFile)
{
  // The mesh of six-node triangles and the three-node mesh, which is not converted, share no edge.
  ShellModel model = WithMidSideNodes(Square());
  model.nodes.push_back({10, 0, 0});
  model.nodes.push_back({11, 0, 0});
  model.nodes.push_back({10, 1, 0});
  for (std::size_t node = 1; node <= model.nodes.size(); ++node)
    model.Hold(static_cast<int>(node), "111111");
  model.rest = MeshBlock("7 10 11 12 1\n");
  const Solved solved(model.Text());
  EXPECT_EQ(ForcesOf(solved, 1).size(), 3U);
  EXPECT_EQ(ForcesOf(solved, 7).size(), 1U);
}

}  // namespace morlen
