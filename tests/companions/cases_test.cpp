// The file of load cases: names, structure, places of problems.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "case_file/case_file.h"
#include "case_file/check_cases.h"
#include "case_file/names.h"
#include "case_file/study.h"
#include "model/nodal_load.h"
#include "problem/elem_loads.h"
#include "problem/problem.h"
#include "support/run.h"

namespace morlen::cases {

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kBeam = R"(problem type: 2d
GravityDirection 0 -1 0
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 2 0
3 4 0
end coordinates
elements
1 1 2 1
2 2 3 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01 Weight=3
end materials
constraints
1 110 0 0 0
3 010 0 0 0
end constraints
nodal_point_loads
2 0 -3 0
end nodal_point_loads
)";

/// A folder with a model and a file of load cases.
class CaseFolder
{
public:
  explicit CaseFolder(const std::string& cases, const std::string& model = kBeam)
      : text("model = \"beam.dat\"\n" + cases)
  {
    folder.Write("beam.dat", model);
    folder.Write("x.cases", text);
  }

  void Write(const std::string& name, const std::string& content) const
  {
    folder.Write(name, content);
  }
  void Remove(const std::string& name) const { std::filesystem::remove(folder.Path() / name); }
  std::unique_ptr<Study> Read(Problems& problems) const
  {
    return ReadStudy(File(), text, {}, problems);
  }
  std::string File() const { return (folder.Path() / "x.cases").string(); }

  /// "line:column: severity: message", for other files with their name first.
  Lines Messages(Problems::LostData lost = Problems::LostData::Warning) const
  {
    Problems problems(lost);
    Read(problems);
    Lines lines;
    for (check::Located one : problems.Sorted()) {
      one.hint.clear();
      const std::string line = check::LineOf(one, "");
      const std::string path = folder.Path().string() + "/";
      lines.push_back(line.starts_with(path) ? line.substr(path.size()) : line.substr(1));
    }
    return lines;
  }

private:
  TemporaryFolder folder;
  std::string text;
};

std::vector<std::string> NamesOf(const Study& study)
{
  std::vector<std::string> names;
  for (const Combination& one : study.combinations)
    names.push_back(one.name);
  return names;
}

constexpr const char* kCase = "[cases.G]\ngravity = true\n";
constexpr const char* kUse = "[envelopes]\nE = [\"*\"]\n";

}  // namespace

