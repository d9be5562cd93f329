// Whole analyses with the sparse solver, against the skyline solver and closed forms. Messages of
// iterations that converge, end early or fail.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "solvers/bsolver.h"
#include "support/compare.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/messages.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

const char* const kSkyline = "Solver SkyLine";
const char* const kTight = "Solver Sparse 1e-10 1e-10 5000";
const char* const kNoSolution =
    "error when solving system. Probably boundary conditions are not correct\n";
const std::string kAdvice =
    "hint: morlen-check finds out whether the structure can move, and names the nodes\n";

// The places (i, j, k) of a building of nx by ny bays, floor by floor.
class Grid
{
public:
  Grid(int nx, int ny, int storeys) : sides{nx + 1, ny + 1, storeys + 1} {}

  int Node(int i, int j, int k) const { return 1 + i + sides[0] * (j + sides[1] * k); }

  // Calls visit(place, node) for every place.
  template <class Visit>
  void ForEach(Visit visit) const
  {
    for (int k = 0; k < sides[2]; ++k) {
      for (int j = 0; j < sides[1]; ++j) {
        for (int i = 0; i < sides[0]; ++i)
          visit(std::array<int, 3>{i, j, k}, Node(i, j, k));
      }
    }
  }

  // The node one place further along an axis; 0 beyond the last.
  int Next(std::array<int, 3> place, int axis) const
  {
    if (++place[axis] == sides[axis])
      return 0;
    return Node(place[0], place[1], place[2]);
  }

private:
  std::array<int, 3> sides;
};

// Columns and beams of a concrete building with clamped feet, in kN and m, under floor loads and
// wind. In the plane, the second number of bays is 0 and the columns are along y.
Frame Building(int nx, int ny, int storeys, bool space = true)
{
  Frame frame;
  frame.space = space;
  frame.sections = {{.E = 3e7, .G = 1.25e7, .A = 0.2, .Iy = 4e-3, .Iz = 3e-3, .J = 5e-3},
                    {.E = 3e7, .G = 1.25e7, .A = 0.15, .Iy = 3e-3, .Iz = 1e-3, .J = 2e-3}};
  const Grid grid(nx, ny, storeys);
  const int up = space ? 2 : 1;
  grid.ForEach([&](const std::array<int, 3>& place, int node) {
    Vector3 x = {6.0 * place[0], 5.0 * place[1], 0.0};
    x[up] = 3.5 * place[2];
    frame.nodes.push_back(x);
    for (int axis = 0; axis < 3; ++axis) {
      const int next = grid.Next(place, axis);
      if (next && (axis == 2 || place[2] > 0))
        frame.beams.push_back({node, next, axis == 2 ? 1 : 2});
    }
    if (place[2] == 0) {
      frame.supports.push_back({.node = node, .flags = kClamped});
      return;
    }
    Frame::NodalLoad load = {.node = node, .values = {place[0] == 0 ? 20.0 : 0.0}};
    load.values[up] = -150.0 - 10.0 * (node % 3);
    frame.loads.push_back(load);
  });
  return frame;
}

// A foot with a settlement, one on springs, and a skew roller with a prescribed displacement.
Frame WithEverySupport(Frame frame)
{
  Frame::Support& settled = frame.supports[0];
  settled.values = {0.002, -0.01, 0.003};
  Frame::Support& springs = frame.supports[1];
  springs.flags = {2, 2, 2, 2, 2, 2};
  springs.values = {4e4, 8e4, 6e4, 3e4, 2e4, 5e4};
  Frame::Support& skew = frame.supports.back();
  skew.flags = {0, 1, 2};
  skew.values = {0, 0.004, 7e4};
  skew.euler = Vector3{0.3, 0, 0};
  if (frame.space) {
    skew.flags = {0, 1, 2, 1, 0, 2};
    skew.values = {0, 0.004, 7e4, 0.001, 0, 3e4};
    skew.euler = Vector3{0.3, 0.5, -0.4};
  }
  return frame;
}

