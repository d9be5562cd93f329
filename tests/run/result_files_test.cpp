// The result files of a run at every moment: before the analysis, while it goes on, after its end
// and after an early end. A pipe without a reader holds a run at the moment when it would write
// there.

#include "run/result_files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

using Files = std::map<std::string, std::string>;

const std::vector<std::string> kAll = {"-p", "model.dat", "out.txt"};
const char* const kFull = "error: Failed writing to disk. Probably the disk is full\n";

// The content under a name, without adding an entry for a missing file.
std::string ContentOf(const Files& files, const std::string& name)
{
  const auto found = files.find(name);
  return found == files.end() ? "(no file)" : found->second;
}

class ResultFilesTest : public testing::Test
{
protected:
  ResultFilesTest() { folder.Write("model.dat", problem); }

  void MakePipe(const std::string& name) const
  {
    fs::remove(folder.Path() / name);
    ASSERT_EQ(mkfifo((folder.Path() / name).c_str(), 0666), 0);
  }

  // Old files under the names of all results.
  void WriteYesterdaysResults() const
  {
    for (const char* name : kNames) {
      fs::remove(folder.Path() / name);  // it may be a pipe
      folder.Write(name, kOld);
    }
  }

  void ExpectAll(const std::string& content) const
  {
    const Files files = folder.Files();
    for (const char* name : kNames)
      EXPECT_EQ(ContentOf(files, name), content) << name;
  }

  void ExpectNoTemporaries() const
  {
    for (const auto& [name, content] : folder.Files())
      EXPECT_EQ(name.find("morlen-tmp"), name.npos) << name;
  }

  static void WaitUntil(const std::function<bool()>& condition)
  {
    constexpr int kMostSteps = 3000;  // half a minute
    for (int i = 0; i < kMostSteps && !condition(); ++i)
      usleep(10000);
    EXPECT_TRUE(condition());
  }

  // Waits until a run holds at a pipe, which is one of its first two files.
  void WaitForThePipe() const
  {
    WaitUntil([&] { return folder.Has(kTemporary) && folder.Read("model.morlen.res").empty(); });
    usleep(50000);  // the analysis of two beams takes less than a millisecond
  }

  // The files of a run without faults.
  Files Complete() const
  {
    const TemporaryFolder other;
    other.Write("model.dat", problem);
    EXPECT_EQ(RunProgram(other, kAll).status, 0);
    return other.Files();
  }

  static constexpr const char* kNames[] = {"out.txt", "model.morlen.res", "model.morlen.bon"};
  static constexpr const char* kOld = "results of yesterday\n";
  static constexpr const char* kTemporary = ".model.morlen.res.morlen-tmp";
  static constexpr unsigned kNobody = 65534;

  const std::string problem = ProblemParts()
                                  .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 2 1")
                                  .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
                                  .With(&ProblemParts::loads, "2 0 -1 0\n3 1 0 0.5")
                                  .Text();
  const std::string movable = ProblemParts().With(&ProblemParts::constraints, "").Text();
  TemporaryFolder folder;
};

}  // namespace

TEST_F(ResultFilesTest, AnErrorInTheProblemFileKeepsOlderResults)
{
  WriteYesterdaysResults();
  folder.Write("model.dat",
               ProblemParts().With(&ProblemParts::coordinates, "1 0 0\n2 typing 0").Text());
  EXPECT_EQ(RunProgram(folder, kAll).status, 2);
  ExpectAll(kOld);
  ExpectNoTemporaries();
}

TEST_F(ResultFilesTest, AFailedAnalysisLeavesNoOlderResults)
{
  WriteYesterdaysResults();
  folder.Write("model.dat", movable);
  EXPECT_EQ(RunProgram(folder, kAll).status, 2);
  ExpectAll("");
  ExpectNoTemporaries();
}

TEST_F(ResultFilesTest, AFailedAnalysisMakesNoFiles)
{
  folder.Write("model.dat", movable);
  EXPECT_EQ(RunProgram(folder, kAll).status, 2);
  EXPECT_EQ(folder.Files(), (Files{{"model.dat", movable}}));
}

TEST_F(ResultFilesTest, AnOldMeshFileIsEmptiedWhenNoneIsWritten)
{
  WriteYesterdaysResults();
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
  EXPECT_EQ(folder.Read("model.morlen.bon"), "");
  EXPECT_EQ(folder.Read("model.morlen.res"), Complete()["model.morlen.res"]);
  EXPECT_EQ(folder.Read("out.txt"), kOld);  // no file of this run
  fs::remove(folder.Path() / "model.morlen.bon");
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
  EXPECT_FALSE(folder.Has("model.morlen.bon"));
}