TEST(CaseNames, PatternsMatchAnyCharacter)
{
  const struct
  {
    const char* pattern;
    const char* name;
    bool matches;
  } cases[] = {
      {"*", "", true},
      {"*", "6.10/3", true},
      {"6.10/*", "6.10/3", true},
      {"6.10/*", "6.10a/3", false},
      {"6.10?/*", "6.10a/3", true},
      {"?", "", false},
      {"?", "/", true},
      {"a*b*c", "a12b3b4c", true},
      {"a*b*c", "a12b3b4", false},
      {"**a", "bba", true},
      {"ULS 1", "ULS 1", true},
      {"ULS 1", "ULS 12", false},
      {"*1", "ULS 11", true},
      {"a", "A", false},
      {"Sch? ?", "Sch\xC3\xA9 \xC3\xBC", true},  // letters of two bytes
      {"??", "\xC3\xA9", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Matches(c.pattern, c.name), c.matches) << c.pattern << " " << c.name;
}

TEST(CaseNames, FileNamesKeepPlainCharacters)
{
  EXPECT_EQ(FileNameOf("ULS 1"), "ULS_1");
  EXPECT_EQ(FileNameOf("6.10/3"), "6.10_3");
  EXPECT_EQ(FileNameOf("a-b_c.D9"), "a-b_c.D9");
  EXPECT_EQ(FileNameOf("\xC3\xA4:*"), "____");  // each byte of a letter
}

TEST(CaseFile, KeepsTheOrderOfTheFile)
{
  const CaseFolder folder(
      "[cases.Z]\ngravity = true\n[cases.A]\nfrom_model = true\n[cases.\"M 1\"]\n"
      "text = ''\n[combinations]\nb = { Z = 1, A = 2.5 }\na = { b = 2, \"M 1\" = 1 }\n"
      "[envelopes]\nE = [\"a\", \"Z\", \"b\"]\n");
  Problems problems(Problems::LostData::Warning);
  const auto study = folder.Read(problems);
  ASSERT_TRUE(study);
  EXPECT_EQ(NamesOf(*study), (Lines{"Z", "A", "M 1", "b", "a"}));
  using Factors = std::vector<CaseFactor>;
  EXPECT_EQ(study->combinations[4].factors, (Factors{{0, 2.0}, {1, 5.0}, {2, 1.0}}));
  EXPECT_EQ(study->envelopes[0].members, (std::vector<int>{0, 3, 4}));
}

TEST(CaseFile, LoadsOfACaseAddUp)
{
  CaseFolder folder(
      "[cases.M]\nfrom_model = true\nloads = \"more.loads\"\n"
      "text = '''\nnodal_point_loads\n2 0 -1 0\nend nodal_point_loads\n"
      "constraints\n3 010 0 -0.2 0\nend constraints\n'''\n[cases.N]\n" +
      std::string(kUse));
  folder.Write("more.loads", "constraints\n3 010 0 -0.1 0\n1 010 0 -0.3 0\nend constraints\n");
  Problems problems(Problems::LostData::Warning);
  const auto study = folder.Read(problems);
  ASSERT_TRUE(study) << check::LineOf(problems.Sorted().front(), "");
  const LoadSet& first = study->loads[0];
  EXPECT_TRUE(first.selfWeight);
  ASSERT_EQ(first.nodal.size(), 1u);
  EXPECT_EQ(first.nodal[0].load->values[1], -4.0);
  ASSERT_EQ(first.settlements.size(), 2u);
  EXPECT_EQ(first.settlements[0].value, -0.3);
  EXPECT_EQ(first.settlements[1].value, -0.2);  // the text comes after the file
  EXPECT_TRUE(study->loads[1].nodal.empty());
  EXPECT_FALSE(study->loads[1].selfWeight);
}

// One file with many faults: all are found in one pass, at their places.
TEST(CaseFile, ReportsAllProblemsAtOnce)
{
  const CaseFolder folder(
      "titel = 1\n"                                                              // 2
      "[cases.G]\ngravity = true\nfrom_model = true\n"                           // 3-5
      "[cases.Q]\ntext = '''\n"                                                  // 6, 7
      "nodal_point_loads\n 2 0 -1 0\n 9 0 1 0\n"                                 // 8-10
      "end nodal_point_loads\n'''\n"                                             // 11, 12
      "[cases.Rain]\ntext = \"constraints\\n 2 010 0 1 0\\nend\"\n"              // 13, 14
      "grvity = 1\n"                                                             // 15
      "[combinations]\nA = { B = 1 }\nB = { A = 1, Rian = 2 }\nG = { Q = 1 }\n"  // 16-19
      "C = { Q = \"1\", E = 1 }\n"                                               // 20
      "[envelopes]\nE = [\"X*\", \"E\"]\n");                                     // 21, 22
  EXPECT_EQ(folder.Messages(),
            (Lines{"2:1: error: unknown key 'titel'",
                   "4:1: error: 'gravity' with 'from_model' would count the weight twice",
                   "10:2: error: Trying to assign Load to unknown node",
                   "14:8: error: the model does not prescribe y of node 2 (line 2 of the text)",
                   "15:1: error: unknown key 'grvity' of a case; did you mean 'gravity'?",
                   "18:7: error: 'B' combines itself, by 'A'",
                   "18:14: error: there is no case or combination 'Rian'; did you mean 'Rain'?",
                   "19:1: error: the name 'G' is used twice", "20:11: error: a number is expected",
                   "20:16: error: 'E' is the name of an envelope, not of a case or combination",
                   "22:6: error: 'X*' matches no case and no combination",
                   "22:12: error: 'E' is the name of an envelope, not of a case or combination"}));
}

TEST(CaseFile, ASyntaxErrorStandsAlone)
{
  const Lines lines = CaseFolder("[cases.G]\ngravity = \n[case.H\n").Messages();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].starts_with("3:")) << lines[0];
}

TEST(CaseFile, PlacesInLoadFilesAndInTextsOfOneLine)
{
  CaseFolder folder("[cases.Q]\nloads = \"q.loads\"\ntext = '''materials'''\n" + std::string(kUse));
  folder.Write("q.loads", "# live\nglobal_pressure_loads\n  7 0 -1 0 0\n  1 0 y\nend\n");
  EXPECT_EQ(folder.Messages(),
            (Lines{"4:11: error: 'materials' is no load",
                   "q.loads:3:3: error: trying to assign load to element number 7 and it does not "
                   "exist",
                   "q.loads:4:3: error: Not reading correctly preassure_loads. ElemNum=1"}));
}

TEST(CaseFile, FilesThatCannotBeRead)
{
  CaseFolder folder("[cases.Q]\nloads = \"none.loads\"\n" + std::string(kUse));
  const Lines lines = folder.Messages();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(lines[0].starts_with("3:9: error: can't read file ")) << lines[0];
}

