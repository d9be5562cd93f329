// Equivalent nodal loads of distributed loads on shell triangles.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "model/elem.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "problem/pressure_load.h"
#include "support/fatal.h"
#include "support/loaded_beams.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// One triangle in an oblique plane: area 3, normal (-0.6, 0, 0.8), x' = Y.
ShellModel Roof()
{
  ShellModel model;
  model.nodes = {{1, 2, 3}, {1.8, 2, 3.6}, {1, 8, 3}};
  model.triangles = {{1, 2, 3}};
  return model;
}

constexpr Vector3 kNormal = {-0.6, 0.0, 0.8};

// The load vector of the only triangle, six values a node.
std::vector<std::array<double, 6>> LoadsOf(const ShellModel& model, PreassureLT_type type,
                                           const std::string& record)
{
  const auto problem = ReadProblemText(model.Text());
  const Elem& elem = *problem->GiveElem(1);
  PreassureLT load(type);
  load.ReadYourLoad(1, kSpace, record.c_str(), {}, Triangle);
  Matriu T, Tbig;
  elem.CalcTransfMatrixTriangle(T, Tbig, nullptr);
  ReaVecV vector;
  vector.resize(6 * problem->numNodes, 0.0);
  load.AddToLoadVectorTriangle(elem, T, vector);
  std::vector<std::array<double, 6>> loads(model.nodes.size());
  for (std::size_t i = 0; i < loads.size(); ++i) {
    for (int k = 0; k < 6; ++k)
      loads[i][k] = vector(static_cast<int>(6 * i) + k + 1);
  }
  return loads;
}

void ExpectLoads(const std::vector<std::array<double, 6>>& actual, const Vector3& force,
                 const std::vector<double>& shares)
{
  ASSERT_EQ(actual.size(), shares.size());
  for (std::size_t i = 0; i < shares.size(); ++i) {
    SCOPED_TRACE("node " + std::to_string(i + 1));
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(actual[i][k], shares[i] * force[k], 1e-12);
      EXPECT_EQ(actual[i][k + 3], 0.0);
    }
  }
}

// The share of each node in a load over the area.
std::vector<double> AreaShares(int nnode)
{
  if (nnode == 3)
    return {1.0 / 3, 1.0 / 3, 1.0 / 3};
  return {0, 0, 0, 1.0 / 3, 1.0 / 3, 1.0 / 3};
}

// The share of each node in a load along the edge of this index.
std::vector<double> EdgeShares(int nnode, int edge)
{
  std::vector<double> shares(static_cast<std::size_t>(nnode), 0.0);
  const double corner = nnode == 3 ? 0.5 : 1.0 / 6.0;
  shares[edge] = shares[(edge + 1) % 3] = corner;
  if (nnode == 6)
    shares[edge + 3] = 4.0 / 6.0;
  return shares;
}

struct AreaLoad
{
  PreassureLT_type type;
  const char* record;
  Vector3 total;  ///< force on the triangle
};

}  // namespace

TEST(PressureOnTriangle, HasTheAxesOfItsType)
{
  // Area times |n·û|, with û = (1, 2, 3)/√14.
  const double factor = 3.0 * (-0.6 + 0.8 * 3.0) / std::sqrt(14.0);
  using enum PreassureLT_type;
  // x' = normalized(Z × n) = (0, -1, 0), y' = n × x' = (0.8, 0, 0.6).
  const AreaLoad cases[] = {
      {Local, "0 0 5", 15.0 * kNormal},
      {Local, "2 0 0", {0, -6, 0}},
      {Local, "0 1 0", {2.4, 0, 1.8}},
      {Global, "1 2 3", {3, 6, 9}},
      {Face, "1 2 3", {3, 6, 9}},
      {GlobalProjected, "0 0 -2", {0, 0, -6 * 0.8}},
      {GlobalProjected, "3 0 0", {9 * 0.6, 0, 0}},
      {GlobalProjected, "0 4 0", {0, 0, 0}},
      {GlobalProjected, "0.8 0 0.6", {0, 0, 0}},
      {GlobalProjected, "1 2 3", {factor, 2 * factor, 3 * factor}},
      {GlobalProjected, "0 0 0", {0, 0, 0}},
  };
  for (const int nnode : {3, 6}) {
    const ShellModel model = nnode == 6 ? WithMidSideNodes(Roof()) : Roof();
    for (const AreaLoad& load : cases) {
      SCOPED_TRACE(load.record);
      ExpectLoads(LoadsOf(model, load.type, load.record), load.total, AreaShares(nnode));
    }
  }
}

TEST(PressureOnTriangle, TinyProjectedLoadsAreProjectedToo)
{
  const auto loads = LoadsOf(Roof(), PreassureLT_type::GlobalProjected, "0 0 -1e-20");
  double sum = 0.0;
  for (const auto& load : loads)
    sum += load[2];
  EXPECT_NEAR(sum, -3.0 * 0.8 * 1e-20, 1e-33);  // rounding
}

TEST(PressureOnTriangle, AFourthLocalValueIsAMomentAboutLocalX)
{
  const auto loads = LoadsOf(Roof(), PreassureLT_type::Local, "0 0 0 7");
  for (const auto& load : loads)
    ExpectValues({load.begin(), load.end()}, {0, 0, 0, 0, -7, 0}, 1e-12);
}

