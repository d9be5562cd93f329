// Several load vectors of one analysis, and two problems side by side.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "assembly/analysis.h"
#include "assembly/load_vector.h"
#include "base/text_out.h"
#include "base/textscan.h"
#include "model/node.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "results/mesh_output.h"
#include "results/strengths.h"
#include "results/text_results.h"
#include "run/element_families.h"
#include "support/fatal.h"
#include "support/messages.h"
#include "support/processor.h"
#include "support/run.h"

namespace morlen {

namespace {

// A plane cantilever along X of length 3 with EA = 20 and EI = 10; its root sinks by 0.5.
std::unique_ptr<Problem> Cantilever(const std::string& settings)
{
  auto problem = std::make_unique<Problem>(100);
  problem->solverSettings.processor = TestedProcessor();
  const std::string text = "problem type 2d\n" + settings +
                           "\nmesh dimension = 2 elemtype Linear nnode = 2\n"
                           "coordinates\n1 0 0\n2 1.5 0\n3 3 0\nend coordinates\n"
                           "elements\n1 1 2 1\n2 2 3 1\nend elements\n"
                           "materials\n1 E=10 A=2 Iz=1\nend materials\n"
                           "constraints\n1 111 0 -0.5 0\nend constraints\n"
                           "nodal_point_loads\n3 4 0 0\nend nodal_point_loads\n";
  TextScan scan(text);
  ReadProblem(scan, *problem);
  return problem;
}

// The loads of the file; a force of 5 across the tip and one of 7 on the support; a moment of 2 at
// the tip.
std::vector<LoadVector> ThreeLoads(const Problem& problem, const ElementFamilies& families)
{
  std::vector<LoadVector> loads = LoadsOfProblem(problem, families);
  loads.resize(3);
  const Node& tip = *problem.FindNode(3);
  for (int k : {1, 2}) {
    loads[k].elementLoads = 0.0;
    loads[k].values.resize(problem.Equations(), 0.0);
  }
  loads[1].values(problem.Equation(tip, 2)) = 5.0;
  loads[1].values(problem.Equation(*problem.FindNode(1), 1)) = 7.0;  // goes to the support
  loads[2].values(problem.Equation(tip, 3)) = 2.0;
  return loads;
}

std::vector<double> At(const Problem& problem, const ReaVecV& vector, int node)
{
  const double* first = vector.Data() + problem.Equation(*problem.FindNode(node), 1) - 1;
  return {first, first + 3};
}

void ExpectNear(const std::vector<double>& actual, const std::vector<double>& expected,
                double tolerance)
{
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(actual[k], expected[k], tolerance) << k;
}

// The settlement moves the whole beam; F·L³/3EI and F·L²/2EI for the force, M·L²/2EI and M·L/EI for
// the moment, N·L/EA along the axis.
void ExpectClosedForms(const Problem& problem, const std::vector<Solution>& solutions,
                       double tolerance)
{
  ASSERT_EQ(solutions.size(), 3u);
  const double expected[][3] = {{4.0 * 3 / 20, -0.5, 0},
                                {0, -0.5 + 5.0 * 27 / 30, 5.0 * 9 / 20},
                                {0, -0.5 + 2.0 * 9 / 20, 2.0 * 3 / 10}};
  const double reactions[][3] = {{-4, 0, 0}, {-7, -5, -15}, {0, 0, -2}};
  for (int k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    ExpectNear(At(problem, solutions[k].displacements, 3), {expected[k], expected[k] + 3},
               tolerance);
    ExpectNear(At(problem, solutions[k].reactions, 1), {reactions[k], reactions[k] + 3},
               10 * tolerance);
  }
}

std::vector<Solution> Solutions(Problem& problem, const MakeLoads& loads, std::FILE* info = nullptr)
{
  std::vector<Solution> solutions =
      Analyse(problem, FamiliesOf(problem), {.renumber = true, .info = info}, loads).solutions;
  for (Solution& solution : solutions)
    CalcStrengthsAndReactions(problem, FamiliesOf(problem), solution, nullptr);
  return solutions;
}

int Count(const std::string& text, const std::string& part)
{
  int count = 0;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

}  // namespace

TEST(LoadVectors, ShareOneFactorisation)
{
  const auto problem = Cantilever("Solver SkyLine");
  std::vector<Solution> solutions;
  const std::string info =
      MessagesOf([&](std::FILE* file) { solutions = Solutions(*problem, ThreeLoads, file); });
  ExpectClosedForms(*problem, solutions, 1e-12);  // a few rounding errors of values up to 15
  EXPECT_EQ(Count(info, "Stiffness matrix filled"), 1) << info;
  EXPECT_EQ(Count(info, "Beginning 1st substitution"), 1) << info;
}

TEST(LoadVectors, TellTheSolverAndTheReason)
{
  const auto asked = Cantilever("Solver SkyLine");
  const SolverAccount direct = Analyse(*asked, FamiliesOf(*asked), {}, ThreeLoads).account;
  EXPECT_EQ(direct.solver, "SkyLine");
  EXPECT_EQ(direct.reason, "the problem file asks for it");
  EXPECT_EQ(direct.iterations, 0);
  const auto chosen = Cantilever("");
  EXPECT_EQ(Analyse(*chosen, FamiliesOf(*chosen), {}).account.reason,
            "the usual method below 15000 equations");
  const auto iterated = Cantilever("Solver Sparse 1e-12 1e-12 100");
  const SolverAccount sparse = Analyse(*iterated, FamiliesOf(*iterated), {}).account;
  EXPECT_EQ(sparse.solver, "Sparse");
  EXPECT_GT(sparse.iterations, 0);
}

TEST(LoadVectors, AreIteratedOneAfterTheOther)
{
  const auto problem = Cantilever("Solver Sparse 1e-12 1e-12 1000");
  // The tolerance of the residual, times the condition number.
  ExpectClosedForms(*problem, Solutions(*problem, ThreeLoads), 1e-9);
}

TEST(LoadVectors, GiveEachTheBitsThatItGetsAlone)
{
  const auto together = Cantilever("Solver SkyLine");
  const std::vector<Solution> all = Solutions(*together, ThreeLoads);
  for (std::size_t k = 0; k < 3; ++k) {
    const auto alone = Cantilever("Solver SkyLine");
    const std::vector<Solution> one =
        Solutions(*alone, [k](const Problem& problem, const ElementFamilies& families) {
          return std::vector<LoadVector>{ThreeLoads(problem, families)[k]};
        });
    for (int equation = 1; equation <= together->Equations(); ++equation) {
      EXPECT_EQ(all[k].displacements(equation), one[0].displacements(equation));
      EXPECT_EQ(all[k].reactions(equation), one[0].reactions(equation));
    }
  }
}

// A beam of length 4, clamped at both ends, under 6 per length: none of it, all, and twice as much.
TEST(LoadVectors, BringTheirPartOfTheElementLoads)
{
  Problem problem(100);
  problem.solverSettings.processor = TestedProcessor();
  const std::string text =
      "problem type 2d\nNumOfDivisions 2\n"
      "mesh dimension = 2 elemtype Linear nnode = 2\n"
      "coordinates\n1 0 0\n2 4 0\nend coordinates\nelements\n1 1 2 1\nend elements\n"
      "materials\n1 E=10 A=2 Iz=1\nend materials\n"
      "constraints\n1 111 0 0 0\n2 111 0 0 0\nend constraints\n"
      "global_pressure_loads\n1 0 -6\nend global_pressure_loads\n";
  TextScan scan(text);
  ReadProblem(scan, problem);
  const std::vector<Solution> solutions =
      Solutions(problem, [](const Problem& prepared, const ElementFamilies& families) {
        std::vector<LoadVector> loads;
        for (const double factor : {0.0, 1.0, 2.0}) {
          loads.push_back({.values = AppliedLoads(prepared, families), .elementLoads = factor});
          for (double& value : loads.back().values)
            value *= factor;
        }
        return loads;
      });
  const TemporaryFolder folder;
  for (int k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    std::ofstream out(folder.Path() / "out");
    TextOut forces(out);
    WriteBeamForces({problem, solutions[k], *problem.meshes[0], solutions[k].results[0]}, forces);
    forces.Flush();
    out.close();
    const std::string line = folder.Read("out");
    // qL/2 upwards and qL²/12 against the load at the first end.
    const std::string expected = k == 0 ? "\n0 0 0 " : k == 1 ? "\n0 12 8 " : "\n0 24 16 ";
    EXPECT_NE(line.find(expected), line.npos) << line;
  }
}

TEST(LoadVectors, AreRefusedWhenThereAreNoneOrTheyDoNotFit)
{
  const auto problem = Cantilever("Solver SkyLine");
  for (const int count : {0, 1}) {
    EXPECT_EQ(FatalCaught([&] {
                Solutions(*problem, [count](const Problem&, const ElementFamilies&) {
                  return std::vector<LoadVector>(static_cast<std::size_t>(count));
                });
              }),
              "error: an analysis needs load vectors of 9 components\n");
  }
}

TEST(TwoProblems, LiveSideBySide)
{
  const auto first = Cantilever("Solver SkyLine");
  const auto second = Cantilever("Solver Sparse 1e-12 1e-12 1000");
  std::vector<Solution> ofFirst = Analyse(*first, FamiliesOf(*first), {}, ThreeLoads).solutions;
  const std::vector<Solution> ofSecond = Solutions(*second, ThreeLoads);
  for (Solution& solution : ofFirst)
    CalcStrengthsAndReactions(*first, FamiliesOf(*first), solution, nullptr);
  ExpectClosedForms(*first, ofFirst, 1e-12);  // as above
  ExpectClosedForms(*second, ofSecond, 1e-9);
}

TEST(TwoProblems, RunInTwoThreads)
{
  constexpr int kRuns = 50;
  const auto run = [](const std::string& settings, std::vector<Solution>& last,
                      std::unique_ptr<Problem>& problem) {
    for (int i = 0; i < kRuns; ++i) {
      problem = Cantilever(settings);
      last = Solutions(*problem, ThreeLoads);
    }
  };
  std::vector<Solution> direct, iterated;
  std::unique_ptr<Problem> ofDirect, ofIterated;
  std::thread one(run, "Solver SkyLine", std::ref(direct), std::ref(ofDirect));
  std::thread other(run, "Solver Sparse 1e-12 1e-12 1000", std::ref(iterated),
                    std::ref(ofIterated));
  one.join();
  other.join();
  ExpectClosedForms(*ofDirect, direct, 1e-12);  // as above
  ExpectClosedForms(*ofIterated, iterated, 1e-9);
}

}  // namespace morlen
