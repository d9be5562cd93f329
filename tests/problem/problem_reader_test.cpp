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

// The project of a small frame with these lines behind the header.
std::unique_ptr<Project> ReadWith(const std::string& settings)
{
  return ReadProject(ProblemParts().With(&ProblemParts::settings, settings).Text());
}

void ExpectRefused(const std::string& settings, const std::string& message)
{
  SCOPED_TRACE(settings);
  ExpectFatal([&] { ReadWith(settings); }, message);
}

// A mesh of one element between nodes 1 and 2 (triangles and more: also 3, 4).
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
    const auto project = ReadProject(parts.With(&ProblemParts::header, c.header).Text());
    EXPECT_EQ(project->problem.problemType, c.type) << c.header;
    EXPECT_EQ(project->problem.components.count, c.freeDegrees) << c.header;
  }
}

TEST(ProblemHeader, IsRefused)
{
  static const struct
  {
    const char* text;
    const char* message;
  } cases[] = {
      {"", "can't find word ***problem*** in input file\n"},
      {"type 2d\n", "can't find word ***problem*** in input file\n"},
      {"a problem", "can't find word ***problem*** in input file\n"},  // nothing behind the word
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
    ExpectFatal([&] { ReadProject(c.text); }, c.message);
  }
}

TEST(ProblemFile, DefaultsHoldWithoutSettings)
{
  const auto project = ReadWith("");
  EXPECT_EQ(project->problem.units.meshLength, 1.0);
  EXPECT_EQ(project->problem.units.matLoadForce, 1.0);
  EXPECT_EQ(project->problem.units.matLoadLength, 1.0);
  EXPECT_EQ(project->problem.units.resForce, 1.0);
  EXPECT_EQ(project->problem.units.resLength, 1.0);
  EXPECT_EQ(project->problem.units.resForceName, "N");
  EXPECT_EQ(project->problem.units.resLengthName, "m");
  EXPECT_EQ(project->problem.units.resPressureName, "Pa");
  EXPECT_TRUE(project->problem.units.bases.empty());
  EXPECT_FALSE(project->problem.convertTo6Nodes);
  EXPECT_EQ(project->problem.stressOutput, StressOutput::Local);
  EXPECT_EQ(project->problem.initialNumNodes, 2);
  EXPECT_EQ(project->problem.numNodes, 2);
  EXPECT_EQ(project->problem.meshes.size(), 1u);
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::Automatic);
  EXPECT_EQ(project->problem.solverSettings.tolerance1, -1.0);
  EXPECT_EQ(project->problem.solverSettings.tolerance2, -1.0);
  EXPECT_EQ(project->problem.solverSettings.maxIterations, 0);
  EXPECT_EQ(project->problem.gravityDirection(1), 0.0);
  EXPECT_EQ(project->problem.gravityDirection(2), 0.0);
  EXPECT_EQ(project->problem.gravityDirection(3), 1.0);
  EXPECT_EQ(project->problem.numOfDivisions, 20);
  EXPECT_EQ(project->problem.coplanarityAngle, 1e-7);
  EXPECT_FALSE(project->problem.smoothing.on);
  EXPECT_EQ(project->problem.smoothing.angle, -1.0);
}

TEST(ProblemFile, KeywordsMatchWithoutRegardToCase)
{
  ProblemParts parts;
  std::string text = parts.Text();
  for (char& c : text)
    c = static_cast<char>(std::toupper(c));
  const auto project = ReadProject(text);
  EXPECT_EQ(project->problem.meshes.size(), 1u);
  EXPECT_NE(Find<Material>(project->problem.materials, 1), nullptr);
  EXPECT_TRUE(project->FindNode(1)->constraint);
  EXPECT_TRUE(project->FindNode(2)->load);
}

TEST(ProblemFile, CommentLinesAreSkipped)
{
  const auto project = ReadWith(
      "# NumOfDivisions 7\n"
      "#NumOfDivisions 8\n"
      "  # a long comment " +
      std::string(2000, 'x') +
      "\n"
      "NumOfDivisions 9 # NumOfDivisions 10");
  EXPECT_EQ(project->problem.numOfDivisions, 9);
}

