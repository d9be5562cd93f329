// Refined shells as structures: balance of forces and moments, moments about the normal, beams,
// several meshes, the conversion to six nodes.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "assembly/load_vector.h"
#include "model/mesh.h"
#include "run/element_families.h"
#include "support/loaded_beams.h"
#include "support/refined_model.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// Rounding errors times the condition of the models here, below 1e6.
constexpr double kRounding = 1e-9;

// Forces on nodes and elements, and their moment about the origin.
struct Sum
{
  Vector3 force{};
  Vector3 moment{};

  void Add(const Vector3& at, const Vector3& f, const Vector3& m = {})
  {
    force = force + f;
    moment = moment + m + Cross(at, f);
  }
};

void ExpectBalance(const Sum& loads, const Solved& solved, double tolerance)
{
  const std::array<double, 6> r = SumOfReactions(solved);
  ExpectValues({r[0], r[1], r[2]}, {-loads.force[0], -loads.force[1], -loads.force[2]}, tolerance,
               1.0);
  ExpectValues({r[3], r[4], r[5]}, {-loads.moment[0], -loads.moment[1], -loads.moment[2]},
               tolerance, 1.0);
}

Vector3 At(const ShellModel& model, const std::vector<int>& triangle, int corner)
{
  return model.nodes[triangle[corner % 3] - 1];
}

Vector3 CentreOf(const ShellModel& model, const std::vector<int>& t)
{
  return (1 / 3.0) * (At(model, t, 0) + At(model, t, 1) + At(model, t, 2));
}

// The area times the normal.
Vector3 NormalOf(const ShellModel& model, const std::vector<int>& t)
{
  return 0.5 * Cross(At(model, t, 1) - At(model, t, 0), At(model, t, 2) - At(model, t, 0));
}

// A quarter of a tube on a plate: coarse facets with shares near 0, a fold of 90 degrees and a
// plane. Clamped at y = 0, loaded in every way.
struct Hall
{
  Hall(int nnode, const std::string& settings)
  {
    model = Refined(GridShell(6, 3, [](double u, double v) {
      const double angle = 2 * u * std::numbers::pi / 2;
      const Vector3 wall = {2 * std::sin(angle), 3 * v, 2 * std::cos(angle)};
      return u <= 0.5 ? wall : Vector3{2 + 4 * (u - 0.5), 3 * v + 0.2 * u * v, 0.0};
    }));
    if (nnode == 6)
      model = WithMidSideNodes(model);
    model.settings += settings + "\nGravityDirection 0.6 0 -0.8\n";
    model.material = "E=2e6 nu=0.25 G=8e5 t=0.05 Weight=7";
    for (const int node : NodesWhere(model, [](const Vector3& x) { return x[1] == 0.0; }))
      model.Hold(node, "111111");
    AddLoads();
  }

  void AddLoads()
  {
    model.Load(28, {3, -2, 1, 0.5, 0.25, -0.125});
    loads.Add(model.nodes[27], {3, -2, 1}, {0.5, 0.25, -0.125});
    for (const std::vector<int>& t : model.triangles) {
      const Vector3 normal = NormalOf(model, t);
      const double area = std::hypot(normal[0], normal[1], normal[2]);
      loads.Add(CentreOf(model, t), 7 * 0.05 * area * Vector3{0.6, 0, -0.8});
      loads.Add(CentreOf(model, t), area * Vector3{1, 2, -3});
      loads.Add(CentreOf(model, t), -2 * normal);
      loads.Add(CentreOf(model, t), std::fabs(normal[2]) * Vector3{0, 0, -4});
      for (int edge = 0; edge < 3; ++edge) {
        const Vector3 a = At(model, t, edge), b = At(model, t, edge + 1), d = b - a;
        if (IsAtEnd(a) && IsAtEnd(b))
          loads.Add(0.5 * (a + b), std::hypot(d[0], d[1], d[2]) * Vector3{1, 5, -2});
      }
    }
    model.rest = Block("global_pressure_loads", model.OnAll("1 2 -3")) +
                 Block("local_pressure_loads", model.OnAll("0 0 -2")) +
                 Block("global_projected_pressure_loads", model.OnAll("0 0 -4")) +
                 EdgeLoads(model, {1, 5, -2}, IsAtEnd);
  }

  static bool IsAtEnd(const Vector3& x) { return x[1] > 3 - 1e-9; }

  ShellModel model;
  Sum loads;
};

}  // namespace

TEST(RefinedModels, ReactionsBalanceAllLoads)
{
  for (const int nnode : {3, 6}) {
    for (const char* settings : {"", "ConvertTo6Nodes", "MainStresses", "DoSmoothing 0.5"}) {
      SCOPED_TRACE(settings);
      const Hall hall(nnode, settings);
      ExpectBalance(hall.loads, Solved(hall.model.Text()), 10 * kRounding);
    }
    // The residual of the iteration.
    const Hall hall(nnode, "Solver Sparse 1e-10 1e-10 20000");
    ExpectBalance(hall.loads, Solved(hall.model.Text()), 10 * kRounding);
  }
  // The tolerance of this solver is 1e-5.
  const Hall hall(3, "Solver Double");
  ExpectBalance(hall.loads, Solved(hall.model.Text()), 1e-5);
}

