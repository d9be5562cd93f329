// Single slips and spellings, each in a whole model: the results of the program and the findings of
// the check.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/result_files.h"
#include "variants/judged.h"

namespace morlen::variants {

namespace {

using check::Code;

constexpr int kFrame = 0, kPlane = 1, kShell = 2, kSolid = 3;

std::string With(std::string text, const std::string& old, const std::string& replacement)
{
  const std::size_t place = text.find(old);
  EXPECT_NE(place, std::string::npos) << old;
  return place == std::string::npos ? text : text.replace(place, old.size(), replacement);
}

const std::string& TextOfModel(int model)
{
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> all;
    for (const BaseModel& base : BaseModels())
      all.emplace_back(base.text);
    return all;
  }();
  return texts[static_cast<std::size_t>(model)];
}

const Judged& BaseOf(int model)
{
  static std::map<int, Judged> bases;
  return bases.try_emplace(model, TextOfModel(model)).first->second;
}

/// A change of a model: the first `old` becomes `text`.
struct Change
{
  int model;
  const char* old;
  const char* text;

  std::string Text() const { return With(TextOfModel(model), old, text); }
};

std::ostream& operator<<(std::ostream& out, const Change& change)
{
  return out << BaseModels()[static_cast<std::size_t>(change.model)].name << ": '" << change.old
             << "' -> '" << change.text << "'";
}

// --- Models of their own ---

// A clamped plane beam of equal parts along x under its weight. {head} is the head of the mesh.
std::string LongBeam(int parts, const std::string& head)
{
  std::string text = "problem type: 2d\n" + head + "\ncoordinates\n";
  for (int i = 0; i <= parts; ++i)
    text += std::to_string(i + 1) + " " + std::to_string(i) + " 0\n";
  text += "end coordinates\nelements\n";
  for (int i = 1; i <= parts; ++i)
    text += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) + " 1\n";
  text += "end elements\nmaterials\n1 E=2.1e8 A=0.01 Iz=1e-4 Weight=78\nend materials\n";
  text += "constraints\n1 111 0 0 0\nend constraints\nGravityDirection 0 -1 0\n";
  return text;
}

}  // namespace

// --- Blanks and comments ---

TEST(Points, SpellingsThatChangeNothing)
{
  const Change changes[] = {
      {kFrame, "J=593000.0 Weight", "J=593000.0\tWeight"},
      {kFrame, "G=1375.0 widthY", "G=1375.0\twidthY"},
      {kFrame, "7000000000.0 units=N-mm", "7000000000.0\tunits = N-mm"},
      {kFrame, "kN-m kN m kPa 1000.0 1.0", "\tkN-m\tkN\tm\tkPa\t1000\t1\t# kN and m"},
      {kFrame, "widthZ=50.0", "widthZ=50.0 # note units N-mm"},
      {kFrame, "1 1 2 1\n", "1 1 2 1 # left foot\n"},
      {kFrame, "1 1 2 1\n", "1 1 2 1 # clamped = yes\n"},
      {kFrame, "1 111111 0.0 0.0 0.0 0.0 0.0 0.0\n", "1 111111 0 0 0 0 0 0 # left foot\n"},
      {kFrame, "1 111111 0.0 0.0 0.0 0.0 0.0 0.0\n", "1 111111 0 0 0 0 0 0 # clamped\n"},
      {kFrame, "1 111111 0.0", "\t1\t111111\t0.0"},
      {kFrame, "1 0.0 0.5 0.25\n", "# first\n1 0.0 0.5 0.25 # second\n\t# third\n"},
      {kFrame, "local_pressure_loads\n", "local_pressure_loads # on the beams\n# and no other\n"},
      {kFrame, "temperature_loads\n", "temperature_loads\t# summer\n"},
      {kFrame, "end temperature_loads", "\tend temperature_loads # of summer"},
      {kFrame, "5 hinge\n", "5\n"},
      {kFrame, "5 hinge\n", "5\r\n"},
      {kFrame, "5 hinge\n", "5 # at the wall\n"},
      {kFrame, "2 10\n", "\t2\t10\t# at node 3\n"},
      {kFrame, "problem type: 3d", "# problem type 2d\nproblem type: 3d # not 2d"},
      {kFrame, "problem type: 3d", "problem type=3d"},
      {kFrame, "problem type: 3d", "Problem\tType = 3D"},
      {kFrame, "mesh dimension = 3 elemtype Linear nnode = 2",
       "mesh # dimension = 2 elemtype Triangle nnode = 3\ndimension=3 elemtype=Linear nnode=2"},
      {kFrame, "mesh dimension = 3 elemtype Linear nnode = 2",
       "mesh\tdimension:3\telemtype: Linear\tnnode: 2"},
      {kFrame, "mesh dimension = 3 elemtype Linear nnode = 2",
       "mesh dimension =3 elemtype =Linear nnode =2"},
      {kFrame, "units_mesh mm", "units_mesh=mm"},
      {kFrame, "units_res kN-m", "units_res : kN-m # not N-mm"},
      {kFrame, "NumOfDivisions = 4", "NumOfDivisions=4 # of each beam"},
      {kFrame, "GravityDirection = 0.0 0.0 -1.0", "GravityDirection: 0 0 -1 # down"},
      {kPlane, "GravityDirection = 0.0 -1.0 0.0", "GravityDirection = 0 -1"},
      {kPlane, "NumOfDivisions = 3\nGravityDirection = 0.0 -1.0 0.0",
       "GravityDirection = 0 -1\nNumOfDivisions = 3"},
      {kPlane, "GravityDirection = 0.0 -1.0 0.0", "GravityDirection = 0 -1 # down"},
      {kShell, "ConvertTo6Nodes\n", "ConvertTo6Nodes = 1\n"},
      {kShell, "ConvertTo6Nodes\n", "ConvertTo6Nodes=yes # six nodes\n"},
      {kShell, "MainAndLocalStresses\n", "MainAndLocalStresses on\nMainStresses=0\n"},
      {kShell, "MainAndLocalStresses\n", "MainAndLocalStresses\nMainStresses = off\n"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text());
    EXPECT_TRUE(judged.HasResultsOf(BaseOf(change.model))) << judged.Summary();
    EXPECT_TRUE(judged.report.problems.empty()) << judged.Summary();
  }
}

