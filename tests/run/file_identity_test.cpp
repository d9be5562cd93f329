// A run whose files are not all different is refused before any file is opened for writing.

#include "run/file_identity.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/frame.h"
#include "support/run.h"

namespace morlen {

namespace {

namespace fs = std::filesystem;

class FileIdentityTest : public testing::Test
{
protected:
  FileIdentityTest() { folder.Write("model.dat", problem); }

  // Runs the program. It must be refused and change no file.
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& first,
                     const std::string& second, const std::string& name)
  {
    SCOPED_TRACE(first + ", " + second);
    const std::map<std::string, std::string> before = folder.Files();
    const RunResult run = RunProgram(folder, arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err,
              "error: the " + first + " and the " + second + " are the same file: " + name + "\n");
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(folder.Files(), before);
  }

  void ExpectAccepted(const std::vector<std::string>& arguments)
  {
    const RunResult run = RunProgram(folder, arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.Read("model.dat"), problem);
  }

  const std::string problem = ProblemParts().Text();
  TemporaryFolder folder;
};

}  // namespace

TEST_F(FileIdentityTest, ProblemFileIsNotOverwritten)
{
  ExpectRefused({"model.dat", "model.dat"}, "problem file", "text results file", "model.dat");
  ExpectRefused({"-i", "model.dat", "model.dat"}, "problem file", "information file", "model.dat");
  ExpectRefused({"-e", "model.dat", "model.dat"}, "problem file", "error file", "model.dat");
}

TEST_F(FileIdentityTest, NoFileOfLoadCasesIsOverwritten)
{
  folder.Write("hall.cases", "model = \"model.dat\"\n");
  folder.Link("link.txt", "hall.cases");
  const std::map<std::string, std::string> before = folder.Files();
  for (const char* name : {"hall.cases", "link.txt"}) {
    const RunResult run = RunProgram(folder, {"model.dat", name});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err.substr(0, run.err.find('\n')),
              std::string("error: the text results file ") + name +
                  " is a file of load cases and would be written over");
    EXPECT_EQ(folder.Files(), before);
  }
}

TEST_F(FileIdentityTest, NoProblemFileIsOverwritten)
{
  const std::string other = "# another model\n" + problem;
  const struct
  {
    const char* role;
    std::vector<std::string> arguments;
    const char* name;
  } cases[] = {
      {"text results file", {"model.dat", "other.dat"}, "other.dat"},
      {"information file", {"-i", "other.dat", "model.dat"}, "other.dat"},
      {"error file", {"-e", "other.dat", "model.dat"}, "other.dat"},
      {"information file", {"-i", "other.dat", "model.dat", "other.dat.txt"}, "other.dat"},
      {"results file", {"model.dat"}, "model.morlen.res"},
      {"mesh file", {"-p", "model.dat"}, "model.morlen.bon"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.role);
    folder.Write(c.name, other);
    const std::map<std::string, std::string> before = folder.Files();
    const RunResult run = RunProgram(folder, c.arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("error: the ") + c.role + " " + c.name +
                           " is a problem file and would be written over\n"
                           "hint: a run takes one problem file, after the options; the files that "
                           "it writes have other names\n");
    EXPECT_EQ(folder.Files(), before);
    fs::remove(folder.Path() / c.name);
  }
}

TEST_F(FileIdentityTest, AProblemFileIsFoundThroughALinkAndWhenItHasErrors)
{
  folder.Write("other.dat", "Problem = bridge\nType = 3d\nmesh that is not complete\n");
  folder.Link("out.txt", "other.dat");
  const std::map<std::string, std::string> before = folder.Files();
  EXPECT_EQ(RunProgram(folder, {"model.dat", "out.txt"}).status, 2);
  EXPECT_EQ(folder.Files(), before);
}

TEST_F(FileIdentityTest, OtherNamesOfTheProblemFileAreFound)
{
  folder.Link("link.txt", "model.dat");
  fs::create_hard_link(folder.Path() / "model.dat", folder.Path() / "hard.txt");
  for (const std::string name : {"./model.dat", "link.txt", "hard.txt"})
    ExpectRefused({"model.dat", name}, "problem file", "text results file", name);
  folder.Link("model.morlen.res", "model.dat");
  ExpectRefused({"model.dat"}, "problem file", "results file", "model.morlen.res");
  fs::remove(folder.Path() / "model.morlen.res");
  folder.Link("model.morlen.bon", "model.dat");
  ExpectRefused({"-p", "model.dat"}, "problem file", "mesh file", "model.morlen.bon");
  fs::create_directory(folder.Path() / "other");
  fs::remove(folder.Path() / "model.morlen.bon");
  ExpectAccepted({"other/../model.dat"});
}

TEST_F(FileIdentityTest, FilesThatDoNotExistYetAreComparedByTheirNames)
{
  fs::create_directory(folder.Path() / "other");
  ExpectRefused({"-i", "a", "-e", "./a", "model.dat"}, "information file", "error file", "./a");
  ExpectRefused({"-e", "a", "model.dat", "a"}, "error file", "text results file", "a");
  ExpectRefused({"model.dat", "model.morlen.res"}, "text results file", "results file",
                "model.morlen.res");
  ExpectRefused({"-p", "model.dat", "other/../model.morlen.bon"}, "text results file", "mesh file",
                "model.morlen.bon");
  ExpectAccepted({"-i", "a", "-e", "b", "-p", "model.dat", "c"});
}

TEST_F(FileIdentityTest, LinksToFilesThatDoNotExistYetAreFollowed)
{
  fs::create_directory(folder.Path() / "other");
  folder.Link("out.txt", "other/link");
  folder.Link("other/link", "../model.morlen.res");
  ExpectRefused({"model.dat", "out.txt"}, "text results file", "results file", "model.morlen.res");
  folder.Link("round.txt", "round.txt");
  const RunResult run = RunProgram(folder, {"model.dat", "round.txt"});
  EXPECT_EQ(run.err, "can't open file round.txt\nhint: Too many levels of symbolic links\n");
}

TEST_F(FileIdentityTest, MeshFileCountsOnlyWhenItIsWritten)
{
  ExpectAccepted({"model.dat", "model.morlen.bon"});
  EXPECT_NE(folder.Read("model.morlen.bon"), "");
}

TEST_F(FileIdentityTest, DevicesAndStandardOutputMayBeNamedTwice)
{
  ExpectAccepted({"-i", "/dev/null", "-e", "/dev/null", "model.dat", "/dev/null"});
  ExpectAccepted({"-i", "-", "-e", "-", "model.dat"});
}

TEST_F(FileIdentityTest, AFileThatReceivesStandardOutputIsCompared)
{
  const RunResult run =
      RunProgram(folder, {"-i", "-", "model.dat", "out.txt"}, {.standardOutput = "out.txt"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err,
            "error: the standard output and the text results file are the same file: out.txt\n");
}

TEST_F(FileIdentityTest, EmptyNamesFailOnOpening)
{
  const RunResult run = RunProgram(folder, {"-i", "", "-e", "", "model.dat", ""});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "can't open file \nhint: No such file or directory\n");
}

TEST_F(FileIdentityTest, FilesInMissingFoldersAreNotCompared)
{
  ExpectFatal(
      [] {
        RequireDifferentFiles({{"a file", "nowhere/file"}, {"another", "nowhere/file"}});
        Fatal("accepted");
      },
      "accepted");
}

}  // namespace morlen
