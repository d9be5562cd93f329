// Whole runs of morlen-mpi by the launcher, with two ranks on this machine.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "mpi/multigrid.h"
#include "support/compare.h"
#include "support/run.h"
#include "support/shell_problems.h"
#include "support/solid_model.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// As root, and where processes may not read each other's memory, as in containers.
const RunConditions kAnywhere = {
    .environment = {{"OMPI_ALLOW_RUN_AS_ROOT", "1"},
                    {"OMPI_ALLOW_RUN_AS_ROOT_CONFIRM", "1"},
                    {"OMPI_MCA_btl_vader_single_copy_mechanism", "none"}}};

std::vector<std::string> Launched(int ranks, const std::vector<std::string>& arguments)
{
  std::vector<std::string> words = {"-q", "--oversubscribe", "-n", std::to_string(ranks),
                                    MORLEN_MPI_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

RunResult RunRanks(const TemporaryFolder& folder, int ranks,
                   const std::vector<std::string>& arguments)
{
  return RunProgram(folder, Launched(ranks, arguments), kAnywhere);
}

// A run that a rank ends by an error. The launcher asks the other ranks to end and waits before it
// kills them, for two seconds even when all have ended: here it does not wait. Ranks that have to
// clean up, after a crash of another, need the time.
RunResult RunRefused(const TemporaryFolder& folder, const std::vector<std::string>& arguments)
{
  RunConditions hasty = kAnywhere;
  hasty.environment.emplace_back("OMPI_MCA_odls_base_sigkill_timeout", "0");
  return RunProgram(folder, Launched(2, arguments), hasty);
}

// The results of a run without errors; a model without a line that chooses the solver.
struct Results
{
  std::string text;
  std::string kiv;
  std::string info;
};

Results Solve(const std::string& problem, int ranks)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunRanks(folder, ranks, {"-i", "info.txt", "model.dat", "out.txt"});
  EXPECT_EQ(run.status, 0) << run.err;
  return {folder.Read("out.txt"), folder.Read("model.morlen.res"), folder.Read("info.txt")};
}

std::string Example(const std::string& name)
{
  return ReadFile(fs::path(MORLEN_SOURCE_DIR) / "examples" / (name + ".dat"));
}

// The number that follows a text on the information stream; fails the test without one.
double NumberAfter(const std::string& info, const std::string& text)
{
  const std::size_t found = info.find(text);
  EXPECT_NE(found, std::string::npos) << text << "\n" << info;
  return found == std::string::npos ? 0.0
                                    : std::strtod(info.c_str() + found + text.size(), nullptr);
}

// The node at a place of a grid of n cubes along each edge.
int GridNode(int n, const std::array<int, 3>& at)
{
  return 1 + at[0] + (n + 1) * (at[1] + (n + 1) * at[2]);
}

// The six tetrahedra around the diagonal of a cube: along its edges in every order.
void AddCube(int n, const std::array<int, 3>& place, SolidModel& model)
{
  const int orders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
  for (const auto& order : orders) {
    std::array<int, 3> at = place;
    std::vector<int> corners = {GridNode(n, at)};
    for (const int axis : order) {
      ++at[axis];
      corners.push_back(GridNode(n, at));
    }
    if ((order[0] + 1) % 3 != order[1])  // the order turns the other way round
      std::swap(corners[2], corners[3]);
    model.elements.push_back(corners);
  }
}

// A cube of tetrahedra that stands on its base, with n elements along each edge.
SolidModel Block(int n, int nnode)
{
  SolidModel model;
  for (int place = 0; place < (n + 1) * (n + 1) * (n + 1); ++place) {
    const std::array<int, 3> at = {place % (n + 1), place / (n + 1) % (n + 1),
                                   place / (n + 1) / (n + 1)};
    model.nodes.push_back({1.0 * at[0] / n, 1.0 * at[1] / n, 1.0 * at[2] / n});
    if (*std::max_element(at.begin(), at.end()) < n)
      AddCube(n, at, model);
    if (at[2] == 0)
      model.supports[place + 1] = {.flags = "111", .values = {0.0, 0.0, at[0] == 0 ? 1e-3 : 0.0}};
    if (at[1] == 0 && at[2] == n)
      model.loads[place + 1] = {1.0, 2.0, -3.0};
  }
  if (nnode == 10)
    model.ToTenNodes();
  return model;
}

// A shell on two skew supports that settle, a spring and a column: two meshes.
std::string ShellOnColumn()
{
  ShellModel model = GridShell(14, 14, [](double u, double v) {
    return Vector3{4.0 * u, 4.0 * v, 0.5 * u * v};
  });
  const int corner = 15 * 15;
  model.constraints += "1 111000 0 0 -0.01 0 0 0 Euler1=0.3 Euler2=0.2 Euler3=0.1\n";
  model.constraints += "15 011000 0 0.002 0 0 0 0 Euler1=0.5 Euler2=0.1 Euler3=0.4\n";
  model.constraints += std::to_string(corner - 14) + " 002000 0 0 500 0 0 0\n";
  for (int node = 1; node <= corner; node += 3)
    model.Load(node, {0.0, 0.1, -1.0, 0.0, 0.0, 0.0});
  const std::string column = std::to_string(corner + 1);
  model.nodes.push_back({4.0, 4.0, -3.0});
  model.constraints += column + " 111111 0 0 0 0 0 0\n";
  std::string text = model.Text();
  text.insert(text.find("materials"),
              "mesh dimension = 3 elemtype Linear nnode = 2\ncoordinates\nend coordinates\n"
              "elements\n100000 " +
                  column + " " + std::to_string(corner) +
                  " 1 A=0.1 Iy=0.01 Iz=0.02 J=0.01\nend elements\n");
  return text;
}

// A chain of beams in the plane, simply supported, and some lines at the end.
std::string Chain(int beams, const std::string& supports, const std::string& rest = "",
                  const std::string& area = "1", const std::string& nodes = "")
{
  std::string text =
      "problem type: 2d\nmesh dimension = 2 elemtype Linear nnode = 2\ncoordinates\n";
  for (int i = 0; i <= beams; ++i)
    text += std::to_string(i + 1) + " " + std::to_string(i) + " 0\n";
  text += nodes + "end coordinates\nelements\n";
  for (int i = 1; i <= beams; ++i)
    text += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) +
            (i == beams - 3 ? " 2\n" : " 1\n");
  return text + "end elements\nmaterials\n1 E=1000 A=1 Iz=1\n2 E=1000 Iz=1 A=" + area +
         "\nend materials\nconstraints\n" + supports +
         "end constraints\nnodal_point_loads\n50 0 -1 0\nend nodal_point_loads\n" + rest;
}

