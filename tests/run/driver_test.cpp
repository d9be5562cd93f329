// The whole program from its command line: options, files, messages, exit status.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/run.h"

namespace morlen {

namespace {

const char* const kWrongType =
    "Type of problem unknown. Only 2d and 3d\n"
    "hint: line 1: the type is '1d'; write 'problem type: 2d' or 'problem type: 3d'\n";

const char* const kUsage =
    "error. usage: morlen [-p] [-i infofile] [-r0] [-e errorfile] inputfile [outputfile]\n"
    "    -p: write mesh Kiv file\n"
    "    -i: write some information in file 'infofile'\n"
    "    -e: write error messages in file 'errorfile'\n"
    "    -r0: inhibit renumbering of the nodes\n";

// Runs the program in a folder of the test.
class DriverTest : public testing::Test
{
protected:
  void WriteProblem(const std::string& name, const std::string& problem = ProblemParts().Text())
  {
    folder.Write(name, problem);
  }

  // Runs and expects success. Returns the standard output.
  std::string Succeed(const std::vector<std::string>& arguments)
  {
    const RunResult run = RunProgram(folder, arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  // Runs and expects failure with exactly these texts.
  void Fail(const std::vector<std::string>& arguments, const std::string& out,
            const std::string& err)
  {
    const RunResult run = RunProgram(folder, arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, err);
  }

  std::vector<std::string> FileNames() const
  {
    std::vector<std::string> names;
    for (const auto& [name, content] : folder.Files())
      names.push_back(name);
    return names;
  }

  TemporaryFolder folder;
};

using Names = std::vector<std::string>;

}  // namespace

TEST_F(DriverTest, WrongNumberOfNamesPrintsTheUsage)
{
  WriteProblem("model.dat");
  for (const Names& arguments :
       {Names{}, Names{"-p"}, Names{"-r0", "-p"}, Names{"-i"}, Names{"-e"}, Names{"-i", "info.txt"},
        Names{"model.dat", "out.txt", "third"}, Names{"model.dat", "-r0", "-p"}})
    Fail(arguments, kUsage, "");
  EXPECT_EQ(FileNames(), Names{"model.dat"});
}

TEST_F(DriverTest, WithoutOptionsOnlyThePostProcessResultsAreWritten)
{
  WriteProblem("model.dat");
  EXPECT_EQ(Succeed({"model.dat"}), "");
  EXPECT_EQ(FileNames(), (Names{"model.dat", "model.morlen.res"}));
}

TEST_F(DriverTest, OutputFileContainsTheTextResults)
{
  WriteProblem("model.dat");
  folder.Write("out.txt", "an older and longer content that must be replaced completely" +
                              std::string(5000, '.'));
  EXPECT_EQ(Succeed({"model.dat", "out.txt"}), "");
  EXPECT_EQ(FileNames(), (Names{"model.dat", "model.morlen.res", "out.txt"}));
  EXPECT_EQ(folder.Read("out.txt"),
            "\n\nNODAL DISPLACEMENTS (x y theta)\n1  0 0 0\n2  0 0 0\n"
            "\n\nELEMENT STRENGTH (Px,local  Py,local  Mlocal)\n"
            "Element 1 local strength. nodes: 1 2\n0 0 0 \n0 0 0 \n"
            "\n\nREACTIONS (Px Py M)\n1  0 0 0\n");
}

TEST_F(DriverTest, OptionsPrecedeTheProblemFile)
{
  WriteProblem("model.dat");
  Succeed({"-r0", "-p", "model.dat"});
  EXPECT_EQ(FileNames(), (Names{"model.dat", "model.morlen.bon", "model.morlen.res"}));
}

TEST_F(DriverTest, LastOfRepeatedOptionsWins)
{
  WriteProblem("model.dat");
  Succeed({"-i", "first.txt", "-p", "-p", "-i", "second.txt", "-e", "e1", "-e", "e2", "model.dat"});
  EXPECT_EQ(FileNames(),
            (Names{"e2", "model.dat", "model.morlen.bon", "model.morlen.res", "second.txt"}));
  EXPECT_EQ(folder.Read("e2"), "");
}

TEST_F(DriverTest, ValueOfAnOptionIsNotChecked)
{
  WriteProblem("model.dat");
  // "-p" is the name of the information file, which begins with '-': standard output.
  EXPECT_NE(Succeed({"-i", "-p", "model.dat"}), "");
  EXPECT_EQ(FileNames(), (Names{"model.dat", "model.morlen.res"}));
}

TEST_F(DriverTest, OptionAfterTheProblemFileIsTheOutputFile)
{
  WriteProblem("model.dat");
  Succeed({"model.dat", "-p"});
  EXPECT_EQ(FileNames(), (Names{"-p", "model.dat", "model.morlen.res"}));
}

TEST_F(DriverTest, OtherWordsWithADashAreTheProblemFile)
{
  Fail({"-x"}, "", "can't open file -x\n");
  Fail({"-pp", "out.txt"}, "", "can't open file -pp\n");
  Fail({"-r0x"}, "", "can't open file -r0x\n");
}

TEST_F(DriverTest, ResultNamesAreCutAtTheLastDot)
{
  static const struct
  {
    const char* problem;
    const char* results;
    const char* mesh;
  } cases[] = {
      {"model.dat", "model.morlen.res", "model.morlen.bon"},
      {"model", "model.morlen.res", "model.morlen.bon"},
      {"a.b.c", "a.b.morlen.res", "a.b.morlen.bon"},
      {"dir.x/model", "dir.morlen.res", "dir.morlen.bon"},
      {"dir.x/model.dat", "dir.x/model.morlen.res", "dir.x/model.morlen.bon"},
      {"dir/model", "dir/model.morlen.res", "dir/model.morlen.bon"},
  };
  for (const auto& c : cases) {
    const TemporaryFolder fresh;
    fresh.Write(c.problem, ProblemParts().Text());
    const RunResult run = RunProgram(fresh, {"-p", c.problem});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(fresh.Has(c.results)) << c.problem;
    EXPECT_TRUE(fresh.Has(c.mesh)) << c.problem;
    EXPECT_EQ(fresh.Files().size(), 3u) << c.problem;
  }
}

TEST_F(DriverTest, FilesThatCannotBeOpenedEndTheRun)
{
  WriteProblem("model.dat");
  Fail({"nowhere/file"}, "", "can't open file nowhere/file\n");
  const std::string message = "can't open file nowhere/file\nhint: No such file or directory\n";
  Fail({"-i", "nowhere/file", "model.dat"}, "", message);
  Fail({"-e", "nowhere/file", "model.dat"}, "", message);
  Fail({"model.dat", "nowhere/file"}, "", message);
}

TEST_F(DriverTest, ResultFilesThatCannotBeOpenedEndTheRun)
{
  WriteProblem("model.dat");
  std::filesystem::create_directory(folder.Path() / "model.morlen.bon");
  Fail({"-p", "model.dat"}, "", "can't open file model.morlen.bon\nhint: Is a directory\n");
  std::filesystem::remove(folder.Path() / "model.morlen.res");
  std::filesystem::create_directory(folder.Path() / "model.morlen.res");
  Fail({"model.dat"}, "", "can't open file model.morlen.res\nhint: Is a directory\n");
}

TEST_F(DriverTest, MissingProblemFileIsReportedBeforeTheErrorFileIsOpen)
{
  Fail({"-e", "errs.txt", "-i", "info.txt", "missing.dat"}, "", "can't open file missing.dat\n");
  EXPECT_EQ(FileNames(), Names{});
}

TEST_F(DriverTest, InformationFileIsOpenedBeforeTheErrorFile)
{
  WriteProblem("model.dat");
  Fail({"-e", "errs.txt", "-i", "nowhere/info", "model.dat"}, "",
       "can't open file nowhere/info\nhint: No such file or directory\n");
  EXPECT_FALSE(folder.Has("errs.txt"));
}

TEST_F(DriverTest, MessagesGoToTheErrorFile)
{
  WriteProblem("model.dat", "problem type 1d\n");
  Fail({"-e", "errs.txt", "model.dat"}, "", "");
  EXPECT_EQ(folder.Read("errs.txt"), kWrongType);
  WriteProblem("model.dat");
  Fail({"-e", "errs.txt", "model.dat", "nowhere/out"}, "", "");
  EXPECT_EQ(folder.Read("errs.txt"),
            "can't open file nowhere/out\nhint: No such file or directory\n");
}

TEST_F(DriverTest, ErrorFileNamedWithADashIsTheStandardOutput)
{
  WriteProblem("model.dat", "problem type 1d\n");
  Fail({"-e", "-", "model.dat"}, kWrongType, "");
  Fail({"-e", "-any", "model.dat"}, kWrongType, "");
}

TEST_F(DriverTest, FullDiskForAnyResultFileEndsTheRun)
{
  for (const char* lost : {"model.morlen.res", "model.morlen.bon", "out.txt"}) {
    SCOPED_TRACE(lost);
    const TemporaryFolder fresh;
    fresh.Write("model.dat", ProblemParts().Text());
    fresh.Link(lost, "/dev/full");
    const RunResult run = RunProgram(fresh, {"-p", "model.dat", "out.txt"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "error: Failed writing to disk. Probably the disk is full\n");
  }
}

TEST_F(DriverTest, FullDiskForTheMessagesIsAnErrorAndKeepsTheResults)
{
  WriteProblem("model.dat");
  Succeed({"model.dat"});
  const std::string results = folder.Read("model.morlen.res");
  folder.Write("model.morlen.res", "");
  const RunResult run = RunProgram(folder, {"-i", "/dev/full", "model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err,
            "error: Failed writing to disk. Probably the disk is full\n"
            "hint: the results are complete; information is missing in /dev/full\n");
  EXPECT_EQ(folder.Read("model.morlen.res"), results);
}

TEST_F(DriverTest, InformationIsWrittenInOrderAndEndsWithTheTime)
{
  WriteProblem("model.dat");
  Succeed({"-i", "info.txt", "model.dat", "out.txt"});
  const std::string info = folder.Read("info.txt");
  // A profile of two coupled nodes with three components: rows of 1 to 6 entries.
  const std::regex expected(
      "Solver SkyLine taken: the usual method below 15000 equations\n"
      "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
      "Sky matrix storage with Txolesky\n"
      "Degrees of freedom= 6\n"
      "Average column size= 3\n"
      "Total number of positions= 21\n"
      "Amount of memory= 0\\.0Mb\n\n"
      "Just before filling global stiffness matrix\n"
      "Stiffness matrix filled\n"
      "Load vector constructed\n"
      "Beginning to apply constraints\n"
      "Just before Solver\n"
      "Txolesky finished\n"
      "Beginning 1st substitution in LU system\n"
      "Beginning 2nd substitution in LU system\n"
      "Estimated relative error of the displacements= [0-9.e+-]+, residual= [0-9.e+-]+\n"
      "Solver finished\n"
      "Beginning calc strengths and reactions\n"
      "End of calc strengths and reactions\n"
      "Transfering results\n"
      "Total time = [0-9.e+-]+ min\\. = [0-9.e+-]+ seg\\.\n");
  EXPECT_TRUE(std::regex_match(info, expected)) << info;
}

TEST_F(DriverTest, TotalTimeIsGivenInMinutesAndSeconds)
{
  WriteProblem("model.dat");
  const std::string out = Succeed({"-i", "-", "model.dat"});
  std::smatch times;
  ASSERT_TRUE(
      std::regex_search(out, times, std::regex("Total time = ([^ ]+) min\\. = ([^ ]+) seg\\.\n$")));
  const double minutes = std::stod(times[1]);
  const double seconds = std::stod(times[2]);
  EXPECT_GE(seconds, 0.0);
  EXPECT_LT(seconds, 10.0);
  EXPECT_NEAR(minutes, seconds / 60.0, 0.1 * minutes);  // both are printed with two digits
}

TEST_F(DriverTest, InformationOnStandardOutputIsTheSameAsInAFile)
{
  WriteProblem("model.dat");
  const std::string out = Succeed({"-i", "-", "model.dat"});
  Succeed({"-i", "info.txt", "model.dat"});
  const auto withoutTime = [](const std::string& text) {
    return text.substr(0, text.find("Total time"));
  };
  EXPECT_EQ(withoutTime(out), withoutTime(folder.Read("info.txt")));
}

TEST_F(DriverTest, InformationEndsAtTheStageOfAnError)
{
  WriteProblem("model.dat", ProblemParts().With(&ProblemParts::constraints, "").Text());
  const RunResult run = RunProgram(folder, {"-i", "-", "model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.out.ends_with("Just before Solver\n")) << run.out;
  EXPECT_FALSE(folder.Has("model.morlen.res"));
}

TEST_F(DriverTest, RenumberingIsInhibitedByR0)
{
  // A chain whose nodes are numbered 1-3-2-4.
  WriteProblem("model.dat", ProblemParts()
                                .With(&ProblemParts::coordinates, "1 0 0\n2 2 0\n3 1 0\n4 3 0")
                                .With(&ProblemParts::elements, "1 1 3 1\n2 3 2 1\n3 2 4 1")
                                .Text());
  // Profile when neighbours have consecutive numbers: rows of 1 2 3 entries, then three times 4
  // 5 6.
  const std::string renumbered = Succeed({"-i", "-", "model.dat"});
  EXPECT_NE(renumbered.find("Total number of positions= 51\n"), std::string::npos) << renumbered;
  // Profile as read: twice rows of 1 2 3 entries, and twice 7 8 9.
  const std::string asRead = Succeed({"-i", "-", "-r0", "model.dat"});
  EXPECT_NE(asRead.find("Total number of positions= 60\n"), std::string::npos) << asRead;
}

TEST_F(DriverTest, AFolderIsNoProblemFile)
{
  folder.Write("folder/file", "");
  const RunResult run = RunProgram(folder, {"folder"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "error: folder is a folder\n");
}

}  // namespace morlen
