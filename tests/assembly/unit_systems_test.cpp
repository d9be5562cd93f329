// The same structure in several systems of units. The results must not depend on the system. The
// numbers of a file in km and MN are up to 1e36 times smaller than those in mm and N, so that a
// limit on a number with a unit would change the results.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "run/project.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/run.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

struct UnitSystem
{
  const char* name;
  double force;   // in N
  double length;  // in m

  double Of(int forcePower, int lengthPower) const
  {
    return std::pow(force, forcePower) * std::pow(length, lengthPower);
  }
};

constexpr UnitSystem kSI = {"N-m", 1.0, 1.0};
// The last system has the numbers of a structure that is a thousand times smaller and has the same
// moduli, in N and km: beams of a few millimetres have lengths of 1e-6.
constexpr UnitSystem kSystems[] = {
    {"N-mm", 1.0, 1e-3},  {"kN-m", 1e3, 1.0},   {"kN-cm", 1e3, 1e-2},
    {"MN-km", 1e6, 1e3},  {"kN-km", 1e3, 1e3},  {"uN-um", 1e-6, 1e-6},
    {"MN-um", 1e6, 1e-6}, {"uN-km", 1e-6, 1e3}, {"N-km, smaller", 1e6, 1e6}};

// The text with every number "1.5<f,l>", which has the unit N^f m^l, in another system.
std::string InUnits(const std::string& text, const UnitSystem& units)
{
  std::string converted;
  std::size_t begin = 0;
  for (std::size_t open = text.find('<'); open != text.npos; open = text.find('<', begin)) {
    const std::size_t number = text.find_last_of(" =\n", open) + 1;
    char* rest = nullptr;
    const int forcePower = static_cast<int>(std::strtol(&text[open + 1], &rest, 10));
    const int lengthPower = static_cast<int>(std::strtol(rest + 1, &rest, 10));
    const double value = std::strtod(&text[number], nullptr);
    converted += text.substr(begin, number - begin);
    converted += Digits(value / units.Of(forcePower, lengthPower));
    begin = static_cast<std::size_t>(rest - text.data()) + 1;
  }
  return converted + text.substr(begin);
}

// The lines of a file in N and m that select this system for the computation.
std::string ResultsIn(const UnitSystem& units)
{
  return "units_names\nN-m N m Pa 1 1\nother F L P " + Digits(units.force) + " " +
         Digits(units.length) + "\nend\nunits_mesh m\nunits_mat_and_load N-m\nunits_res other\n";
}

// Results of one kind.
struct Quantity
{
  std::string name;
  int forcePower, lengthPower;
  std::vector<double> values;
};

using Quantities = std::vector<Quantity>;

void ExpectSame(const Quantities& actual, const UnitSystem& units, const Quantities& expected,
                double tolerance)
{
  SCOPED_TRACE(units.name);
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    SCOPED_TRACE(actual[i].name);
    ASSERT_TRUE(std::any_of(expected[i].values.begin(), expected[i].values.end(),
                            [](double value) { return value != 0.0; }));
    std::vector<double> values = actual[i].values;
    for (double& value : values)
      value *= units.Of(actual[i].forcePower, actual[i].lengthPower);
    ExpectValues(values, expected[i].values, tolerance);
  }
}

void Append(std::vector<double>& all, const std::vector<double>& values, std::size_t begin,
            std::size_t end)
{
  for (std::size_t i = begin; i < std::min(end, values.size()); ++i)
    all.push_back(values[i]);
}

// Displacements and reactions; solids have no rotations.
Quantities NodalResults(const Solved& solved, const std::vector<int>& supported)
{
  Quantity places{"displacements", 0, 1, {}}, turns{"rotations", 0, 0, {}};
  Quantity forces{"reactions", 1, 0, {}}, moments{"moments of supports", 1, 1, {}};
  const std::size_t components = solved.Model().components.count == 6 ? 6 : 3;
  for (int node = 1; node <= solved.Model().numNodes; ++node) {
    const std::vector<double> u = solved.Displacement(node);
    Append(places.values, u, 0, 3);
    Append(turns.values, u, 3, components);
  }
  for (const int node : supported) {
    const std::vector<double> r = solved.Reaction(node);
    Append(forces.values, r, 0, 3);
    Append(moments.values, r, 3, components);
  }
  return components == 6 ? Quantities{places, turns, forces, moments} : Quantities{places, forces};
}

