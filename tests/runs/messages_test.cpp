// The messages that end a run, compared letter by letter in runs of the program.

#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/run.h"
#include "support/structure.h"

namespace morlen {

namespace {

struct Refused
{
  std::string problem;
  std::string message;
  std::string hint = "";  // when it is given, the hint is exactly this
};

// Runs the program on the problem. It must end with exactly this message, perhaps a hint, and
// without results.
void ExpectRefused(const Refused& refused, const std::vector<std::string>& options = {})
{
  SCOPED_TRACE(refused.message);
  const TemporaryFolder folder;
  folder.Write("model.dat", refused.problem);
  std::vector<std::string> arguments = options;
  arguments.push_back("model.dat");
  const RunResult run = RunProgram(folder, arguments);
  const std::string hint = HintAfter(refused.message, run);
  if (!refused.hint.empty()) {
    EXPECT_EQ(hint, refused.hint);
  }
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.status, 2);
  EXPECT_FALSE(folder.Has("model.morlen.res"));
}

std::string With(std::string ProblemParts::*part, const std::string& value)
{
  return ProblemParts().With(part, value).Text();
}

std::string SpaceWith(std::string ProblemParts::*part, const std::string& value)
{
  return SpaceProblem().With(part, value).Text();
}

std::string WithSettings(const std::string& settings)
{
  return With(&ProblemParts::settings, settings);
}

// A unit table whose only system has these factors, and a line that uses it.
std::string WithUnits(const std::string& factors, const std::string& line)
{
  return WithSettings("units_names\nu N m Pa " + factors + "\nend\n" + line);
}

std::string MeshOf(const std::string& type, int nnode, const std::string& element)
{
  return "mesh dimension 3 elemtype " + type + " nnode " + std::to_string(nnode) +
         " coordinates\n1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n" + element + "\nend\n";
}

const char* const kNoSolution =
    "error when solving system. Probably boundary conditions are not correct\n";

// The message for a zero on the diagonal of an equation.
std::string ZeroDiagonal(int equation, int node, int degree, const std::string& name)
{
  return "error when solving system(" + std::to_string(equation) +
         ").\nOne diagonal=0 in node=" + std::to_string(node) +
         " (Use Meshing->Mesh View).\nDegree of freedom " + std::to_string(degree) + " from 6 (" +
         name + ")\nCould not solve system. Probably boundary conditions are not correct\n";
}

// A chain of plane beams held at its first node, all other nodes on rollers.
std::string LongChain(int nodes, const std::string& settings)
{
  ProblemParts parts;
  parts.settings = settings;
  parts.coordinates = "1 0 0\n";
  parts.elements.clear();
  parts.constraints = "1 111 0 0 0\n";
  for (int i = 2; i <= nodes; ++i) {
    const std::string number = std::to_string(i);
    parts.coordinates.append(number).append(" ").append(number).append(" 0\n");
    parts.elements.append(number).append(" ").append(std::to_string(i - 1));
    parts.elements.append(" ").append(number).append(" 1\n");
    parts.constraints += number + " 010 0 0 0\n";
  }
  return parts.Text();
}

}  // namespace