TEST_F(ResultFilesTest, OtherFilesInThePlaceOfAnOldMeshFileStay)
{
  const fs::path mesh = folder.Path() / "model.morlen.bon";
  folder.Link("model.morlen.bon", "model.dat");
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
  EXPECT_EQ(folder.Read("model.dat"), problem);
  fs::remove(mesh);
  folder.Write("model.morlen.bon", problem);
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
  EXPECT_EQ(folder.Read("model.morlen.bon"), problem);
  fs::remove(mesh);
  folder.Link("model.morlen.bon", "info.txt");
  EXPECT_EQ(RunProgram(folder, {"-i", "info.txt", "model.dat"}).status, 0);
  EXPECT_NE(folder.Read("info.txt"), "");
  fs::remove(mesh);
  fs::create_directory(mesh);
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
}

TEST_F(ResultFilesTest, UnwritableFilesAreReportedBeforeAnythingIsChanged)
{
  WriteYesterdaysResults();
  fs::remove(folder.Path() / "model.morlen.bon");
  fs::create_directory(folder.Path() / "model.morlen.bon");
  folder.Write("model.dat", movable);  // an analysis would give another message
  const RunResult run = RunProgram(folder, kAll);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "can't open file model.morlen.bon\nhint: Is a directory\n");
  EXPECT_EQ(folder.Read("out.txt"), kOld);
  EXPECT_EQ(folder.Read("model.morlen.res"), kOld);
  ExpectNoTemporaries();
}

TEST_F(ResultFilesTest, ResultsAreEmptyWhileTheRunGoesOn)
{
  WriteYesterdaysResults();
  MakePipe("out.txt");
  StartedRun run(folder, kAll);
  WaitForThePipe();
  EXPECT_EQ(folder.Read("model.morlen.bon"), "");
  const Descriptor reader(open((folder.Path() / "out.txt").c_str(), O_RDONLY));
  EXPECT_EQ(run.Wait().status, 0);
  const Files complete = Complete();
  EXPECT_EQ(folder.Read("model.morlen.res"), ContentOf(complete, "model.morlen.res"));
  EXPECT_EQ(folder.Read("model.morlen.bon"), ContentOf(complete, "model.morlen.bon"));
  std::string text(ContentOf(complete, "out.txt").size() + 1, '\0');
  const auto length = read(reader.Number(), text.data(), text.size());
  EXPECT_EQ(text.substr(0, static_cast<std::size_t>(length)), ContentOf(complete, "out.txt"));
  ExpectNoTemporaries();
}

TEST_F(ResultFilesTest, AFileHasItsNameOnceItIsComplete)
{
  MakePipe("model.morlen.bon");
  StartedRun run(folder, kAll);
  WaitUntil([&] { return folder.Has("out.txt"); });
  EXPECT_EQ(folder.Read("out.txt"), Complete()["out.txt"]);
  EXPECT_TRUE(folder.Has(kTemporary));
  EXPECT_FALSE(folder.Has("model.morlen.res"));
}

TEST_F(ResultFilesTest, ASignalLeavesEmptyFilesAndNoTemporaries)
{
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    WriteYesterdaysResults();
    MakePipe("out.txt");
    StartedRun run(folder, kAll);
    WaitForThePipe();
    run.Send(signal);
    EXPECT_EQ(run.Wait().signal, signal);
    EXPECT_EQ(folder.Files(),
              (Files{{"model.dat", problem}, {"model.morlen.bon", ""}, {"model.morlen.res", ""}}));
  }
}

TEST_F(ResultFilesTest, AfterAKillTheNextRunRemovesTheTemporaries)
{
  const Files complete = Complete();
  for (const std::vector<std::string>& next :
       {kAll, {"model.dat"}, {"model.dat", "other.txt"}, {"-p", "./model.dat"}}) {
    WriteYesterdaysResults();
    MakePipe("out.txt");
    StartedRun run(folder, kAll);
    WaitForThePipe();
    run.Send(SIGKILL);
    EXPECT_EQ(run.Wait().signal, SIGKILL);
    EXPECT_TRUE(folder.Has(kTemporary));
    EXPECT_EQ(folder.Read("model.morlen.res"), "");
    fs::remove(folder.Path() / "out.txt");
    EXPECT_EQ(RunProgram(folder, next).status, 0);
    EXPECT_EQ(folder.Read("model.morlen.res"), ContentOf(complete, "model.morlen.res"));
    ExpectNoTemporaries();
  }
}