TEST(PressureOnTriangle, WithAFaceIndexActsAlongAnEdge)
{
  // Lengths of the edges 1-2, 2-3, 3-1.
  const double lengths[] = {1.0, std::sqrt(37.0), 6.0};
  for (const int nnode : {3, 6}) {
    const ShellModel model = nnode == 6 ? WithMidSideNodes(Roof()) : Roof();
    for (int edge = 0; edge < 3; ++edge) {
      const double L = lengths[edge];
      ExpectLoads(LoadsOf(model, PreassureLT_type::Face, std::to_string(edge) + " 1 -2 3"),
                  {L, -2 * L, 3 * L}, EdgeShares(nnode, edge));
    }
  }
}

TEST(PressureOnTriangle, RefusesUnknownEdges)
{
  for (const char* record : {"3 1 2 3", "-2 1 2 3", "100 1 2 3"})
    ExpectFatal([&] { LoadsOf(Roof(), PreassureLT_type::Face, record); },
                "error in PreassureLT::AddToLoadVectorFaceTriangle\n");
}

TEST(PressureOnTriangle, WithFaceMinusOneActsOverTheArea)
{
  ExpectLoads(LoadsOf(Roof(), PreassureLT_type::Face, "-1 1 2 3"), {3, 6, 9}, AreaShares(3));
}

TEST(PressureOnTriangle, ConvertsItsUnits)
{
  // Results in kN and m, loads in N and mm: the factor is 1000 per area and 1 per length.
  const auto reactions = [](const std::string& keyword, const std::string& record) {
    ShellModel model = Roof();
    model.settings =
        "units_names\nkN-m kN m kPa 1000 1\nN-mm N mm MPa 1 0.001\nend\n"
        "units_mesh m\nunits_mat_and_load kN-m\nunits_res kN-m";
    for (int node = 1; node <= 3; ++node)
      model.Hold(node, "111111");
    model.rest = Block(keyword, "1 " + record);
    return SumOfReactions(Solved(model.Text()));
  };
  EXPECT_NEAR(reactions("global_pressure_loads", "0 0 2")[2], -6.0, 1e-12);
  EXPECT_NEAR(reactions("global_pressure_loads", "0 0 2 units=N-mm")[2], -6000.0, 1e-9);
  EXPECT_NEAR(reactions("face_loads", "0 0 0 2 units=N-mm")[2], -2.0, 1e-12);
}

TEST(PressureOnTriangle, EulerAnglesRotateTheValues)
{
  // A quarter turn about z, clockwise: (1, 0, 0) becomes (0, -1, 0).
  ExpectLoads(LoadsOf(Roof(), PreassureLT_type::Global, "1 0 0 Euler1=1.5707963267948966"),
              {0, -3, 0}, AreaShares(3));
}

TEST(TemperatureOnTriangle, IsRefusedByTheLoadVector)
{
  ShellModel model = Roof();
  model.rest = Block("temperature_loads", "1 1e-5 20");
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    model.settings = settings;
    const auto project = ReadProject(model.Text());  // accepted
    ExpectFatal([&] { project->Calc(1, nullptr); },
                "temperature for triangles not implemented yet\n");
  }
}

namespace {

constexpr double kPressure = 2.5;

// Two slopes that meet at a ridge, pinned at the eaves.
ShellModel Roofs()
{
  ShellModel model = GridShell(4, 3, [](double u, double v) {
    return Vector3{8 * u, 6 * v, 3.0 - 4.0 * std::fabs(u - 0.5)};
  });
  model.material = "E=3e7 nu=0.2 G=1.25e7 t=0.2";
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[2] < 1.1; }))
    model.Hold(node, "111000");
  return model;
}

struct Equilibrium
{
  std::string settings;
  std::string material;
  std::string loads;
  Vector3 force;
  Vector3 at;
};

}  // namespace

TEST(PressureOnTriangle, IsInEquilibriumWithTheReactions)
{
  const double slope = std::sqrt(4.0 * 4.0 + 2.0 * 2.0);  // length of a slope
  const double area = 2 * 6 * slope;
  const Vector3 middle = {4, 3, 2};
  const std::string all = Roofs().OnAll("0 0 -2.5");
  const Equilibrium cases[] = {
      {"", "", Block("global_pressure_loads", all), {0, 0, -kPressure * area}, middle},
      // A projected load acts on the plan, 8 by 6.
      {"", "", Block("global_projected_pressure_loads", all), {0, 0, -kPressure * 48}, middle},
      // Local: the horizontal components on the two slopes cancel.
      {"", "", Block("local_pressure_loads", all), {0, 0, -kPressure * 48}, middle},
      {"GravityDirection 0 0 -1", " Weight=25", "", {0, 0, -25 * 0.2 * area}, middle},
      {"GravityDirection 1 2 -2",
       " Weight=25",
       "",
       {5 * area / 3, 10 * area / 3, -10 * area / 3},
       middle},
      // Along the edge from (0, 0, 1) to (2, 0, 2).
      {"",
       "",
       Block("face_loads", "1 0 1 2 3"),
       {std::sqrt(5.0), 2 * std::sqrt(5.0), 3 * std::sqrt(5.0)},
       {1, 0, 1.5}},
  };
  for (const Equilibrium& load : cases) {
    for (const char* conversion : {"", "ConvertTo6Nodes"}) {
      SCOPED_TRACE(load.settings + load.loads.substr(0, 30) + conversion);
      ShellModel model = Roofs();
      model.settings = load.settings + "\n" + conversion;
      model.material += load.material;
      model.rest = load.loads;
      const Vector3 moment = Cross(load.at, load.force);
      const auto sum = SumOfReactions(Solved(model.Text()));
      ExpectValues(
          {sum.begin(), sum.end()},
          {-load.force[0], -load.force[1], -load.force[2], -moment[0], -moment[1], -moment[2]},
          1e-9);
    }
  }
}

}  // namespace morlen