Frame WithoutLoads(Frame frame)
{
  frame.loads.clear();
  return frame;
}

// The numbers of the three sections of the results, in order.
struct Sections
{
  Doubles displacements;
  Doubles endForces;
  Doubles reactions;
};

Sections SectionsOf(const Solved& solved)
{
  const auto append = [](Doubles& to, const Doubles& values) {
    to.insert(to.end(), values.begin(), values.end());
  };
  Sections sections;
  for (const auto [number, node] : EachNumbered<Node>(solved.Model().GiveNodes())) {
    append(sections.displacements, solved.Displacement(number));
    if (node.constraint)
      append(sections.reactions, solved.Reaction(number));
  }
  for (const Elem& elem : Each<Elem>(*solved.Model().meshes.front()->GiveElemPlex()))
    append(sections.endForces, solved.EndForces(elem.Num()));
  return sections;
}

void ExpectSections(const Solved& actual, const Solved& expected, double tolerance)
{
  const Sections a = SectionsOf(actual);
  const Sections e = SectionsOf(expected);
  ExpectValues(a.displacements, e.displacements, tolerance);
  ExpectValues(a.endForces, e.endForces, tolerance);
  ExpectValues(a.reactions, e.reactions, tolerance);
}

struct Case
{
  const char* name;
  Frame frame;
};

std::vector<Case> Frames()
{
  const Frame plane = Building(4, 0, 6, false);
  const Frame space = Building(3, 2, 4);
  return {{"plane", plane},
          {"plane with every support", WithEverySupport(plane)},
          {"space", space},
          {"space with every support", WithEverySupport(space)},
          {"plane without loads", WithoutLoads(WithEverySupport(plane))},
          {"space without loads", WithoutLoads(WithEverySupport(space))}};
}

// A plane chain of `count` beams of length 1 along x, with springs at its nodes.
Frame Chain(int count)
{
  Frame frame;
  frame.space = false;
  frame.sections = {{.E = 200.0, .A = 5.0, .Iz = 3.0}};
  for (int i = 0; i <= count; ++i) {
    frame.nodes.push_back({static_cast<double>(i), 0, 0});
    frame.supports.push_back({.node = i + 1, .flags = {2, 2, 2}, .values = {9, 8, 7}});
    if (i > 0)
      frame.beams.push_back({i, i + 1, 1});
  }
  frame.loads = {{count, {1, 2, 3}}};
  return frame;
}

std::string InfoOf(const std::string& problem, int expectedStatus, const std::string& error = "")
{
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunProgram(folder, {"-i", "info.txt", "model.dat"});
  EXPECT_EQ(run.status, expectedStatus);
  EXPECT_EQ(run.err, error);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(folder.Has("model.morlen.res"), expectedStatus == 0);
  return folder.Read("info.txt");
}

// The text between two others, which must be there.
std::string Between(const std::string& text, const std::string& first, const std::string& second)
{
  const std::size_t start = text.find(first);
  const std::size_t stop = text.find(second, start);
  EXPECT_NE(stop, std::string::npos) << second;
  return stop == std::string::npos ? ""
                                   : text.substr(start + first.size(), stop - start - first.size());
}

std::vector<std::string> LinesOf(const std::string& text)
{
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  return lines;
}

/// The place of the first line with this beginning; the number of lines when there is none.
std::size_t FindLine(const std::vector<std::string>& lines, const std::string& beginning)
{
  const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.starts_with(beginning);
  });
  return static_cast<std::size_t>(found - lines.begin());
}

/// The text as a regular expression.
std::string Escaped(const std::string& text)
{
  static const std::regex special("[.()+*?\\[\\]^$|{}]");
  return std::regex_replace(text, special, "\\$&");
}

// The residual in a line whose other text is known; -1 when the line differs.
double ResidualIn(const std::string& line, const std::string& before, const std::string& after)
{
  if (!line.starts_with(before) || !line.ends_with(after))
    return -1.0;
  const std::string number = line.substr(before.size(), line.size() - before.size() - after.size());
  char* end = nullptr;
  const double value = std::strtod(number.c_str(), &end);
  return *end == '\0' && !number.empty() ? value : -1.0;
}

