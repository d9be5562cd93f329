// The estimates of the solvers' work against the assembled matrices, and the choice of the solver
// by them.

#include "assembly/solver_choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "run/element_families.h"
#include "run/project.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"
#include "support/fatal.h"
#include "support/messages.h"
#include "support/run.h"
#include "support/sanitizer.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/structure.h"
#include "support/thin_shells.h"

namespace morlen {

namespace {

constexpr std::uint64_t kAnyMemory = std::numeric_limits<std::uint64_t>::max();

void EnterCouplings(const Project& project, BSolver& matrix)
{
  for (const auto& mesh : project.problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < elem.Nnode(); ++i) {
        for (int j = i + 1; j < elem.Nnode(); ++j)
          matrix.EnterMaxDiff(elem(i)->number, elem(j)->number, project.problem.components.count);
      }
    }
  }
  matrix.Create(project.problem.components.count);
}

std::unique_ptr<Project> Prepared(const Structure& structure)
{
  auto project = ReadProject(structure.Text());
  if (!structure.triangles.empty())
    project->CalcCoplanarityVector();
  return project;
}

SolverWork WorkOf(const Structure& structure)
{
  const auto project = Prepared(structure);
  return EstimateWork(project->problem, FamiliesOf(project->problem));
}

std::string Calculated(Project& project)
{
  return MessagesOf([&](std::FILE* info) { project.Calc(1, info); });
}

/// A bar of 25,200 tetrahedra, clamped at one end and bent at the other. The iteration is estimated
/// to be faster, but does not converge when the material is nearly incompressible.
std::string Bar(const std::string& nu, const std::string& settings = "")
{
  SolidModel bar = SolidBlock({42, 10, 10}, {4.2, 1, 1}, 4);
  bar.settings = settings;
  bar.material = "E 2.1e8 nu " + nu;
  for (std::size_t i = 0; i < bar.nodes.size(); ++i) {
    if (bar.nodes[i][0] == 0.0)
      bar.supports[static_cast<int>(i) + 1] = {};
  }
  bar.loads[bar.NodeAt({4.2, 1, 1})] = {1, 2, -3};
  return bar.Text();
}

constexpr const char* kStiff = "0.49999";

}  // namespace

TEST(SolverWork, CountsTheEntriesOfBothMatrices)
{
  const Structure structures[] = {Building(3, 2, 4, kClamped), Storeys(4, 6, kPin)};
  for (const Structure& structure : structures) {
    const auto project = Prepared(structure);
    const int n = project->problem.numNodes * project->problem.components.count;
    SkyMatriu profile(n);
    EnterCouplings(*project, profile);
    SparseSolver sparse(project->problem.numNodes, project->problem.components.count);
    EnterCouplings(*project, sparse);
    const SolverWork work = EstimateWork(project->problem, FamiliesOf(project->problem));
    double operations = 0.0;
    for (int i = 1; i <= n; ++i)
      operations += std::pow(profile.GiveHeight(i), 2);
    EXPECT_EQ(work.profileEntries * sizeof(double), profile.StorageBytes());
    EXPECT_EQ(work.operations, operations);
    EXPECT_EQ(work.sparseEntries, sparse.GiveMatrix()->GiveSlots());
  }
}

TEST(SolverWork, IterationsGrowWithTheDistanceFromTheSupports)
{
  const double low = WorkOf(Building(3, 2, 5, kClamped)).iterations;
  const double high = WorkOf(Building(3, 2, 20, kClamped)).iterations;
  EXPECT_DOUBLE_EQ(high / low, 21.0 / 6.0);  // the supported nodes count as well
}

TEST(SolverWork, IterationsOfRefinedShellsGrowWithTheirSlenderness)
{
  const auto iterations = [](double ratio, int nnode) {
    return WorkOf(QuarterRoof(10, ratio, nnode)).iterations;
  };
  EXPECT_LT(iterations(10, 3), 0.8 * iterations(1000, 3));
  EXPECT_NEAR(iterations(10000, 3), iterations(1000, 3), 0.1 * iterations(1000, 3));
  EXPECT_LT(iterations(10, 6), 0.2 * iterations(1000, 6));
  EXPECT_NEAR(iterations(10000, 6), 10 * iterations(1000, 6), iterations(1000, 6));
}