TEST(ProblemFile, UnknownWordsAreRefused)
{
  for (const std::string word :
       {"meshes", "unit_mesh", "materials:", "constraints=", "end", "NumOfDivision", "="})
    ExpectRefused(word, "Unknown key name=" + word + "\n");
}

TEST(ProblemFile, FlagsNeedNoValue)
{
  EXPECT_TRUE(ReadWith("ConvertTo6Nodes")->problem.convertTo6Nodes);
  EXPECT_TRUE(ReadWith("converttO6nodes=yes")->problem.convertTo6Nodes);
  EXPECT_EQ(ReadWith("MainStresses")->problem.stressOutput, StressOutput::Main);
  EXPECT_EQ(ReadWith("MAINANDLOCALSTRESSES")->problem.stressOutput, StressOutput::MainAndLocal);
  EXPECT_EQ(ReadWith("MainAndLocalStresses MainStresses")->problem.stressOutput,
            StressOutput::Main);
}

TEST(ProblemFile, ValuesMayBeGluedToTheirKeyword)
{
  for (const char* settings :
       {"NumOfDivisions 7", "NumOfDivisions=7", "NumOfDivisions: 7", "NumOfDivisions7",
        "numofdivisions = 7", "NumOfDivisions:=:\n= 7", "NumOfDivisions : = =7",
        "NumOfDivisions\n7", "NumOfDivisions 7.9", "NumOfDivisions 007", "NumOfDivisions 7x"})
    EXPECT_EQ(ReadWith(settings)->problem.numOfDivisions, 7) << settings;
}

TEST(ProblemFile, NumOfDivisionsHasLimits)
{
  EXPECT_EQ(ReadWith("NumOfDivisions 1")->problem.numOfDivisions, 1);
  EXPECT_EQ(ReadWith("NumOfDivisions 100000")->problem.numOfDivisions, 100000);
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
    EXPECT_EQ(ReadWith(std::string("CoplanarityAngle ") + c.value)->problem.coplanarityAngle,
              c.angle);
    const auto project = ReadWith(std::string("DoSmoothing=") + c.value);
    EXPECT_TRUE(project->problem.smoothing.on);
    EXPECT_EQ(project->problem.smoothing.angle, c.angle);
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
      {"Solver SkyLine Solver Double", SolverType::Double},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ReadWith(c.settings)->problem.solverSettings.type, c.type) << c.settings;
  for (const char* settings : {"Solver Cholesky", "Solver Sky", "Solver=", "Solver 1"})
    ExpectRefused(std::string(settings) + (std::string(settings) == "Solver=" ? " x" : ""),
                  kWrongSolver);
}

TEST(ProblemFile, SparseSolverTakesThreeNumbers)
{
  const auto project = ReadWith("Solver: Sparse 1e-6 1e-8 10");
  EXPECT_EQ(project->problem.solverSettings.type, SolverType::Sparse);
  EXPECT_EQ(project->problem.solverSettings.tolerance1, 1e-6);
  EXPECT_EQ(project->problem.solverSettings.tolerance2, 1e-8);
  EXPECT_EQ(project->problem.solverSettings.maxIterations, 10);
  EXPECT_EQ(ReadWith("Solver sparse 10 10 99")->problem.solverSettings.tolerance1, 10.0);
  for (const char* numbers : {"1e-6 1e-6 9", "0 1 10", "1 0 10", "10.5 1 10", "1 10.5 10",
                              "-1 1 10", "1 1 x", "1 x 10", "nan 1 10", "1 nan 10"})
    ExpectRefused(std::string("Solver Sparse ") + numbers, kWrongSparse);
}

TEST(ProblemFile, GravityDirectionGetsUnitLength)
{
  const auto project = ReadWith("GravityDirection = 3 0 -4");
  EXPECT_DOUBLE_EQ(project->problem.gravityDirection(1), 0.6);
  EXPECT_DOUBLE_EQ(project->problem.gravityDirection(2), 0.0);
  EXPECT_DOUBLE_EQ(project->problem.gravityDirection(3), -0.8);
  EXPECT_DOUBLE_EQ(ReadWith("GravityDirection 0 1e-14 0")->problem.gravityDirection(2), 1.0);
  for (const char* vector : {"0 0 0", "0 1e-16 0", "x y z"})
    ExpectRefused(std::string("GravityDirection ") + vector,
                  "error: GravityDirection must be a vector no null");
}