// A frame with columns, rafters and a bar, in N and m.
std::string FrameText(const std::string& settings, const std::string& rest)
{
  return "problem type 3d\n" + settings +
         "mesh dimension 3 elemtype Linear nnode 2\ncoordinates\n"
         "1 0 0 0\n2 0 0 4<0,1>\n3 6<0,1> 0 4.5<0,1>\n4 6<0,1> 0 0\n5 6<0,1> 5<0,1> 4.5<0,1>\n"
         "6 6<0,1> 5<0,1> 0\n7 3<0,1> 2<0,1> 6<0,1>\nend coordinates\nelements\n"
         "1 1 2 1\n2 2 3 2\n3 4 3 1\n4 3 5 2\n5 6 5 1\n6 2 7 2\n7 7 5 1\nend elements\n"
         "materials\n"
         "1 E=2.1e11<1,-2> G=8.1e10<1,-2> A=5.4e-3<0,2> Iy=8.4e-5<0,4> Iz=6e-6<0,4> "
         "J=2e-7<0,4> Weight=7.7e4<1,-3>\n"
         "2 E=3e10<1,-2> G=1.3e10<1,-2> widthY=0.3<0,1> widthZ=0.5<0,1> Weight=2.5e4<1,-3>\n"
         "end materials\nconstraints\n1 111111 0 0 0 0 0 0\n4 111000 0 0 -0.01<0,1> 0 0 0\n"
         "6 122210 0 2e6<1,-1> 5e7<1,-1> 3e5<1,1> 0.001 0 Euler1=0.3 Euler2=0.2\nend\n"
         "elem_rotules\n3 01\n4 10\nend\nrotules\n7 hinge\nend\n"
         "nodal_point_loads\n3 1e4<1,0> -2e4<1,0> 0 3e3<1,1> 0 1e3<1,1>\nend\n"
         "GravityDirection 0 0 -1\n"
         "global_pressure_loads\n4 0 1e3<1,-1> -5e3<1,-1>\nend\n"
         "global_projected_pressure_loads\n6 0 0 -750<1,-1>\n7 0 0 -750<1,-1>\nend\n"
         "temperature_loads\n2 1.2e-5 30\nend\n" +
         rest;
}

constexpr const char* kTorque = "local_pressure_loads\n2 0 -500<1,-1> 200<1,-1> 150<1,0>\nend\n";

Quantities FrameResults(const std::string& text)
{
  const Solved solved(text);
  Quantities results = NodalResults(solved, {1, 4, 6, 7});
  Quantity between{"displacements of beams", 0, 1, {}};
  Quantity forces{"forces of beams", 1, 0, {}}, moments{"moments of beams", 1, 1, {}};
  for (int elem = 1; elem <= 7; ++elem) {
    for (const std::vector<double>& point : LoadedDisplacements(solved, elem, 4))
      Append(between.values, point, 0, 3);
    for (const double t : {0.0, 0.3, 1.0}) {
      for (int component = 1; component <= 6; ++component)
        (component <= 3 ? forces : moments)
            .values.push_back(LoadedStrength(solved, elem, component, t));
    }
  }
  results.insert(results.end(), {between, forces, moments});
  return results;
}