TEST(Messages, OfTheProblemFile)
{
  std::string elevenMeshes = SpaceProblem().Text();
  for (int i = 2; i <= 11; ++i)
    elevenMeshes += MeshOf("Linear", 2, std::to_string(i) + " 1 2 1");
  const Refused cases[] = {
      {"no header\n", "can't find word ***problem*** in input file\n"},
      {"problem\n", "can't find word ***type*** in input file\n"},
      {"problem type 1d\n", "Type of problem unknown. Only 2d and 3d\n"},
      {elevenMeshes, "error: maximum number of meshes is: 10\n"},
      {WithSettings("units_mesh mm"),
       "error: Unit length name 'mm' has not been previously defined\n"},
      {WithUnits("1 0", "units_mesh m"), "error: Units_mesh must be a positive number\n"},
      {WithSettings("units_mat_and_load u"),
       "error: Unit name 'u' has not been previously defined\n"},
      {WithSettings("units_mat_and_load a_name_of_21_characters"),
       "error: Unit name 'a_name_of_21_characters' is too long\n"},
      {WithUnits("0 1", "units_mat_and_load u"),
       "error: units_mat_and_load must be two positive numbers\n"},
      {WithSettings("units_res u"), "error: Unit name 'u' has not been previously defined\n"},
      {WithUnits("1 0", "units_res u"),
       "error: units_res must be two positive numbers and three names\n"},
      {WithSettings("NumOfDivisions 0"), "error: Number of divisions must be positive"},
      {WithSettings("NumOfDivisions 100001"), "error: Number of divisions must be at most 100000"},
      {WithSettings("DoSmoothing 4"), "error: DoSmoothing must have angle >0 and <PI rad\n"},
      {WithSettings("CoplanarityAngle 4"),
       "error: CoplanarityAngle must have angle >0 and <PI rad\n"},
      {WithSettings("Solver Cholesky"),
       "error: type of solver must be: Automatic, SkyLine, Double or Sparse\n"},
      {WithSettings("Solver Sparse 1e-6 1e-6 9"),
       "Solver Sparse needs three aditional arguments:\n"
       "    Solver: Sparse tolerance1 tolerance2 MaxIterations\n"
       "with 0.0<tolerance<10 and MaxIterations>10 and\n"
       " tolerance1<=tolerance2<10\n"},
      {WithSettings("GravityDirection 0 0 0"), "error: GravityDirection must be a vector no null"},
      {WithSettings("Unknown"), "Unknown key name=Unknown\n"},
      {"problem type 2d\n", "error: it is necessary at least one mesh\n"},
      {SpaceProblem().Text() + MeshOf("Linear", 2, "1 1 2 1"),
       "error: All elements must have different number. Check elm num: 1\n"},
      {SpaceProblem().Text() + MeshOf("Tetrahedra", 4, "2 1 2 3 4 1"),
       "error: Element tetrahedra cannot be mixed with any other element type"},
      {"problem type 2d\nunits_names\n",
       "error: 'units_names' should finish with the 'end' word\n"},
      {WithSettings("units_names\nu N m\nend"),
       "error: 'units_names' items should be: name nameN nameM namePa facN facM\n"},
  };
  for (const Refused& refused : cases)
    ExpectRefused(refused);
}

TEST(Messages, OfMeshesAndMaterials)
{
  const Refused cases[] = {
      {"problem type 2d\nmesh dimension", "can't find word ***dimension*** in input file\n"},
      {"problem type 2d\nmesh dimension =\n", "end of file and no digit found\n"},
      {"problem type 2d\nmesh dimension 2 elemtype beam\n",
       "ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n"},
      {"problem type 2d\nmesh dimension 2 elemtype Linear nnode 3\n", "Unknown Femview type\n"},
      {With(&ProblemParts::coordinates, ""), "error: list of nodes does not contain any node\n"},
      {With(&ProblemParts::coordinates, "1 0 0\n3 1 0"),
       "error: list of nodes does not contain all numbers\n", "node 2 is missing"},
      {With(&ProblemParts::elements, "5 2 2 1"), "error: element: 5  have both nodes equal\n"},
      {With(&ProblemParts::elements, "5 1 3 1"), "error: element 5 has an unknown node\n",
       "node 2 of the element's 2 does not exist: the nodes have the numbers 1 to 2"},
      {With(&ProblemParts::materials, "1 EX 1"),
       "error in materials. Young Modulus can only be E, Ex or Ey\n"},
      {With(&ProblemParts::materials, "1 Ix 1"),
       "error in materials. Inertia modules cannot be for X axe\n"},
      {With(&ProblemParts::materials, "1 Gzz 1"),
       "error in materials. G can be: G Gxy Gxz or Gyz\n"},
      {With(&ProblemParts::materials, "1 Young 1"),
       "Input of materials not correct. Unknown char: 'Young'\n",
       "line 12: 'Young' is no key of a material: did you mean E?"},
      {With(&ProblemParts::materials, "1 E 1 Euler4 1"),
       "error: Euler angles must be: Euler1,Euler2 or Euler3\n"},
      {With(&ProblemParts::materials, "1 E 1 units=none"),
       "error: Unit name 'none' has not been previously defined\n"},
  };
  for (const Refused& refused : cases)
    ExpectRefused(refused);
}