TEST(CaseFile, AMissingModelHidesNoMissingLoads)
{
  const CaseFolder folder("[cases.Q]\nloads = \"none.loads\"\n" + std::string(kUse));
  folder.Remove("beam.dat");
  const Lines lines = folder.Messages();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("1:9: error: can't read file ")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with("3:9: error: can't read file ")) << lines[1];
}

// The first line of the text is line 4 of the file.
TEST(CaseFile, MessagesAboutTextsNameLinesOfTheFile)
{
  const CaseFolder folder(
      "[cases.Q]\ntext = '''\nglobal_pressure_loads\n1 0 -1\nnodal_point_loads\n2 0 -3 0\n"
      "end nodal_point_loads\n'''\n" +
      std::string(kUse));
  EXPECT_EQ(folder.Messages(),
            (Lines{"6:1: warning: data lost: the block 'global_pressure_loads' (line 4) has no "
                   "'end' in front of 'nodal_point_loads'. Not read: 1 record, with the block "
                   "'nodal_point_loads', up to 'end' in line 8"}));
}

TEST(CaseFile, FactorsThatOverflowAreRefused)
{
  EXPECT_EQ(
      CaseFolder(std::string(kCase) + "[combinations]\nA = { G = 1e308 }\nB = { A = 1e308 }\n")
          .Messages(),
      (Lines{"6:7: error: the factors of 'B' are too large"}));
}

TEST(CaseFile, ErrorsOfTheModelHaveItsName)
{
  const CaseFolder folder(std::string(kCase) + kUse, std::string(kBeam) + "constrants\n");
  EXPECT_EQ(folder.Messages(), (Lines{"beam.dat:23:1: error: Unknown key name=constrants"}));
}

TEST(CaseFile, AnUnusedCaseIsAWarning)
{
  EXPECT_EQ(
      CaseFolder(std::string(kCase) + "[cases.H]\n[combinations]\nA = { G = 1 }\n").Messages(),
      (Lines{"4:8: warning: nothing uses the case 'H'"}));
}

TEST(CaseFile, FileNamesMustDiffer)
{
  EXPECT_EQ(
      CaseFolder(std::string(kCase) + "[combinations]\n\"A 1\" = { G = 1 }\n\"A/1\" = { G = 2 }\n")
          .Messages(),
      (Lines{"6:1: error: the files of 'A/1' and 'A 1' would have the same name, 'A_1'"}));
  EXPECT_EQ(CaseFolder(std::string(kCase) + "[combinations]\n\"E.summary\" = { G = 1 }\n" + kUse)
                .Messages(),
            (Lines{"7:1: error: the files of 'E' and 'E.summary' would have the same name, "
                   "'E.summary'"}));
}

TEST(CaseFile, WeightAlongZIsRefusedInThePlane)
{
  std::string upright = kBeam;
  upright.replace(upright.find("0 -1 0"), 6, "0 0 1");
  const Lines lines = CaseFolder(std::string(kCase) + kUse, upright).Messages();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0], "2:8: error: for 2D problems GravityDirection_Z must be 0.0");
}

// Loads that the kind of an element does not take are found before anything is solved.
TEST(CaseFile, LoadsThatAnElementDoesNotTake)
{
  for (const char* formulation : {"", "ShellFormulation Refined\n"}) {
    const std::string plate =
        "problem type: 3d\n" + std::string(formulation) +
        "mesh dimension = 3 elemtype Triangle nnode = 3\n"
        "coordinates\n1 0 0 0\n2 1 0 0\n3 0 1 0\nend coordinates\n"
        "elements\n1 1 2 3 1\nend elements\nmaterials\n1 E=1 nu=0 G=0.5 t=1\nend materials\n"
        "constraints\n1 111111 0 0 0 0 0 0\nend constraints\n";
    const std::string text =
        "[cases.Q]\ntext = '''\nglobal_pressure_loads\n1 0 0 -1\n"
        "end global_pressure_loads\ntemperature_loads\n1 1e-5 30\nend\n'''\n";
    EXPECT_EQ(CaseFolder(text + kUse, plate).Messages(),
              (Lines{"8:1: error: temperature for triangles not implemented yet"}))
        << formulation;
  }
}

// A model with elements without nodes or materials is not touched by the loads.
TEST(CaseFile, BrokenReferencesOfTheModel)
{
  std::string broken = kBeam;
  broken.replace(broken.find("2 2 3 1"), 7, "2 2 9 5");
  const Lines lines = CaseFolder(std::string(kCase) + kUse, broken).Messages();
  ASSERT_EQ(lines.size(), 2u);
  for (const std::string& line : lines)
    EXPECT_TRUE(line.starts_with("beam.dat:11:1: error: ")) << line;
}