// An angle of two orthotropic plates with a clamped edge, in N and m.
ShellModel Angle(const std::string& settings)
{
  ShellModel model = GridShell(6, 3, [](double u, double v) {
    return Vector3{4.0 * std::min(u, 0.5), 3.0 * v, 4.0 * std::max(u - 0.5, 0.0)};
  });
  model.settings = settings + "GravityDirection 0 0.6 -0.8\n";
  model.material =
      "Ex=3.3e10<1,-2> Ey=1.1e10<1,-2> nuXY=0.07 nuYX=0.21 Gxy=5e9<1,-2> Gxz=4e9<1,-2> "
      "Gyz=3e9<1,-2> t=0.12<0,1> Weight=2.5e4<1,-3> Euler1=0.3 Euler2=0.4";
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[1] == 0.0; }))
    model.constraints += std::to_string(node) + " 111111 0 0 0 0 0 0\n";
  model.constraints += "28 002000 0 0 4e5<1,-1> 0 0 0\n22 000010 0 0 0 0 0.001 0\n";
  model.loads = "28 1e3<1,0> 0 0 0 200<1,1> 0\n";
  model.rest = Block("local_pressure_loads", "3 100<1,-2> 0 -2e3<1,-2>\n30 0 0 3e3<1,-2>") +
               Block("global_projected_pressure_loads", model.OnAll("0 300<1,-2> -750<1,-2>")) +
               Block("face_loads", "25 0 100<1,-1> 0 -400<1,-1>");
  return model;
}

constexpr const char* kRefined = "ShellFormulation Refined\n";

std::string ShellText(ShellModel model, const UnitSystem& units)
{
  for (Vector3& node : model.nodes)
    node = (1.0 / units.length) * node;
  return InUnits(model.Text(), units);
}

Quantities ShellResults(const std::string& text)
{
  const Solved solved(text);
  Quantities results = NodalResults(solved, {1, 4, 7, 22, 28});
  Quantity forces{"membrane forces", 1, -1, {}}, moments{"moments of shells", 1, 0, {}};
  Quantity shears{"shears", 1, -1, {}};
  for (int triangle = 1; triangle <= 36; ++triangle) {
    for (const ShellForces& point : ForcesOf(solved, triangle)) {
      const std::vector<double> values(point.begin(), point.end());
      Append(forces.values, values, 0, 3);
      Append(moments.values, values, 3, 6);
      Append(shears.values, values, 6, 8);
    }
  }
  results.insert(results.end(), {forces, moments, shears});
  return results;
}

// A block of 20 mm on rollers with a loaded face, a settlement and weight, in N and m.
SolidModel Block20(int nnode)
{
  SolidModel model = SolidBlock({2, 1, 1}, {0.02, 0.01, 0.01}, nnode);
  model.material = "E 2.1e11<1,-2> nu 0.3 Weight 7.7e4<1,-3>";
  model.settings = "GravityDirection 0.6 0 -0.8";
  model.Roller(0, 0.0).Roller(1, 0.0).Roller(2, 0.0);
  return model;
}

std::string SolidText(SolidModel model, const UnitSystem& units)
{
  const auto top = [](const Vector3& x) { return x[2] > 0.0099; };
  const auto end = [](const Vector3& x) { return x[0] > 0.0199; };
  const double pressure = units.Of(1, -2);
  model.LoadSides("local_pressure_loads", {5e4 / pressure, 0, -3e6 / pressure}, top);
  model.LoadSides("global_projected_pressure_loads", {-1e6 / pressure, 0, -750 / pressure}, end);
  model.supports[model.NodeAt({0, 0, 0})].values = {1e-6 / units.length, 0, 0};
  for (Vector3& node : model.nodes)
    node = (1.0 / units.length) * node;
  return InUnits(model.Text(), units);
}

Quantities SolidResults(const std::string& text)
{
  const Solved solved(text);
  Quantities results = NodalResults(solved, {1, 2, 4});
  Quantity stresses{"stresses", 1, -2, {}};
  for (int node = 1; node <= 12; ++node) {
    const Tensor stress = StressAt(solved, node);
    Append(stresses.values, {stress.begin(), stress.end()}, 0, 6);
  }
  results.push_back(stresses);
  return results;
}

// Condition numbers are below 1e6, so that rounding errors are about 1e-10 of the largest value.
constexpr double kTolerance = 1e-9;

}  // namespace

TEST(UnitSystems, AreTheSameToAFrame)
{
  const std::string text = FrameText("", kTorque);
  const Quantities expected = FrameResults(InUnits(text, kSI));
  for (const UnitSystem& units : kSystems)
    ExpectSame(FrameResults(InUnits(text, units)), units, expected, kTolerance);
}