TEST(RefinedModels, BothSolversGiveTheSameDisplacements)
{
  for (const int nnode : {3, 6}) {
    const Hall direct(nnode, "Solver SkyLine");
    const Solved expected(direct.model.Text());
    const Solved solved(Hall(nnode, "Solver Sparse 1e-12 1e-12 20000").model.Text());
    // The residual of the iteration times the condition, about 1e5.
    for (std::size_t node = 1; node <= direct.model.nodes.size(); ++node)
      ExpectValues(solved.Displacement(static_cast<int>(node)),
                   expected.Displacement(static_cast<int>(node)), 1e-6, 1e-2);
  }
}

// Moments of the edge loads are equal and opposite: the loads keep forces and moments.
TEST(RefinedModels, EdgeLoadsKeepTheirResultant)
{
  ShellModel model = Refined(GridShell(4, 2, [](double u, double v) {
    return Vector3{2 * std::sin(u), v * (1 + 0.1 * u), 2 * std::cos(u)};
  }));
  model.material = "E=2000 nu=0.3 G=769.23076923076928 t=0.1";
  model.rest = EdgeLoads(model, {3, -1, 2}, [](const Vector3&) { return true; });
  const auto project = ReadProject(model.Text());
  project->CalcCoplanarityVector();
  const Problem& problem = project->problem;
  const ReaVecV loads = AppliedLoads(problem, FamiliesOf(problem));
  Sum sum, expected;
  double moments = 0.0;
  for (int node = 1; node <= problem.numNodes; ++node) {
    const double* f = loads.Data() + problem.Equation(*problem.FindNode(node), 1) - 1;
    sum.Add(model.nodes[node - 1], {f[0], f[1], f[2]}, {f[3], f[4], f[5]});
    moments += std::fabs(f[3]) + std::fabs(f[4]) + std::fabs(f[5]);
  }
  for (const std::vector<int>& t : model.triangles) {
    for (int edge = 0; edge < 3; ++edge) {
      const Vector3 d = At(model, t, edge + 1) - At(model, t, edge);
      expected.Add(0.5 * (At(model, t, edge) + At(model, t, edge + 1)),
                   std::hypot(d[0], d[1], d[2]) * Vector3{3, -1, 2});
    }
  }
  EXPECT_GT(moments, 0.1);
  ExpectValues({sum.force.begin(), sum.force.end()}, {expected.force.begin(), expected.force.end()},
               1e-13);  // rounding
  ExpectValues({sum.moment.begin(), sum.moment.end()},
               {expected.moment.begin(), expected.moment.end()}, 1e-13);
}

// The load (3, -1, 2) per length on the edge from (2, 0.3) to (0.5, 1.4). In one plane all shares
// are 1, so that the moments are qn L²/8.
TEST(RefinedModels, AnEdgeLoadGivesMomentsAboutTheNormal)
{
  ShellModel model = Refined({});
  model.nodes = {{0, 0, 0}, {2, 0.3, 0}, {0.5, 1.4, 0}};
  model.triangles = {{1, 2, 3}};
  model.rest = "face_loads\n1 1 3 -1 2\nend\n";
  const auto project = ReadProject(model.Text());
  project->CalcCoplanarityVector();
  const ReaVecV loads = AppliedLoads(project->problem, FamiliesOf(project->problem));
  const double moment = (3 * 1.1 - 1 * 1.5) * std::hypot(1.5, 1.1) / 8;
  const double L = std::hypot(1.5, 1.1) / 2;
  ExpectValues({loads.begin(), loads.end()},
               {0, 0, 0, 0, 0, 0, 3 * L, -L, 2 * L, 0, 0, -moment, 3 * L, -L, 2 * L, 0, 0, moment},
               1e-14);
}

TEST(RefinedModels, AMomentAboutTheNormalArrivesAtTheSupports)
{
  for (const int nnode : {3, 6}) {
    for (const char* settings : {"", "ConvertTo6Nodes"}) {
      ShellModel slab = Refined(GridShell(4, 4, [](double u, double v) {
        return Vector3{4 * u, 4 * v, 0};
      }));
      if (nnode == 6)
        slab = WithMidSideNodes(slab);
      slab.settings += settings;
      slab.material = "E=3e7 nu=0.2 G=1.25e7 t=0.2";
      for (const int node : {1, 5, 21, 25})
        slab.Hold(node, "111000");
      slab.Load(13, {0, 0, 0, 0, 0, 100});
      const Solved solved(slab.Text());
      const std::array<double, 6> sum = SumOfReactions(solved);
      ExpectValues({sum.begin(), sum.end()}, {0, 0, 0, 0, 0, -100}, kRounding);
      EXPECT_GT(solved.Displacement(13)[5], 0.0);
    }
  }
}

