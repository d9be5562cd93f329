#include "check/check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "check/misread.h"
#include "check/recorder.h"
#include "check/words.h"
#include "problem/problem.h"

namespace morlen {

using Lines = std::vector<std::string>;

namespace {

// A plane cantilever for which the check finds nothing.
constexpr const char* kBeam = R"(problem type: 2d
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
1 E=1e6 A=0.1 Iz=0.01
end materials
constraints
1 111 0 0 0
end constraints
nodal_point_loads
3 0 -3 0
end nodal_point_loads
)";

// A square plate of two triangles in space, held at one corner. The second
// support keeps it from turning in its plane: the rotation of a node does not.
constexpr const char* kPlate = R"(problem type: 3d
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0 0 0
2 1 0 0
3 1 1 0
4 0 1 0
end coordinates
elements
1 1 2 3 1
2 1 3 4 1
end elements
materials
1 E=1e6 nu=0.25 G=4e5 t=0.1
end materials
constraints
1 111111 0 0 0 0 0 0
2 010000 0 0 0 0 0 0
end constraints
)";

// A bar in space held at both ends, but free to rotate about its axis.
constexpr const char* kBar = R"(problem type: 3d
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0 0 0
2 3 0 0
end coordinates
elements
1 1 2 1
end elements
materials
1 E=2e8 G=8e7 A=0.01 Iy=1e-5 Iz=1e-5 J=1e-5
end materials
constraints
1 111000 0 0 0 0 0 0
2 011000 0 0 0 0 0 0
end constraints
)";

constexpr const char* kSixNodes = R"(problem type: 3d
mesh dimension = 3 elemtype Triangle nnode = 6
coordinates
1 0 0 0
2 2 0 0
3 0 2 0
4 1 0 0
5 1 1 0
6 0 1 0
end coordinates
elements
1 1 2 3 4 5 6 1
end elements
materials
1 E=1e6 nu=0.25 G=4e5 t=0.1
end materials
constraints
1 111111 0 0 0 0 0 0
end constraints
)";

constexpr const char* kSolid = R"(problem type: 3d
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
1 0 0 0
2 1 0 0
3 0 1 0
4 0 0 1
end coordinates
elements
1 1 2 3 4 1
end elements
materials
1 E=1e6 nu=0.25
end materials
constraints
1 111 0 0 0
2 111 0 0 0
3 111 0 0 0
end constraints
)";

std::string With(std::string text, const std::string& old, const std::string& replacement)
{
  const std::size_t place = text.find(old);
  EXPECT_NE(place, std::string::npos) << old;
  return text.replace(place, old.size(), replacement);
}

// The lines of the findings without the program's hints, which have tests among the readers.
Lines Messages(const std::string& text)
{
  Lines lines;
  for (check::Located problem : check::CheckText(text).problems) {
    problem.hint.clear();
    lines.push_back(check::LineOf(problem, "m"));
  }
  return lines;
}

}  // namespace

TEST(Check, FindsNothingInSoundModels)
{
  for (const char* model : {kBeam, kPlate, kSolid}) {
    EXPECT_EQ(Messages(model), Lines{});
    EXPECT_TRUE(check::CheckText(model).summary);
  }
}

TEST(Check, ContinuesAfterErrorsInRecords)
{
  std::string text = With(kBeam, "1 111 0 0 0", "1 131 0 0 0\n9 111 0 0 0\n1 111 0 0 0");
  text = With(text, "3 0 -3 0", "3 0 -3\n8 1 1 1\n3 0 -3 0");
  text = With(text, "1 E=1e6", "4 E=1 foo=3\n5\n1 E=1e6");
  EXPECT_EQ(Messages(text),
            (Lines{"m:13:1: error: Input of materials not correct. Unknown char: 'foo'",
                   "m:14:1: warning: material 5 is not used",
                   "m:18:1: error: Not reading correctly the constraints. Number=1",
                   "m:19:1: error: Trying to assign constrain to unknown node",
                   "m:23:1: error: Not reading correctly the loads B. Number=3",
                   "m:24:1: error: Trying to assign Load to unknown node"}));
}

TEST(Check, ReportsAnUnknownKeywordOnceForItsBlock)
{
  const std::string text =
      With(With(kBeam, "constraints\n", "constrants\n"), "end constraints", "end constrants");
  EXPECT_EQ(Messages(text), Lines{"m:15:1: error: Unknown key name=constrants"});
}

TEST(Check, StopsAtErrorsThatMakeTheRestMeaningless)
{
  EXPECT_EQ(Messages("problem type: 4d\nmesh\n"),
            Lines{"m:1:1: error: Type of problem unknown. Only 2d and 3d"});
  EXPECT_EQ(Messages(With(kBeam, "dimension = 2", "dimension = 4")),
            Lines{"m:2:1: error: mesh dimension must be 2 or 3"});
  EXPECT_EQ(Messages("problem type: 2d\n"), Lines{"m: error: it is necessary at least one mesh"});
}

TEST(Check, NamesTheListThatIsNotClosed)
{
  EXPECT_EQ(Messages(With(kBeam, "end nodal_point_loads\n", "")),
            Lines{"m:18:1: error: can't find word ***end*** in input file"});
}

TEST(Check, WarnsOfIgnoredText)
{
  const auto expect = [](const char* old, const char* replacement, const std::string& message) {
    EXPECT_EQ(Messages(With(kBeam, old, replacement)), Lines{message});
  };
  expect("2 2 0\n", "2 2 0 0.5\n", "m:5:7: warning: ignored: '0.5'");
  expect("3 0 -3 0\n", "3 0 -3 0 colour=red\n", "m:19:10: warning: ignored: the key 'colour'");
  expect("3 0 -3 0\n", "3 0 -3 0 Euler1=1\n", "m:19:10: warning: ignored: the key 'Euler1'");
  expect("elemtype Linear", "elemtype Lines", "m:2:29: warning: 'Lines' is read as 'Linear'");
  expect("Iz=0.01", "Izz=0.01", "m:13:15: warning: 'Izz' is read as 'I'");
  expect("mesh", "MainStressesAll\nmesh",
         "m:2:1: warning: 'MainStressesAll' is read as 'MainStresses'");
  expect("mesh dimension = 2", "mesh of dimension = 2",
         "m:2:6: warning: skipped in front of 'dimension': 'of'");
  expect("nnode = 2", "nnode = -2", "m:2:44: warning: skipped in front of the number: '-'");
  expect("end coordinates", "endcoordinates",
         "m:7:1: warning: 'endcoordinates' is taken for 'end'");
}

TEST(Check, WarnsOfMaterialNumbersThatAreNotDecimal)
{
  const std::string text = With(With(kBeam, "1 E=1e6", "8 E=1e6"), "1 1 2 1", "1 1 2 010");
  EXPECT_EQ(Messages(With(text, "2 2 3 1", "2 2 3 8")),
            Lines{"m:9:7: warning: the material number '010' is not decimal: read as 8"});
}