TEST(Messages, OfSupportsAndLoads)
{
  const auto supports = &ProblemParts::constraints;
  const auto loads = &ProblemParts::loads;
  const Refused cases[] = {
      {With(supports, "3 111 0 0 0"), "error: Trying to assign constrain to unknown node\n"},
      {With(supports, "2 2 0 0"), "Not reading correctly the constraints. Number=2\n",
       "line 15: 3 flags and 3 values are expected, 0 values are there after the flags '2 0 "
       "0'"},
      {SpaceWith(supports, "2 111111 0"), "Not reading correctly the constraints. -A- Number=2\n"},
      {With(supports, "2 111 0 0 0 units"),
       "Not reading correctly the constraints. -B- Number=2\n"},
      {With(supports, "2 111 0 0 0 Euler4 1"),
       "error: Euler angles must be: Euler1,Euler2 or Euler3\n"},
      {With(supports, "2 111 0 0 0 units a_name_of_21_characters"),
       "error: Unit name 'a_name_of_21_characters' is too long\n"},
      {With(supports, "2 111 0 0 0 units none"),
       "error: Unit name 'none' has not been previously defined\n"},
      {With(supports, "1 111 0 0 0\n2 110 0 0 0 Euler2 0.5"),
       "error: Local z axe must be (0,0,1) for 2D problems.Node: 2\n"},
      {With(loads, "3 0 0 0"), "error: Trying to assign Load to unknown node\n"},
      {With(loads, "0 0 0 0"), "error: Trying to assign Load to unknown node\n"},
      {With(loads, "2"), "Not reading correctly the loads A. Number=2\n"},
      {With(loads, "2 0 0"), "Not reading correctly the loads B. Number=2\n",
       "line 18: 3 values are expected, 2 values are there"},
      {SpaceWith(loads, "2 0 0 0"), "Not reading correctly the loads C. Number=2\n"},
      {With(loads, "2 0 0 0 units"), "Not reading correctly the loads. -D- Number=2\n"},
      {With(loads, "2 0 0 0 units a_name_of_21_characters"),
       "error: Unit name 'a_name_of_21_characters' is too long\n"},
      {With(loads, "2 0 0 0 units none"),
       "error: Unit name 'none' has not been previously defined\n"},
  };
  for (const Refused& refused : cases)
    ExpectRefused(refused);
}

TEST(Messages, OfElementsAndSections)
{
  const auto materials = &ProblemParts::materials;
  const Refused cases[] = {
      {With(&ProblemParts::elements, "5 1 2 9"), "error: Material in element: 5 doesn't exist\n",
       "the element has material 9, and the last material is 1"},
      {With(&ProblemParts::coordinates, "1 1 1\n2 1 1"), "error: element 1 has no length\n"},
      {With(materials, "1 A 1 Iz 1"), "error: material parameter E is 0 for element 1\n"},
      {With(materials, "1 E 1 Iz 1"), "error: section parameter A is 0 for element 1\n"},
      {With(materials, "1 E 1 A 1"), "error: section parameter Iz is 0 for element 1\n"},
      {SpaceWith(materials, "1 E 1 A 1 Iz 1 G 1 J 1"),
       "error: section parameter Iy is 0 for element 1\n"},
      {SpaceWith(materials, "1 E 1 A 1 Iz 1 Iy 1 J 1"),
       "error: material parameter G is 0 for element 1\n"},
      {SpaceWith(materials, "1 E 1 A 1 Iz 1 Iy 1 G 1"),
       "error: section parameter J is 0 for element 1\n"},
      {SpaceWith(materials, "1 E 1 A 1 Iz 1 Iy 1 G 1 J 1 Euler1 1.5707963267948966"),
       "error: Local x axe is orthogonal to the direction of the beam. Element:1\n"},
      {With(materials, "1 E 1 A 1 Iz 1 Euler2 0.5"),
       "error: Local z axe must be (0,0,1) for 2D problems.Element:1\n"},
      {"problem type 3d\n" + MeshOf("Quadrilateral", 4, "1 1 2 3 4 1"),
       "error: elemtype unknown\n"},
      {"problem type 3d\nmesh dimension 3 elemtype Hexahedra nnode 8 coordinates\n1 0 0 0\nend\n"
       "elements\n1 1 1 1 1 1 1 1 1 1\nend\n",
       "error: elemtype unknown\n"},
  };
  for (const Refused& refused : cases)
    ExpectRefused(refused);
}

// The line that names the motion in the numbers of the file.
std::string Hint(const std::string& text)
{
  return "hint: " + text + "\n";
}