// The iteration in the line that announces the end; -1 when it is another line.
int ConvergedAt(const std::string& line, double tolerance)
{
  int iteration = 0;
  double residual = 0.0;
  if (std::sscanf(line.c_str(), "Converged it number. %d resid=%lg", &iteration, &residual) != 2)
    return -1;
  char whole[100];
  std::snprintf(whole, sizeof whole, "Converged it number. %d resid=%g tol=%g", iteration, residual,
                tolerance);
  return line == whole && residual <= tolerance ? iteration : -1;
}

const char* const kBeforeSolver =
    "Just before filling global stiffness matrix\nStiffness matrix filled\n"
    "Load vector constructed\nBeginning to apply constraints\nJust before Solver\n";

}  // namespace

TEST(SparseFrames, AgreeWithTheSkyline)
{
  for (const Case& c : Frames()) {
    SCOPED_TRACE(c.name);
    const Solved sparse(ProblemText(c.frame, kTight));
    ExpectSections(sparse, Solved(ProblemText(c.frame, kSkyline)), 1e-7);
    ExpectEquilibrium(sparse, 1e-6);
  }
}

TEST(SparseFrames, NumbersOfTheFileAreKept)
{
  // Only the skyline solver renumbers, so that the flag does not change a digit.
  const std::string problem = ProblemText(WithEverySupport(Building(3, 2, 2)), kTight);
  EXPECT_EQ(SectionsOf(Solved(problem, true)).displacements,
            SectionsOf(Solved(problem, false)).displacements);
}

TEST(SparseFrames, WriteTheSameFilesAsTheSkyline)
{
  // Results have six digits. Values that should be 0 are errors of the iteration in one file and
  // rounding errors in the other.
  const Closeness closeness = {.relative = 1.1e-5, .floor = 1e-6, .absolute = 1e-6};
  for (const Case& c : Frames()) {
    SCOPED_TRACE(c.name);
    std::map<std::string, std::string> files[2];
    for (const bool sparse : {false, true}) {
      const TemporaryFolder folder;
      folder.Write("model.dat", ProblemText(c.frame, sparse ? kTight : kSkyline));
      const RunResult run = RunProgram(folder, {"-p", "model.dat", "out.txt"});
      EXPECT_EQ(run.status, 0);
      EXPECT_EQ(run.err + run.out, "");
      files[sparse] = folder.Files();
    }
    for (const char* const name : {"out.txt", "model.morlen.res", "model.morlen.bon"})
      EXPECT_EQ(Difference(files[true][name], files[false][name], closeness), "") << name;
  }
}

TEST(SparseFrames, SettlementsOfABeamFixedAtBothEnds)
{
  // Closed form of deflection and forces for the displacement v and the rotation t of the right
  // end.
  constexpr int kBeams = 8;
  const double L = kBeams;
  const double EI = 600.0;
  for (const auto& [v, t] : {std::pair(0.3, 0.0), std::pair(0.0, -0.2), std::pair(-0.1, 0.05)}) {
    Frame frame = Chain(kBeams);
    frame.loads.clear();
    frame.supports = {{.node = 1, .flags = kClamped},
                      {.node = kBeams + 1, .flags = kClamped, .values = {0.02, v, t}}};
    const Solved solved(ProblemText(frame, kTight));
    for (int i = 0; i <= kBeams; ++i) {
      const double s = i / L;
      const double deflection = v * s * s * (3 - 2 * s) + t * L * s * s * (s - 1);
      const double slope = 6 * v / L * s * (1 - s) + t * s * (3 * s - 2);
      ExpectValues(solved.Displacement(i + 1), {0.02 * s, deflection, slope}, 1e-10, 0.3);
    }
    const double V = 12 * EI * v / (L * L * L) - 6 * EI * t / (L * L);
    const double M = -6 * EI * v / (L * L) + 4 * EI * t / L;
    const double N = 1000.0 * 0.02 / L;
    ExpectValues(solved.Reaction(kBeams + 1), {N, V, M}, 1e-9);
    ExpectValues(solved.Reaction(1), {-N, -V, -6 * EI * v / (L * L) + 2 * EI * t / L}, 1e-9);
    ExpectEquilibrium(solved, 1e-9);
  }
}