// Half of a material record in a comment: the results are those of the other half, in the units of
// that half.
TEST(Points, UnitsInACommentAreNotTaken)
{
  const Change noUnits{kFrame, "2 units=kN-cm E=3300.0", "2 E=3300.0"};
  const Change commented{kFrame, "2 units=kN-cm E=3300.0 G=1375.0 widthY=30.0 widthZ=50.0",
                         "2 E=3300.0 G=1375.0 widthY=30.0 widthZ=50.0 # units=kN-cm"};
  const Judged judged(commented.Text());
  EXPECT_TRUE(judged.HasResultsOf(Judged(noUnits.Text()))) << judged.Summary();
  EXPECT_FALSE(judged.HasResultsOf(BaseOf(kFrame)));
}

// The mesh of 150 beams with 'dimension=2' must have all of them.
TEST(Points, GluedHeadKeepsAllBeams)
{
  const Judged plain(LongBeam(150, "mesh dimension 2 elemtype Linear nnode 2"));
  ASSERT_TRUE(plain.run.Succeeded()) << plain.run.message;
  EXPECT_EQ(ParseTextResults(plain.run.results).endForces.size(), 150u);
  for (const char* head :
       {"mesh dimension=2 elemtype=Linear nnode=2", "mesh dimension:2 elemtype:Linear nnode:2",
        "mesh dimension=2 elemtype Linear nnode = 2"}) {
    SCOPED_TRACE(head);
    const Judged judged(LongBeam(150, head));
    EXPECT_TRUE(judged.HasResultsOf(plain)) << judged.Summary();
    EXPECT_EQ(judged.report.errors, 0) << judged.Summary();
  }
}

TEST(Points, SwitchesThatAreOffAreAsIfAbsent)
{
  const Judged without(With(TextOfModel(kShell), "ConvertTo6Nodes\n", "\n"));
  ASSERT_TRUE(without.run.Succeeded());
  EXPECT_FALSE(without.HasResultsOf(BaseOf(kShell)));
  for (const char* off : {"ConvertTo6Nodes=0\n", "ConvertTo6Nodes = no\n",
                          "ConvertTo6Nodes: FALSE\n", "ConvertTo6Nodes off # for a trial\n"}) {
    const Judged judged(Change{kShell, "ConvertTo6Nodes\n", off}.Text());
    EXPECT_TRUE(judged.HasResultsOf(without)) << off << judged.Summary();
  }
}

// A word of the head that only a comment has is found there, and the check says so.
TEST(Points, HeadInACommentIsFoundWhereItIsNowhereElse)
{
  const Change changes[] = {
      {kFrame, "problem type: 3d", "# problem type: 3d"},
      {kFrame, "problem type: 3d", "problem #1 type: 3d"},
      {kFrame, "elemtype Linear nnode = 2", "elemtype Linear # nnode = 2"},
      {kFrame, "mesh dimension = 3", "mesh # dimension = 3"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text());
    EXPECT_TRUE(judged.HasResultsOf(BaseOf(change.model))) << judged.Summary();
    EXPECT_TRUE(judged.HasWarning(Code::WordInComment)) << judged.Summary();
  }
}