TEST(Check, WarnsOfRecordsThatRunIntoTheNextLine)
{
  EXPECT_EQ(Messages(With(kBeam, "2 2 3 1\n", "2 2\n3 1\n")),
            Lines{"m:10:1: warning: values are missing in this line: they are taken from the next "
                  "one"});
}

TEST(Check, WarnsOfUnitSystemsThatNothingUses)
{
  const std::string units =
      "units_names\nkN kN m kPa 1000 1\nlb lb ft psf 4.4 0.3\nend\nunits_mesh m\n"
      "units_mat_and_load kN\nunits_res kN\nmesh";
  EXPECT_EQ(Messages(With(kBeam, "mesh", units)),
            Lines{"m:2:1: warning: the unit system 'lb' is not used"});
}

TEST(Check, ReportsWrongReferencesOfElements)
{
  EXPECT_EQ(Messages(With(With(kBeam, "2 2 3 1\n", "2 2 9 1\n3 3 2 5\n"), "1 1 2 1", "3 1 2 1")),
            (Lines{"m:10:1: error: element 2 has an unknown node",
                   "m:11:1: error: Material in element: 3 doesn't exist",
                   "m:11:1: warning: element 3 is given again: line 9 has it too"}));
}

TEST(Check, ReportsNodesAndMaterialsThatNothingUses)
{
  const std::string text = With(With(kBeam, "3 4 0\n", "3 4 0\n4 5 5\n5 6 6\n"), "1 111 0 0 0",
                                "1 111 0 0 0\n5 111 0 0 0");
  EXPECT_EQ(Messages(With(text, "1 E=1e6", "7 E=1\n1 E=1e6")),
            (Lines{"m:7:1: error: node 4 belongs to no element and is not held: the system cannot "
                   "be solved",
                   "m:8:1: warning: node 5 belongs to no element",
                   "m:15:1: warning: material 7 is not used"}));
}

TEST(Check, CountsAMaterialThatItemsOfAnElementCompleteAsUsed)
{
  std::string text = With(kBeam, "1 E=1e6", "7 E=1e6 A=0.1\n1 E=1e6");
  text = With(text, "2 2 3 1\n", "2 2 3 7 Iz=0.02\n");
  const check::Report report = check::CheckText(text);
  EXPECT_EQ(report.problems.size(), 0u);
  ASSERT_TRUE(report.summary);
  EXPECT_EQ(report.summary->materials, (std::vector<int>{1, 7}));
  EXPECT_EQ(report.summary->unusedMaterials, std::vector<int>{});
}

TEST(Check, KnowsWhereNodesNeedElements)
{
  EXPECT_EQ(Messages(With(With(kSolid, "4 0 0 1\n", "4 0 0 1\n5 3 3 3\n"), "constraints\n",
                          "constraints\n5 111 0 0 0\n")),
            Lines{"m:8:1: error: node 5 belongs to no element: the results of solids need one"});
  const std::string hinged = With(With(kBar, "2 3 0 0\n", "2 3 0 0\n3 9 9 9\n"), "constraints\n",
                                  "constraints\n3 111000 0 0 0 0 0 0\n") +
                             "rotules\n1 hinge\nend\n";
  EXPECT_EQ(Messages(hinged), Lines{"m:6:1: warning: node 3 belongs to no element"});
}

TEST(Check, WarnsOfNodesAtOnePlace)
{
  const std::string text =
      With(With(kBeam, "3 4 0\n", "3 4 0\n4 2.0000001 0\n"), "2 2 3 1", "2 4 3 1");
  EXPECT_EQ(
      Messages(text),
      (Lines{"m:6:1: error: the supports let the part of node 3 move along X: node 3 moves most",
             "m:6:1: error: the supports let the part of node 3 move along Y: node 3 moves most",
             ("m:6:1: error: the supports let the part of node 3 turn about the axis along Z "
              "through (3, 0, 0): node 3 moves most"),
             "m:6:1: warning: the part of node 3 (2 nodes) is not connected with that of node 1",
             "m:7:1: warning: node 4 is at the place of node 2"}));
}

TEST(Check, ReportsBeamsWithoutLength)
{
  EXPECT_EQ(
      Messages(With(With(kBeam, "3 4 0", "3 2 0"), "nodal_point_loads\n3", "nodal_point_loads\n2")),
      (Lines{"m:6:1: warning: node 3 is at the place of node 2",
             "m:10:1: error: element 2 has no length"}));
}

TEST(Check, ReportsSliversAndTurnedElements)
{
  EXPECT_EQ(
      Messages(With(kPlate, "2 1 3 4 1", "2 1 4 3 1")),
      (Lines{"m:11:1: warning: element 2 is turned against its neighbour 1: their normals are "
             "opposite",
             "m: error: Elements 1 and 2 have normals in opposite directions. It is necessary "
             "to swap normals"}));
  EXPECT_EQ(Messages(With(kPlate, "4 0 1 0", "4 0.49 0.51 0")),
            Lines{"m:11:1: warning: element 2 is a sliver"});
  EXPECT_EQ(Messages(With(kPlate, "4 0 1 0", "4 0.5 0.5 0")),
            Lines{"m:11:1: error: element 2 has no area"});
  EXPECT_EQ(Messages(With(kSolid, "1 1 2 3 4 1", "1 1 3 2 4 1")),
            Lines{"m:10:1: error: element 1 is turned: its fourth node is on the wrong side"});
  EXPECT_EQ(Messages(With(kSolid, "4 0 0 1", "4 0.3 0.3 0.001")),
            Lines{"m:10:1: warning: element 1 is a sliver"});
}

// The problems of a model do not depend on the unit of its lengths.
TEST(Check, JudgesSmallModelsLikeLargeOnes)
{
  const std::string plate =
      With(With(With(kPlate, "2 1 0 0", "2 1e-8 0 0"), "3 1 1 0", "3 1e-8 1e-8 0"), "4 0 1 0",
           "4 0 1e-8 0");
  EXPECT_EQ(Messages(plate), Lines{});
  EXPECT_EQ(Messages(With(plate, "4 0 1e-8 0", "4 0.5e-8 0.5e-8 0")),
            Lines{"m:11:1: error: element 2 has no area"});
  EXPECT_EQ(
      Messages(With(plate, "1 111111 0 0 0 0 0 0", "1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0")),
      Lines{"m:6:1: error: the supports let the model turn about the axis along X through "
            "(5e-09, 0, 0): node 3 moves most"});
}

TEST(Check, ReportsEveryMissingValueOfASection)
{
  EXPECT_EQ(Messages(With(kBeam, "E=1e6 A=0.1 Iz=0.01", "E=1e6")),
            (Lines{"m:13:1: error: section parameter A is 0 for element 1",
                   "m:13:1: error: section parameter Iz is 0 for element 1"}));
  EXPECT_EQ(Messages(With(kPlate, "G=4e5 t=0.1", "")),
            (Lines{"m:14:1: error: error in element 1 Gxy is 0",
                   "m:14:1: error: error in element 1 Gxz is 0",
                   "m:14:1: error: error in element 1 Gyz is 0",
                   "m:14:1: error: error in element 1 Shell thickness is 0"}));
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nu=0.5")),
            Lines{"m:13:1: error: error in element 1 nu is 0.5"});
}