TEST(SparseFrames, SettlementsAsARigidMotion)
{
  // All feet have the same rigid motion, which the building follows without stress.
  Frame frame = WithoutLoads(Building(2, 2, 3));
  const Vector3 move = {0.01, -0.02, 0.005};
  const Vector3 turn = {1e-3, -2e-3, 3e-3};
  const auto motion = [&](const Vector3& x) {
    return std::array<double, 6>{move[0] + turn[1] * x[2] - turn[2] * x[1],
                                 move[1] + turn[2] * x[0] - turn[0] * x[2],
                                 move[2] + turn[0] * x[1] - turn[1] * x[0],
                                 turn[0],
                                 turn[1],
                                 turn[2]};
  };
  for (Frame::Support& support : frame.supports)
    support.values = motion(frame.nodes[support.node - 1]);
  const Solved solved(ProblemText(frame, kTight));
  for (int node = 1; node <= static_cast<int>(frame.nodes.size()); ++node) {
    const std::array<double, 6> expected = motion(frame.nodes[node - 1]);
    ExpectValues(solved.Displacement(node), {expected.begin(), expected.end()}, 1e-9, 0.02);
  }
  // The tolerance is relative to EA/L times a displacement, about 10000 kN.
  for (const Frame::Support& support : frame.supports)
    ExpectValues(solved.Reaction(support.node), Doubles(6, 0.0), 1e-9, 1e4);
}

// Models below 15000 equations are always solved directly. A longer chain is solved directly
// because of its small profile.
TEST(SparseFrames, AutomaticUsesTheDirectSolverForChains)
{
  for (const int nodes : {4999, 5000}) {
    const auto project = ReadProject(ProblemText(Chain(nodes - 1)));
    const std::string info = MessagesOf([&](std::FILE* file) { project->Calc(1, file); });
    EXPECT_EQ(project->problem.solverSettings.type, SolverType::SkyLine);
    EXPECT_NE(info.find("Sky matrix storage with Txolesky\nDegrees of freedom= " +
                        std::to_string(3 * nodes) + "\n"),
              std::string::npos);
    EXPECT_NE(
        info.find(nodes == 4999 ? "Solver SkyLine taken: the usual method below 15000 equations\n"
                                : "Solver SkyLine taken: estimated "),
        std::string::npos)
        << info;
  }
}

// The effect of the supports passes through few storeys, and the profile is as wide as a floor.
TEST(SparseFrames, AutomaticIteratesForWideFrames)
{
  const Frame frame = Building(49, 49, 1);  // 2500 nodes a floor
  const auto project = ReadProject(ProblemText(frame));
  const std::string info = MessagesOf([&](std::FILE* file) { project->Calc(1, file); });
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::Sparse);
  EXPECT_NE(info.find("Solver Sparse taken: estimated "), std::string::npos) << info;
  EXPECT_NE(info.find("Sparse matrix storage with Conjugate gradients\n"
                      "Degrees of freedom= 30000\n"),
            std::string::npos);
  // Without a solver line the tolerance is 1e-5, and the iteration continues until the error is
  // small.
  const std::vector<std::string> lines =
      LinesOf(Between(info, "Just before Solver\n", "Solver finished\n"));
  ASSERT_GE(lines.size(), 3u);
  const std::size_t converged = FindLine(lines, "Converged it number. ");
  EXPECT_GT(ConvergedAt(lines[converged], 1e-5), 0);
  EXPECT_EQ(project->account.solver, "Sparse");
  EXPECT_NE(info.find("Solver Sparse taken: " + project->account.reason + "\n"), std::string::npos);
  EXPECT_EQ(project->account.iterations, ConvergedAt(lines[converged], 1e-5));
  EXPECT_LT(project->solution.accuracy.error, 1e-6);
  EXPECT_LT(project->solution.accuracy.residual, 1e-5);
}