// --- Data that is lost by the letter ---

TEST(Points, NumbersThatAreOnlyPartlyNumbers)
{
  const Change changes[] = {
      {kFrame, "E=210000.0", "E=2,1e5"},
      {kFrame, "E=210000.0", "E=2.1d5"},
      {kFrame, "E=210000.0", "E=2.1D5"},
      {kFrame, "1 E=210000.0", "1 E=210000.0MPa"},
      {kFrame, "2 0.0 0.0 4500.0", "2 0.0 0.0 4.500,0"},
      {kFrame, "2 0.0 0.0 4500.0", "2 0.0 0.0 4500.0mm"},
      {kFrame, "2 0.0 0.0 4500.0", "2 0.0 0.0 4500.0# top"},
      {kFrame, "1 1 2 1\n", "1 1-2 1\n"},
      {kFrame, "NumOfDivisions = 4", "NumOfDivisions = 1e1"},
      {kFrame, "NumOfDivisions = 4", "NumOfDivisions = 4.0"},
      {kFrame, "1 0.000012 30.0", "1 0.000012 3.0d1"},
      {kFrame, "1000.0 0.01", "1000.0 0,01"},
      {kFrame, "GravityDirection = 0.0 0.0 -1.0", "GravityDirection = 0,0 0,0 -1,0"},
      {kSolid, "1 3 0.0 0.0 -5.5", "1 0.0 0.0 -5.5"},
      {kShell, "4 0 0 -0.5", "4 0.0 0.0 -0.5"},
      {kShell, "DoSmoothing = 0.1", "DoSmoothing = 0.1rad"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text());
    EXPECT_TRUE(judged.HasError(Code::NumberPartlyRead)) << judged.Summary();
  }
}

// The word that ends a list is named once, with the records that are lost.
TEST(Points, NumbersThatEndTheirList)
{
  const Change changes[] = {
      {kFrame, "1 1 2 1\n", "1 1, 2 1\n"},
      {kFrame, "1 1 2 1\n", "1 1,2 1\n"},
      {kFrame, "2 0.0 0.0 4500.0", "2 0,0 0.0 4500.0"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text());
    EXPECT_TRUE(judged.HasError(Code::RecordsLost)) << judged.Summary();
    EXPECT_FALSE(judged.HasError(Code::NumberPartlyRead)) << judged.Summary();
  }
}

TEST(Points, KeysThatMatchOnlyByTheirBeginningOrHaveNoPartner)
{
  static const struct
  {
    Change change;
    Code code;
  } cases[] = {
      {{kFrame, "J=593000.0", "alpha=593000.0"}, Code::KeyMisread},
      {{kFrame, "J=593000.0", "It=593000.0"}, Code::KeyMisread},
      {{kFrame, "Iy=20030000.0", "I_y=20030000.0"}, Code::KeyMisread},
      {{kFrame, "widthY=30.0 widthZ=50.0", "widthY=30.0"}, Code::LoneWidth},
      {{kFrame, "widthY=30.0 widthZ=50.0", "widthZ=50.0 A=1 Iy=1 Iz=1 J=1"}, Code::LoneWidth},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.change);
    const Judged judged(each.change.Text());
    EXPECT_TRUE(judged.HasError(each.code)) << judged.Summary();
  }
}

TEST(Points, KeysThatMeanTheirBeginningAreOnlyWarnedOf)
{
  const Change changes[] = {
      {kFrame, "A=7808.0", "Area=7808.0"},
      {kFrame, "Iy=20030000.0", "Iyy=20030000.0"},
      {kFrame, "Iz=56960000.0", "Izz=56960000.0"},
      {kShell, "t=0.22", "thickness=0.22"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text());
    EXPECT_TRUE(judged.HasResultsOf(BaseOf(change.model))) << judged.Summary();
    EXPECT_EQ(judged.report.errors, 0) << judged.Summary();
    EXPECT_EQ(judged.report.warnings, 1) << judged.Summary();
  }
}

TEST(Points, ValuesThatAreMissingOrWithoutEffect)
{
  const Judged noValue(With(TextOfModel(kFrame), "Weight=0.0000785", "Weight="));
  EXPECT_TRUE(noValue.HasError(Code::KeyWithoutValue)) << noValue.Summary();
  const Judged free(With(TextOfModel(kPlane), "3 020 0.0 850.5 0.0", "3 020 0.5 850.5 0.0"));
  EXPECT_TRUE(free.HasResultsOf(BaseOf(kPlane)));
  EXPECT_TRUE(free.HasError(Code::ValueAtFreeComponent)) << free.Summary();
}