TEST(Check, ReportsRatiosThatReleaseEnergyAtTheMaterial)
{
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nu=3")),
            Lines{"m:13:1: error: error in element 1 nu must be above -1 and below 0.5"});
  EXPECT_EQ(Messages(With(kPlate, "nu=0.25", "nu=0.7")),
            Lines{"m:14:1: error: error in element 1 nu must be above -1 and at most 0.5"});
  EXPECT_EQ(Messages(With(kPlate, "E=1e6 nu=0.25", "Ex=4e6 Ey=1e6 nuXY=0.6 nuYX=2.4")),
            Lines{"m:14:1: error: error in element 1 nuXY*nuYX must be below 1"});
  EXPECT_EQ(Messages(With(kBeam, "E=1e6", "E=1e6 nu=3")), Lines{});  // beams do not use it
  // One message for each value.
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nu=-1")),
            Lines{"m:13:1: error: error in element 1 nu is -1"});
  EXPECT_EQ(Messages(With(kPlate, "nu=0.25", "nu=-1")),
            Lines{"m:14:1: error: error in element 1 nuXY*nuYX is 1"});
}

TEST(Check, ReportsNegativeWeights)
{
  const std::string plate = With(kPlate, "mesh", "GravityDirection 0 0 -1\nmesh");
  constexpr const char* kMessage =
      "error: data lost: a negative Weight gives no load: give a weight above 0 and turn "
      "GravityDirection instead";
  EXPECT_EQ(Messages(With(plate, "t=0.1", "t=0.1 Weight=-25")),
            Lines{std::string("m:15:1: ") + kMessage});
  EXPECT_EQ(Messages(With(plate, "2 1 3 4 1\n", "2 1 3 4 1 Weight=-25\n")),
            Lines{std::string("m:12:1: ") + kMessage});
}

TEST(Check, WarnsOfBeamsThatAreAlmostVertical)
{
  static const struct
  {
    const char* end;
    const char* lean;  // empty without a warning
    const char* y;
  } cases[] = {
      {"0 0 4", "", ""},
      {"1e-9 0 4", "", ""},
      {"3.9e-6 0 4", "", ""},
      {"1e-5 0 4", "2.5e-06", "(0, 1, 0)"},
      {"-1e-5 0 4", "2.5e-06", "(0, -1, 0)"},
      {"0.0003 0.0004 4", "0.000125", "(-0.8, 0.6, 0)"},
      {"0 0.0039 4", "0.000975", "(-1, 0, 0)"},
      {"0 0.0041 4", "", ""},
  };
  for (const auto& c : cases) {
    const std::string text =
        With(With(kBar, "2 3 0 0\n", std::string("2 ") + c.end + "\n"), "1 111000", "1 111111");
    const Lines expected{std::string("m:8:1: warning: element 1 leans by ") + c.lean +
                         " of its length: its local y is " + c.y +
                         ", horizontal across the lean; a vertical beam has (1, 0, 0). If it is "
                         "meant to be vertical, give both ends the same x and y"};
    EXPECT_EQ(Messages(text), *c.lean ? expected : Lines{}) << c.end;
    EXPECT_EQ(Messages(With(text, "J=1e-5", "J=1e-5 Euler1=1.570796 Euler2=1.570796")), Lines{})
        << c.end;
  }
}

TEST(Check, ProposesRatiosThatPassTheSymmetryTest)
{
  EXPECT_EQ(Messages(With(kPlate, "E=1e6 nu=0.25", "Ex=1e6 Ey=5e5 nuXY=0.25 nuYX=0.25")),
            Lines{"m:14:1: error: error in element 1 Ex*nuXY must be equal to Ey*nuYX: nuXY=0.25 "
                  "needs nuYX=0.5"});
  EXPECT_EQ(Messages(With(kPlate, "E=1e6 nu=0.25", "Ex=1e6 Ey=5e5 nuXY=0.25 nuYX=0.5")), Lines{});
}

TEST(Check, AcceptsRatiosThatAreSymmetricUpToRounding)
{
  EXPECT_EQ(Messages(With(kPlate, "E=1e6 nu=0.25", "Ex=1.1e7 Ey=3e6 nuXY=0.3 nuYX=1.1")), Lines{});
  EXPECT_EQ(
      Messages(With(kPlate, "E=1e6 nu=0.25", "Ex=1.1e7 Ey=3e6 nuXY=0.30000000000000004 nuYX=1.1")),
      Lines{});
}

TEST(Check, WarnsOfWeightWithoutADirection)
{
  EXPECT_EQ(Messages(With(kPlate, "t=0.1", "t=0.1 Weight=2")),
            Lines{"m:14:1: warning: weight without GravityDirection: it acts along +Z"});
  EXPECT_EQ(Messages(With(With(kPlate, "t=0.1", "t=0.1 Weight=2"), "mesh",
                          "GravityDirection 0 0 -1\nmesh")),
            Lines{});
}

TEST(Check, NamesTheMotionThatNothingHolds)
{
  const auto expect = [](const char* model, const char* old, const char* replacement,
                         const Lines& messages) {
    EXPECT_EQ(Messages(With(model, old, replacement)), messages);
  };
  expect(kBeam, "1 111 0 0 0", "1 011 0 0 0",
         {"m:4:1: error: the supports let the model move along X: node 1 moves most"});
  expect(kBeam, "1 111 0 0 0", "1 110 0 0 0",
         {"m:6:1: error: the supports let the model turn about the axis along Z through (0, 0, 0): "
          "node 3 moves most"});
  expect(kBeam, "1 111 0 0 0", "1 112 0 0 5", {});
  expect(kBeam, "1 111 0 0 0", "1 110 0 0 0\n3 010 0 0 0", {});
  // A roller turned by a right angle holds the same direction as the pin.
  expect(kBeam, "1 111 0 0 0",
         "1 110 0 0 0\n3 010 0 0 0 Euler1=0 Euler2=0 Euler3=1.5707963267948966",
         {"m:6:1: error: the supports let the model turn about the axis along Z through (0, 0, 0): "
          "node 3 moves most"});
  expect(
      kPlate, "1 111111 0 0 0 0 0 0", "1 111000 0 0 0 0 0 0\n2 111000 0 0 0 0 0 0",
      {"m:6:1: error: the supports let the model turn about the axis along X through (0.5, 0, 0): "
       "node 3 moves most"});
  expect(kSolid, "3 111 0 0 0\n", "",
         {"m:6:1: error: the supports let the model turn about the axis along X through "
          "(0.25, 0, 0): node 3 moves most"});
}