TEST_F(ResultFilesTest, ARunWithAnErrorInItsProblemFileRemovesThemToo)
{
  folder.Write(kTemporary, "half");
  folder.Write("results/.out.txt.morlen-tmp", "half");
  folder.Write("model.dat", "problem type 1d\n");
  EXPECT_EQ(RunProgram(folder, {"model.dat", "results/out.txt"}).status, 2);
  ExpectNoTemporaries();
}

TEST_F(ResultFilesTest, KillsAtAnyTimeLeaveOldEmptyOrCompleteFiles)
{
  const Files complete = Complete();
  for (int microseconds = 200; microseconds <= 4000; microseconds += 100) {
    SCOPED_TRACE(microseconds);
    WriteYesterdaysResults();
    RunProgram(folder, kAll, {.killAfter = microseconds});
    const Files files = folder.Files();
    for (const char* name : kNames) {
      const std::string content = ContentOf(files, name);
      EXPECT_TRUE(content == kOld || content.empty() || content == ContentOf(complete, name))
          << name << ": " << content;
    }
  }
  EXPECT_EQ(RunProgram(folder, kAll).status, 0);
  EXPECT_EQ(folder.Files(), complete);
}

TEST_F(ResultFilesTest, AFullDiskLeavesEmptyOrCompleteFiles)
{
  const Files complete = Complete();
  for (const long limit : {0L, 10L, 300L, 600L, 1000L}) {
    SCOPED_TRACE(limit);
    WriteYesterdaysResults();
    const RunResult run = RunProgram(folder, kAll, {.fileSize = limit});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, std::string(kFull).substr(0, static_cast<std::size_t>(limit)));
    const Files files = folder.Files();
    for (const char* name : kNames) {
      const std::string content = ContentOf(files, name);
      EXPECT_TRUE(content.empty() || content == ContentOf(complete, name)) << name << content;
    }
    EXPECT_EQ(ContentOf(files, "model.morlen.res"), "");
    ExpectNoTemporaries();
  }
}

TEST_F(ResultFilesTest, AFullDiskEmptiesAFileThatIsWrittenInPlace)
{
  folder.Write("model.morlen.res", kOld);
  fs::create_hard_link(folder.Path() / "model.morlen.res", folder.Path() / "other");
  EXPECT_EQ(RunProgram(folder, {"model.dat"}, {.fileSize = 1000}).err, kFull);
  EXPECT_EQ(folder.Read("model.morlen.res"), "");
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
  EXPECT_EQ(folder.Read("other"), Complete()["model.morlen.res"]);
}

TEST_F(ResultFilesTest, ASecondRunOfAModelIsRefusedWhileTheFirstGoesOn)
{
  MakePipe("out.txt");
  folder.Write("model.morlen.res", "");
  StartedRun first(folder, kAll);
  WaitForThePipe();
  const RunResult second = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(second.status, 2);
  EXPECT_EQ(second.err,
            "error: another run is writing the file model.morlen.res\n"
            "hint: wait until that run has ended, or end it\n");
  const Descriptor reader(open((folder.Path() / "out.txt").c_str(), O_RDONLY));
  EXPECT_EQ(first.Wait().status, 0);
  EXPECT_EQ(folder.Read("model.morlen.res"), Complete()["model.morlen.res"]);
  EXPECT_EQ(RunProgram(folder, {"model.dat"}).status, 0);
}

TEST_F(ResultFilesTest, RunsAtTheSameTimeEndWithResultsOrAreRefused)
{
  const Files complete = Complete();
  for (int round = 0; round < 10; ++round) {
    std::vector<std::unique_ptr<StartedRun>> runs;
    runs.reserve(4);
    for (int i = 0; i < 4; ++i)
      runs.push_back(std::make_unique<StartedRun>(folder, kAll));
    int successes = 0;
    for (const std::unique_ptr<StartedRun>& run : runs) {
      const RunResult result = run->Wait();
      successes += result.status == 0;
      if (result.status == 0)
        continue;
      EXPECT_TRUE(result.err.starts_with("error: another run is writing the file ")) << result.err;
    }
    EXPECT_GE(successes, 1);
    EXPECT_EQ(folder.Files(), complete);
  }
}