// The message computes node and degree as if every node had six degrees.
TEST(Messages, NameTheDegreeThatIsFree)
{
  static const char* const names[] = {"X displ.",   "Y displ.",   "Z displ.",
                                      "X rotation", "Y rotation", "Z rotation"};
  // Node 3 belongs to no element. One of its components is free.
  for (int degree = 1; degree <= 6; ++degree) {
    std::string flags(6, '1');
    flags[degree - 1] = '0';
    const std::string problem =
        SpaceProblem()
            .With(&ProblemParts::coordinates, "1 0 0 0\n2 1 0 0\n3 2 0 0")
            .With(&ProblemParts::constraints, "1 111111 0 0 0 0 0 0\n3 " + flags + " 0 0 0 0 0 0")
            .Text();
    static const char* const motions[] = {"move along x", "move along y", "move along z",
                                          "turn about x", "turn about y", "turn about z"};
    ExpectRefused({problem, ZeroDiagonal(12 + degree, 3, degree, names[degree - 1]) +
                                Hint("node 3 can " + std::string(motions[degree - 1]) +
                                     ": it belongs to no element")},
                  {"-r0"});
  }
}

TEST(Messages, RefuseMechanisms)
{
  const auto supports = &ProblemParts::constraints;
  const Refused cases[] = {
      {With(supports, ""), ZeroDiagonal(4, 1, 4, "X rotation") +
                               Hint("the whole model can move along x: no support prevents it")},
      {With(supports, "1 110 0 0 0"),
       ZeroDiagonal(6, 1, 6, "Z rotation") +
           Hint("the whole model can turn about z through node 1: no support prevents it")},
      {With(supports, "1 010 0 0 0\n2 010 0 0 0"),
       ZeroDiagonal(4, 1, 4, "X rotation") +
           Hint("the whole model can move along x: no support prevents it")},
      {With(supports, "1 100 0 0 0\n2 100 0 0 0"),
       ZeroDiagonal(5, 1, 5, "Y rotation") +
           Hint("the whole model can move along y: no support prevents it")},
      {SpaceProblem()
           .With(&ProblemParts::coordinates, "1 0 0 0\n2 1 0 0\n3 2 0 0")
           .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
           .With(supports, "1 111011 0 0 0 0 0 0\n2 000000 0 0 0 0 0 0\n3 000000 0 0 0 0 0 0")
           .Text(),
       ZeroDiagonal(16, 3, 4, "X rotation") +
           Hint("nodes 1, 2 and 3 can turn about x: beams 1 and 2 spin about their own axes; no "
                "support prevents it")},
      // The roller is free along the tangent of the circle about the pinned node.
      {With(supports, "1 110 0 0 0\n2 010 0 0 0 Euler1=1.5707963267948966"),
       ZeroDiagonal(6, 1, 6, "Z rotation") +
           Hint("the whole model can turn about z through node 1: no support prevents it")},
  };
  for (const Refused& refused : cases) {
    ExpectRefused(refused);
    ExpectRefused(refused, {"-r0"});
  }
}

// Two beams in a corner, and the third side of their triangle. Where a support is missing, hinges
// that allow motions too are not the reason.
TEST(Messages, RigidMotionsAreNotBlamedOnHinges)
{
  struct Case
  {
    std::string third, constraints, hinges, hint;
  };
  const std::string moves = "the whole model can move along x: no support prevents it";
  const std::string turns =
      "the whole model can turn about z through node 1: no support prevents it";
  const std::string ends = "; held rotations do not hold hinged beam ends";
  const std::vector<Case> cases = {
      {"", "", "2 01\n", moves},
      {"", "1 010 0 0 0\n3 010 0 0 0\n", "2 01\n", moves},
      {"", "1 110 0 0 0\n", "2 01\n", turns},
      {"", "1 110 0 0 0\n", "1 01\n", turns + ends},
      {"", "1 111 0 0 0\n", "1 01\n", turns + ends},
      {"3 1 3 1\n", "1 110 0 0 0\n", "1 00\n2 00\n3 00\n", turns + ends},
      {"", "1 111 0 0 0\n", "2 01\n",
       "node 3 can turn about z through node 2: the hinges of beam 2 allow it"},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.constraints + one.hinges);
    const TemporaryFolder folder;
    folder.Write("model.dat",
                 "problem type: 2d\nmesh dimension = 2 elemtype Linear nnode = 2\ncoordinates\n"
                 "1 0 0\n2 4 0\n3 2 3\nend coordinates\nelements\n1 1 2 1\n2 2 3 1\n" +
                     one.third +
                     "end elements\nmaterials\n1 E=3e7 widthY=0.5 widthZ=0.5\nend materials\n"
                     "constraints\n" +
                     one.constraints + "end constraints\nelem_rotules\n" + one.hinges +
                     "end elem_rotules\n");
    const RunResult run = RunProgram(folder, {"model.dat"});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.err.ends_with("hint: " + one.hint + "\n")) << run.err;
  }
}