TEST(ProblemUnits, MeshUnitIsAlengthUnit)
{
  for (const char* settings :
       {"units_mesh=mm", "units_mesh: mm", "units_mesh mm", "UNITS_MESHmm"}) {
    const auto project = ReadWith(std::string(kUnits) + settings);
    EXPECT_EQ(project->problem.units.meshLength, 0.001) << settings;
    EXPECT_EQ((*project->FindNode(2))(1), 0.001) << settings;
  }
  ExpectRefused(std::string(kUnits) + "units_mesh MM",
                "error: Unit length name 'MM' has not been previously defined\n");
  ExpectRefused(std::string(kUnits) + "units_mesh SI",
                "error: Unit length name 'SI' has not been previously defined\n");
}

TEST(ProblemUnits, SystemsSetTheFactors)
{
  const auto project = ReadWith(std::string(kUnits) + "units_mat_and_load = kN_mm\nunits_res: cgs");
  EXPECT_EQ(project->problem.units.matLoadForce, 1000.0);
  EXPECT_EQ(project->problem.units.matLoadLength, 0.001);
  EXPECT_EQ(project->problem.units.resForce, 1e-5);
  EXPECT_EQ(project->problem.units.resLength, 0.01);
  EXPECT_EQ(project->problem.units.resForceName, "dyn");
  EXPECT_EQ(project->problem.units.resLengthName, "cm");
  EXPECT_EQ(project->problem.units.resPressureName, "Ba");
}

