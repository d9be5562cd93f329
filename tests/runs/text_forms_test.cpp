// Problem files with other line ends, blanks and comments, and files that are not problem files.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

#include "support/frame.h"
#include "support/run.h"

namespace morlen {

namespace {

using Files = std::map<std::string, std::string>;

// A plane frame with a record of every kind.
std::string Problem()
{
  return ProblemParts()
      .With(&ProblemParts::settings,
            "# units, and how the results are given\n"
            "units_names\nsi N m Pa 1 1\nkilo kN mm kPa 1000 0.001\nend units_names\n"
            "units_mat_and_load = si\nunits_res: si\nNumOfDivisions 4")
      .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 2 1\n")
      .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1\n")
      .With(&ProblemParts::materials, "1 E=2 A=1 Iz: 3 Weight 0.5 units=si")
      .With(&ProblemParts::constraints, "1 111 0 0 0\n3 110 0 0 0 Euler1=0")
      .With(&ProblemParts::loads, "2 0 -1 0 units=si\n# none\n")
      .With(&ProblemParts::rest,
            "local_pressure_loads\n1 0 1\nend\nelem_rotules\n2 10\nend\nGravityDirection 0 -1 0")
      .Text();
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

// The result files of a run that must succeed.
Files ResultsOf(const std::string& problem)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunProgram(folder, {"-p", "model.dat", "out.txt"});
  EXPECT_EQ(run.status, 0) << run.err;
  Files files = folder.Files();
  files.erase("model.dat");
  return files;
}

}  // namespace

TEST(TextForms, OtherLineEndsAndBlanksGiveTheSameResults)
{
  const std::string problem = Problem();
  const Files expected = ResultsOf(problem);
  const std::map<std::string, std::string> forms = {
      {"carriage returns", Replaced(problem, "\n", "\r\n")},
      {"blanks before", Replaced(problem, "\n", "\n   ")},
      {"blanks after", Replaced(problem, "\n", "   \n")},
      {"empty lines", Replaced(problem, "\n", "\n\n")},
      {"empty lines with carriage returns", Replaced(problem, "\n", "\r\n\r\n")},
      {"comments", Replaced(problem, "\nend", "\n# a comment\nend")},
      {"no last line end", problem.substr(0, problem.find_last_not_of('\n') + 1)},
      {"byte order mark", "\xef\xbb\xbf" + problem},
      {"words before the header", "anything at all\n" + problem},
  };
  for (const auto& [name, text] : forms) {
    SCOPED_TRACE(name);
    EXPECT_EQ(ResultsOf(text), expected);
  }
}

TEST(TextForms, ForeignBytesEndInResultsOrAMessage)
{
  const std::string problem = Problem();
  std::string binary;
  for (unsigned i = 0; i < 100000; ++i)
    binary += static_cast<char>(i * i / 7);
  const std::string forms[] = {Replaced(problem, " ", "\t"),
                               Replaced(problem, "\n", "\r"),
                               Replaced(problem, "\n", std::string(1, '\0')),
                               Replaced(problem, " ", std::string(1, '\0')),
                               problem + std::string(1, '\0'),
                               std::string(1, '\0') + problem,
                               Replaced(problem, "1", "\xff"),
                               problem + "\x1a",
                               problem + binary,
                               binary,
                               std::string(5000000, 'x')};
  for (const std::string& text : forms) {
    SCOPED_TRACE(text.substr(0, 200));
    const RunResult run = RunOnProblem(text);
    EXPECT_TRUE(run.status == 0 || (run.status == 2 && !run.err.empty())) << run.status;
  }
}

// Characters beyond the stored length of a word or a line are skipped, not read as the next one.
TEST(TextForms, LongLinesAndWordsAreCutNotSplit)
{
  const std::string problem = Problem();
  const Files expected = ResultsOf(problem);
  for (const std::size_t length : {1022u, 1023u, 1024u, 1025u, 2048u, 65536u}) {
    SCOPED_TRACE(length);
    const std::string word(length, '7');
    const std::string blanks(length, ' ');
    EXPECT_EQ(ResultsOf("# " + word + "\n" + problem), expected);
    EXPECT_EQ(ResultsOf(problem + "#" + word + "\n"), expected);
    EXPECT_EQ(ResultsOf(Replaced(problem, "1 0 1\nend", "1 0 1" + blanks + " 7\nend")), expected);
    EXPECT_EQ(ResultsOf(Replaced(problem, "2 10\n", "2 10" + blanks + "7 7 7\n")), expected);
    EXPECT_EQ(ResultsOf(Replaced(problem, "3 2 1\n", "3 2 1 " + word + "\n")), expected);
  }
}

TEST(TextForms, LongUnknownWordsAreNamedByTheirFirst1023Characters)
{
  const RunResult run = RunOnProblem(Problem() + "\n" + std::string(5000, 'w') + "\n");
  EXPECT_EQ(run.status, 2);
  const std::string message = "Unknown key name=" + std::string(1023, 'w') + "\n";
  EXPECT_EQ(run.err.substr(0, run.err.find("hint: ")), message);
}

}  // namespace morlen