struct Model
{
  const char* name;
  std::string text;
};

void PrintTo(const Model& model, std::ostream* out)
{
  *out << model.name;
}

std::vector<Model> Models()
{
  return {{"PlaneFrame", Example("hall_frame")},
          {"Hinges", Chain(400, "1 110 0 0 0\n401 010 0 0 0\n200 010 0 0.01 0\n",
                           "elem_rotules\n200 10\nend elem_rotules\n")},
          {"SpaceFrame", Example("space_frame")},
          {"ThreeNodeShells", Roof(14).model.Text()},
          {"SixNodeShells", WithMidSideNodes(Roof(8).model).Text()},
          {"RefinedShells", Roof(14).Refined().model.Text()},
          {"FourNodeSolids", Block(6, 4).Text()},
          {"TenNodeSolids", Block(3, 10).Text()},
          {"SeveralMeshes", ShellOnColumn()}};
}

// The processes of the program in the folder, by rank.
std::vector<int> RanksIn(const fs::path& folder)
{
  std::vector<int> ranks(2, 0);
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    std::error_code gone;
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos ||
        fs::read_symlink(entry.path() / "cwd", gone) != folder)
      continue;
    std::ifstream file(entry.path() / "environ", std::ios::binary);
    const std::string environment(std::istreambuf_iterator<char>(file), {});
    const std::string key = "OMPI_COMM_WORLD_RANK=";
    const std::size_t found = environment.find(key);
    if (found != std::string::npos)
      ranks[environment[found + key.size()] - '0'] = std::stoi(name);
  }
  return ranks;
}

}  // namespace

class TwoRanks : public testing::TestWithParam<Model>
{
};

// Six digits are printed, and the solutions differ by rounding: 1e-6 of the largest value.
TEST_P(TwoRanks, GiveTheResultsOfOne)
{
  constexpr Closeness kClose = {.relative = 0.0, .floor = 1e-6};
  const Results one = Solve(GetParam().text, 1);
  const Results two = Solve(GetParam().text, 2);
  EXPECT_EQ(Difference(two.text, one.text, kClose), "");
  EXPECT_EQ(Difference(two.kiv, one.kiv, kClose), "");
  for (const char* rank : {"Rank 0: ", "Rank 1: "})
    EXPECT_GT(NumberAfter(two.info, rank), 0.0);
}

