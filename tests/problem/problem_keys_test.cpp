// Keywords of the top level: switches, values with delimiters and comments, hints.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/textscan.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/hints.h"
#include "support/read_listener.h"
#include "support/solved.h"

namespace morlen {

namespace {

std::string TextWith(const std::string& settings)
{
  return ProblemParts().With(&ProblemParts::settings, settings).Text();
}

std::unique_ptr<Problem> ReadWith(const std::string& settings)
{
  return ReadProblemText(TextWith(settings));
}

std::string HintOf(const std::string& settings)
{
  return HintCaught([&] { ReadWith(settings); });
}

}  // namespace

TEST(Switches, TakeAValueOnTheirLine)
{
  for (const std::string on : {"1", "yes", "true", "on", "YES", "True"}) {
    for (const std::string between : {"=", ":", " ", " = ", " =", "= ", "\t", " : ", "\t=\t"})
      EXPECT_TRUE(ReadWith("ConvertTo6Nodes" + between + on)->convertTo6Nodes) << between << on;
  }
  for (const std::string off : {"0", "no", "false", "off", "NO", "Off"}) {
    for (const std::string between : {"=", ":", " ", " = ", " =", "= ", "\t", " : ", "\t=\t"}) {
      const std::string settings = "ConvertTo6Nodes\nConvertTo6Nodes" + between + off;
      EXPECT_FALSE(ReadWith(settings)->convertTo6Nodes) << settings;
    }
  }
}

TEST(Switches, AreOnWithoutAValue)
{
  for (const char* settings :
       {"ConvertTo6Nodes", "ConvertTo6Nodes # 0", "ConvertTo6Nodes\t#off", "ConvertTo6Nodes\r\n#\r",
        "ConvertTo6Nodes=", "ConvertTo6Nodes=banana", "ConvertTo6NodesX", "ConvertTo6Nodes=1#no",
        "ConvertTo6Nodes 1 # no", "ConvertTo6Nodes 0#c\nConvertTo6Nodes"})
    EXPECT_TRUE(ReadWith(settings)->convertTo6Nodes) << settings;
  EXPECT_FALSE(ReadWith("ConvertTo6Nodes=0#c")->convertTo6Nodes);
  EXPECT_FALSE(ReadWith("ConvertTo6Nodes = 0 # c")->convertTo6Nodes);
}

TEST(Switches, OtherWordsAfterThemAreUnknown)
{
  static const struct
  {
    const char* settings;
    const char* word;
  } cases[] = {
      {"ConvertTo6Nodes banana", "banana"},  {"ConvertTo6Nodes = banana", "="},
      {"ConvertTo6Nodes= banana", "banana"}, {"ConvertTo6Nodes 2", "2"},
      {"ConvertTo6Nodes\n1", "1"},           {"ConvertTo6Nodes 1 0", "0"},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { ReadWith(c.settings); }, "Unknown key name=" + std::string(c.word) + "\n");
}

TEST(Switches, OffUndoesItsOwnModeOnly)
{
  static const struct
  {
    const char* settings;
    StressOutput output;
  } cases[] = {
      {"MainStresses=1", StressOutput::Main},
      {"MainStresses MainStresses=0", StressOutput::Local},
      {"MainAndLocalStresses\nMainStresses = off", StressOutput::MainAndLocal},
      {"MainAndLocalStresses\nMainAndLocalStresses off", StressOutput::Local},
      {"MainStresses\nMainAndLocalStresses: no", StressOutput::Main},
      {"MainAndLocalStresses=false", StressOutput::Local},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ReadWith(c.settings)->stressOutput, c.output) << c.settings;
}

TEST(Settings, TakeDelimitersAndComments)
{
  for (const char* settings :
       {"NumOfDivisions = 7 # parts", "NumOfDivisions\t=\t7", "NumOfDivisions=\t7#parts",
        "NumOfDivisions =7", "NumOfDivisions:7", "\tNumOfDivisions 7\t"})
    EXPECT_EQ(ReadWith(settings)->numOfDivisions, 7) << settings;
  EXPECT_EQ(ReadWith("Solver\t=\tSkyLine # direct")->solverSettings.type, SolverType::SkyLine);
  EXPECT_EQ(ReadWith("DoSmoothing =\t0.5 # rad")->smoothing.angle, 0.5);
}

TEST(Gravity, TakesTwoNumbersInAPlane)
{
  for (const char* settings :
       {"GravityDirection 0 -1", "GravityDirection = 0 -1", "GravityDirection=0 -1 # down",
        "GravityDirection 0 -1\nNumOfDivisions 3", "GravityDirection 0 -1 0",
        "GravityDirection 0 -1\n0", "GravityDirection 0 -1\n# z\n"}) {
    const auto problem = ReadWith(settings);
    EXPECT_EQ(problem->gravityDirection(1), 0.0) << settings;
    EXPECT_EQ(problem->gravityDirection(2), -1.0) << settings;
    EXPECT_EQ(problem->gravityDirection(3), 0.0) << settings;
  }
  EXPECT_EQ(ReadWith("GravityDirection 0 -1\nNumOfDivisions 3")->numOfDivisions, 3);
  EXPECT_DOUBLE_EQ(ReadWith("GravityDirection 0 3 4")->gravityDirection(3), 0.8);
}

// A third word on the line is consumed although it is no number; on the next line it is a keyword.
TEST(Gravity, TakesAThirdWordOfItsLineInAPlane)
{
  for (const std::string word : {"(0)", ",0", "o", "-"}) {
    const WarningsHeard warnings;
    const auto problem = ReadWith("GravityDirection 0 -1 " + word + "\nNumOfDivisions 3");
    EXPECT_EQ(problem->gravityDirection(2), -1.0) << word;
    EXPECT_EQ(problem->gravityDirection(3), 0.0) << word;
    EXPECT_EQ(problem->numOfDivisions, 3) << word;
    EXPECT_EQ(warnings.Lines(),
              std::vector<std::string>{"line 2: '" + word +
                                       "' is read as the third number of GravityDirection, 0"});
    ExpectFatal([&] { ReadWith("GravityDirection 0 -1\n" + word); },
                "Unknown key name=" + word + "\n");
  }
  EXPECT_EQ(ReadWith("GravityDirection 0 -1 NumOfDivisions=3")->numOfDivisions, 3);
}

TEST(Gravity, WarnsOfASecondNumberThatIsNone)
{
  const WarningsHeard warnings;
  FatalCaught([] { ReadWith("GravityDirection 1,0,-1\nNumOfDivisions 3"); });
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{
                "line 3: 'NumOfDivisions' is read as the second number of GravityDirection, 0"});
}