TEST(Check, AcceptsFreeRotationsAtHinges)
{
  const Lines turning = {
      "m:6:1: error: the supports let the model turn about the axis along Z through (0, 0, 0): "
      "node 3 moves most"};
  const std::string beam = kBeam;
  EXPECT_EQ(Messages(beam + "rotules\n1 hinge\nend\n"), turning);
  EXPECT_EQ(Messages(beam + "elem_rotules\n1 01\nend\n"), turning);
  EXPECT_EQ(Messages(beam + "rotules\n3 hinge\nend\n"), Lines{});
  EXPECT_EQ(
      Messages(With(kBeam, "1 111 0 0 0", "1 111 0 0 0\n3 010 0 0 0") + "rotules\n1 hinge\nend\n"),
      Lines{});
}

TEST(Check, TorsionHoldsTheRotationOfBeamsBetweenHinges)
{
  const std::string bar = kBar;
  EXPECT_EQ(Messages(bar + "rotules\n1 hinge\n2 hinge\nend\n"), Lines{});
  EXPECT_EQ(Messages(bar + "rotules\n1 hinge\nend\n"), Lines{});
  EXPECT_EQ(Messages(bar),
            Lines{"m:4:1: error: the supports let the model turn about the axis along X through "
                  "(1.5, 0, 0): node 1 moves most"});
  // Torsion alone does not hold a triangle of bars against rotation about one of its sides.
  const std::string triangle = With(With(bar, "2 3 0 0\n", "2 3 0 0\n3 0 3 0\n"), "1 1 2 1\n",
                                    "1 1 2 1\n2 2 3 1\n3 1 3 1\n");
  EXPECT_EQ(Messages(triangle + "rotules\n1 hinge\n2 hinge\n3 hinge\nend\n"),
            Lines{"m:6:1: error: the supports let the model turn about the axis along X through "
                  "(1, 0, 0): node 3 moves most"});
}

TEST(Check, RefusesLoadsThatTheProgramRefuses)
{
  EXPECT_EQ(Messages(std::string(kPlate) + "temperature_loads\n2 1 1\nend\n"),
            Lines{"m:11:1: error: temperature for triangles not implemented yet"});
}

TEST(Check, RefusesMeshesThatTheDoubleSolverRefuses)
{
  EXPECT_EQ(Messages(With(kSolid, "mesh", "Solver Double\nmesh")),
            Lines{"m:2:1: error: Double solver not implemented for tetrahedras"});
  EXPECT_EQ(Messages(With(kSixNodes, "mesh", "Solver Double\nmesh")),
            Lines{"m:2:1: error: Solver DOUBLE needs a shell mesh of 3-noded triangles"});
  EXPECT_EQ(Messages(With(kPlate, "mesh", "Solver Double\nmesh")), Lines{});
}

TEST(Check, SummarisesTheModel)
{
  const std::string text =
      With(With(kBeam, "Iz=0.01", "Iz=0.01 Weight=20"), "mesh", "GravityDirection 0 -1 0\nmesh");
  const check::Report report = check::CheckText(text);
  ASSERT_TRUE(report.summary);
  EXPECT_EQ(check::TextOf(*report.summary),
            "problem:    2d\n"
            "nodes:      3 in 1 part\n"
            "elements:   2 beams, 0 shells, 0 solids\n"
            "box:        (0, 0) to (4, 0) [length]\n"
            "materials:  used 1; unused none\n"
            "total load: (0, -11) [force], with weight (0, -8)\n"
            "units:      results in [force] and [length]\n"
            "equations:  9, solver SkyLine, matrix of 36 numbers (0.000274658 MiB)\n");
}

TEST(Check, NamesTheFormulationOfRefinedShells)
{
  const auto summary = [](const std::string& setting) {
    const check::Report report = check::CheckText(With(kPlate, "mesh", setting + "mesh"));
    return report.summary ? check::TextOf(*report.summary) + check::JsonOf(report, "m") : "";
  };
  EXPECT_NE(summary("").find(" 2 shells, "), std::string::npos);
  EXPECT_NE(summary("").find("\"shellFormulation\": \"Standard\""), std::string::npos);
  const std::string refined = summary("ShellFormulation Refined\n");
  EXPECT_NE(refined.find(" 2 shells (Refined), "), std::string::npos);
  EXPECT_NE(refined.find("\"shellFormulation\": \"Refined\""), std::string::npos);
}

// The clamp at one corner holds the plate against turning in its plane only when it is refined.
TEST(Check, KnowsThatRefinedShellsTurnWithTheirNodes)
{
  const std::string clamped = With(kPlate, "2 010000 0 0 0 0 0 0\n", "");
  EXPECT_EQ(check::CheckText(clamped).errors, 1);
  EXPECT_EQ(check::CheckText(With(clamped, "mesh", "ShellFormulation Refined\nmesh")).errors, 0);
}

TEST(Check, FindsTheFormulationThatIsMeant)
{
  const Lines refused = Messages(With(kPlate, "mesh", "ShellFormulation Refind\nmesh"));
  ASSERT_EQ(refused.size(), 1u);
  EXPECT_NE(refused[0].find("error: ShellFormulation must be: Standard or Refined"),
            std::string::npos);
  EXPECT_EQ(check::NearestKeyword("ShellFormulatoin"), "ShellFormulation");
}

TEST(Check, NamesTheUnitsOfTheSummary)
{
  const std::string units =
      "units_names\nkN kN m kPa 1000 1\nend\nunits_mesh m\nunits_mat_and_load kN\nunits_res kN\n";
  const std::string named = With(kBeam, "mesh", units + "mesh");
  const check::Report report = check::CheckText(named);
  ASSERT_TRUE(report.summary);
  EXPECT_NE(check::TextOf(*report.summary).find("units:      results in kN and m\n"),
            std::string::npos);
  EXPECT_NE(check::JsonOf(report, "m").find("\"force\": \"kN\",\n  \"length\": \"m\""),
            std::string::npos);
  EXPECT_NE(
      check::JsonOf(check::CheckText(kBeam), "m").find("\"force\": null,\n  \"length\": null"),
      std::string::npos);
}

TEST(Check, WritesProblemsAsJson)
{
  const std::string json = check::JsonOf(check::CheckText("problem type: 2d\n"), "m.dat");
  EXPECT_NE(json.find("\"file\": \"m.dat\",\n \"errors\": 1,\n \"warnings\": 0,"), json.npos);
  EXPECT_NE(json.find("\"line\": 0,\n   \"column\": 0,\n   \"message\": \"it is necessary at least "
                      "one mesh\""),
            json.npos);
}

namespace {

// The codes and severities of the findings, as "records-lost error".
Lines Codes(const std::string& text)
{
  Lines codes;
  for (const check::Located& problem : check::CheckText(text).problems)
    codes.push_back(std::string(check::NameOf(problem.code)) + " " +
                    check::SeverityName(problem.severity));
  return codes;
}

// A change of kBeam and the only finding that it makes, after "m:".
struct Mistake
{
  const char* old;
  const char* replacement;
  const char* finding;
};

void ExpectDataLost(const std::vector<Mistake>& mistakes)
{
  for (const Mistake& mistake : mistakes) {
    EXPECT_EQ(Messages(With(kBeam, mistake.old, mistake.replacement)),
              Lines{With(std::string("m:") + mistake.finding, ": ", ": error: data lost: ")})
        << mistake.replacement;
  }
}

}  // namespace