// The program of one process solves the same equations by other means.
TEST_P(TwoRanks, GiveTheResultsOfTheSkyline)
{
  constexpr Closeness kClose = {.relative = 0.0, .floor = 1e-6};
  const TemporaryFolder folder;
  const std::string& text = GetParam().text;
  folder.Write("model.dat", text.substr(0, text.find('\n')) + "\nSolver: SkyLine" +
                                text.substr(text.find('\n')));
  const RunResult run = RunProgram(
      folder, {"-q", "-n", "1", MORLEN_PLAIN_PROGRAM, "model.dat", "out.txt"}, kAnywhere);
  ASSERT_EQ(run.status, 0) << run.err;
  const Results two = Solve(text, 2);
  EXPECT_EQ(Difference(two.text, folder.Read("out.txt"), kClose), "");
  EXPECT_EQ(Difference(two.kiv, folder.Read("model.morlen.res"), kClose), "");
}

INSTANTIATE_TEST_SUITE_P(All, TwoRanks, testing::ValuesIn(Models()),
                         [](const auto& model) { return model.param.name; });

// Each step is told with its size. The entries of the factors are told beforehand; they are at
// least those of the matrix on and above the diagonal.
TEST(TwoRanksInformation, TellsTheStepsOfTheSolver)
{
  const std::string info = Solve(Roof(14).model.Text(), 2).info;
  std::size_t last = 0;
  for (const char* step :
       {"Rank 1: ", "Analysis of 1350 equations, ", "Analysis finished: ", "Factorisation\n",
        "Factorisation finished\n", "Rank 0: ", "Solution for 2 right-hand sides\n"}) {
    const std::size_t found = info.find(step, last);
    ASSERT_NE(found, std::string::npos) << step << info;
    last = found;
  }
  const double ofMatrix = NumberAfter(info, "Analysis of 1350 equations, ");
  EXPECT_EQ(ofMatrix, NumberAfter(info, "Rank 0: ") + NumberAfter(info, "Rank 1: "));
  EXPECT_GT(NumberAfter(info, "Analysis finished: "), 0.9 * ofMatrix);
}

TEST(TwoRanksMultigrid, SolvesSolids)
{
  if (!mpi::Multigrid::IsAvailable())
    GTEST_SKIP() << "without PETSc";
  const Results two = Solve(Block(6, 4).Text(), 2);
  EXPECT_NE(two.info.find("Iteration with multigrid"), std::string::npos);
  EXPECT_EQ(two.info.find("The iteration has failed"), std::string::npos);
  EXPECT_LT(NumberAfter(two.info, "displacements= "), 1e-6);
}

// Only the rank of the node knows its roller; the blocks of the matrix are the same on all.
TEST(TwoRanksMultigrid, SolvesASolidWithOneRoller)
{
  if (!mpi::Multigrid::IsAvailable())
    GTEST_SKIP() << "without PETSc";
  constexpr Closeness kClose = {.relative = 0.0, .floor = 1e-6};  // printed digits
  SolidModel model = Block(6, 4);
  model.supports[7 * 7 * 7] = {.flags = "001"};
  const Results one = Solve(model.Text(), 1);
  for (const int ranks : {2, 3}) {
    SCOPED_TRACE(ranks);
    const Results several = Solve(model.Text(), ranks);
    EXPECT_NE(several.info.find("Iteration with multigrid"), std::string::npos);
    EXPECT_EQ(several.info.find("The iteration has failed"), std::string::npos);
    EXPECT_EQ(Difference(several.text, one.text, kClose), "");
  }
}

TEST(TwoRanksMultigrid, LeavesASolidThatCanTurnToTheDirectSolver)
{
  SolidModel model = Block(4, 4);
  model.supports = {{1, {}}, {2, {}}};
  const TemporaryFolder folder;
  folder.Write("model.dat", model.Text());
  const RunResult run = RunRanks(folder, 2, {"model.dat", "out.txt"});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("error when solving system("), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("can turn"), std::string::npos) << run.err;
  EXPECT_FALSE(folder.Has("out.txt"));
}

struct Mechanism
{
  const char* name;
  std::string text;
  const char* motion;  ///< of the hint
};