TEST(SparseFrames, AutomaticSolvesTallFramesDirectly)
{
  const Frame frame = Building(4, 4, 100);  // 25 nodes a floor
  const auto project = ReadProject(ProblemText(frame));
  const std::string info = MessagesOf([&](std::FILE* file) { project->Calc(1, file); });
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::SkyLine);
  EXPECT_NE(info.find("Solver SkyLine taken: estimated "), std::string::npos) << info;
}

TEST(SparseFrames, SpaceFrameOf20000Equations)
{
  const Frame frame = Building(64, 3, 12);
  ASSERT_EQ(6 * frame.nodes.size(), 20280u);
  const Solved skyline(ProblemText(frame, kSkyline));
  const Solved automatic(ProblemText(frame));
  EXPECT_EQ(automatic.Model().solverSettings.type, SolverType::Sparse);
  ExpectSections(automatic, skyline, 1e-3);
  const Solved tight(ProblemText(frame, kTight));
  ExpectSections(tight, skyline, 1e-7);
  ExpectEquilibrium(tight, 1e-7);
}

TEST(SparseFrames, InformationFileToTheLetter)
{
  // The incomplete factors of a chain are exact, so that one iteration is enough. Its three nodes
  // have 2 + 3 + 2 blocks of 9 positions.
  const std::string info = InfoOf(ProblemText(Chain(2), "Solver Sparse 1e-8 0.1 100"), 0);
  const std::string before =
      "\nINFORMATION ABOUT STIFFNESS MATRIX\nSparse matrix storage with Conjugate gradients\n"
      "Degrees of freedom= 9\nTotal number of positions= 63\nAmount of memory= 0.0Mb\n\n" +
      std::string(kBeforeSolver) + "Converged it number. 1 resid=";
  const std::string number = "([0-9.e+-]+)";
  const std::regex expected(
      Escaped("Solver Sparse taken: the problem file asks for it\n" + before) + number +
      " tol=1e-08\nprobe: converged after 1 iterations, resid=" + number + " tol=" + number +
      "\nEstimated relative error of the displacements= " + number + ", residual= " + number +
      "\nSolver finished\nBeginning calc strengths and reactions\n"
      "End of calc strengths and reactions\nTransfering results\n");
  const std::string untilTime = info.substr(0, info.rfind("Total time = "));
  std::smatch numbers;
  ASSERT_TRUE(std::regex_match(untilTime, numbers, expected)) << info;
  EXPECT_LE(std::stod(numbers[1]), 1e-8);
  EXPECT_LE(std::stod(numbers[2]), std::stod(numbers[3]));
  // The residual is a rounding error, so that the error is at most this.
  EXPECT_LE(std::stod(numbers[4]), 1e-12);
  EXPECT_LE(std::stod(numbers[5]), 1e-12);
}

TEST(SparseFrames, MemoryInTheInformationFile)
{
  // 25 by 21 nodes. Each has a diagonal block, and each beam adds two blocks. A position needs 12
  // bytes, a row 4.
  const Frame frame = Building(24, 0, 20, false);
  const int positions = 9 * static_cast<int>(frame.nodes.size() + 2 * frame.beams.size());
  const int rows = 3 * static_cast<int>(frame.nodes.size());
  char text[200];
  std::snprintf(text, sizeof text,
                "Degrees of freedom= %i\nTotal number of positions= %i\n"
                "Amount of memory= %.1fMb\n\n",
                rows, positions, (12.0 * positions + 4.0 * rows) / (1024.0 * 1024.0));
  EXPECT_NE(std::string(text).find("= 0.3Mb"), std::string::npos);
  EXPECT_NE(InfoOf(ProblemText(frame, kTight), 0).find(text), std::string::npos);
}