TEST_F(ResultFilesTest, AFolderThatTakesNoNewFileIsWrittenInPlace)
{
  const RunConditions nobody = {.user = geteuid() == 0 ? kNobody : geteuid()};
  if (RunProgram(folder, {}, nobody).status != 2)
    GTEST_SKIP() << "the other user cannot run the program";
  folder.Write("model.morlen.res", kOld);
  fs::permissions(folder.Path() / "model.morlen.res", fs::perms(0666));
  fs::permissions(folder.Path(), fs::perms(0555));
  const RunResult inPlace = RunProgram(folder, {"model.dat"}, nobody);
  EXPECT_EQ(inPlace.status, 0) << inPlace.err;
  EXPECT_EQ(folder.Read("model.morlen.res"), Complete()["model.morlen.res"]);

  const RunResult noFile = RunProgram(folder, {"model.dat", "out.txt"}, nobody);
  EXPECT_EQ(noFile.status, 2);
  EXPECT_EQ(noFile.err, "can't open file out.txt\nhint: Permission denied\n");
  EXPECT_EQ(folder.Read("model.morlen.res"), Complete()["model.morlen.res"]);
  fs::permissions(folder.Path(), fs::perms(0777));
}

TEST_F(ResultFilesTest, AFileThatIsProtectedIsNotReplaced)
{
  const RunConditions nobody = {.user = geteuid() == 0 ? kNobody : geteuid()};
  if (RunProgram(folder, {}, nobody).status != 2)
    GTEST_SKIP() << "the other user cannot run the program";
  fs::permissions(folder.Path(), fs::perms(0777));
  folder.Write("model.morlen.res", kOld);
  fs::permissions(folder.Path() / "model.morlen.res", fs::perms(0444));
  const RunResult run = RunProgram(folder, {"model.dat"}, nobody);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "can't open file model.morlen.res\nhint: Permission denied\n");
  EXPECT_EQ(folder.Read("model.morlen.res"), kOld);

  fs::rename(folder.Path() / "model.morlen.res", folder.Path() / "model.morlen.bon");
  const RunResult warned = RunProgram(folder, {"model.dat"}, nobody);
  EXPECT_EQ(warned.status, 0);
  EXPECT_EQ(warned.err,
            "warning: the mesh file model.morlen.bon is of an earlier run and can't be emptied: "
            "Permission denied\n");
}

TEST_F(ResultFilesTest, AFileOfAnotherOwnerStaysHis)
{
  if (geteuid() != 0)
    GTEST_SKIP() << "only root can give files away";
  fs::permissions(folder.Path(), fs::perms(0777));
  folder.Write("model.morlen.res", kOld);
  const fs::path results = folder.Path() / "model.morlen.res";
  fs::permissions(results, fs::perms(0666));
  const RunResult run = RunProgram(folder, {"model.dat"}, {.user = kNobody});
  if (run.status == -1 || run.status > 2)
    GTEST_SKIP() << "the other user cannot run the program";
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(folder.Read("model.morlen.res"), Complete()["model.morlen.res"]);
  struct stat status = {};
  ASSERT_EQ(stat(results.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, 0u);
}

TEST_F(ResultFilesTest, LinksAreFollowedAndPermissionsKept)
{
  fs::create_directory(folder.Path() / "store");
  folder.Write("store/results", kOld);
  fs::permissions(folder.Path() / "store/results", fs::perms(0640));
  folder.Link("model.morlen.res", "store/results");
  folder.Link("out.txt", "store/text");
  EXPECT_EQ(RunProgram(folder, kAll).status, 0);
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "model.morlen.res"));
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "out.txt"));
  const Files complete = Complete();
  EXPECT_EQ(folder.Read("store/results"), ContentOf(complete, "model.morlen.res"));
  EXPECT_EQ(folder.Read("store/text"), ContentOf(complete, "out.txt"));
  EXPECT_EQ(fs::status(folder.Path() / "store/results").permissions(), fs::perms(0640));
}

TEST_F(ResultFilesTest, NamedStandardOutputIsWrittenInPlace)
{
  const RunResult run = RunProgram(folder, {"model.dat", "/dev/stdout"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, Complete()["out.txt"]);
}

}  // namespace morlen
