// The top level of the problem file, its settings and the blocks of units and materials.

#include <gtest/gtest.h>

#include <numbers>
#include <string>

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

const char* const kUnits =
    "units_names\n"
    "SI N m Pa 1 1\n"
    "kN_mm kN mm GPa 1000 0.001\n"
    "cgs dyn cm Ba 1e-5 0.01\n"
    "end units_names\n";

// A small frame with these lines after the header.
std::unique_ptr<Problem> ReadWith(const std::string& settings)
{
  return ReadProblemText(ProblemParts().With(&ProblemParts::settings, settings).Text());
}

void ExpectRefused(const std::string& settings, const std::string& message)
{
  SCOPED_TRACE(settings);
  ExpectFatal([&] { ReadWith(settings); }, message);
}

// A mesh of one element between existing nodes.
std::string MeshBlock(const std::string& type, const std::string& nnode, int element,
                      const std::string& nodes)
{
  return "mesh dimension = 3 elemtype " + type + " nnode = " + nnode +
         " coordinates\nend\nelements\n" + std::to_string(element) + " " + nodes +
         " 1\nend elements\n";
}

const char* const kSolid =
    "problem type 3d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
    "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n1 1 2 3 4 1\nend\n";

const char* const kWrongSolver =
    "error: type of solver must be: Automatic, SkyLine, Double or Sparse\n";

const char* const kWrongSparse =
    "Solver Sparse needs three aditional arguments:\n"
    "    Solver: Sparse tolerance1 tolerance2 MaxIterations\n"
    "with 0.0<tolerance<10 and MaxIterations>10 and\n"
    " tolerance1<=tolerance2<10\n";

}  // namespace

TEST(ProblemHeader, GivesTheProblemType)
{
  static const struct
  {
    const char* header;
    PROBLEMTYPE type;
    int freeDegrees;
  } cases[] = {
      {"problem type 2d", kPlane, 3},
      {"problem type: 3D", kSpace, 6},
      {"problem type = 2D", kPlane, 3},
      {"PROBLEM TYPE reticulat 3D", kSpace, 6},
      {"problem type: Reticulat 2d", kPlane, 3},
      {"anything before = the two words\n# problemas typed 3d", kSpace, 6},
      {"problem here, then the type\n:=\r\n3d", kSpace, 6},
  };
  for (const auto& c : cases) {
    const ProblemParts parts = c.type == kPlane ? ProblemParts() : SpaceProblem();
    const auto problem = ReadProblemText(parts.With(&ProblemParts::header, c.header).Text());
    EXPECT_EQ(problem->problemType, c.type) << c.header;
    EXPECT_EQ(problem->components.count, c.freeDegrees) << c.header;
  }
}