// A clamped strip of six by six cells of a thin plate, whose coordinates have seven decimals.
TEST(RoughModelMessages, TheHintNamesSlightFolds)
{
  const auto digits = [](double value) {
    char text[40];
    std::snprintf(text, sizeof text, " %.7f", value);
    return std::string(text);
  };
  std::string nodes, elements, supports;
  int count = 0;
  const auto add = [&](int a, int b, int c) {
    elements += std::to_string(++count) + " " + std::to_string(a) + " " + std::to_string(b) + " " +
                std::to_string(c) + " 1\n";
  };
  for (int j = 0; j <= 6; ++j) {
    for (int i = 0; i <= 6; ++i) {
      const int node = 7 * j + i + 1;
      const double x = 5.0 * i / 6.0, y = 5.0 * j / 6.0;
      nodes += std::to_string(node) + digits(x) + digits(y) + digits(0.3 * x + 0.1 * y) + "\n";
      if (i == 0)
        supports += std::to_string(node) + " 111111 0 0 0 0 0 0\n";
      if (i < 6 && j < 6) {
        add(node, node + 1, node + 8);
        add(node, node + 8, node + 7);
      }
    }
  }
  const TemporaryFolder folder;
  folder.Write("model.dat",
               "problem type: 3d\nmesh dimension = 3 elemtype Triangle nnode = 3\ncoordinates\n" +
                   nodes + "end coordinates\nelements\n" + elements +
                   "end elements\nmaterials\n1 E=3e7 nu=0.2 G=1.25e7 t=0.01 Weight=25\nend "
                   "materials\nconstraints\n" +
                   supports + "end constraints\nGravityDirection 0 0 -1\n");
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("The model is too rough"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("hint: shell triangles are folded by 1.0"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("more than the coplanarity angle of 1e-07"), std::string::npos);
}

TEST(Messages, RefuseSlopedMechanisms)
{
  // The pivot is zero in exact arithmetic and small but not zero after rounding.
  const std::string problem = ProblemParts()
                                  .With(&ProblemParts::coordinates, "1 0 0\n2 0.3 0.7\n3 1.1 0.9")
                                  .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
                                  .With(&ProblemParts::materials, "1 E 2.1e11 A 0.003 Iz 4e-6")
                                  .With(&ProblemParts::constraints, "1 110 0 0 0")
                                  .Text();
  ExpectRefused(
      {problem,
       ZeroDiagonal(9, 2, 3, "Z displ.") +
           Hint("the whole model can turn about z through node 1: no support prevents it")},
      {"-r0"});
}

TEST(Messages, NameTheUsersNodeAfterARenumbering)
{
  // The renumbered order is 3, 2, 1: node 3 is the farthest one.
  const std::string problem = ProblemParts()
                                  .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 5 0")
                                  .With(&ProblemParts::elements, "1 1 2 1\n2 2 3 1")
                                  .With(&ProblemParts::constraints, "")
                                  .Text();
  ExpectRefused({problem, ZeroDiagonal(7, 2, 1, "X displ.") +
                              Hint("the whole model can move along x: no support prevents it")});
  ExpectRefused({problem, ZeroDiagonal(7, 2, 1, "X displ.") +
                              Hint("the whole model can move along x: no support prevents it")},
                {"-r0"});
  const std::string moved = ProblemParts()
                                .With(&ProblemParts::coordinates, "1 0 0\n2 5 0\n3 1 0")
                                .With(&ProblemParts::elements, "1 1 3 1\n2 3 2 1")
                                .With(&ProblemParts::constraints, "")
                                .Text();
  ExpectRefused({moved, ZeroDiagonal(7, 3, 1, "X displ.") +
                            Hint("the whole model can move along x: no support prevents it")});
}

TEST(Messages, RefuseSolutionsThatAreNotFinite)
{
  ExpectRefused({With(&ProblemParts::loads, "2 0 1e308 0\n2 0 1e308 0"), kNoSolution});
  ExpectRefused({ProblemParts()
                     .With(&ProblemParts::materials, "1 E 1e-10 A 1 Iz 1e-3")
                     .With(&ProblemParts::loads, "2 0 1e300 0")
                     .Text(),
                 kNoSolution});
}

TEST(Messages, TiltedPlaneSupportIsNamedByItsNumberInTheFile)
{
  ExpectRefused(
      {"problem type 2d\n"
       "mesh dimension 2 elemtype Linear nnode 2\n"
       "coordinates\n1 0 0\n2 1 0\n3 3 0\n4 2 0\nend coordinates\n"
       "elements\n1 1 2 1\n2 2 4 1\n3 4 3 1\nend elements\n"
       "materials\n1 E=1 A=1 Iz=1\nend\n"
       "constraints\n1 111 0 0 0\n4 010 0 0 0 Euler2=0.3\nend\n",
       "error: Local z axe must be (0,0,1) for 2D problems.Node: 4\n"});
}

TEST(SolverChoice, SkylineUpTo14999Equations)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", LongChain(4999, ""));
  const RunResult run = RunProgram(folder, {"-i", "-", "model.dat"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("Sky matrix storage with Txolesky\nDegrees of freedom= 14997\n"),
            std::string::npos);
  EXPECT_NE(run.out.find("Solving degree 14500 of 14997\n"), std::string::npos);
}

TEST(SolverChoice, From15000EquationsTheWorkDecides)
{
  const TemporaryFolder folder;
  for (const char* solver : {"", "Solver SkyLine"}) {
    folder.Write("model.dat", LongChain(5000, solver));
    const RunResult run = RunProgram(folder, {"-i", "-", "model.dat"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Sky matrix storage with Txolesky\nDegrees of freedom= 15000\n"),
              std::string::npos);
    EXPECT_TRUE(run.out.starts_with(*solver ? "Solver SkyLine taken: the problem file asks for it\n"
                                            : "Solver SkyLine taken: estimated "))
        << run.out;
  }
}

namespace {

/// An inclined cantilever of beams of one metre with a load at its tip. The longer it is, the more
/// the rounding of the stiffness changes its softest mode.
std::string InclinedCantilever(int beams)
{
  Structure s = Chain(beams, false, {std::cos(0.7), std::sin(0.7), 0});
  s.HoldNode(1, kClamped).Load(beams + 1, {0, -1});
  return s.Text("NumOfDivisions 1\n");
}

const std::string kTooRough =
    "The model is too rough: its stiffnesses or lengths differ so much that the digits of the "
    "arithmetic are not enough for its displacements\n";

}  // namespace

TEST(RoughModelMessages, AWarningGoesToStandardErrorAndTheInformation)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", InclinedCantilever(4500));
  const RunResult run = RunProgram(folder, {"-i", "info.txt", "-e", "errors.txt", "model.dat"});
  EXPECT_EQ(run.status, 0);
  const std::regex warning(
      "warning: the model is rough: the displacements have a relative error of ([0-9.e+-]+), and "
      "the forces miss the loads by [0-9.e+-]+ of them\n");
  std::smatch error;
  ASSERT_TRUE(std::regex_match(run.err, error, warning)) << run.err;
  EXPECT_GT(std::stod(error[1]), 1e-6);
  EXPECT_LT(std::stod(error[1]), 1e-3);
  EXPECT_NE(folder.Read("info.txt").find(run.err), std::string::npos);
  EXPECT_EQ(folder.Read("errors.txt"), "");
}

TEST(RoughModelMessages, ARefusalSaysThatTheModelIsTooRough)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", InclinedCantilever(4990));
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "error when solving system. Probably boundary conditions are not correct\n" +
                         kTooRough);
  EXPECT_FALSE(folder.Has("model.morlen.res"));
}

