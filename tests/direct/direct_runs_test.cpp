// Whole runs with Solver Direct, and its place in the automatic choice.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <filesystem>
#include <string>

#include "base/textscan.h"
#include "direct/direct_kit.h"
#include "model/node.h"
#include "run/project.h"
#include "support/messages.h"
#include "support/run.h"
#include "support/sanitizer.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/structure.h"

namespace morlen {

namespace {

/// A square plate of shells, clamped along one edge.
std::string Plate(int n, const std::string& settings)
{
  ShellModel plate = GridShell(n, n, [](double u, double v) { return Vector3{10 * u, 10 * v, 0}; });
  plate.settings = settings;
  for (const int node : NodesWhere(plate, [](const Vector3& at) { return at[0] == 0.0; }))
    plate.Hold(node, "111111");
  plate.Load((n + 1) * (n + 1), {0, 0, -1, 0, 0, 0});
  return plate.Text();
}

/// The number of files and folders below a folder, in which a run may be at work.
int CountBelow(const std::filesystem::path& folder)
{
  int count = 0;
  std::error_code gone;
  for (std::filesystem::recursive_directory_iterator entry(folder, gone), end;
       !gone && entry != end; entry.increment(gone))
    ++count;
  return count;
}

std::string Cube(int n)
{
  SolidModel cube = SolidBlock({n, n, n}, {1, 1, 1}, 4);
  cube.material = "E 2.1e8 nu 0.3";
  for (std::size_t i = 0; i < cube.nodes.size(); ++i) {
    if (cube.nodes[i][0] == 0.0)
      cube.supports[static_cast<int>(i) + 1] = {};
  }
  cube.loads[cube.NodeAt({1, 1, 1})] = {1, 2, -3};
  return cube.Text();
}

struct Chosen
{
  SolverType type;
  std::string info;
  ReaVecV displacements;
};

Chosen Calculate(const std::string& text, bool renumber = true)
{
  const direct::DirectKit kit;
  Project project(100, kit);
  TextScan scan(text);
  project.ReadFromAscii(scan);
  Chosen chosen;
  chosen.info = MessagesOf([&](std::FILE* file) { project.Calc(renumber ? 1 : 0, file); });
  chosen.type = project.problem.solverSettings.type;
  chosen.displacements = std::move(project.solution.displacements);
  return chosen;
}

}  // namespace

// From 15000 equations on, shells and plane frames are faster with it, by the measurements in
// bench/; towers and solids are not.
TEST(AutomaticWithDirect, TakesItForShells)
{
  const Chosen chosen = Calculate(Plate(60, ""));
  EXPECT_EQ(chosen.type, SolverType::Direct) << chosen.info;
  EXPECT_NE(chosen.info.find("Solver Direct taken: estimated "), std::string::npos) << chosen.info;
}

TEST(AutomaticWithDirect, TakesItForSixNodeShells)
{
  EXPECT_EQ(Calculate(Plate(30, "ConvertTo6Nodes")).type, SolverType::Direct);
}

TEST(AutomaticWithDirect, TakesItForWidePlaneFrames)
{
  EXPECT_EQ(Calculate(Storeys(120, 120, kClamped).Load(9, {1, 0}).Text()).type, SolverType::Direct);
}

TEST(AutomaticWithDirect, LeavesOthersToTheFasterSolver)
{
  EXPECT_EQ(Calculate(Cube(18)).type, SolverType::Sparse);
  EXPECT_EQ(Calculate(Building(4, 4, 110, kClamped).Load(99, {1, 0}).Text()).type,
            SolverType::SkyLine);
  EXPECT_EQ(Calculate(Plate(20, "")).type, SolverType::SkyLine);  // less than 15000 equations
}

// The displacements are those of the skyline, except for rounding, which the refinement bounds.
TEST(AutomaticWithDirect, GivesTheSameDisplacements)
{
  const ReaVecV sky = Calculate(Plate(55, "Solver SkyLine"), false).displacements;
  const ReaVecV direct = Calculate(Plate(55, "Solver Direct"), false).displacements;
  double largest = 0.0;
  for (int i = 1; i <= sky.Size(); ++i)
    largest = std::max(largest, std::fabs(sky(i)));
  for (int i = 1; i <= sky.Size(); ++i)
    ASSERT_NEAR(direct(i), sky(i), 1e-9 * largest) << i;
}

TEST(SolverDirect, SaysTheSameInEveryRunAndNothingElse)
{
  TemporaryFolder folder;
  folder.Write("model.dat", Plate(20, "Solver Direct"));
  std::map<std::string, std::string> first;
  for (int k = 0; k < 3; ++k) {
    const RunResult run = RunProgram(folder, {"model.dat", "out.txt"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    if (k == 0)
      first = folder.Files();
    EXPECT_EQ(folder.Files(), first);
  }
}

// The limits leave too little memory for the factors, and more than their files need.
TEST(SolverDirect, PutsItsFactorsIntoFiles)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer reserves memory far beyond the limits here";
  const TemporaryFolder folder;
  folder.Write("model.dat", Plate(110, "Solver Direct"));
  folder.Write("files/empty", "");
  const std::string files = (folder.Path() / "files").string();
  bool used = false;
  for (long megabytes = 400; megabytes >= 160; megabytes -= 20) {
    const RunResult run =
        RunProgram(folder, {"-i", "info.txt", "model.dat", "out.txt"},
                   {.addressSpace = megabytes << 20, .environment = {{"TMPDIR", files}}});
    const std::string info = folder.Read("info.txt");
    if (run.status == 0) {
      used = used || info.find("The factors go to files in " + files) != std::string::npos;
    } else {
      EXPECT_EQ(run.status, 2);
      EXPECT_TRUE(run.err.starts_with("error: the solver Direct needs ") ||
                  run.err == "Not space available on heap")
          << run.err;
      EXPECT_EQ(folder.Read("out.txt"), "");
    }
    EXPECT_EQ(CountBelow(files), 1);
  }
  EXPECT_TRUE(used);
}

// The signal comes as soon as the folder of the factors has a file, long before their end.
TEST(SolverDirect, RemovesItsFilesAfterASignal)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer reserves memory far beyond the limits here";
  const TemporaryFolder folder;
  folder.Write("model.dat", Plate(110, "Solver Direct"));
  folder.Write("files/empty", "");
  const std::string files = (folder.Path() / "files").string();
  bool seen = false;
  for (long megabytes = 260; !seen && megabytes >= 160; megabytes -= 10) {
    StartedRun run(folder, {"model.dat", "out.txt"},
                   {.addressSpace = megabytes << 20, .environment = {{"TMPDIR", files}}});
    for (int k = 0; k < 5000 && !seen && !folder.Has("out.txt"); ++k) {
      usleep(1000);
      seen = CountBelow(files) > 2;
    }
    run.Send(SIGTERM);
    const RunResult result = run.Wait();
    EXPECT_TRUE(result.signal == SIGTERM || result.status >= 0);
    EXPECT_EQ(CountBelow(files), 1);
  }
  EXPECT_TRUE(seen);
}

// A row of zeros is refused before the factorisation. The other support has axes of its own.
TEST(SolverDirect, NamesTheNodeWithoutElements)
{
  for (const char* solver : {"SkyLine", "Direct"}) {
    SCOPED_TRACE(solver);
    const TemporaryFolder folder;
    folder.Write("model.dat", "problem type: 2d\nSolver " + std::string(solver) +
                                  "\nmesh dimension = 2 elemtype Linear nnode = 2\ncoordinates\n"
                                  "1 0 0\n2 1 0\n3 3 9\nend coordinates\n"
                                  "elements\n1 1 2 1\nend elements\n"
                                  "materials\n1 E=1 A=1 Iz=1\nend materials\n"
                                  "constraints\n1 110 0 0 0 Euler1=0.3\n2 010 0 0 0\n"
                                  "end constraints\n");
    const RunResult run = RunProgram(folder, {"-r0", "model.dat", "out.txt"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.find("error when solving system(7)"), 0U) << run.err;
    EXPECT_NE(run.err.find("hint: node 3 can move along x: it belongs to no element\n"),
              std::string::npos)
        << run.err;
  }
}

}  // namespace morlen
