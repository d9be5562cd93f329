// Faults of the environment of a run: limited files and memory, closed streams, kills. A run must
// end with its results, or with status 2 and a message.

#include <gtest/gtest.h>
#include <unistd.h>

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

const char* const kFull = "error: Failed writing to disk. Probably the disk is full\n";

// Two beams in the plane with nodal loads. The results have some thousand bytes.
std::string Problem()
{
  return ProblemParts()
      .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 2 1")
      .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
      .With(&ProblemParts::settings, "MainStresses")
      .With(&ProblemParts::loads, "2 0 -1 0\n3 1 0 0.5")
      .Text();
}

const std::vector<std::string> kAllResults = {"-p", "model.dat", "out.txt"};

// The files of a run without faults.
std::map<std::string, std::string> Results(const std::vector<std::string>& arguments = kAllResults)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", Problem());
  EXPECT_EQ(RunProgram(folder, arguments).status, 0);
  return folder.Files();
}

std::size_t LargestResult(const std::map<std::string, std::string>& files)
{
  std::size_t largest = 0;
  for (const auto& [name, content] : files) {
    if (name != "model.dat" && name != "info.txt")
      largest = std::max(largest, content.size());
  }
  return largest;
}

}  // namespace

TEST(Faults, FilesThatCannotGrowEndTheRun)
{
  const std::vector<std::string> runs[] = {
      {"model.dat"}, {"model.dat", "out.txt"}, {"-p", "model.dat"}, kAllResults};
  for (const std::vector<std::string>& arguments : runs) {
    const std::size_t largest = LargestResult(Results(arguments));
    ASSERT_GT(largest, 1000u);
    for (const long limit : {0L, 1L, 100L, 1000L, 4096L, 100000L}) {
      SCOPED_TRACE(limit);
      const TemporaryFolder folder;
      folder.Write("model.dat", Problem());
      const RunResult run = RunProgram(folder, arguments, {.fileSize = limit});
      if (static_cast<std::size_t>(limit) >= largest) {
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(folder.Files(), Results(arguments));
      } else {
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, std::string(kFull).substr(0, static_cast<std::size_t>(limit)));
      }
    }
  }
}

TEST(Faults, UnwritableInformationKeepsTheResults)
{
  const std::vector<std::string> arguments = {"-i", "info.txt", "-e", "err.txt", "model.dat"};
  auto results = Results(arguments);
  const TemporaryFolder folder;
  folder.Write("model.dat", Problem());
  const long enough = static_cast<long>(results["model.morlen.res"].size());
  folder.Link("info.txt", "/dev/full");
  const RunResult run = RunProgram(folder, arguments, {.fileSize = enough});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(folder.Read("model.morlen.res"), results["model.morlen.res"]);
}

TEST(Faults, AnErrorWithAnUnwritableMessageKeepsItsExitStatus)
{
  for (const long limit : {0L, 1L, 10L}) {
    const TemporaryFolder folder;
    folder.Write("model.dat", "problem type 1d\n");
    const RunResult run =
        RunProgram(folder, {"-i", "info.txt", "-e", "err.txt", "model.dat"}, {.fileSize = limit});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(folder.Read("err.txt"), std::string("Type of problem unknown. Only 2d and 3d\n")
                                          .substr(0, static_cast<std::size_t>(limit)));
  }
}

TEST(Faults, ClosedStandardStreamsChangeNoFile)
{
  const std::map<std::string, std::string> results = Results();
  for (const std::vector<int>& closed :
       {std::vector<int>{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
    const TemporaryFolder folder;
    folder.Write("model.dat", Problem());
    const RunResult run =
        RunProgram(folder, {"-i", "-", "-p", "model.dat", "out.txt"}, {.closed = closed});
    const bool losesInformation = std::count(closed.begin(), closed.end(), STDOUT_FILENO) > 0;
    EXPECT_EQ(run.status, losesInformation ? 2 : 0);
    EXPECT_EQ(folder.Files(), results);
  }
}

TEST(Faults, MessagesToAClosedStreamAreInNoFile)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", Problem());
  folder.Link("model.morlen.res", "/dev/full");
  const RunResult run = RunProgram(folder, {"model.dat", "out.txt"}, {.closed = {0, 1, 2}});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(folder.Read("out.txt"), Results()["out.txt"]);
}

TEST(Faults, AKilledRunCanBeRepeated)
{
  const std::map<std::string, std::string> results = Results();
  const TemporaryFolder folder;
  folder.Write("model.dat", Problem());
  for (int microseconds = 200; microseconds <= 3000; microseconds += 200)
    RunProgram(folder, kAllResults, {.killAfter = microseconds});
  EXPECT_EQ(RunProgram(folder, kAllResults).status, 0);
  EXPECT_EQ(folder.Files(), results);
}

TEST(Faults, LittleMemoryEndsTheRun)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer reserves memory far beyond the limits here";
  const std::map<std::string, std::string> results = Results();
  constexpr long kMegabyte = 1 << 20;
  // With less the system cannot load the program, which may contain several sets of BLAS kernels.
  for (long size = 56; size <= 104; size += 4) {
    SCOPED_TRACE(size);
    const TemporaryFolder folder;
    folder.Write("model.dat", Problem());
    const RunResult run = RunProgram(folder, kAllResults, {.addressSpace = size * kMegabyte});
    EXPECT_TRUE(run.status == 0 || run.status == 2) << run.status;
    if (run.status == 0)
      EXPECT_EQ(folder.Files(), results);
    else
      EXPECT_EQ(run.err, "Not space available on heap");
  }
}

TEST(SameBytes, InRepeatedRunsInOtherLocalesAndWithOtherHeapContents)
{
  const std::map<std::string, std::string> results = Results();
  const std::vector<std::vector<std::pair<std::string, std::string>>> environments = {
      {},
      {{"LC_ALL", "de_DE.UTF-8"}},
      {{"LC_ALL", "tr_TR.UTF-8"}, {"LANG", "tr_TR.UTF-8"}},
      {{"MALLOC_PERTURB_", "165"}, {"MALLOC_ARENA_MAX", "1"}},
      {{"MALLOC_PERTURB_", "90"}},
  };
  for (const auto& environment : environments) {
    const TemporaryFolder folder;
    folder.Write("model.dat", Problem());
    EXPECT_EQ(RunProgram(folder, kAllResults, {.environment = environment}).status, 0);
    EXPECT_EQ(folder.Files(), results);
  }
}

namespace {

// Plane beams from node 1 to every other node: with the numbers of the file, the matrix has about
// (3 * nodes)²/2 numbers of eight bytes.
std::string WideProblem(int nodes)
{
  ProblemParts parts;
  parts.settings = "Solver SkyLine";
  parts.coordinates.clear();
  parts.elements.clear();
  for (int i = 1; i <= nodes; ++i)
    parts.coordinates += std::to_string(i) + " " + std::to_string(i) + " 0\n";
  for (int i = 2; i <= nodes; ++i)
    parts.elements += std::to_string(i) + " 1 " + std::to_string(i) + " 1\n";
  return parts.Text();
}

}  // namespace

TEST(Faults, AMatrixThatDoesNotFitIsRefusedBeforeItIsAllocated)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", WideProblem(120000));
  const RunResult run = RunProgram(folder, {"-r0", "-i", "-", "model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "Not space available on heap");
  EXPECT_EQ(run.out, "");
}

}  // namespace morlen
