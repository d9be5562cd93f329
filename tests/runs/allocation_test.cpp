// Every allocation of a run is made to fail in turn, alone and with all later ones. The run must
// end with its results, or with status 2 and a message.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/frame.h"
#include "support/run.h"
#include "support/sanitizer.h"

namespace morlen {

namespace {

using Files = std::map<std::string, std::string>;

const std::vector<std::string> kArguments = {"-p",      "-i",        "info.txt", "-e",
                                             "err.txt", "model.dat", "out.txt"};

// The files of a run, without the processor time in the information file.
Files FilesOf(const TemporaryFolder& folder)
{
  Files files = folder.Files();
  files.erase("count");
  std::string& info = files["info.txt"];
  info.resize(std::min(info.size(), info.find("Total time")));
  return files;
}

// A run in which the allocations first..last fail.
RunResult RunFailing(const TemporaryFolder& folder, long first, long last)
{
  return RunProgram(folder, kArguments,
                    {.environment = {{"LD_PRELOAD", FAILING_MALLOC},
                                     {"COUNT_FILE", "count"},
                                     {"FAIL_FROM", std::to_string(first)},
                                     {"FAIL_TO", std::to_string(last)}}});
}

void ExpectSurvived(const std::string& problem, const Files& results, long first, long last)
{
  SCOPED_TRACE("allocations " + std::to_string(first) + " to " + std::to_string(last));
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunFailing(folder, first, last);
  if (run.status == 0) {
    EXPECT_EQ(FilesOf(folder), results);
    return;
  }
  EXPECT_EQ(run.status, 2);
  const std::string errors = folder.Has("err.txt") ? folder.Read("err.txt") : "";
  EXPECT_TRUE(run.err + errors == "Not space available on heap" ||
              (run.err + errors).starts_with("can't open file "))
      << run.err << errors;
}

// The allocations of a run without arguments: those of libraries before the program begins.
long AllocationsBeforeMain()
{
  const TemporaryFolder folder;
  RunProgram(folder, {},
             {.environment = {{"LD_PRELOAD", FAILING_MALLOC},
                              {"COUNT_FILE", "count"},
                              {"FAIL_FROM", "0"},
                              {"FAIL_TO", "0"}}});
  return std::stol(folder.Read("count"));
}

// Lets the allocations of the program fail in turn: all of them, or about `most`.
void FailEach(const std::string& problem, long most)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer replaces the allocator";
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  ASSERT_EQ(RunFailing(folder, 0, 0).status, 0);
  const Files results = FilesOf(folder);
  const long count = std::stol(folder.Read("count"));
  ASSERT_GT(count, 20);
  const long step = std::max(1L, count / most);
  for (long i = AllocationsBeforeMain() + 1; i <= count; i += step) {
    ExpectSurvived(problem, results, i, i);
    ExpectSurvived(problem, results, i, 1000000000);
  }
}

const char* const kTriangles =
    "problem type 3d\n@\n"
    "mesh dimension 3 elemtype Triangle nnode 3\n"
    "coordinates\n1 0 0 0\n2 1 0 0\n3 1 1 0\n4 0 1 0\nend\n"
    "elements\n1 1 2 3 1\n2 1 3 4 1\nend\n"
    "materials\n1 E=1e6 nu=0.3 G=4e5 t=0.1 Weight=1\nend\n"
    "constraints\n1 111111 0 0 0 0 0 0\n4 111111 0 0 0 0 0 0\nend\n"
    "units_names\na_name_beyond_any N m Pa 1 1\nend\n"
    "nodal_point_loads\n2 0 0 -1 0 0 0\nend\n";

std::string Triangles(const std::string& settings)
{
  std::string text = kTriangles;
  return text.replace(text.find('@'), 1, settings);
}

}  // namespace

TEST(Allocations, OfAFrameMayFail)
{
  FailEach(ProblemParts()
               .With(&ProblemParts::elements, "1 1 2 1 A 2")
               .With(&ProblemParts::loads, "2 0 1 0")
               .With(&ProblemParts::rest,
                     "elem_rotules\n1 10\nend\nlocal_pressure_loads\n1 0 1\n1 0 1\nend\n")
               .Text(),
           200);
}

TEST(Allocations, OfShellsMayFail)
{
  FailEach(Triangles("MainAndLocalStresses\nDoSmoothing 0.1"), 60);
}

TEST(Allocations, OfTheIterativeSolverMayFail)
{
  FailEach(Triangles("ConvertTo6Nodes\nSolver Sparse 1e-10 1e-8 1000"), 60);
}

// An allocation that fails in a library of the solver may end the run in the library's own way.
TEST(Allocations, OfTheDirectSolverMayFail)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer replaces the allocator";
  const std::string problem = Triangles("Solver Direct");
  const TemporaryFolder whole;
  whole.Write("model.dat", problem);
  if (RunFailing(whole, 0, 0).status != 0)
    GTEST_SKIP() << "the program has no such solver";
  const Files results = FilesOf(whole);
  const long count = std::stol(whole.Read("count"));
  for (long i = AllocationsBeforeMain() + 1; i <= count; i += 3) {
    SCOPED_TRACE(i);
    const TemporaryFolder folder;
    folder.Write("model.dat", problem);
    const RunResult run = RunFailing(folder, i, i);
    if (run.status == 0) {
      EXPECT_EQ(FilesOf(folder), results);
    } else if (folder.Has("out.txt")) {
      const std::string text = folder.Read("out.txt");
      EXPECT_TRUE(text.empty() || text == results.at("out.txt")) << text;
    }
  }
}

}  // namespace morlen