TEST(CaseFile, LostDataIsAnErrorOfTheCheckOnly)
{
  const CaseFolder folder(
      "[cases.Q]\ntext = '''\nconstraints\n3 010 0 -0.1 7\nend constraints\n'''\n" +
      std::string(kUse));
  ASSERT_EQ(folder.Messages().size(), 1u);
  EXPECT_TRUE(folder.Messages()[0].starts_with("5:14: warning: data lost: "))
      << folder.Messages()[0];
  EXPECT_TRUE(
      folder.Messages(Problems::LostData::Error)[0].starts_with("5:14: error: data lost: "));
}

TEST(CaseFile, ActionsMakeCombinations)
{
  const std::string actions =
      "[cases.G]\ngravity = true\n[cases.Q]\n[cases.W]\n[envelopes]\nE = [\"6.10/*\"]\n"
      "[actions]\npermanent = [[\"G\"]]\nmake = [\"6.10\"]\n"
      "[actions.variable.Q]\ncases = [\"Q\", \"W\"]\npsi = [0.7, 0.5, 0.3]\n";
  Problems problems(Problems::LostData::Warning);
  const CaseFolder folder(actions);
  const auto study = folder.Read(problems);
  ASSERT_TRUE(study);
  EXPECT_EQ(NamesOf(*study),
            (Lines{"G", "Q", "W", "6.10/1", "6.10/2", "6.10/3", "6.10/4", "6.10/5", "6.10/6"}));
  EXPECT_EQ(TextOf(*study, study->combinations[6]), "1 G + 1.5 Q");
  EXPECT_EQ(CaseFolder(actions + "[actions.variable.R]\ncases = [\"W\"]\npsi = [1, 1, 1]\n"
                                 "[combinations]\n\"6.10/1\" = { G = 1 }\n")
                .Messages(),
            (Lines{"15:10: error: the case 'W' is in [actions] twice"}));
  EXPECT_EQ(CaseFolder(actions + "[combinations]\n\"6.10/1\" = { G = 1 }\n").Messages(),
            (Lines{"15:1: error: the name '6.10/1' is used twice"}));
}

TEST(CaseFile, TooManyCombinationsAreRefusedAtOnce)
{
  std::string text =
      "[actions]\nmake = [\"6.10\"]\n[actions.variable.Q]\ntogether = true\n"
      "psi = [0.7, 0.5, 0.3]\ncases = [";
  std::string cases;
  for (int k = 0; k < 40; ++k) {
    cases += "[cases.q" + std::to_string(k) + "]\n";
    text += "\"q" + std::to_string(k) + "\", ";
  }
  EXPECT_EQ(
      CaseFolder(cases + text + "]\n").Messages(),
      (Lines{"42:2: error: the actions make up to 1.1e+12 combinations; the most are 20000"}));
}

TEST(CaseFile, SelectsByNamesAndPatterns)
{
  const CaseFolder folder(std::string(kCase) +
                          "[cases.\"G*\"]\n[combinations]\n\"G 1\" = { G = 1 }\n" + kUse);
  Problems problems(Problems::LostData::Warning);
  const auto study = folder.Read(problems);
  ASSERT_TRUE(study);
  std::vector<std::string> unmatched;
  const std::vector<std::string> exact = {"G*", "E", "no"};  // an exact name comes first
  Selection selection = Select(*study, exact, unmatched);
  EXPECT_EQ(selection.combinations, (std::vector<int>{1}));
  EXPECT_EQ(selection.envelopes, (std::vector<int>{0}));
  EXPECT_EQ(unmatched, (Lines{"no"}));
  const std::vector<std::string> pattern = {"G?1", "?"};
  selection = Select(*study, pattern, unmatched);
  EXPECT_EQ(selection.combinations, (std::vector<int>{0, 2}));
  EXPECT_EQ(selection.envelopes, (std::vector<int>{0}));
}

TEST(CaseFile, TheCheckCounts)
{
  const CaseFolder folder(std::string(kCase) + "[combinations]\nA = { G = 1 }\n" + kUse);
  const check::Report report =
      CheckCases(folder.File(), "model = \"beam.dat\"\n" + std::string(kCase) +
                                    "[combinations]\nA = { G = 1 }\n" + kUse);
  EXPECT_EQ(report.errors, 0);
  ASSERT_TRUE(report.cases);
  EXPECT_EQ(report.cases->cases, 1);
  EXPECT_EQ(report.cases->combinations, 1);
  EXPECT_EQ(report.cases->envelopes, 1);
}

}  // namespace morlen::cases