// A link of 5 mm between two beams is 1e8 times stiffer than they are. The pivot after it is 1e-15
// of its diagonal entry, although the structure is not a mechanism.
TEST(RoughModelMessages, ARefusedPivotOfAStableStructureIsExplained)
{
  Structure s = Chain(3, false);
  s.nodes[2][0] = 1.005;
  s.nodes[3][0] = 2.005;
  s.sections.push_back(s.sections.front());
  s.sections.back().E *= 1e8;
  s.beams[1].section = 2;
  s.HoldNode(1, kClamped).Load(4, {1, -1});
  const TemporaryFolder folder;
  folder.Write("model.dat", s.Text());
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.err.starts_with("error when solving system(")) << run.err;
  EXPECT_TRUE(run.err.ends_with(
      "Could not solve system. Probably boundary conditions are not correct\n" + kTooRough))
      << run.err;
}

TEST(RoughModelMessages, MechanismsAreNotCalledRough)
{
  Structure s = Storeys(2, 30, kRollerInX);
  s.Load(5, {0, -1});
  const TemporaryFolder folder;
  folder.Write("model.dat", s.Text());
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(run.err.ends_with("Probably boundary conditions are not correct\n" +
                                Hint("the whole model can move along x: no support prevents it")))
      << run.err;
}

