// Solver Double: the model of three-node triangles gives the starting vector of the six-node model.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/frame.h"
#include "support/messages.h"
#include "support/shell_model.h"
#include "support/solid_model.h"

namespace morlen {

namespace {

// A fold under its weight, clamped at both ends, with a spring in its middle.
ShellModel Fold(const std::string& settings)
{
  ShellModel model = GridShell(6, 4, [](double u, double v) {
    return Vector3{4 * u, 2 * v, 1 - 2 * std::fabs(u - 0.5)};
  });
  model.settings = settings + "\nGravityDirection 0 0 -1";
  model.material = "E=1e6 nu=0.2 G=4e5 t=0.2 Weight=3";
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[2] == 0.0; }))
    model.Hold(node, "111111");
  model.Hold(18, "002000", {0, 0, 50, 0, 0, 0});
  return model;
}

std::vector<std::string> Lines(const std::string& text)
{
  std::vector<std::string> lines;
  std::size_t from = 0;
  for (std::size_t to; (to = text.find('\n', from)) != std::string::npos; from = to + 1)
    lines.push_back(text.substr(from, to - from));
  return lines;
}

// The places of the texts in the information of a run, in the order of the texts; -1: missing.
std::vector<int> Places(const std::vector<std::string>& lines,
                        const std::vector<std::string>& texts)
{
  std::vector<int> places;
  std::size_t from = 0;
  for (const std::string& text : texts) {
    std::size_t at = from;
    while (at < lines.size() && lines[at] != text)
      ++at;
    places.push_back(at < lines.size() ? static_cast<int>(at) : -1);
    if (at < lines.size())
      from = at + 1;
  }
  return places;
}

std::string InfoOf(const std::string& problem)
{
  const auto project = ReadProject(problem);
  return MessagesOf([&](std::FILE* info) { project->Calc(1, info); });
}

}  // namespace

TEST(DoubleSolver, GivesTheResultsOfTheSparseSolverWithSixNodes)
{
  const Solved twice(Fold("Solver Double").Text());
  const Solved once(Fold("ConvertTo6Nodes\nSolver Sparse 1e-9 1e-9 5000").Text());
  const Solved direct(Fold("ConvertTo6Nodes\nSolver SkyLine").Text());
  EXPECT_EQ(twice.Model().numNodes, direct.Model().numNodes);
  for (int node = 1; node <= 35; ++node) {
    ExpectValues(twice.Displacement(node), once.Displacement(node), 1e-5, 1e-4);
    ExpectValues(twice.Displacement(node), direct.Displacement(node), 1e-5, 1e-4);
  }
}

TEST(DoubleSolver, DoesNotCountTheReactionsTwice)
{
  const Solved twice(Fold("Solver Double").Text());
  const Solved direct(Fold("ConvertTo6Nodes\nSolver SkyLine").Text());
  // Weight: two slopes of √(2² + 1²) by 2.
  const double weight = 3 * 0.2 * 2 * 2 * std::sqrt(5.0);
  EXPECT_NEAR(SumOfReactions(twice)[2], weight, 1e-4 * weight);
  for (const int node : {1, 7, 18, 29, 35})
    ExpectValues(twice.Reaction(node), direct.Reaction(node), 1e-4, 0.1);
}

TEST(DoubleSolver, ReportsBothRuns)
{
  const std::vector<std::string> lines = Lines(InfoOf(Fold("Solver Double").Text()));
  // 5 of the 35 nodes are on the ridge, and 4 of the middles of the 92 edges.
  const auto places = Places(
      lines, {"Running a pre-solver to prepare initial values", "30 out of 35 nodes are coplanar",
              "Just before filling global stiffness matrix", "Stiffness matrix filled",
              "Load vector constructed", "Beginning to apply constraints", "Just before Solver",
              "Solver finished", "Mesh converted to internal 6-noded representation",
              "108 out of 117 nodes are coplanar", "Just before filling global stiffness matrix",
              "Just before Solver", "Solver finished"});
  for (const int place : places)
    EXPECT_NE(place, -1) << InfoOf(Fold("Solver Double").Text());
}

TEST(DoubleSolver, EndsAsSparseWithSixNodes)
{
  const auto project = ReadProject(Fold("Solver Double").Text());
  project->Calc(1, nullptr);
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::Sparse);
  EXPECT_TRUE(project->problem.convertTo6Nodes);
}

TEST(DoubleSolver, RefusesOtherElements)
{
  ExpectFatal([] { Solved{WithMidSideNodes(Fold("Solver Double")).Text()}; },
              "error: Solver DOUBLE needs a shell mesh of 3-noded triangles\n");
  SolidModel solid = UnitSolid(4);
  solid.settings = "Solver Double";
  ExpectFatal([&] { Solved{solid.Text()}; },
              "error: Double solver not implemented for tetrahedras\n");
}

TEST(DoubleSolver, SolvesBeamsTwice)
{
  const ProblemParts parts = SpaceProblem().With(&ProblemParts::loads, "2 1 2 3 0 0 0");
  const std::string text = parts.With(&ProblemParts::settings, "Solver Double").Text();
  const Solved twice(text);
  const Solved direct(parts.Text());
  ExpectValues(twice.Displacement(2), direct.Displacement(2), 1e-6);
  ExpectValues(twice.Reaction(1), direct.Reaction(1), 1e-6);
  const std::string info = InfoOf(text);
  EXPECT_EQ(info.find("Running a pre-solver to prepare initial values\n"), 0U) << info;
  EXPECT_EQ(info.find("converted"), std::string::npos);
  EXPECT_EQ(info.find("coplanar"), std::string::npos);
}

TEST(DoubleSolver, KeepsAxesOfSupports)
{
  ShellModel twice = Fold("Solver Double");
  ShellModel direct = Fold("ConvertTo6Nodes\nSolver SkyLine");
  for (ShellModel* model : {&twice, &direct})
    model->constraints +=
        "1 111111 0 0 0 0 0 0 Euler1=0.3 Euler2=0.5\n"
        "21 010000 0.001 0 0 0 0 0 Euler1=0.4\n";
  const Solved a(twice.Text());
  const Solved b(direct.Text());
  for (int node = 1; node <= 35; ++node)
    ExpectValues(a.Displacement(node), b.Displacement(node), 1e-5, 1e-4);
}

}  // namespace morlen