TEST(Check, ReportsNumbersThatAreOnlyPartlyNumbers)
{
  ExpectDataLost(
      {{"E=1e6", "E=2,1e8",
        "13:5: '2,1e8' is no number as a whole: read as 2; did you mean 2.1e8?"},
       {"E=1e6", "E=2.1d8",
        "13:5: '2.1d8' is no number as a whole: read as 2.1; did you mean 2.1e8?"},
       {"E=1e6", "E=1,000,000.5",
        "13:5: '1,000,000.5' is no number as a whole: read as 1; did you mean 1000000.5?"},
       {"E=1e6", "E=2.1*10^8",
        "13:5: '2.1*10^8' is no number as a whole: read as 2.1; did you mean 2.1e8?"},
       {"A=0.1", "A=0.1m2",
        "13:11: '0.1m2' is no number as a whole: read as 0.1; nothing is written "
        "after a number without a blank"}});
}

TEST(Check, ReportsKeysThatAreIgnoredByMistake)
{
  ExpectDataLost(
      {{"3 0 -3 0", "3 0 -3 0 unit=kN-m",
        "19:10: the key 'unit' is ignored; did you mean 'units'?"},
       {"3 0 -3 0", "3 0 -3 0 wind units=kN-m",
        "19:10: the word 'wind' is a key that takes 'units=kN-m' as its value: both are ignored. A "
        "comment begins with '#'"},
       {"1 111 0 0 0", "1 111 0 0 0 Eular1=1",
        "16:13: the key 'Eular1' is ignored; did you mean 'Euler1'?"}});
}

TEST(Check, ReportsUnitsWithAnUnknownCase)
{
  const std::string units = With(kBeam, "mesh",
                                 "units_names\nkN-m kN m kPa 1000 1\nend\nunits_mesh m\n"
                                 "units_mat_and_load kN-m\nunits_res kN-m\nmesh");
  EXPECT_EQ(Messages(With(units, "E=1e6", "units=kN-m E=1e6")), Lines{});
  EXPECT_EQ(Messages(With(units, "E=1e6", "UnItS=kN-m E=1e6")),
            Lines{"m:19:3: error: data lost: the unit system of 'UnItS=kN-m' is not found by this "
                  "key. Write units"});
}

TEST(Check, ReportsRepeatedItems)
{
  ExpectDataLost({{"A=0.1", "A=80 A=0.1",
                   "13:14: 'A=0.1' contradicts 'A=80' of the same record: the last counts"},
                  {"A=0.1", "A = 80 a=0.1",
                   "13:16: 'a=0.1' contradicts 'A = 80' of the same record: the last counts"}});
  EXPECT_EQ(Messages(With(kBeam, "A=0.1", "A=1e-1 A=0.1")),
            Lines{"m:13:16: warning: 'A=0.1' repeats 'A=1e-1'"});
}

TEST(Check, SaysWhichUnitsOfARecordCount)
{
  const std::string units = With(kBeam, "mesh",
                                 "units_names\na kN m kPa 1000 1\nb N m Pa 1 1\nend\n"
                                 "units_mesh m\nunits_mat_and_load a\nunits_res a\nmesh");
  EXPECT_EQ(Messages(With(units, "E=1e6", "units=a units=b E=1e6"))[1],
            "m:20:11: error: data lost: 'units=b' contradicts 'units=a' of the same record: "
            "the first counts");
  EXPECT_EQ(Messages(With(units, "3 0 -3 0", "3 0 -3 0 units=a units=b")),
            Lines{"m:26:18: error: data lost: 'units=b' contradicts 'units=a' of the same record: "
                  "the last counts"});
}

TEST(Check, JudgesHingeCodes)
{
  const auto hinges = [](const std::string& records) {
    return Messages(
        With(kBeam, "constraints\n", "elem_rotules\n" + records + "end\nconstraints\n"));
  };
  EXPECT_EQ(hinges("2 11\n2 11\n"), Lines{});
  const auto first = [&](const std::string& records) { return hinges(records).front(); };
  EXPECT_EQ(first("2 10\n2 11\n"),
            "m:17:3: error: data lost: the hinge code '11' differs from that of an earlier record "
            "for the element: the last counts");
  EXPECT_EQ(first("2 1 0\n"),
            "m:16:5: error: data lost: ignored: '0'. The two digits of a hinge code have no blank "
            "between them");
  EXPECT_EQ(first("2 110\n"),
            "m:16:3: error: data lost: the hinge code '110' has more than two digits: read as "
            "'11'");
  EXPECT_EQ(first("2 11 0\n"), "m:16:6: warning: ignored: '0'");
}

TEST(Check, ReportsKeywordsOnTheLineOfAnEnd)
{
  ExpectDataLost({{"end materials", "end materials ConvertTo6Nodes",
                   "14:15: the keyword 'ConvertTo6Nodes' is on the line of an 'end' and is not "
                   "read. Write it on the next line"},
                  {"mesh", "units_names\nend units_names GravityDirection=0 -1\nmesh",
                   "3:17: the keyword 'GravityDirection' is on the line of an 'end' and is not "
                   "read. Write it on the next line"}});
  for (const char* line : {"end constraints", "end of materials", "end materials # Solver",
                           "end mesh materials", "materials end"})
    EXPECT_EQ(Messages(With(kBeam, "end materials", line)), Lines{}) << line;
  EXPECT_EQ(Messages(With(kBeam, "end coordinates", "coordinates end")), Lines{});
}

TEST(Check, SaysThatSolidsAreIsotropic)
{
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nuYX=0.25")),
            Lines{"m:13:1: error: data lost: solids ignore nuYX, whose value differs from nuXY=0, "
                  "which is used"});
  EXPECT_EQ(Messages(With(kSolid, "E=1e6", "Ex=1000 Ey=10")),
            Lines{"m:13:1: error: data lost: solids ignore Ey, whose value differs from Ex=1000, "
                  "which is used"});
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nuXY=0.25 nuYX=0.25")), Lines{});
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nu=0.25 G=4.01e5")), Lines{});
  EXPECT_EQ(Messages(With(kSolid, "nu=0.25", "nu=0.25 G=8e5")),
            Lines{"m:13:1: error: data lost: solids ignore G, whose value differs from "
                  "E/(2+2nu)=400000, which is used"});
  EXPECT_EQ(Messages(With(kSolid, "1 1 2 3 4 1\n", "1 1 2 3 4 1 Ex=500\n")),
            Lines{"m:10:1: warning: solids ignore Ey, whose value differs from Ex, which is used"});
}

TEST(Check, ReportsFaceLoadsOfSolidsWithoutAFace)
{
  const std::string solid = With(kSolid, "type: 3d", "type: 2d");
  const auto found = [&](const std::string& block) {
    return Codes(solid + block + "\n1 10 0\nend\n");
  };
  EXPECT_EQ(found("face_loads"), Lines{"face-missing error"});
  EXPECT_EQ(found("global_pressure_loads"), Lines{});
}