TEST(SparseFrames, ProgressOfTheIteration)
{
  const std::string info = InfoOf(ProblemText(Building(3, 2, 4), kTight), 0);
  const std::vector<std::string> lines =
      LinesOf(Between(info, "Just before Solver\n", "Solver finished\n"));
  const int announced = static_cast<int>(FindLine(lines, "Converged it number. "));
  ASSERT_GE(announced, 2);
  for (int i = 0; i < announced; ++i) {
    const std::string before = "iteration number " + std::to_string(10 * (i + 1)) + " resid=";
    EXPECT_GT(ResidualIn(lines[i], before, " tol=1e-10"), 1e-10) << lines[i];
  }
  EXPECT_EQ(ConvergedAt(lines[announced], 1e-10) / 10, announced);
}

TEST(SparseFrames, NothingToSolve)
{
  const std::string info =
      InfoOf(ProblemText(WithoutLoads(Building(2, 1, 2)), "Solver Sparse 1e-6 1e-6 10"), 0);
  const std::vector<std::string> lines =
      LinesOf(Between(info, "Just before Solver\n", "Solver finished\n"));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "iteration number 0 OK resid=0 tol=1e-06");
  EXPECT_TRUE(lines[1].starts_with("probe: converged after ")) << lines[1];
  EXPECT_EQ(lines[2], "Estimated relative error of the displacements= 0.0e+00, residual= 0.0e+00");
}

TEST(SparseFrames, IterationLimitEndsTheRun)
{
  const std::string info = InfoOf(ProblemText(Building(3, 2, 4), "Solver Sparse 1e-10 1e-9 12"), 2,
                                  "error when solving system. Stopped after 12 iterations."
                                  "Probably boundary conditions are not correct\n" +
                                      kAdvice);
  const std::vector<std::string> lines = LinesOf(info.substr(info.find("Just before Solver\n")));
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_GT(ResidualIn(lines[1], "iteration number 10 resid=", " tol=1e-10"), 1e-9);
  EXPECT_TRUE(lines[2].starts_with("probe: not solved after 12 iterations, resid=")) << lines[2];
  EXPECT_EQ(lines[3], "Not Solved after 12 Iterations");
  EXPECT_EQ(info.back(), '\n');
}

TEST(SparseFrames, ResidualBelowTheSecondToleranceIsAccepted)
{
  const Frame frame = Building(3, 2, 4);
  const auto project = ReadProject(ProblemText(frame, "Solver Sparse 1e-10 10 12"));
  const std::string info = MessagesOf([&](std::FILE* file) { project->Calc(1, file); });
  const std::vector<std::string> lines =
      LinesOf(Between(info, "Just before Solver\n", "Solver finished\n"));
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_GT(ResidualIn(lines[0], "iteration number 10 resid=", " tol=1e-10"), 1e-10);
  EXPECT_TRUE(lines[1].starts_with("probe: not solved after 12 iterations, resid=")) << lines[1];
  EXPECT_TRUE(
      lines[3].starts_with("warning: the iteration ended before its tolerance, with a "
                           "residual of "))
      << lines[3];
  EXPECT_TRUE(lines[4].starts_with("Estimated relative error of the displacements= ")) << lines[4];
  const double accepted = ResidualIn(lines[2], "After 12 Iterations, accepted tolerance of ", "");
  // The residual: the loads on the free nodes less the forces of the displacements.
  double residual = 0.0;
  double loads = 0.0;
  for (const Frame::NodalLoad& load : frame.loads) {
    for (int k = 1; k <= 6; ++k) {
      const int equation = project->Equation(*project->FindNode(load.node), k);
      const double force =
          project->solver->ReturnRowPerVector(equation, project->solution.displacements);
      residual += std::pow(load.values[k - 1] - force, 2);
      loads += std::pow(load.values[k - 1], 2);
    }
  }
  EXPECT_NEAR(accepted, std::sqrt(residual / loads), 1e-6);  // six decimals are written
  EXPECT_GT(accepted, 1e-5);
}