TEST(SolverWork, NodesWithoutElementsHaveTheirOwnBlock)
{
  Structure s = Chain(2, false);
  s.HoldNode(1, kClamped).HoldNode(3, kClamped);
  s.nodes.push_back({9, 9, 0});
  s.HoldNode(4, kClamped);
  const SolverWork work = WorkOf(s);
  EXPECT_EQ(work.sparseEntries, 9.0 * (3 + 2 * 2 + 1));
}

TEST(FasterSolver, IsTheOneWithLessWorkThatFitsIntoMemory)
{
  const SolverWork wide = {
      .profileEntries = 1e8, .operations = 1e12, .sparseEntries = 1e6, .iterations = 50};
  EXPECT_EQ(FasterSolver(wide, kAnyMemory).type, SolverType::Sparse);
  EXPECT_TRUE(FasterSolver(wide, kAnyMemory).fitsDirectly);
  const SolverWork slow = {
      .profileEntries = 1e6, .operations = 1e8, .sparseEntries = 1e6, .iterations = 3000};
  EXPECT_EQ(FasterSolver(slow, kAnyMemory).type, SolverType::SkyLine);
  EXPECT_EQ(FasterSolver(slow, slow.SkylineBytes()).type, SolverType::SkyLine);
  const SolverChoice tooLarge = FasterSolver(slow, slow.SkylineBytes() - 1);
  EXPECT_EQ(tooLarge.type, SolverType::Sparse);
  EXPECT_FALSE(tooLarge.fitsDirectly);
  EXPECT_TRUE(tooLarge.reason.ends_with("; the direct solver does not fit into memory"))
      << tooLarge.reason;
}

// A factorisation serves all load vectors; an iteration begins anew for each.
TEST(FasterSolver, ManyLoadVectorsSpeakAgainstAnIteration)
{
  SolverWork work = {
      .profileEntries = 1e7, .operations = 1e11, .sparseEntries = 1e6, .iterations = 300};
  const double once = work.SkylineSeconds();
  const int worthOnce = work.IterationsWorthTrying(once);
  EXPECT_EQ(FasterSolver(work, kAnyMemory).type, SolverType::Sparse);
  work.loadVectors = 50;
  EXPECT_EQ(FasterSolver(work, kAnyMemory).type, SolverType::SkyLine);
  EXPECT_GT(work.SkylineSeconds(), once);
  EXPECT_LT(work.SkylineSeconds(), 2.0 * once);
  EXPECT_LT(work.IterationsWorthTrying(once), worthOnce / 20);
}

TEST(FasterSolver, APlanCountsTheLoadVectors)
{
  DirectPlan plan;
  plan.seconds = 2.0;
  plan.secondsPerFurther = 0.25;
  EXPECT_EQ(plan.Seconds(1), 2.0);
  EXPECT_EQ(plan.Seconds(9), 4.0);
}

TEST(Automatic, FallsBackToTheDirectSolverOnItsOwnNumbering)
{
  const auto project = ReadProject(Bar(kStiff));
  const std::string info = Calculated(*project);
  EXPECT_NE(info.find("Solver Sparse taken: estimated "), std::string::npos) << info;
  EXPECT_NE(info.find("Solver SkyLine taken: after "), std::string::npos) << info;
  EXPECT_EQ(info.find("accepted tolerance"), std::string::npos);
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::SkyLine);
  project->CalcStrengthsAndReactions(nullptr);
  // The results equal those of the direct solution bit by bit.
  const Solved direct(Bar(kStiff, "Solver SkyLine"));
  for (const auto [number, node] : EachNumbered<Node>(project->problem.GiveNodes())) {
    const std::vector<double> expected = direct.Displacement(number);
    for (int k = 1; k <= 3; ++k)
      EXPECT_EQ(project->solution.displacements(project->Equation(node, k)), expected[k - 1]);
    if (node.constraint) {
      EXPECT_EQ(node.constraint->reactions[2], direct.Reaction(number)[2]);
    }
  }
}

TEST(Automatic, WithoutRenumberingTheFallbackKeepsTheNumbersOfTheFile)
{
  const auto project = ReadProject(Bar(kStiff));
  const std::string info = MessagesOf([&](std::FILE* file) { project->Calc(0, file); });
  EXPECT_NE(info.find("Solver SkyLine taken: after "), std::string::npos) << info;
  EXPECT_EQ(project->FindNode(4000)->number, 4000);
}

TEST(Automatic, TheIterationRunsOnTheNumbersOfTheFile)
{
  const auto project = ReadProject(Bar("0.3"));
  const std::string info = Calculated(*project);
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::Sparse) << info;
  EXPECT_EQ(project->FindNode(4000)->number, 4000);
}