TEST(ProblemUnits, LookUpsAreChecked)
{
  for (const std::string keyword : {"units_mat_and_load", "units_res"}) {
    ExpectRefused(std::string(kUnits) + keyword + " si",
                  "error: Unit name 'si' has not been previously defined\n");
    ExpectRefused(keyword + " SI", "error: Unit name 'SI' has not been previously defined\n");
    const std::string longName(21, 'u');
    ExpectRefused(keyword + " " + longName, "error: Unit name '" + longName + "' is too long\n");
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
  EXPECT_EQ(ReadWith(table("1 1e-18") + "units_mesh b")->problem.units.meshLength, 1e-18);
  EXPECT_EQ(ReadWith(table("0 1") + "units_mesh b")->problem.units.meshLength, 1.0);
  for (const char* factors : {"0 1", "1 0", "-1 1", "1 -1e-18"}) {
    ExpectRefused(table(factors) + "units_mat_and_load bad", matAndLoad);
    ExpectRefused(table(factors) + "units_res bad", res);
  }
  EXPECT_EQ(ReadWith(table("1e-18 1") + "units_mat_and_load bad")->problem.units.matLoadForce,
            1e-18);
  EXPECT_EQ(ReadWith(table("1 1e-18") + "units_res bad")->problem.units.resLength, 1e-18);
}

TEST(ProblemUnits, TableOf120LinesIsSorted)
{
  std::string block = "units_names\n";
  for (int i = 0; i < 120; ++i) {
    const int shuffled = i * 37 % 120;
    block += "u" + std::to_string(1000 + shuffled) + " N m" + std::to_string(shuffled) + " Pa 1 " +
             std::to_string(shuffled + 1) + "\n";
  }
  const auto project = ReadWith(block + "end\nunits_res u1077\nunits_mesh m3");
  ASSERT_EQ(project->problem.units.bases.size(), 120u);
  for (int i = 0; i < 120; ++i)
    EXPECT_EQ(project->problem.units.bases[i].name, "u" + std::to_string(1000 + i));
  EXPECT_EQ(project->problem.units.resLength, 78.0);
  EXPECT_EQ(project->problem.units.meshLength, 4.0);
}

TEST(ProblemUnits, BlocksAddToOneTable)
{
  const auto project = ReadWith(
      "units_names\n# comment\n\nb N m Pa 1 1\n : = a N m Pa 1 1 more words\nENDING of it\n"
      "Units_Names\nA N m Pa 1 1\nend\n");
  ASSERT_EQ(project->problem.units.bases.size(), 3u);
  EXPECT_EQ(project->problem.units.bases[0].name, "A");
  EXPECT_EQ(project->problem.units.bases[1].name, "a");
  EXPECT_EQ(project->problem.units.bases[2].name, "b");
}

TEST(ProblemUnits, RecordsAreChecked)
{
  const char* const items =
      "error: 'units_names' items should be: name nameN nameM namePa facN facM\n";
  for (const char* record : {"SI N m Pa 1", "SI N m Pa 1 x", "SI N m Pa", "SI", "SI N m Pa x 1",
                             "a_name_of_21_characters N m Pa 1 1"})
    ExpectRefused(std::string("units_names\n") + record + "\nend\n", items);
  ExpectFatal([] { ReadProject("problem type 2d\nunits_names\nSI N m Pa 1 1\n"); },
              "error: 'units_names' should finish with the 'end' word\n");
  ExpectFatal([] { ReadProject("problem type 2d\nunits_names"); },
              "error: 'units_names' should finish with the 'end' word\n");
}

TEST(ProblemMaterials, AreStoredUnderTheirNumber)
{
  const auto project =
      ReadProject(ProblemParts()
                      .With(&ProblemParts::materials, "# first\n1 E=2 A=3\n\n7: E 4\n # last\n")
                      .Text());
  EXPECT_EQ(Find<Material>(project->problem.materials, 1)->E1, 2.0);
  EXPECT_EQ(Find<Material>(project->problem.materials, 7)->E1, 4.0);
  EXPECT_EQ(project->problem.materials.Count(), 2);
}

TEST(ProblemMaterials, RepeatedNumbersAreRefused)
{
  const std::string message = FatalCaught(
      [] { ReadProject(ProblemParts().With(&ProblemParts::materials, "1 E 1\n1 E 2").Text()); });
  EXPECT_NE(message.find("Repeated index"), std::string::npos) << message;
}

TEST(ProblemMaterials, BlockMustEnd)
{
  ExpectFatal([] { ReadProject("problem type 2d\nmaterials\n1 E 1\nnothing more\n"); },
              "can't find word ***end*** in input file\n");
}

TEST(ProblemMeshes, TenAreAccepted)
{
  std::string text = SpaceProblem().Text();
  for (int i = 2; i <= 10; ++i)
    text += MeshBlock("Linear", "2", i, "1 2");
  EXPECT_EQ(ReadProject(text)->problem.meshes.size(), 10u);
  ExpectFatal([&] { ReadProject(text + MeshBlock("Linear", "2", 11, "1 2")); },
              "error: maximum number of meshes is: 10\n");
}

TEST(ProblemMeshes, ShareTheNodesOfTheFirst)
{
  const auto project = ReadProject(SpaceProblem().Text() + MeshBlock("Linear", "2", 9, "2 1"));
  ASSERT_EQ(project->problem.meshes.size(), 2u);
  EXPECT_EQ(project->problem.meshes[1]->GiveNodePlex(), project->problem.meshes[0]->GiveNodePlex());
  const Elem& first = *project->GiveElem(1);
  const Elem& second = *project->GiveElem(9);
  EXPECT_EQ(first(0), second(1));
  EXPECT_EQ(first(1), second(0));
  EXPECT_EQ(project->GiveElem(2), nullptr);
  EXPECT_EQ(project->GiveElem(0), nullptr);
  EXPECT_EQ(project->GiveElem(-1), nullptr);
  EXPECT_EQ(project->GiveElem(1000000), nullptr);
  EXPECT_EQ(project->GiveMaxElmNum(), 9);
  EXPECT_EQ(project->CheckElementsNumbers(), 0);
}

TEST(ProblemMeshes, GiveMaxElmNumIsZeroWithoutMeshes)
{
  EXPECT_EQ(Project(100).GiveMaxElmNum(), 0);
}

TEST(ProblemMeshes, NodesListedAgainMove)
{
  const auto project =
      ReadProject(SpaceProblem().Text() +
                  "mesh dimension 3 elemtype Linear nnode 2 coordinates\n1 0 0 5\n2 1 0 7\nend\n"
                  "elements\n2 1 2 1\nend\n");
  const Node& node = *project->FindNode(2);
  EXPECT_EQ(node(3), 7.0);
  EXPECT_EQ((*project->GiveElem(1))(1), &node);
  EXPECT_EQ((*project->GiveElem(2))(1), &node);
  EXPECT_TRUE(node.load);
  EXPECT_TRUE(project->FindNode(1)->constraint);
}

TEST(ProblemMeshes, ElementsOfDifferentMeshesHaveDifferentNumbers)
{
  const std::string seventh =
      SpaceProblem().With(&ProblemParts::elements, "3 1 2 1\n7 1 2 1").Text();
  ExpectFatal([&] { ReadProject(seventh + MeshBlock("Linear", "2", 7, "1 2")); },
              "error: All elements must have different number. Check elm num: 7\n");
  ExpectFatal(
      [&] {
        ReadProject(seventh + MeshBlock("Linear", "2", 8, "1 2") +
                    MeshBlock("Linear", "2", 8, "1 2"));
      },
      "error: All elements must have different number. Check elm num: 8\n");
}

TEST(ProblemMeshes, RepeatedElementOfOneMeshReplacesTheEarlier)
{
  const auto project =
      ReadProject(ProblemParts().With(&ProblemParts::elements, "1 1 2 1\n1 2 1 9").Text());
  EXPECT_EQ(project->GiveElem(1)->GiveMaterialNum(), 9);
  EXPECT_EQ(project->problem.meshes[0]->GiveElemPlex()->Count(), 1);
}

TEST(ProblemMeshes, SolidsAloneHaveThreeDegreesAndSmoothing)
{
  const auto project = ReadProject(kSolid);
  EXPECT_EQ(project->problem.components.count, 3);
  EXPECT_TRUE(project->problem.smoothing.on);
  EXPECT_EQ(project->problem.smoothing.angle, -1.0);
}

TEST(ProblemMeshes, SolidsCannotBeMixedWithOthers)
{
  const char* const message =
      "error: Element tetrahedra cannot be mixed with any other element type";
  ExpectFatal([&] { ReadProject(kSolid + MeshBlock("Linear", "2", 2, "1 2")); }, message);
  ExpectFatal([&] { ReadProject(kSolid + MeshBlock("Triangle", "3", 2, "1 2 3")); }, message);
}

TEST(ProblemMeshes, PlaneProblemsHaveNoZ)
{
  const std::string mesh3d =
      "problem type 2d\nmesh dimension 3 elemtype Linear nnode 2 coordinates\n"
      "1 0 0 0\n2 1 0 @\nend\nelements\n1 1 2 1\nend\n";
  const auto with = [&](const std::string& z) {
    return std::string(mesh3d).replace(mesh3d.find('@'), 1, z);
  };
  EXPECT_EQ(ReadProject(with("0"))->problem.components.count, 3);
  ExpectFatal([&] { ReadProject(with("0.5")); },
              "error: node 2 has a z coordinate in a 2d problem\n");
}

TEST(ProblemMeshes, NodesWithTwoCoordinatesStandAtZeroInSpace)
{
  const auto project = ReadProject(
      "problem type 3d\nmesh dimension 2 elemtype Linear nnode 2 coordinates\n"
      "1 0 0\n2 1 0\nend\nelements\n1 1 2 1\nend\n");
  EXPECT_EQ(project->FindNode(2)->Size(), 3);
  EXPECT_EQ((*project->FindNode(2))(3), 0.0);
}

TEST(ProblemMaterials, OwnMaterialsOfElementsAreCompleted)
{
  const auto project =
      ReadProject(ProblemParts().With(&ProblemParts::elements, "1 1 2 1 A=5\n2 1 2 0 E=7").Text());
  const Material& completed = project->problem.RequireMaterial(*project->GiveElem(1));
  EXPECT_EQ(completed.A, 5.0);
  EXPECT_EQ(completed.E1, 1.0);
  EXPECT_EQ(completed.Iz, 1.0);
  const Material& alone = project->problem.RequireMaterial(*project->GiveElem(2));
  EXPECT_EQ(alone.E1, 7.0);
  EXPECT_EQ(alone.A, 0.0);
}

}  // namespace morlen