// Every fourth beam is 1e12 times stiffer than the others. A double has too few digits for this
// cantilever, whose solution looks like a motion without energy, but it cannot move.
TEST(RoughModelMessages, StableStructuresAreNotSaidToMove)
{
  Structure s = Chain(40, false);
  s.sections.push_back(s.sections.front());
  s.sections.back().E *= 1e12;
  for (std::size_t i = 3; i < s.beams.size(); i += 4)
    s.beams[i].section = 2;
  s.HoldNode(1, kClamped).Load(41, {0, -1});
  const TemporaryFolder folder;
  folder.Write("model.dat", s.Text());
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err.find("can move"), std::string::npos) << run.err;
}

TEST(IterationMessages, AnAcceptedResidualGivesAWarning)
{
  const TemporaryFolder folder;
  const Structure s = Building(3, 2, 4, kClamped).LoadAll({1, 0, -1});
  folder.Write("model.dat", s.Text("Solver Sparse 1e-10 0.5 12"));
  const RunResult run = RunProgram(folder, {"-i", "info.txt", "-e", "errors.txt", "model.dat"});
  EXPECT_EQ(run.status, 0) << run.err;
  const std::string info = folder.Read("info.txt");
  std::smatch accepted, warned;
  const std::regex line("After 12 Iterations, accepted tolerance of ([0-9.]+)\n");
  ASSERT_TRUE(std::regex_search(info, accepted, line)) << info;
  const std::regex warning(
      "warning: the iteration ended before its tolerance, with a residual of ([0-9.e+-]+). The "
      "results may be wrong by much more than that\n");
  ASSERT_TRUE(std::regex_match(run.err, warned, warning)) << run.err;
  // 0.05: the messages print two digits.
  EXPECT_NEAR(std::stod(warned[1]) / std::stod(accepted[1]), 1.0, 0.05);
  EXPECT_NE(info.find(run.err), std::string::npos);
  EXPECT_EQ(folder.Read("errors.txt"), "");
}

TEST(IterationMessages, TheSecondToleranceDecidesWhenRoundingPreventsTheFirst)
{
  const TemporaryFolder folder;
  const Structure s = Building(3, 2, 4, kClamped).LoadAll({1, 0, -1});
  for (const char* second : {"1e-9", "1e-17"}) {
    folder.Write("model.dat", s.Text("Solver Sparse 1e-17 " + std::string(second) + " 3000"));
    const RunResult run = RunProgram(folder, {"-i", "info.txt", "model.dat"});
    const bool accepted = std::string(second) == "1e-9";
    EXPECT_EQ(run.status, accepted ? 0 : 2) << run.err;
    EXPECT_NE(run.err.find(accepted ? "warning: the iteration ended before its tolerance"
                                    : "error when solving system. Stopped after "),
              std::string::npos)
        << run.err;
  }
}

// Vertical loads do not drive the free motion of a frame on rollers along x.
TEST(IterationMessages, AMechanismThatTheLoadsDoNotDriveIsRefused)
{
  Structure s = Storeys(6, 40, kRollerInX);
  s.LoadAll({0, -1});
  const TemporaryFolder folder;
  folder.Write("model.dat", s.Text("Solver Sparse 1e-6 0.1 3000"));
  const RunResult run = RunProgram(folder, {"model.dat"});
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("Probably boundary conditions are not correct\n"), std::string::npos)
      << run.err;
}

}  // namespace morlen