TEST(Gravity, NothingIsSaidOfAMissingNumberAtTheEnd)
{
  const WarningsHeard warnings;
  const std::string text = SpaceProblem().With(&ProblemParts::rest, "GravityDirection 0 -1").Text();
  const ReadListener listener;
  ReadProblemText(text);
  EXPECT_EQ(warnings.Lines(), std::vector<std::string>());
  EXPECT_TRUE(std::none_of(listener.notices.begin(), listener.notices.end(),
                           [](const auto& n) { return n.first == ReadEvent::NumberPart; }));
}

TEST(Gravity, TakesThreeWordsInSpace)
{
  const WarningsHeard warnings;
  const std::string text =
      SpaceProblem()
          .With(&ProblemParts::settings, "GravityDirection 0 -1\nNumOfDivisions 3")
          .Text();
  ExpectFatal([&] { ReadProblemText(text); }, "Unknown key name=3\n");
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{
                "line 3: 'NumOfDivisions' is read as the third number of GravityDirection, 0"});
}

TEST(UnknownKeys, AreExplained)
{
  static const struct
  {
    const char* settings;
    const char* hint;
  } cases[] = {
      {"material", "line 2: did you mean 'materials'?"},
      {"Constrains", "line 2: did you mean 'constraints'?"},
      {"supports", "line 2: did you mean 'constraints'?"},
      {"pressure_loads", "line 2: did you mean 'local_pressure_loads'?"},
      {"NumOfDivision=3", "line 2: did you mean 'NumOfDivisions'?"},
      {"! a comment", "line 2: comments begin with '#'"},
      {"\n// a comment", "line 3: comments begin with '#'"},
      {"3 0 0 0", "line 2: a record outside of a block"},
      {"-1.5", "line 2: a record outside of a block"},
      {"constraints: 1", "line 2: write 'constraints' without ':'"},
      {"= 3", "line 2: no keyword takes a value here"},
      {"end", "line 2: no block is open here"},
      {"elements", "line 2: 'elements' belongs into a mesh: 'mesh dimension = ...' comes first"},
      {"global pressure_loads", "line 2: did you mean 'global_pressure_loads'?"},
      {"nodal point loads", "line 2: did you mean 'nodal_point_loads'?"},
      {"ConvertTo6Nodes = none",
       "line 2: 'ConvertTo6Nodes' takes 0, no, false or off, or 1, yes, true or on"},
      {"banana", "line 2: this is no keyword; comments begin with '#'"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(HintOf(c.settings), c.hint) << c.settings;
}

TEST(UnknownKeys, AfterABlockNameItsEnd)
{
  const auto rest = [](const std::string& lines) {
    return HintCaught(
        [&] { ReadProblemText(ProblemParts().With(&ProblemParts::rest, lines).Text()); });
  };
  EXPECT_EQ(rest("2 0 1 0\nend\n"),
            "line 20: a record outside of a block; the block 'nodal_point_loads' in line 17 ended "
            "in line 19");
  EXPECT_EQ(rest("end\n"),
            "line 20: no block is open here; the block 'nodal_point_loads' in line 17 ended in "
            "line 19");
}

TEST(CommentedEnds, AreNamed)
{
  const auto with = [](const std::string& end) {
    return "problem type 2d\nmaterials\n 1 E=1\n" + end + " materials\n";
  };
  EXPECT_EQ(
      HintCaught([&] { ReadProblemText(with("# end")); }),
      "the block 'materials', which begins in line 2, has no 'end'; the 'end' in line 4 is in "
      "a comment");
  const WarningsHeard warnings;
  FatalCaught([&] { ReadProblemText(with("#end") + "rotules\n1\nend\n"); });
  ASSERT_EQ(warnings.Lines().size(), 1u);
  EXPECT_TRUE(warnings.Lines()[0].ends_with("; the 'end' in line 4 is in a comment"))
      << warnings.Lines()[0];
}

TEST(BlockKeywords, AreThoseOfTheReaders)
{
  for (const std::string_view keyword : BlockKeywords()) {
    const std::string message =
        FatalCaught([&] { ReadProblemText("problem type 2d\n" + std::string(keyword) + "\n"); });
    const bool ofAMesh = keyword == "coordinates" || keyword == "elements";
    EXPECT_EQ(message.starts_with("Unknown key name"), ofAMesh) << keyword << message;
  }
}

TEST(Settings, ErrorsAreExplained)
{
  static const struct
  {
    const char* settings;
    const char* hint;
  } cases[] = {
      {"NumOfDivisions 0", "line 2: the value is '0'; it is a whole number, 1 to 100000"},
      {"NumOfDivisions # 3", "line 2: a comment cannot be between a keyword and its value"},
      {"DoSmoothing # rad\n0.5", "line 2: a comment cannot be between a keyword and its value"},
      {"Solver # x\nDouble", "line 2: a comment cannot be between a keyword and its value"},
      {"units_res # x\nN-m", "a comment cannot be between a keyword and its value"},
      {"DoSmoothing 0,5", "line 2: '0,5' is not a number: the decimal sign is a point, write 0.5"},
      {"DoSmoothing 30", "line 2: the angle is in radians: 30 degrees are 0.523599"},
      {"DoSmoothing=0", "line 2: the value is '0'; leave the keyword out to do without it"},
      {"CoplanarityAngle -1", "line 2: the value is '-1'; it is an angle in radians"},
      {"Solver Skyline_", nullptr},
      {"Solver Autmatic", "line 2: the solver is 'Autmatic'; did you mean 'Automatic'?"},
      {"Solver Cholesky",
       "line 2: the solver is 'Cholesky'; without the line the program chooses one"},
      {"Solver Sparse 1e-5 1e-5 x", "line 2: the three words are '1e-5', '1e-5' and 'x'"},
      {"GravityDirection 0,0 -1,0", nullptr},
      {"GravityDirection 0 0 0", "line 2: the numbers read are 0, 0 and 0"},
  };
  for (const auto& c : cases) {
    if (c.hint)
      EXPECT_EQ(HintOf(c.settings), c.hint) << c.settings;
    else
      ReadWith(c.settings);
  }
}

}  // namespace morlen