TEST(TwoRanksErrors, MechanismsAreRefusedWithTheirMotion)
{
  const Mechanism mechanisms[] = {
      {"slides", Chain(400, "1 010 0 0 0\n401 010 0 0 0\n"), "the whole model can move along x"},
      {"folds",
       Chain(400, "1 110 0 0 0\n401 010 0 0 0\n",
             "elem_rotules\n200 10\n201 01\nend elem_rotules\n"),
       "node 201 most"},
      {"node without elements", Chain(400, "1 110 0 0 0\n401 010 0 0 0\n", "", "1", "402 9 9\n"),
       "system(1204)"},
      {"node without elements beside skew supports",
       Chain(400, "1 110 0 0 0 Euler1=0.3\n401 010 0 0 0\n", "", "1", "402 9 9\n"),
       "hint: node 402 can move along x: it belongs to no element\n"}};
  for (const Mechanism& mechanism : mechanisms) {
    SCOPED_TRACE(mechanism.name);
    const TemporaryFolder folder;
    folder.Write("model.dat", mechanism.text);
    const RunResult run = RunRefused(folder, {"model.dat", "out.txt"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.err.starts_with("error when solving system(")) << run.err;
    EXPECT_NE(run.err.find(mechanism.motion), std::string::npos) << run.err;
    EXPECT_FALSE(folder.Has("out.txt"));
    EXPECT_FALSE(folder.Has("model.morlen.res"));
  }
}

// The element belongs to the second rank.
TEST(TwoRanksErrors, AnErrorOfAWorkerEndsAllWithOneMessage)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", Chain(400, "1 110 0 0 0\n401 010 0 0 0\n", "", "0"));
  const RunResult run = RunRanks(folder, 2, {"-e", "errors.txt", "model.dat", "out.txt"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(folder.Read("errors.txt"),
            "error: section parameter A is 0 for element 397\n"
            "hint: of the section and the material only these are above 0: E, Iz\n");
  EXPECT_EQ(run.err.find("397"), std::string::npos) << run.err;
  EXPECT_FALSE(folder.Has("out.txt"));
}

TEST(TwoRanksErrors, SolversThatAreNotDistributedAreRefused)
{
  const std::string text = Example("truss");
  for (const char* solver : {"SkyLine", "Sparse 1e-5 1e-5 1000", "Double"}) {
    const TemporaryFolder folder;
    folder.Write("model.dat", text + "\nSolver: " + solver + "\n");
    const RunResult run = RunRefused(folder, {"model.dat", "out.txt"});
    EXPECT_EQ(run.status, 2) << solver;
    EXPECT_TRUE(run.err.starts_with("error: the solvers of morlen-mpi are Automatic and Direct\n"))
        << run.err;
  }
}

TEST(TwoRanksErrors, WrongNumbersOfThreadsAreAWrongUse)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", Example("truss"));
  for (const char* threads : {"x", "0", "-1", ""}) {
    const RunResult run = RunRefused(folder, {"--threads", threads, "model.dat"});
    EXPECT_EQ(run.status, 2) << threads;
    EXPECT_TRUE(run.out.starts_with("error. usage: ")) << run.out;
    EXPECT_NE(run.out.find("--threads N"), std::string::npos);
  }
  EXPECT_EQ(RunRanks(folder, 2, {"--threads", "2", "model.dat"}).status, 0);
}

// The launcher has the same limits, and needs less. Threads of BLAS would need memory too.
TEST(TwoRanksErrors, TooLittleMemoryEndsTheRun)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", Block(16, 4).Text());
  RunConditions limited = kAnywhere;
  limited.environment.emplace_back("OPENBLAS_NUM_THREADS", "1");
  RunResult run;
  run.status = 0;
  for (long megabytes = 800; run.status == 0 && megabytes >= 300; megabytes -= 50) {
    limited.addressSpace = megabytes << 20;
    run = RunProgram(folder, Launched(2, {"model.dat", "out.txt"}), limited);
  }
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.err.starts_with("Not space available on heap")) << run.err;
  EXPECT_EQ(folder.Read("out.txt"), "");
}

TEST(TwoRanksErrors, AKilledRankEndsTheRunWithoutResults)
{
  const std::string problem = Roof(90).model.Text();
  for (const int killed : {0, 1}) {
    const TemporaryFolder folder;
    folder.Write("model.dat", problem);
    folder.Write("out.txt", "of an earlier run");
    StartedRun run(folder, Launched(2, {"-i", "info.txt", "model.dat", "out.txt"}), kAnywhere);
    // The analysis has begun: the files of the results are open.
    for (int k = 0; k < 3000 && !(folder.Has("info.txt") &&
                                  folder.Read("info.txt").find("Rank 1") != std::string::npos);
         ++k)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const int process = RanksIn(fs::canonical(folder.Path()))[killed];
    ASSERT_GT(process, 0);
    ASSERT_EQ(kill(process, SIGKILL), 0);
    const RunResult result = run.Wait();
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(folder.Read("out.txt"), "");
    EXPECT_FALSE(folder.Has("model.morlen.res"));
    if (killed == 1) {
      EXPECT_NE(result.err.find("error: the run has been ended from outside\n"), std::string::npos)
          << result.err;
    }
  }
}

}  // namespace morlen