TEST(Check, NamesTheLinesOfUnitSystemsInError)
{
  const std::string names = "units_names\nkN m\nend units_names\nmesh";
  EXPECT_EQ(
      Messages(With(kBeam, "mesh", names)),
      Lines{"m:3:1: error: 'units_names' items should be: name nameN nameM namePa facN facM"});
}

TEST(Check, SaysNothingOfWordsThatMeanNothing)
{
  const std::string line = With(kBeam, "mesh dimension = 2", "mesh dimension = 2 D");
  EXPECT_EQ(Messages(line), Lines{"m:2:20: warning: skipped in front of 'elemtype': 'D'"});
  EXPECT_EQ(check::NearestKeyword("3d"), "");
  EXPECT_EQ(check::AboutMisreadNumber("8,000", NumberKind::kReal),
            "'8,000' is no number as a whole: read as 8; did you mean 8.000 or 8000?");
  EXPECT_EQ(check::AboutMisreadNumber("0,125", NumberKind::kReal),
            "'0,125' is no number as a whole: read as 0; did you mean 0.125?");
}

TEST(Check, NamesOneCauseOnce)
{
  // The word that ends a list is named with the records that are lost.
  EXPECT_EQ(Codes(With(kBeam, "2 2 0\n", "2 2,5 0\n")), Lines{"records-lost error"});
  // Errors about the whole list follow from the lost records.
  EXPECT_EQ(Codes(With(kBeam, "1 0 0\n", "1 0,0 0\n")), Lines{"records-lost error"});
  EXPECT_EQ(Codes(With(kBeam, "1 0 0\n", "! first\n1 0 0\n")), Lines{"records-lost error"});
  // A misread node makes the element's other faults.
  EXPECT_EQ(Codes(With(kBeam, "1 1 2 1", "1 1-9 1")), Lines{"number-partly-read error"});
}

TEST(Check, RefusedRatiosHaveTheirCode)
{
  for (const char* ratio : {"nu=3", "nu=0.5", "nu=1", "nu=-1"})
    EXPECT_EQ(Codes(With(kSolid, "nu=0.25", ratio)), Lines{"poisson-ratio error"}) << ratio;
  EXPECT_EQ(Codes(With(kPlate, "nu=0.25", "nu=0.7")), Lines{"poisson-ratio error"});
}

TEST(Check, TellsKeysThatMeanWhatTheyMatchFromOthers)
{
  for (const char* key : {"Area=", "area=", "A="})
    EXPECT_EQ(check::CheckText(With(kBeam, "A=", key)).errors, 0) << key;
  EXPECT_EQ(Codes(With(kPlate, "t=", "thickness=")), Lines{"key-by-prefix warning"});
  const std::string hinges = "rotules\n1 hinge\n2 hinge\nend\n";
  EXPECT_EQ(Codes(With(kBar, "Iy=1e-5 Iz=1e-5", "Iyy=1e-5 Izz=1e-5") + hinges),
            (Lines{"key-by-prefix warning", "key-by-prefix warning"}));
  ExpectDataLost(
      {{"Iz=0.01", "Iz=0.01 alpha=1e-5", "13:23: 'alpha' is no key of a material: read as 'A'"},
       {"A=0.1", "Areal=0.1", "13:9: 'Areal' is no key of a material: read as 'A'"},
       {"Iz=0.01", "Iz=0.01 It=1e-5",
        "13:23: 'It' is no key of a material: read as 'I'; did you mean 'J'?"},
       {"Iz=0.01", "Iz=0.01 I_y=1e-5",
        "13:23: 'I_y' is no key of a material: read as 'I'; did you mean 'Iy'?"}});
}

TEST(Check, NamesTheCauseOfAListThatEndsEarly)
{
  ExpectDataLost(
      {{"1 111 0 0 0\n", "1 111 0 0 0\nx2 111 0 0 0\n",
        "17:1: the list 'constraints' (line 15) ends at 'x2 111 0 0 0': a record begins with a "
        "number, a comment with '#'. Not read: 1 record up to 'end' in line 18"},
       {"2 2 0", "! middle\n2 2 0",
        "5:1: the list 'coordinates' (line 3) ends at '! middle': comments begin with '#'. Not "
        "read: 2 records up to 'end' in line 8"},
       {"1 111", "// held\n1 111",
        "16:1: the list 'constraints' (line 15) ends at '// held': comments begin with '#'. Not "
        "read: 1 record up to 'end' in line 18"},
       {"2 2 0\n", "end\n2 2 0\n",
        "6:1: the record '2 2 0' follows the 'end' of its list in line 5. Not read: 2 records up "
        "to 'elements' in line 9"}});
}

// A record of which a part can be read ends its list too.
TEST(Check, NamesTheRecordThatEndsItsList)
{
  static constexpr struct
  {
    const char* old;
    const char* replacement;
    const char* beginning;
    const char* end;
  } cases[] = {
      {"2 2 0\n", "2 2,0\n",
       "m:5:1: error: data lost: the list 'coordinates' (line 3) ends at '2 2,0'",
       ". Not read: 2 records up to 'end' in line 7"},
      {"3 4 0\n", "3 4\n", "m:6:1: error: data lost: the list 'coordinates' (line 3) ends at '3 4'",
       ". Not read: 1 record up to 'end' in line 7"}};
  for (const auto& c : cases) {
    const Lines messages = Messages(With(kBeam, c.old, c.replacement));
    ASSERT_FALSE(messages.empty());
    EXPECT_TRUE(messages[0].starts_with(c.beginning)) << messages[0];
    EXPECT_TRUE(messages[0].ends_with(c.end)) << messages[0];
  }
}

TEST(Check, NamesTheBlockThatIsNotClosed)
{
  ExpectDataLost(
      {{"end constraints\n", "",
        "17:1: the block 'constraints' (line 15) has no 'end' in front of 'nodal_point_loads'. Not "
        "read: 1 record, with the block 'nodal_point_loads', up to 'end' in line 19"},
       {"end coordinates\n", "",
        "7:1: the block 'coordinates' (line 3) has no 'end' in front of 'elements'. Not read: 2 "
        "records, with the block 'elements', up to 'end' in line 10"},
       {"end materials\n", "",
        "14:1: the block 'materials' (line 12) has no 'end' in front of 'constraints'. Not read: 1 "
        "record, with the block 'constraints', up to 'end' in line 16"},
       {"end constraints", "ned constraints",
        "17:1: the list 'constraints' (line 15) ends at 'ned constraints': did you mean 'end'? Not "
        "read: 1 record, with the block 'nodal_point_loads', up to 'end' in line 20"}});
}

TEST(Check, NamesTheBlockThatIsMisspelt)
{
  ExpectDataLost(
      {{"elements\n1", "elemnts\n1",
        "8:1: skipped in front of 'elements': 'elemnts': did you mean 'elements'? Not read: 2 "
        "records up to 'elements' in line 11"},
       {"coordinates\n1", "coordinats\n1",
        "3:1: skipped in front of 'coordinates': 'coordinats': did you mean 'coordinates'? Not "
        "read: 3 records up to 'coordinates' in line 7"},
       {"nnode = 2", "nnode = two",
        "2:44: skipped in front of the number: 'two'. Not read: all, with the block 'coordinates', "
        "up to the number in line 4"}});
}