TEST(SparseFrames, ExactlySingularModelsBreakDown)
{
  // The numbers of this beam are integers, so that elimination is exact and a pivot is 0.
  const std::string settings = "Solver Sparse 1e-6 1e-6 100";
  const ProblemParts plane = {
      .settings = settings, .materials = "1 E 1 A 1 Iz 1", .constraints = "", .loads = "2 1 1 0"};
  ProblemParts space = SpaceProblem().With(&ProblemParts::settings, settings);
  space.loads = "2 1 1 0 1 0 0";
  const struct
  {
    const char* name;
    std::string problem;
    std::string message;
  } cases[] = {
      {"plane frame without supports", plane.Text(), kNoSolution + kAdvice},
      {"plane frame free to turn", plane.With(&ProblemParts::constraints, "1 110 0 0 0").Text(),
       kNoSolution + kAdvice},
      {"node without elements and supports",
       plane.With(&ProblemParts::constraints, "1 111 0 0 0")
           .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 7 7")
           .Text(),
       kNoSolution + kAdvice},
      {"space frame without supports", space.With(&ProblemParts::constraints, "").Text(),
       "There are no prescribed nodes in the model!!!\n" + (kNoSolution + kAdvice)},
      {"space frame free to twist",
       space.With(&ProblemParts::constraints, "1 111011 0 0 0 0 0 0").Text(),
       std::string("There is only one prescribed node in the model!!!\n"
                   "Its 6 degrees of freedom should be prescribed!!!\n") +
           kNoSolution + kAdvice}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string info = InfoOf(c.problem, 2, c.message);
    EXPECT_NE(info.find("Just before Solver\nprobe: not solved after "), std::string::npos) << info;
  }
}

TEST(SparseFrames, ModelsFreeToMoveAreRefused)
{
  // The factors may exist because of rounding. The loads are not in equilibrium, so that no
  // displacements can balance them.
  Frame unsupported = Building(3, 2, 3);
  unsupported.supports.clear();
  Frame turning = Building(4, 0, 4, false);
  turning.supports = {{.node = 1, .flags = {1, 1, 0}}};
  for (const Frame& frame : {unsupported, turning}) {
    for (const std::string settings :
         {"Solver Sparse 1e-10 1e-3 300", "Solver Sparse 1e-5 0.1 40"}) {
      std::string message = FatalCaught([&] { Solved(ProblemText(frame, settings)); });
      const std::string noSupports = "There are no prescribed nodes in the model!!!\n";
      if (frame.space) {
        EXPECT_TRUE(message.starts_with(noSupports)) << message;
        message.erase(0, noSupports.size());
      }
      // The iteration may end before the limit: after three restarts, or when the probe has failed.
      const std::regex stopped(
          "error when solving system\\. Stopped after ([0-9]+) iterations\\.Probably boundary "
          "conditions are not correct\n");
      const int limit = std::stoi(settings.substr(settings.rfind(' ') + 1));
      std::smatch iterations;
      EXPECT_TRUE(message == kNoSolution || (std::regex_match(message, iterations, stopped) &&
                                             std::stoi(iterations[1]) <= limit))
          << message;
    }
  }
}

TEST(SparseFrames, SpringsMayBeAllThatANodeHas)
{
  for (const char* solver : {kSkyline, kTight}) {
    const Solved solved(
        "problem type 2d\nmesh dimension 2 elemtype Linear nnode 2\n"
        "coordinates\n1 0 0\n2 2 0\n3 5 5\nend coordinates\nelements\n1 1 2 1\nend elements\n"
        "materials\n1 E=1000 A=2 Iz=3\nend\n"
        "constraints\n1 111 0 0 0\n3 222 10 20 40\nend\n"
        "nodal_point_loads\n2 7 0 0\n3 5 5 10\nend\n" +
        std::string(solver) + "\n");
    ExpectValues(solved.Displacement(3), {0.5, 0.25, 0.25});
    ExpectValues(solved.Reaction(3), {-5.0, -5.0, -10.0});
    EXPECT_NEAR(solved.Displacement(2)[0], 7.0 * 2.0 / 2000.0, 1e-12);
  }
}

}  // namespace morlen