TEST(UnitSystems, OfTheResultsAreTheSameToAFrame)
{
  const Quantities expected = FrameResults(InUnits(FrameText("", ""), kSI));
  for (const UnitSystem& units : kSystems)
    ExpectSame(FrameResults(InUnits(FrameText(ResultsIn(units), ""), kSI)), units, expected,
               kTolerance);
}

// The residual of the iteration depends on the units, which determine the weight of forces relative
// to moments.
TEST(UnitSystems, AreTheSameToAFrameByTheSparseSolver)
{
  const Quantities expected = FrameResults(InUnits(FrameText("", kTorque), kSI));
  const std::string text = FrameText("Solver Sparse 1e-13 1e-12 5000\n", kTorque);
  for (const UnitSystem& units : kSystems)
    ExpectSame(FrameResults(InUnits(text, units)), units, expected, 1e-6);
}

TEST(UnitSystems, AreTheSameToShells)
{
  for (const char* settings :
       {"", "ConvertTo6Nodes\n", kRefined, "ConvertTo6Nodes\nShellFormulation Refined\n"}) {
    SCOPED_TRACE(settings);
    const ShellModel model = Angle(settings);
    const Quantities expected = ShellResults(ShellText(model, kSI));
    for (const UnitSystem& units : kSystems) {
      ExpectSame(ShellResults(ShellText(model, units)), units, expected, kTolerance);
      const ShellModel converted = Angle(settings + ResultsIn(units));
      ExpectSame(ShellResults(ShellText(converted, kSI)), units, expected, kTolerance);
    }
  }
}

TEST(UnitSystems, AreTheSameToSolids)
{
  for (const int nnode : {4, 10}) {
    SCOPED_TRACE(nnode);
    SolidModel model = Block20(nnode);
    const Quantities expected = SolidResults(SolidText(model, kSI));
    const std::string settings = model.settings;
    for (const UnitSystem& units : kSystems) {
      model.settings = settings;
      ExpectSame(SolidResults(SolidText(model, units)), units, expected, kTolerance);
      model.settings = ResultsIn(units) + settings;
      ExpectSame(SolidResults(SolidText(model, kSI)), units, expected, kTolerance);
    }
  }
}

// In MN and um the weight of concrete is 2.5e-20.
TEST(UnitSystems, WithSmallWeightsCarryThem)
{
  constexpr double kWeight = 2.5e-20;
  const std::string gravity = "GravityDirection 0 0 -1\n";
  const std::string weight = " Weight=" + Digits(kWeight);
  const ProblemParts beam = SpaceProblem()
                                .With(&ProblemParts::settings, gravity)
                                .With(&ProblemParts::materials, SpaceProblem().materials + weight);
  EXPECT_DOUBLE_EQ(Solved(beam.Text()).Reaction(1)[2], kWeight);

  ShellModel plate = GridShell(1, 1, [](double u, double v) { return Vector3{2 * u, 3 * v, 0.0}; });
  plate.settings = gravity;
  plate.material += weight;
  for (int node = 1; node <= 4; ++node)
    plate.Hold(node, "111111");
  EXPECT_DOUBLE_EQ(SumOfReactions(Solved(plate.Text()))[2], 6 * 0.1 * kWeight);

  SolidModel solid = UnitSolid(4);
  solid.settings = gravity;
  solid.material += weight;
  solid.Prescribe({1, 2, 3, 4}, [](const Vector3&) { return Vector3{}; });
  for (int node = 1; node <= 4; ++node)
    EXPECT_DOUBLE_EQ(Solved(solid.Text()).Reaction(node)[2], kWeight / 24);
}

TEST(UnitSystems, EndWithStatusZero)
{
  const std::string frame = FrameText("", kTorque);
  for (const UnitSystem& units : kSystems) {
    for (const std::string& text :
         {InUnits(frame, units), ShellText(Angle(""), units), ShellText(Angle(kRefined), units),
          SolidText(Block20(10), units)}) {
      const RunResult run = RunOnProblem(text);
      EXPECT_EQ(run.status, 0) << units.name;
      EXPECT_EQ(run.err, "") << units.name;
    }
  }
}

}  // namespace morlen