TEST(Automatic, ModelsThatNeitherSolverSolvesAreRefusedWithTheReason)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer reserves memory far beyond the limits here";
  // The profile of this bar needs more than 60 MB.
  const TemporaryFolder folder;
  folder.Write("model.dat", Bar(kStiff));
  const RunResult run =
      RunProgram(folder, {"-i", "info.txt", "model.dat"}, {.addressSpace = 80L << 20});
  EXPECT_EQ(run.status, 2);
  const std::string info = folder.Read("info.txt");
  EXPECT_NE(info.find("; the direct solver does not fit into memory\n"), std::string::npos) << info;
  const std::regex expected(
      "error when solving system\\. Stopped after ([0-9]+) iterations\\.Probably boundary "
      "conditions are not correct\n"
      "The iteration has not converged: after ([0-9]+) iterations the residual is [0-9.e+-]+, the "
      "error about [0-9.e+-]+, and the residual of the probe [0-9.e+-]+\\. The direct solver would "
      "need ([0-9]+) Mb of memory\\. [^\n]*\n");
  std::smatch numbers;
  ASSERT_TRUE(std::regex_match(run.err, numbers, expected)) << run.err;
  EXPECT_EQ(numbers[1], numbers[2]);
  // The least of the direct solvers: the program may have been built without Solver Direct.
  if (run.err.find("take it by a line \"Solver: Direct\"") == std::string::npos) {
    EXPECT_GT(std::stoi(numbers[3]), 60);
    return;
  }
  folder.Write("direct.dat", Bar(kStiff, "Solver Direct"));
  ASSERT_EQ(RunProgram(folder, {"-i", "direct.txt", "direct.dat"}).status, 0);
  const std::string told = folder.Read("direct.txt");
  const std::regex analysis("Analysis finished: .* ([0-9]+) Mb\n");
  std::smatch memory;
  ASSERT_TRUE(std::regex_search(told, memory, analysis)) << told;
  // The estimate is made before the analysis.
  EXPECT_NEAR(std::stod(numbers[3]), std::stod(memory[1]), 0.5 * std::stod(memory[1]));
}

TEST(Automatic, SolvesDirectlyWhatHasTooManyNeighboursForTheIteration)
{
  Structure s = Chain(5000, false);
  for (int node = 12; node <= 2012; node += 10)
    s.AddBeams({1, node});
  s.HoldNode(1, kClamped).HoldNode(5001, kClamped).Load(2500, {0, -1});
  const auto project = ReadProject(s.Text());
  const std::string info = Calculated(*project);
  EXPECT_NE(info.find("Solver SkyLine taken: a node has too many neighbours for an iteration\n"),
            std::string::npos)
      << info;
}

// The soft frame has a negligible part of the energy and of the loads, but the largest
// displacements.
TEST(Automatic, IteratesUntilSoftPartsAreRightToo)
{
  Structure s = Building(30, 30, 1, kClamped);
  s.LoadAll({1, 0.5, -1});
  Structure soft = Building(30, 30, 1, kClamped);
  const int nodes = s.NodeCount();
  s.sections.push_back(s.sections.front());
  s.sections.back().E *= 1e-8;
  s.sections.back().G *= 1e-8;
  for (const Vector3& place : soft.nodes)
    s.nodes.push_back({place[0], place[1] + 1000, place[2]});
  for (const Frame::Beam& beam : soft.beams)
    s.beams.push_back({beam.first + nodes, beam.second + nodes, 2});
  for (Frame::Support support : soft.supports) {
    support.node += nodes;
    s.supports.push_back(support);
  }
  s.Load(s.NodeCount(), {1e-4, 0, 0});
  const Solved iterated(s.Text());
  EXPECT_EQ(iterated.Model().solverSettings.type, SolverType::Sparse);
  const Solved direct(s.Text("Solver SkyLine\n"));
  double largest[2] = {};
  double error[2] = {};
  for (int node = 1; node <= s.NodeCount(); ++node) {
    const std::vector<double> u = iterated.Displacement(node);
    const std::vector<double> expected = direct.Displacement(node);
    for (int k = 0; k < 6; ++k) {
      largest[k / 3] = std::max(largest[k / 3], std::fabs(expected[k]));
      error[k / 3] = std::max(error[k / 3], std::fabs(u[k] - expected[k]));
    }
  }
  EXPECT_LE(error[0], 1e-4 * largest[0]);
  EXPECT_LE(error[1], 1e-4 * largest[1]);
}

}  // namespace morlen