TEST(Check, ReportsUnitSystemsWithoutSizes)
{
  const Lines codes =
      Codes(With(kBeam, "mesh", "units_names\nzero N m Pa 0 0\nend\nunits_res zero\nmesh"));
  EXPECT_NE(std::find(codes.begin(), codes.end(), "refused error"), codes.end());
}

// Nothing is lost where the skipped words hold no data.
TEST(Check, OnlyWarnsOfWordsInFrontOfTheEnd)
{
  EXPECT_EQ(Codes(With(kBeam, "end constraints", "the end")), Lines{"text-skipped warning"});
  EXPECT_EQ(Codes(With(kBeam, "mesh dim", "mesh\n2 storeys\ndim")), Lines{"text-skipped warning"});
  EXPECT_EQ(Codes(With(kBeam, "end constraints", "# 3 of 4\nend constraints")), Lines{});
}

TEST(Check, ReportsNoConsequencesOfLostRecords)
{
  EXPECT_EQ(Codes(With(With(kBeam, "3 4 0\n", "! 3\n3 4 0\n"), "elements\n", "elements\n")),
            Lines{"records-lost error"});
  EXPECT_EQ(Codes(With(kBeam, "2 2 3 1\nend elements\n", "! last\n2 2 3 1\nend elements\n") +
                  "elem_rotules\n2 01\nend\n"),
            Lines{"records-lost error"});
}

TEST(Check, ReportsUnknownNodesAndElementsOfRecordsByTheirCode)
{
  EXPECT_EQ(Codes(With(kBeam, "3 0 -3 0", "8 0 -3 0") + "elem_rotules\n7 01\nend\n"),
            (Lines{"unknown-reference error", "unknown-reference error"}));
}

namespace {

constexpr const char* kSystems = "units_names\nSI N m Pa 1 1\nkNmm kN mm GPa 1000 0.001\nend\n";

// The error lines of kBeam with lines about units in front of the mesh and after all blocks.
Lines UnitErrors(const std::string& before, const std::string& after,
                 const std::string& beam = kBeam)
{
  Lines errors;
  const std::string text = With(beam, "mesh", kSystems + before + "mesh") + after;
  for (const check::Located& problem : check::CheckText(text).problems) {
    if (problem.severity == check::Severity::Error)
      errors.push_back(check::LineOf(problem, "m"));
  }
  return errors;
}

}  // namespace

TEST(Check, ReportsUnitsOfResultsThatComeTooLate)
{
  EXPECT_EQ(UnitErrors("units_mesh m\nunits_mat_and_load SI\n", "units_res kNmm\n"),
            Lines{"m:27:1: error: data lost: 'units_res' comes after values that it should govern: "
                  "coordinates (line 10), materials (line 19), loads (line 25); lengths 1000 times "
                  "too small, forces 1000 times too large. Write the lines on units in front of "
                  "the mesh"});
}

TEST(Check, ReportsUnitsOfTheMeshAndOfMaterialsThatComeTooLate)
{
  EXPECT_EQ(
      UnitErrors("units_mat_and_load SI\nunits_res SI\n", "units_mesh mm\n"),
      Lines{"m:27:1: error: data lost: 'units_mesh' comes after values that it should govern: "
            "coordinates (line 10); lengths 1000 times too large. Write the lines on units in "
            "front of the mesh"});
  const std::string between =
      With(kBeam, "constraints\n1", "units_mat_and_load kNmm\nconstraints\n1");
  EXPECT_EQ(
      UnitErrors("units_mesh m\nunits_res SI\n", "", between),
      Lines{"m:21:1: error: data lost: 'units_mat_and_load' comes after values that it should "
            "govern: materials (line 19); lengths 1000 times too large, forces 1000 times too "
            "small. Write the lines on units in front of the mesh"});
}

TEST(Check, ReportsUnitsOfResultsAlone)
{
  EXPECT_EQ(
      UnitErrors("units_res kNmm\n", ""),
      (Lines{"m:6:1: error: data lost: 'units_res' without 'units_mat_and_load' in front of the "
             "values takes them in units of size 1: materials (line 18), loads (line 24); lengths "
             "multiplied by 1000, forces multiplied by 0.001. Write the lines on units in front of "
             "the mesh",
             "m:6:1: error: data lost: 'units_res' without 'units_mesh' in front of the values "
             "takes them in units of size 1: coordinates (line 9); lengths multiplied by 1000. "
             "Write the lines on units in front of the mesh"}));
}

TEST(Check, AcceptsUnitsWhoseOrderChangesNoValue)
{
  EXPECT_EQ(UnitErrors("units_res SI\n", ""), Lines{});  // factors of 1: names only
  EXPECT_EQ(UnitErrors("units_mesh m\nunits_mat_and_load SI\n", "units_res SI\n"), Lines{});
  EXPECT_EQ(UnitErrors("units_mesh mm\nunits_mat_and_load SI\nunits_res kNmm\n", ""), Lines{});
  // Two parts of the file in different units.
  const std::string two = With(kBeam, "nodal_point", "units_mat_and_load kNmm\nnodal_point");
  EXPECT_EQ(UnitErrors("units_mesh m\nunits_mat_and_load SI\nunits_res SI\n", "", two), Lines{});
  // Records that name their system, and supports without a value.
  const std::string named =
      With(With(kBeam, "Iz=0.01", "Iz=0.01 units=SI"), "3 0 -3 0", "3 0 -3 0 units=SI");
  EXPECT_EQ(UnitErrors("units_mesh mm\nunits_res kNmm\n", "", named), Lines{});
}

// Each kind of value by itself: a mistake of its own units only.
TEST(Check, FindsLateUnitsOfEveryKindOfValue)
{
  const std::string named =
      With(With(kBeam, "Iz=0.01", "Iz=0.01 units=SI"), "3 0 -3 0", "3 0 -3 0 units=SI");
  const std::string start = "units_names\nton t mm x 9810 0.001\nend\nunits_mesh m\nunits_res SI\n";
  constexpr const char* kLate = "units_mat_and_load ton\n";
  const auto late = [&](const char* old, const char* replacement, const std::string& kind) {
    const Lines errors = UnitErrors(start, kLate, With(named, old, replacement));
    ASSERT_EQ(errors.size(), 1u) << replacement;
    EXPECT_NE(errors[0].find("should govern: " + kind + " (line "), std::string::npos) << errors[0];
  };
  late("1 111 0 0 0", "1 111 0.1 0 0", "supports");
  late("1 111 0 0 0", "1 211 100 0 0", "supports");
  late("1 111 0 0 0\n", "1 111 0 0 0\n2 002 0 0 5\n", "supports");
  late("units=SI\nend nodal", "units=SI\n2 0 0 4\nend nodal", "loads");
  late("1 1 2 1", "1 1 2 1 A=0.2", "materials");
  late("end nodal_point_loads\n", "end nodal_point_loads\nglobal_pressure_loads\n1 0 -3\nend\n",
       "loads");
  const std::string rotated = With(named, "1 111 0 0 0", "1 111 0 0 0.1");
  EXPECT_EQ(UnitErrors(start, kLate, rotated), Lines{});
}