namespace {

// A wall of 4 by 4 in the plane y = 0, clamped at its foot, and a beam in its plane from the middle
// of its right side.
std::string WallWithBeam(int nnode, const std::string& settings)
{
  ShellModel wall = Refined(GridShell(4, 4, [](double u, double v) {
    return Vector3{4 * u, 0, 4 * v};
  }));
  if (nnode == 6)
    wall = WithMidSideNodes(wall);
  wall.settings += settings;
  wall.nodes.push_back({7, 0, 2});
  const int end = static_cast<int>(wall.nodes.size());
  wall.material = "E=3e7 nu=0.2 G=1.25e7 t=0.2\n2 E=3e7 G=1.25e7 A=0.12 Iy=9e-4 Iz=1.6e-3 J=1.9e-3";
  for (const int node : NodesWhere(wall, [](const Vector3& x) { return x[2] == 0.0; }))
    wall.Hold(node, "111111");
  wall.Load(end, {0, 0, -10, 0, 0, 0});
  wall.rest = "mesh dimension 3 elemtype Linear nnode 2\ncoordinates\nend\nelements\n1001 15 " +
              std::to_string(end) + " 2\nend elements\n";
  return wall.Text();
}

}  // namespace

TEST(RefinedModels, ABeamInTheWallsPlaneKeepsItsMoment)
{
  for (const int nnode : {3, 6}) {
    for (const char* settings : {"", "ConvertTo6Nodes"}) {
      const Solved solved(WallWithBeam(nnode, settings));
      const std::vector<double> ends = solved.EndForces(1001);
      EXPECT_NEAR(std::hypot(ends[4], ends[5]), 30.0, 10 * kRounding);  // 10 · 3 at the wall
      Sum loads;
      loads.Add({7, 0, 2}, {0, 0, -10});
      ExpectBalance(loads, solved, kRounding);
      // The wall turns, but less than the beam bends: PL²/2EI.
      const double turn = std::fabs(solved.Displacement(15)[4]);
      EXPECT_GT(turn, 0.0);
      EXPECT_LT(turn, 10 * 9 / (2 * 3e7 * 9e-4));
    }
  }
}

namespace {

// The problem with its elements from number `second` and `third` on in meshes of their own.
std::string InThreeMeshes(std::string text, int second, int third)
{
  const std::size_t nnode = text.find("nnode ");
  const std::string count = text.substr(nnode, 7);
  for (const int first : {second, third}) {
    const std::size_t at =
        text.find("\n" + std::to_string(first) + " ", text.find("end coordinates"));
    text.insert(at + 1, "end elements\nmesh dimension 3 elemtype Triangle " + count +
                            "\ncoordinates\nend coordinates\nelements\n");
  }
  return text;
}

void ExpectSameForces(const Solved& actual, const Solved& expected, int triangles)
{
  for (int triangle = 1; triangle <= triangles; ++triangle)
    EXPECT_EQ(ForcesOf(actual, triangle), ForcesOf(expected, triangle)) << triangle;
}

}  // namespace

TEST(RefinedModels, SeveralMeshesGiveTheDigitsOfOne)
{
  for (const int nnode : {3, 6}) {
    for (const char* settings : {"", "ConvertTo6Nodes", "Solver Sparse 1e-10 1e-10 20000"}) {
      SCOPED_TRACE(settings);
      const Hall hall(nnode, settings);
      const Solved one(hall.model.Text());
      const Solved three(InThreeMeshes(hall.model.Text(), 9, 21));
      ASSERT_EQ(three.Model().meshes.size(), 3U);
      EXPECT_EQ(three.Model().shellShares, one.Model().shellShares);
      for (std::size_t node = 1; node <= hall.model.nodes.size(); ++node)
        EXPECT_EQ(three.Displacement(static_cast<int>(node)),
                  one.Displacement(static_cast<int>(node)));
      ExpectSameForces(three, one, static_cast<int>(hall.model.triangles.size()));
    }
  }
}

// Supports along whole borders, so that the middle nodes of the conversion have those of the file.
TEST(RefinedModels, ConvertedTrianglesAreThoseOfASixNodeFile)
{
  const Hall file(6, "Solver SkyLine");
  const Hall corners(3, "Solver SkyLine\nConvertTo6Nodes");
  const Solved expected(file.model.Text());
  const Solved solved(corners.model.Text());
  ASSERT_EQ(solved.Model().numNodes, static_cast<int>(file.model.nodes.size()));
  for (std::size_t node = 1; node <= corners.model.nodes.size(); ++node)
    ExpectValues(solved.Displacement(static_cast<int>(node)),
                 expected.Displacement(static_cast<int>(node)), 1e-10, 1e-2);  // rounding
  for (std::size_t triangle = 1; triangle <= corners.model.triangles.size(); ++triangle) {
    const std::vector<ShellForces> a = ForcesOf(solved, static_cast<int>(triangle));
    const std::vector<ShellForces> b = ForcesOf(expected, static_cast<int>(triangle));
    ASSERT_EQ(a.size(), 3U);
    for (int point = 0; point < 3; ++point)
      ExpectValues({a[point].begin(), a[point].end()}, {b[point].begin(), b[point].end()},
                   10 * kRounding, 1.0);
  }
}

}  // namespace morlen