TEST(ProblemHeader, IncompleteHeadersAreRefused)
{
  static const struct
  {
    const char* text;
    const char* message;
  } cases[] = {
      {"", "can't find word ***problem*** in input file\n"},
      {"type 2d\n", "can't find word ***problem*** in input file\n"},
      {"a problem",
       "can't find word ***problem*** in input file\n"},  // the file ends with the word
      {"problem 2d\n", "can't find word ***type*** in input file\n"},
      {"problem type", "can't find word ***type*** in input file\n"},
      {"problem type 1d\n", "Type of problem unknown. Only 2d and 3d\n"},
      {"problem type\n", "Type of problem unknown. Only 2d and 3d\n"},
      {"problem type 2d3\n", "Type of problem unknown. Only 2d and 3d\n"},
      {"problem type reticulat\n", "Type of problem unknown. Only 2d and 3d\n"},
      {"problem type reticulat reticulat 2d\n", "Type of problem unknown. Only 2d and 3d\n"},
      {"problem type 2d\n", "error: it is necessary at least one mesh\n"},
      {"problem type 2d", "error: it is necessary at least one mesh\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    ExpectFatal([&] { ReadProblemText(c.text); }, c.message);
  }
}

TEST(ProblemFile, DefaultsHoldWithoutSettings)
{
  const auto problem = ReadWith("");
  EXPECT_EQ(problem->units.meshLength, 1.0);
  EXPECT_EQ(problem->units.matLoadForce, 1.0);
  EXPECT_EQ(problem->units.matLoadLength, 1.0);
  EXPECT_EQ(problem->units.resForce, 1.0);
  EXPECT_EQ(problem->units.resLength, 1.0);
  EXPECT_EQ(problem->units.resForceName, "N");
  EXPECT_EQ(problem->units.resLengthName, "m");
  EXPECT_EQ(problem->units.resPressureName, "Pa");
  EXPECT_TRUE(problem->units.bases.empty());
  EXPECT_FALSE(problem->convertTo6Nodes);
  EXPECT_EQ(problem->stressOutput, StressOutput::Local);
  EXPECT_EQ(problem->initialNumNodes, 2);
  EXPECT_EQ(problem->numNodes, 2);
  EXPECT_EQ(problem->meshes.size(), 1u);
  EXPECT_EQ(problem->solverSettings.type, SolverType::Automatic);
  EXPECT_EQ(problem->solverSettings.tolerance1, -1.0);
  EXPECT_EQ(problem->solverSettings.tolerance2, -1.0);
  EXPECT_EQ(problem->solverSettings.maxIterations, 0);
  EXPECT_EQ(problem->gravityDirection(1), 0.0);
  EXPECT_EQ(problem->gravityDirection(2), 0.0);
  EXPECT_EQ(problem->gravityDirection(3), 1.0);
  EXPECT_EQ(problem->numOfDivisions, 20);
  EXPECT_EQ(problem->coplanarityAngle, 1e-7);
  EXPECT_FALSE(problem->smoothing.on);
  EXPECT_EQ(problem->smoothing.angle, -1.0);
}

TEST(ProblemFile, KeywordsMatchWithoutRegardToCase)
{
  ProblemParts parts;
  std::string text = parts.Text();
  for (char& c : text)
    c = static_cast<char>(std::toupper(c));
  const auto problem = ReadProblemText(text);
  EXPECT_EQ(problem->meshes.size(), 1u);
  EXPECT_NE(Find<Material>(problem->materials, 1), nullptr);
  EXPECT_TRUE(problem->FindNode(1)->constraint);
  EXPECT_TRUE(problem->FindNode(2)->load);
}

TEST(ProblemFile, CommentLinesAreSkipped)
{
  const auto problem = ReadWith(
      "# NumOfDivisions 7\n"
      "#NumOfDivisions 8\n"
      "  # a long comment " +
      std::string(2000, 'x') +
      "\n"
      "NumOfDivisions 9 # NumOfDivisions 10");
  EXPECT_EQ(problem->numOfDivisions, 9);
}

TEST(ProblemFile, UnknownWordsAreRefused)
{
  for (const std::string word :
       {"meshes", "unit_mesh", "materials:", "constraints=", "end", "NumOfDivision", "="})
    ExpectRefused(word, "Unknown key name=" + word + "\n");
}

TEST(ProblemFile, FlagsNeedNoValue)
{
  EXPECT_TRUE(ReadWith("ConvertTo6Nodes")->convertTo6Nodes);
  EXPECT_TRUE(ReadWith("converttO6nodes=yes")->convertTo6Nodes);
  EXPECT_EQ(ReadWith("MainStresses")->stressOutput, StressOutput::Main);
  EXPECT_EQ(ReadWith("MAINANDLOCALSTRESSES")->stressOutput, StressOutput::MainAndLocal);
  EXPECT_EQ(ReadWith("MainAndLocalStresses MainStresses")->stressOutput, StressOutput::Main);
}

TEST(ProblemFile, ValuesMayBeGluedToTheirKeyword)
{
  for (const char* settings :
       {"NumOfDivisions 7", "NumOfDivisions=7", "NumOfDivisions: 7", "NumOfDivisions7",
        "numofdivisions = 7", "NumOfDivisions:=:\n= 7", "NumOfDivisions : = =7",
        "NumOfDivisions\n7", "NumOfDivisions 7.9", "NumOfDivisions 007", "NumOfDivisions 7x"})
    EXPECT_EQ(ReadWith(settings)->numOfDivisions, 7) << settings;
}

TEST(ProblemFile, NumOfDivisionsHasLimits)
{
  EXPECT_EQ(ReadWith("NumOfDivisions 1")->numOfDivisions, 1);
  EXPECT_EQ(ReadWith("NumOfDivisions 100000")->numOfDivisions, 100000);
  for (const char* value : {"0", "-3", "x", "-99999999999999999999"})
    ExpectRefused(std::string("NumOfDivisions ") + value,
                  "error: Number of divisions must be positive");
  for (const char* value : {"100001", "99999999999999999999"})
    ExpectRefused(std::string("NumOfDivisions ") + value,
                  "error: Number of divisions must be at most 100000");
}

TEST(ProblemFile, AnglesLieBetweenZeroAndPi)
{
  static const struct
  {
    const char* value;
    double angle;
  } accepted[] = {{"0.5", 0.5},
                  {"1e-15", 1e-15},
                  {"3.14159265358979", 3.14159265358979},
                  {"3.141592653589793", std::numbers::pi}};
  for (const auto& c : accepted) {
    EXPECT_EQ(ReadWith(std::string("CoplanarityAngle ") + c.value)->coplanarityAngle, c.angle);
    const auto problem = ReadWith(std::string("DoSmoothing=") + c.value);
    EXPECT_TRUE(problem->smoothing.on);
    EXPECT_EQ(problem->smoothing.angle, c.angle);
  }
  for (const std::string value : {"0", "9e-16", "-1", "4", "3.1416", "nan", "inf", "x"}) {
    ExpectRefused("CoplanarityAngle " + value,
                  "error: CoplanarityAngle must have angle >0 and <PI rad\n");
    ExpectRefused("DoSmoothing " + value, "error: DoSmoothing must have angle >0 and <PI rad\n");
  }
}

TEST(ProblemFile, SolverIsChosenByTheBeginningOfItsName)
{
  static const struct
  {
    const char* settings;
    SolverType type;
  } cases[] = {
      {"Solver Automatic", SolverType::Automatic},
      {"Solver skylinex", SolverType::SkyLine},
      {"SOLVER=SKYLINE", SolverType::SkyLine},
      {"SolverSkyLine", SolverType::SkyLine},
      {"solver : double", SolverType::Double},
      {"Solver: Direct", SolverType::Direct},
      {"Solver SkyLine Solver Double", SolverType::Double},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ReadWith(c.settings)->solverSettings.type, c.type) << c.settings;
  for (const char* settings : {"Solver Cholesky", "Solver Sky", "Solver=", "Solver 1"})
    ExpectRefused(std::string(settings) + (std::string(settings) == "Solver=" ? " x" : ""),
                  kWrongSolver);
}

TEST(ProblemFile, SparseSolverNeedsThreeNumbers)
{
  const auto problem = ReadWith("Solver: Sparse 1e-6 1e-8 10");
  EXPECT_EQ(problem->solverSettings.type, SolverType::Sparse);
  EXPECT_EQ(problem->solverSettings.tolerance1, 1e-6);
  EXPECT_EQ(problem->solverSettings.tolerance2, 1e-8);
  EXPECT_EQ(problem->solverSettings.maxIterations, 10);
  EXPECT_EQ(ReadWith("Solver sparse 10 10 99")->solverSettings.tolerance1, 10.0);
  for (const char* numbers : {"1e-6 1e-6 9", "0 1 10", "1 0 10", "10.5 1 10", "1 10.5 10",
                              "-1 1 10", "1 1 x", "1 x 10", "nan 1 10", "1 nan 10"})
    ExpectRefused(std::string("Solver Sparse ") + numbers, kWrongSparse);
}

TEST(ProblemFile, GravityDirectionGetsUnitLength)
{
  const auto problem = ReadWith("GravityDirection = 3 0 -4");
  EXPECT_DOUBLE_EQ(problem->gravityDirection(1), 0.6);
  EXPECT_DOUBLE_EQ(problem->gravityDirection(2), 0.0);
  EXPECT_DOUBLE_EQ(problem->gravityDirection(3), -0.8);
  EXPECT_DOUBLE_EQ(ReadWith("GravityDirection 0 1e-14 0")->gravityDirection(2), 1.0);
  for (const char* vector : {"0 0 0", "0 1e-16 0", "x y z"})
    ExpectRefused(std::string("GravityDirection ") + vector,
                  "error: GravityDirection must be a vector no null");
}

TEST(ProblemUnits, MeshUnitIsALengthUnit)
{
  for (const char* settings :
       {"units_mesh=mm", "units_mesh: mm", "units_mesh mm", "UNITS_MESHmm"}) {
    const auto problem = ReadWith(std::string(kUnits) + settings);
    EXPECT_EQ(problem->units.meshLength, 0.001) << settings;
    EXPECT_EQ((*problem->FindNode(2))(1), 0.001) << settings;
  }
  ExpectRefused(std::string(kUnits) + "units_mesh MM",
                "error: Unit length name 'MM' has not been previously defined\n");
  ExpectRefused(std::string(kUnits) + "units_mesh SI",
                "error: Unit length name 'SI' has not been previously defined\n");
}

TEST(ProblemUnits, SystemsSetTheFactors)
{
  const auto problem = ReadWith(std::string(kUnits) + "units_mat_and_load = kN_mm\nunits_res: cgs");
  EXPECT_EQ(problem->units.matLoadForce, 1000.0);
  EXPECT_EQ(problem->units.matLoadLength, 0.001);
  EXPECT_EQ(problem->units.resForce, 1e-5);
  EXPECT_EQ(problem->units.resLength, 0.01);
  EXPECT_EQ(problem->units.resForceName, "dyn");
  EXPECT_EQ(problem->units.resLengthName, "cm");
  EXPECT_EQ(problem->units.resPressureName, "Ba");
}

TEST(ProblemUnits, LookUpsAreChecked)
{
  const std::string longName(21, 'u');
  for (const char* keyword : {"units_mat_and_load ", "units_res "}) {
    ExpectRefused(std::string(kUnits) + keyword + "si",
                  "error: Unit name 'si' has not been previously defined\n");
    ExpectRefused(std::string(keyword) + "SI",
                  "error: Unit name 'SI' has not been previously defined\n");
    ExpectRefused(keyword + longName, "error: Unit name '" + longName + "' is too long\n");
  }
}

TEST(ProblemUnits, FactorsMustBePositive)
{
  const auto table = [](const std::string& factors) {
    return "units_names\nbad N b Pa " + factors + "\nend\n";
  };
  const char* const mesh = "error: Units_mesh must be a positive number\n";
  const char* const matAndLoad = "error: units_mat_and_load must be two positive numbers\n";
  const char* const res = "error: units_res must be two positive numbers and three names\n";
  ExpectRefused(table("1 0") + "units_mesh b", mesh);
  ExpectRefused(table("1 -1") + "units_mesh b", mesh);
  EXPECT_EQ(ReadWith(table("1 1e-18") + "units_mesh b")->units.meshLength, 1e-18);
  ExpectRefused(table("0 1") + "units_mesh b",
                "error: Unit name 'bad' must have two positive numbers\n");
  for (const char* factors : {"0 1", "1 0", "-1 1", "1 -1e-18"}) {
    ExpectRefused(table(factors) + "units_mat_and_load bad", matAndLoad);
    ExpectRefused(table(factors) + "units_res bad", res);
  }
  EXPECT_EQ(ReadWith(table("1e-18 1") + "units_mat_and_load bad")->units.matLoadForce, 1e-18);
  EXPECT_EQ(ReadWith(table("1 1e-18") + "units_res bad")->units.resLength, 1e-18);
}

TEST(ProblemUnits, TableOf120LinesIsSorted)
{
  std::string block = "units_names\n";
  for (int i = 0; i < 120; ++i) {
    const int shuffled = i * 37 % 120;
    block += "u" + std::to_string(1000 + shuffled) + " N m" + std::to_string(shuffled) + " Pa 1 " +
             std::to_string(shuffled + 1) + "\n";
  }
  const auto problem = ReadWith(block + "end\nunits_res u1077\nunits_mesh m3");
  ASSERT_EQ(problem->units.bases.size(), 120u);
  for (int i = 0; i < 120; ++i)
    EXPECT_EQ(problem->units.bases[i].name, "u" + std::to_string(1000 + i));
  EXPECT_EQ(problem->units.resLength, 78.0);
  EXPECT_EQ(problem->units.meshLength, 4.0);
}

TEST(ProblemUnits, BlocksAddToOneTable)
{
  const auto problem = ReadWith(
      "units_names\n# comment\n\nb N m Pa 1 1\n : = a N m Pa 1 1 more words\nENDING of it\n"
      "Units_Names\nA N m Pa 1 1\nend\n");
  ASSERT_EQ(problem->units.bases.size(), 3u);
  EXPECT_EQ(problem->units.bases[0].name, "A");
  EXPECT_EQ(problem->units.bases[1].name, "a");
  EXPECT_EQ(problem->units.bases[2].name, "b");
}

TEST(ProblemUnits, RecordsAreChecked)
{
  const char* const items =
      "error: 'units_names' items should be: name nameN nameM namePa facN facM\n";
  for (const char* record : {"SI N m Pa 1", "SI N m Pa 1 x", "SI N m Pa", "SI", "SI N m Pa x 1",
                             "a_name_of_21_characters N m Pa 1 1"})
    ExpectRefused(std::string("units_names\n") + record + "\nend\n", items);
  ExpectFatal([] { ReadProblemText("problem type 2d\nunits_names\nSI N m Pa 1 1\n"); },
              "error: 'units_names' should finish with the 'end' word\n");
  ExpectFatal([] { ReadProblemText("problem type 2d\nunits_names"); },
              "error: 'units_names' should finish with the 'end' word\n");
}

TEST(ProblemMaterials, AreStoredUnderTheirNumber)
{
  const auto problem =
      ReadProblemText(ProblemParts()
                          .With(&ProblemParts::materials, "# first\n1 E=2 A=3\n\n7: E 4\n # last\n")
                          .Text());
  EXPECT_EQ(Find<Material>(problem->materials, 1)->E1, 2.0);
  EXPECT_EQ(Find<Material>(problem->materials, 7)->E1, 4.0);
  EXPECT_EQ(problem->materials.Count(), 2);
}

TEST(ProblemMaterials, RepeatedNumbersAreRefused)
{
  const std::string message = FatalCaught([] {
    ReadProblemText(ProblemParts().With(&ProblemParts::materials, "1 E 1\n1 E 2").Text());
  });
  EXPECT_NE(message.find("Repeated index"), std::string::npos) << message;
}

TEST(ProblemMaterials, BlockMustEnd)
{
  ExpectFatal([] { ReadProblemText("problem type 2d\nmaterials\n1 E 1\nnothing more\n"); },
              "can't find word ***end*** in input file\n");
}

TEST(ProblemMeshes, AtMostTenAreAccepted)
{
  std::string text = SpaceProblem().Text();
  for (int i = 2; i <= 10; ++i)
    text += MeshBlock("Linear", "2", i, "1 2");
  EXPECT_EQ(ReadProblemText(text)->meshes.size(), 10u);
  ExpectFatal([&] { ReadProblemText(text + MeshBlock("Linear", "2", 11, "1 2")); },
              "error: maximum number of meshes is: 10\n");
}

TEST(ProblemMeshes, ShareTheNodesOfTheFirst)
{
  const auto problem = ReadProblemText(SpaceProblem().Text() + MeshBlock("Linear", "2", 9, "2 1"));
  ASSERT_EQ(problem->meshes.size(), 2u);
  EXPECT_EQ(problem->meshes[1]->GiveNodePlex(), problem->meshes[0]->GiveNodePlex());
  const Elem& first = *problem->GiveElem(1);
  const Elem& second = *problem->GiveElem(9);
  EXPECT_EQ(first(0), second(1));
  EXPECT_EQ(first(1), second(0));
  EXPECT_EQ(problem->GiveElem(2), nullptr);
  EXPECT_EQ(problem->GiveElem(0), nullptr);
  EXPECT_EQ(problem->GiveElem(-1), nullptr);
  EXPECT_EQ(problem->GiveElem(1000000), nullptr);
  EXPECT_EQ(problem->GiveMaxElmNum(), 9);
  EXPECT_EQ(problem->CheckElementsNumbers(), 0);
}

TEST(ProblemMeshes, GiveMaxElmNumIsZeroWithoutMeshes)
{
  EXPECT_EQ(Problem(100).GiveMaxElmNum(), 0);
}

TEST(ProblemMeshes, NodesListedAgainMove)
{
  const auto problem = ReadProblemText(
      SpaceProblem().Text() +
      "mesh dimension 3 elemtype Linear nnode 2 coordinates\n1 0 0 5\n2 1 0 7\nend\n"
      "elements\n2 1 2 1\nend\n");
  const Node& node = *problem->FindNode(2);
  EXPECT_EQ(node(3), 7.0);
  EXPECT_EQ((*problem->GiveElem(1))(1), &node);
  EXPECT_EQ((*problem->GiveElem(2))(1), &node);
  EXPECT_TRUE(node.load);
  EXPECT_TRUE(problem->FindNode(1)->constraint);
}

TEST(ProblemMeshes, ElementsOfDifferentMeshesHaveDifferentNumbers)
{
  const std::string seventh =
      SpaceProblem().With(&ProblemParts::elements, "3 1 2 1\n7 1 2 1").Text();
  ExpectFatal([&] { ReadProblemText(seventh + MeshBlock("Linear", "2", 7, "1 2")); },
              "error: All elements must have different number. Check elm num: 7\n");
  ExpectFatal(
      [&] {
        ReadProblemText(seventh + MeshBlock("Linear", "2", 8, "1 2") +
                        MeshBlock("Linear", "2", 8, "1 2"));
      },
      "error: All elements must have different number. Check elm num: 8\n");
}

TEST(ProblemMeshes, RepeatedElementOfOneMeshReplacesTheEarlier)
{
  const auto problem =
      ReadProblemText(ProblemParts().With(&ProblemParts::elements, "1 1 2 1\n1 2 1 9").Text());
  EXPECT_EQ(problem->GiveElem(1)->GiveMaterialNum(), 9);
  EXPECT_EQ(problem->meshes[0]->GiveElemPlex()->Count(), 1);
}

TEST(ProblemMeshes, SolidsAloneHaveThreeDegreesAndSmoothing)
{
  const auto problem = ReadProblemText(kSolid);
  EXPECT_EQ(problem->components.count, 3);
  EXPECT_TRUE(problem->smoothing.on);
  EXPECT_EQ(problem->smoothing.angle, -1.0);
}

TEST(ProblemMeshes, SolidsCannotBeMixedWithOthers)
{
  const char* const message =
      "error: Element tetrahedra cannot be mixed with any other element type";
  ExpectFatal([&] { ReadProblemText(kSolid + MeshBlock("Linear", "2", 2, "1 2")); }, message);
  ExpectFatal([&] { ReadProblemText(kSolid + MeshBlock("Triangle", "3", 2, "1 2 3")); }, message);
}

TEST(ProblemMeshes, PlaneProblemsHaveNoZ)
{
  const std::string mesh3d =
      "problem type 2d\nmesh dimension 3 elemtype Linear nnode 2 coordinates\n"
      "1 0 0 0\n2 1 0 @\nend\nelements\n1 1 2 1\nend\n";
  const auto with = [&](const std::string& z) {
    return std::string(mesh3d).replace(mesh3d.find('@'), 1, z);
  };
  EXPECT_EQ(ReadProblemText(with("0"))->components.count, 3);
  ExpectFatal([&] { ReadProblemText(with("0.5")); },
              "error: node 2 has a z coordinate in a 2d problem\n");
}

TEST(ProblemMeshes, NodesWithTwoCoordinatesGetZZeroInSpace)
{
  const auto problem = ReadProblemText(
      "problem type 3d\nmesh dimension 2 elemtype Linear nnode 2 coordinates\n"
      "1 0 0\n2 1 0\nend\nelements\n1 1 2 1\nend\n");
  EXPECT_EQ(problem->FindNode(2)->Size(), 3);
  EXPECT_EQ((*problem->FindNode(2))(3), 0.0);
}

TEST(ProblemMaterials, AnElementsMaterialIsCompletedByTheNumberedOne)
{
  const auto problem = ReadProblemText(
      ProblemParts().With(&ProblemParts::elements, "1 1 2 1 A=5\n2 1 2 0 E=7").Text());
  const Material& completed = problem->RequireMaterial(*problem->GiveElem(1));
  EXPECT_EQ(completed.A, 5.0);
  EXPECT_EQ(completed.E1, 1.0);
  EXPECT_EQ(completed.Iz, 1.0);
  const Material& withoutNumber = problem->RequireMaterial(*problem->GiveElem(2));
  EXPECT_EQ(withoutNumber.E1, 7.0);
  EXPECT_EQ(withoutNumber.A, 0.0);
}

}  // namespace morlen