// Facts that the readers of records report, by hand.
TEST(Check, JudgesTheFactsOfReaders)
{
  static constexpr struct
  {
    ReadEvent event;
    const char* code;
    check::Severity severity;
  } cases[] = {{ReadEvent::NoValue, "key-without-value", check::Severity::Error},
               {ReadEvent::FreeValue, "value-at-free-component", check::Severity::Error},
               {ReadEvent::LoneWidth, "lone-width", check::Severity::Error},
               {ReadEvent::NumberPart, "number-partly-read", check::Severity::Error},
               {ReadEvent::GluedValue, "value-glued", check::Severity::Warning},
               {ReadEvent::WordInComment, "word-in-comment", check::Severity::Warning},
               {ReadEvent::UnitsRepeated, "defined-twice", check::Severity::Warning}};
  for (const auto& c : cases) {
    const std::string_view text = "elements\n1 1-4";
    TextScan scan(text);
    const Problem problem(100);
    check::Recorder recorder(text, scan, problem);
    Note(c.event, text.substr(11, 3), "name");
    ASSERT_EQ(recorder.Findings().size(), 1u) << c.code;
    EXPECT_STREQ(check::NameOf(recorder.Findings()[0].code), c.code);
    EXPECT_EQ(recorder.Findings()[0].severity, c.severity) << c.code;
    EXPECT_EQ(recorder.Findings()[0].offset, 11) << c.code;
    EXPECT_EQ(check::IsDataLost(recorder.Findings()[0].code), c.severity == check::Severity::Error)
        << c.code;
  }
}

TEST(Check, EveryCodeHasAnotherName)
{
  std::set<std::string> names;
  for (int i = 0; i < static_cast<int>(check::Code::kCount); ++i)
    names.insert(check::NameOf(static_cast<check::Code>(i)));
  EXPECT_EQ(names.size(), static_cast<std::size_t>(check::Code::kCount));
}

TEST(Check, ShowsTheHintOfARefusal)
{
  const std::string_view text = "mesh";
  TextScan scan(text);
  const Problem problem(100);
  check::Recorder recorder(text, scan, problem);
  recorder.AttemptAt(check::Code::Refused, 0, [] {
    Explain("write 2d");
    Fatal("error: no type\n");
  });
  recorder.AttemptAt(check::Code::Refused, 1, [] { Fatal("error: other\n"); });
  const std::vector<check::Located> found = check::Locate(recorder.Findings(), text);
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(check::LineOf(found[0], "m"), "m:1:1: error: no type (hint: write 2d)");
  EXPECT_EQ(check::LineOf(found[1], "m"), "m:1:2: error: other");
  check::Report report;
  report.problems = found;
  EXPECT_NE(check::JsonOf(report, "m").find("\"hint\": \"write 2d\""), std::string::npos);
}

TEST(Misread, ExplainsWholeNumbers)
{
  static constexpr struct
  {
    const char* word;
    const char* text;
  } cases[] = {{"1e2", "'1e2' is no whole number: read as 1; did you mean 100?"},
               {"0.0", "'0.0' is no whole number: read as 0; did you mean 0?"},
               {"1.5", "'1.5' is no whole number: read as 1"},
               {"1-4",
                "'1-4' is no whole number: read as 1; a range is not known, write every number, "
                "separated by blanks"},
               {"4,2", "'4,2' is no whole number: read as 4; did you mean 4 2?"},
               {"4,", "'4,' is no whole number: read as 4; did you mean 4?"}};
  for (const auto& c : cases)
    EXPECT_EQ(check::AboutMisreadNumber(c.word, NumberKind::kWhole), c.text);
  EXPECT_EQ(check::AboutMisreadNumber("1e2", NumberKind::kReal), cases[0].text);
}

TEST(NearestKeyword, FindsMisspeltWords)
{
  EXPECT_EQ(check::NearestKeyword("elemnts"), "elements");
  EXPECT_EQ(check::NearestKeyword("Constrains"), "constraints");
  EXPECT_EQ(check::NearestKeyword("edn"), "end");
  EXPECT_EQ(check::NearestKeyword("x2"), "");
  EXPECT_EQ(check::NearestKeyword("beams"), "");
}

TEST(Check, NamesTheCodeOfEveryFinding)
{
  std::string text = With(kBeam, "1 111 0 0 0", "1 131 0 0 0\n1 111 0 0 0 note=1");
  text = With(text, "A=0.1", "A=0.1m2") + "loads\n";
  std::vector<std::string> codes;
  for (const check::Located& problem : check::CheckText(text).problems)
    codes.push_back(check::NameOf(problem.code));
  EXPECT_EQ(codes, (Lines{"number-partly-read", "refused", "key-ignored", "unknown-keyword"}));
}

TEST(Check, DataLostIsAClassInTextAndJson)
{
  const check::Report report = check::CheckText(With(kBeam, "A=0.1", "A=0.1m2"));
  EXPECT_EQ(report.errors, 1);
  EXPECT_FALSE(report.summary);
  EXPECT_NE(check::JsonOf(report, "m")
                .find("\"code\": \"number-partly-read\",\n   \"class\": "
                      "\"data-lost\""),
            std::string::npos);
}

TEST(Check, RestoresTheEndOfTheErrorWriter)
{
  const auto end = [](std::string_view) {};
  const ErrorWriter::EndOfRun before = errorwriter.SetEndOfRun(end);
  check::CheckText(kBeam);
  EXPECT_EQ(errorwriter.SetEndOfRun(before), static_cast<ErrorWriter::EndOfRun>(end));
  EXPECT_EQ(readObserver, nullptr);
}

TEST(Check, FindsKeywordsThatAreGluedToTheirValues)
{
  const std::string plate = With(kPlate, "t=0.1", "t=0.1 Weight=2");
  EXPECT_EQ(Messages(With(plate, "mesh", "GravityDirection0 0 -1\nmesh")), Lines{});
  EXPECT_EQ(Messages(With(kSolid, "mesh", "Solver=Double\nmesh")),
            Lines{"m:2:1: error: Double solver not implemented for tetrahedras"});
}

// A broken element or support record leaves a node without its element or a model without its
// support. The check reports the record only.
TEST(Check, ReportsNoConsequencesOfErrors)
{
  EXPECT_EQ(Messages(With(kBeam, "2 2 3 1\n", "2 2 99999999999 1\n")),
            Lines{"m:10:1: error: the number 99999999999 is too large"});
  EXPECT_EQ(Messages(With(kBeam, "1 111 0 0 0", "1 131 0 0 0")),
            Lines{"m:16:1: error: Not reading correctly the constraints. Number=1"});
}

}  // namespace morlen