// The check's error is about the place where the list ends, and the program counts the lines.
TEST(Points, LostRecordsAreNamedAtTheirCause)
{
  static const struct
  {
    Change change;
    const char* cause;  ///< a word of the check's message
  } cases[] = {
      {{kFrame, "end constraints\n", ""}, "nodal_point_loads"},
      {{kFrame, "end materials\n", ""}, "constraints"},
      {{kFrame, "4 111222", "! the right foot\n4 111222"}, "!"},
      {{kFrame, "2 0.0 0.1", "// the beam\n2 0.0 0.1"}, "//"},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.change);
    const Judged judged(each.change.Text());
    EXPECT_TRUE(judged.HasError(Code::RecordsLost)) << judged.Summary();
    EXPECT_NE(judged.Summary().find(each.cause), std::string::npos) << judged.Summary();
    if (judged.run.Succeeded()) {
      EXPECT_FALSE(judged.run.warnings.empty());
    }
  }
}

// --- Units ---

TEST(Points, UnitLinesAfterTheirDataAreErrorsWhereAFactorChanges)
{
  const Change changes[] = {
      {kFrame, "units_res kN-m\n", ""},
      {kFrame, "units_mesh mm\n", ""},
      {kPlane, "units_mat_and_load kN-m\n", ""},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change);
    const Judged judged(change.Text() + change.old);
    EXPECT_TRUE(judged.HasError(Code::UnitOrder)) << judged.Summary();
  }
}

// Results in mm, data in no named unit: taken as metres.
TEST(Points, ResultUnitsAloneAreAnError)
{
  const std::string plain = LongBeam(2, "mesh dimension = 2 elemtype Linear nnode = 2");
  const std::string system = "units_names\nkN-mm kN mm GPa 1000 0.001\nend units_names\n";
  const std::string header = "problem type: 2d\n";
  const Judged judged(With(plain, header, header + system + "units_res kN-mm\n"));
  EXPECT_TRUE(judged.HasError(Code::UnitOrder)) << judged.Summary();
  const Judged named(
      With(plain, header,
           header + system + "units_mesh mm\nunits_mat_and_load kN-mm\nunits_res kN-mm\n"));
  EXPECT_FALSE(named.HasError(Code::UnitOrder)) << named.Summary();
}

TEST(Points, NamesOfUnitSystems)
{
  const std::string twenty(20, 'x'), more(21, 'x');
  const auto named = [](const std::string& name) {
    std::string text = TextOfModel(kFrame);
    for (std::size_t at = 0; (at = text.find("kN-cm", at)) != text.npos; at += name.size())
      text.replace(at, 5, name);
    return text;
  };
  const Judged accepted(named(twenty));
  EXPECT_TRUE(accepted.HasResultsOf(BaseOf(kFrame))) << accepted.Summary();
  EXPECT_FALSE(Judged(named(more)).run.Succeeded());
  const std::string line = "N-mm N mm MPa 1.0 0.001\n";
  const Judged again(With(TextOfModel(kFrame), line, line + line));
  EXPECT_TRUE(again.HasResultsOf(BaseOf(kFrame))) << again.Summary();
  EXPECT_TRUE(again.HasWarning(Code::DefinedTwice)) << again.Summary();
  for (const char* other : {"N-mm kN mm MPa 1.0 0.001\n", "N-mm N mm MPa 1.0 0.01\n",
                            "other N mm MPa 1.0 0.002\n", "other N um MPa 1.0 0\n"}) {
    const Judged judged(With(TextOfModel(kFrame), line, line + other));
    EXPECT_FALSE(judged.run.Succeeded()) << other;
    EXPECT_GT(judged.report.errors, 0) << other;
  }
}

// --- Solids under a plane header ---

TEST(Points, PressureRecordsOfSolidsUnderAPlaneHeader)
{
  const std::string plane = With(TextOfModel(kSolid), "problem type: 3d", "problem type: 2d");
  const std::string record = "1 3 0.0 0.0 -5.5\n";
  const auto with = [&](const char* other) { return Judged(With(plane, record, other)); };
  EXPECT_TRUE(with("1 3 0 0 -5.5\n").HasResultsOf(Judged(plane)));
  // Two numbers are a load over the volume, which the index -1 has too.
  const Judged volume = with("1 1.5 2.5\n");
  EXPECT_TRUE(volume.HasResultsOf(with("1 -1 1.5 2.5 0\n"))) << volume.Summary();
  EXPECT_EQ(with("1 1.5 2.5 3.5\n").run.message,
            "Not reading correctly preassure_loads. ElemNum=1\n");
  EXPECT_EQ(with("1 1.5\n").run.message, "Not reading correctly preassure_loads. ElemNum=1\n");
}

}  // namespace morlen::variants
