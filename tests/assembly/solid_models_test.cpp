// Whole models of tetrahedra: patch tests, closed forms, and fatal errors.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/messages.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr double kE = 1000.0;
constexpr double kNu = 0.25;
constexpr std::array<double, 9> kGradient = {0.010, 0.004, -0.006, 0.002, -0.008,
                                             0.003, 0.005, 0.001,  0.007};
constexpr Tensor kStrain = {0.010, -0.008, 0.007, 0.006, -0.001, 0.004};

Vector3 LinearField(const Vector3& x)
{
  return GradientTimes(kGradient, x);
}

// A block rotated in space, with all nodes moved away from their grid.
SolidModel Distorted(int nnode)
{
  SolidModel model = SolidBlock({2, 2, 2}, {2.0, 1.5, 1.0}, 4);
  model.Map([](const Vector3& p) {
    return Rotated(p + Vector3{0.12 * std::sin(3 * p[1] + p[2]), 0.10 * std::cos(4 * p[0] * p[2]),
                               0.08 * std::sin(5 * p[0] + 2 * p[1])});
  });
  return nnode == 10 ? model.ToTenNodes() : model;
}

// Expects the same stress at every node. The tolerance is relative to its largest component.
void ExpectUniform(const SolidModel& model, const Solved& solved, const Tensor& stress,
                   double tolerance)
{
  double scale = 0.0;
  for (const double s : stress)
    scale = std::max(scale, std::fabs(s));
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    const Tensor s = StressAt(solved, node);
    for (int k = 0; k < 6; ++k)
      EXPECT_NEAR(s[k], stress[k], tolerance * scale) << "node " << node << " stress " << k + 1;
  }
}

void ExpectField(const SolidModel& model, const Solved& solved,
                 const std::function<Vector3(const Vector3&)>& field, double tolerance)
{
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    const Vector3 u = field(model.nodes[node - 1]);
    ExpectValues(solved.Displacement(node), {u[0], u[1], u[2]}, tolerance, 0.02);
  }
}

void ExpectSameDisplacements(const SolidModel& model, const Solved& a, const Solved& b,
                             double tolerance)
{
  double scale = 0.0;
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    for (const double u : a.Displacement(node))
      scale = std::max(scale, std::fabs(u));
  }
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node)
    ExpectValues(b.Displacement(node), a.Displacement(node), tolerance, scale);
}

// A bar along x on rollers under tension: the stress along x is 10.
SolidModel PulledBar(int nnode)
{
  SolidModel model = SolidBlock({2, 1, 1}, {3.0, 1.0, 0.5}, nnode);
  model.Roller(0, 0.0).Roller(1, 0.0).Roller(2, 0.0);
  return model.LoadSides("face_loads", {10, 0, 0}, [](const Vector3& p) { return p[0] > 2.999; });
}

Vector3 PulledField(const Vector3& x)
{
  const double strain = 10.0 / kE;
  return {strain * x[0], -kNu * strain * x[1], -kNu * strain * x[2]};
}

// A cantilever block under a load at its end, and under its weight.
SolidModel Cantilever(int nnode)
{
  SolidModel model = SolidBlock({4, 2, 2}, {4.0, 1.0, 1.0}, nnode);
  model.material = "E 1000 nu 0.3 Weight 0.01";
  model.settings = "GravityDirection 0 0 -1";
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    if (model.nodes[node - 1][0] == 0.0)
      model.supports[node] = {};
  }
  model.loads[model.NodeAt({4, 0, 1})] = {0.1, 0.2, -0.3};
  return model;
}

// The error of the hydrostatic stress -p in a body with curved faces under the pressure p: the root
// mean square over the nodes, relative to p.
double HydrostaticError(int cells)
{
  SolidModel model = SolidBlock({cells, cells, cells}, {2.0, 2.0, 2.0}, 10);
  model.LoadSides("local_pressure_loads", {0, 0, -5}, [](const Vector3&) { return true; });
  model.Map([](const Vector3& p) {
    const Vector3 d = p - Vector3{1, 1, 1};
    return d + Vector3{0.15 * d[1] * d[2], 0.1 * std::sin(2 * d[0]), 0.1 * d[0] * d[0]};
  });
  const int last = static_cast<int>(model.nodes.size());
  const int a = 1;
  int b = 0;
  int c = 0;
  for (int node = 1; node <= last; ++node) {
    const Vector3 d = model.nodes[node - 1] - model.nodes[a - 1];
    if (b == 0 && std::fabs(d[0]) > 1.0)
      b = node;
    if (c == 0 && std::fabs(d[1]) > 1.0)
      c = node;
  }
  model.supports[a] = {};
  model.supports[b] = {.flags = "011"};
  model.supports[c] = {.flags = "001"};
  const Solved solved(model.Text());
  double squares = 0.0;
  for (int node = 1; node <= last; ++node) {
    const Tensor s = StressAt(solved, node);
    for (int k = 0; k < 6; ++k)
      squares += std::pow(s[k] / 5.0 + (k < 3 ? 1.0 : 0.0), 2);
  }
  return std::sqrt(squares / last);
}

}  // namespace

class SolidModels : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Nodes, SolidModels, testing::Values(4, 10),
                         [](const auto& instance) { return std::to_string(instance.param); });

TEST_P(SolidModels, PatchOfConstantStrain)
{
  for (const char* header : {"3d", "2d"}) {
    SolidModel model = Distorted(GetParam());
    model.header = header;
    model.Prescribe(model.OuterNodes(), LinearField);
    ASSERT_LT(model.supports.size(), model.nodes.size());
    const Solved solved(model.Text());
    ExpectField(model, solved, LinearField, 1e-6);
    ExpectUniform(model, solved, StressOf(kE, kNu, kStrain), 1e-6);
    ExpectBalanced(model, solved);
  }
}

TEST_P(SolidModels, PatchUnderFaceLoads)
{
  const SolidModel model = PulledBar(GetParam());
  const Solved solved(model.Text());
  ExpectField(model, solved, PulledField, 1e-6);
  ExpectUniform(model, solved, {10, 0, 0, 0, 0, 0}, 1e-6);
  ExpectBalanced(model, solved);
}

// The same bar rotated in space and supported at single points.
TEST_P(SolidModels, PatchUnderFaceLoadsTurned)
{
  SolidModel model = PulledBar(GetParam());
  model.supports.clear();
  model.rest.clear();
  for (const bool far : {true, false})
    model.LoadSides("local_pressure_loads", {0, 0, 10},
                    [far](const Vector3& p) { return far ? p[0] > 2.999 : p[0] < 0.001; });
  // The supports have the exact displacements of the bar, so that they cause no forces.
  const auto field = [](const Vector3& x) { return Rotated(PulledField(x)); };
  const Vector3 points[] = {{0, 0, 0}, {3, 0, 0}, {0, 1, 0}};
  std::vector<Vector3> exact;
  for (const Vector3& x : model.nodes)
    exact.push_back(field(x));
  for (const Vector3& p : points) {
    const int node = model.NodeAt(p);
    model.supports[node] = {.values = exact[node - 1]};
  }
  model.Map(Rotated);
  const Solved solved(model.Text());
  for (const auto& [node, support] : model.supports) {
    for (const double r : solved.Reaction(node))
      EXPECT_NEAR(r, 0.0, 1e-6);
  }
  for (std::size_t i = 0; i < exact.size(); ++i)
    ExpectValues(solved.Displacement(static_cast<int>(i) + 1),
                 {exact[i][0], exact[i][1], exact[i][2]}, 1e-6, 0.03);
}

TEST(SolidsWithCurvedEdges, HydrostaticPressureConverges)
{
  const double coarse = HydrostaticError(2);
  const double fine = HydrostaticError(4);
  EXPECT_LT(coarse, 0.05);
  EXPECT_LT(fine, coarse / 3.5);
}

// Bending and torsion have quadratic displacements, which ten nodes represent exactly.
TEST(SolidsWithTenNodes, BendingAndTorsionAreExact)
{
  SolidModel model = Distorted(10);
  const auto field = [](const Vector3& x) {
    const double k = 0.004, t = 0.003;
    return Vector3{k * x[0] * x[2] - t * x[1] * x[2], -kNu * k * x[1] * x[2] + t * x[0] * x[2],
                   -k * (x[0] * x[0] + kNu * (x[2] * x[2] - x[1] * x[1])) / 2.0};
  };
  model.Prescribe(model.OuterNodes(), field);
  const Solved solved(model.Text());
  ExpectField(model, solved, field, 1e-6);
  const double G = kE / (2.0 * (1.0 + kNu));
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const Vector3& x = model.nodes[i];
    const Tensor s = StressAt(solved, static_cast<int>(i) + 1);
    ExpectValues({s.begin(), s.end()},
                 {kE * 0.004 * x[2], 0, 0, 0, -G * 0.003 * x[1], G * 0.003 * x[0]}, 1e-6, 8.0);
  }
}

TEST_P(SolidModels, WeightAndForceAreCarried)
{
  const SolidModel model = Cantilever(GetParam());
  const Solved solved(model.Text());
  ExpectBalanced(model, solved);
  Vector3 sum{};
  for (const auto& [node, support] : model.supports) {
    const std::vector<double> r = solved.Reaction(node);
    sum = sum + Vector3{r[0], r[1], r[2]};
  }
  EXPECT_NEAR(sum[0], -0.1, 1e-9);
  EXPECT_NEAR(sum[1], -0.2, 1e-9);
  EXPECT_NEAR(sum[2], 0.3 + 0.04, 1e-6);
}

// A column under its weight: the displacement is γ(Hz - z²/2)/E without lateral strain.
TEST(SolidsWithTenNodes, ColumnUnderItsWeight)
{
  SolidModel model = SolidBlock({1, 1, 3}, {1.0, 1.0, 3.0}, 10);
  model.material = "E 1000 nu 0 Weight 2";
  model.settings = "GravityDirection 0 0 -1";
  model.Roller(0, 0.0).Roller(1, 0.0).Roller(2, 0.0);
  const Solved solved(model.Text());
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const double z = model.nodes[i][2];
    EXPECT_NEAR(solved.Displacement(static_cast<int>(i) + 1)[2], -2.0 * (3.0 * z - z * z / 2) / kE,
                1e-8);
    EXPECT_NEAR(StressAt(solved, static_cast<int>(i) + 1)[2], -2.0 * (3.0 - z), 1e-5);
  }
}

TEST_P(SolidModels, PressureOnCurvedSidesIsCarried)
{
  SolidModel model = Cantilever(GetParam());
  model.LoadSides("local_pressure_loads", {0.3, -0.1, -0.2},
                  [](const Vector3& p) { return p[2] > 0.999; });
  model.LoadSides("global_projected_pressure_loads", {0.1, 0.2, -0.5},
                  [](const Vector3& p) { return p[1] > 0.999; });
  model.Map([](const Vector3& p) {
    return Vector3{p[0], p[1] + 0.1 * p[0] * p[2], p[2] + 0.05 * p[0] * p[0]};
  });
  ExpectBalanced(model, Solved(model.Text()));
}

TEST_P(SolidModels, RenumberingChangesNothing)
{
  const SolidModel model = Cantilever(GetParam());
  const Solved renumbered(model.Text(), true);
  const Solved asRead(model.Text(), false);
  ExpectSameDisplacements(model, asRead, renumbered, 1e-10);
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    const Tensor a = StressAt(asRead, node);
    const Tensor b = StressAt(renumbered, node);
    ExpectValues({b.begin(), b.end()}, {a.begin(), a.end()}, 1e-9, 1.0);
  }
}

TEST_P(SolidModels, SparseAndSkylineAgree)
{
  SolidModel model = Cantilever(GetParam());
  const std::string settings = model.settings;
  model.settings = settings + "\nSolver SkyLine";
  const Solved skyline(model.Text());
  model.settings = settings + "\nSolver Sparse 1e-10 1e-10 5000";
  const Solved sparse(model.Text());
  ExpectSameDisplacements(model, skyline, sparse, 1e-7);
  for (const auto& [node, support] : model.supports)
    ExpectValues(sparse.Reaction(node), skyline.Reaction(node), 1e-6, 1.0);
}

// A block in N and mm, with support and load records in these units or in N and m. The results in N
// and m are those of the block in N and m. No component is a rotation.
TEST_P(SolidModels, UnitsOfEveryComponent)
{
  const std::string units = "units_names\nN_mm N mm MPa 1 0.001\nN_m N m Pa 1 1\nend\n";
  SolidModel metres = SolidBlock({2, 1, 1}, {0.2, 0.1, 0.1}, GetParam());
  metres.settings = units + "units_mesh m\nunits_mat_and_load N_m\nunits_res N_m";
  metres.material = "E 2e9 nu 0.3 Weight 25000";
  SolidModel millimetres = metres;
  millimetres.settings = units + "units_mesh mm\nunits_mat_and_load N_mm\nunits_res N_m";
  millimetres.material = "E 2000 nu 0.3 Weight 25e-6";
  millimetres.Map([](const Vector3& x) { return 1000.0 * x; });
  for (int node = 1; node <= static_cast<int>(metres.nodes.size()); ++node) {
    const Vector3& x = metres.nodes[node - 1];
    if (x[0] == 0.0) {
      metres.supports[node] = {.flags = "111", .values = {1e-5, 2e-5, -3e-5}};
      millimetres.supports[node] = {.flags = "111", .values = {1e-2, 2e-2, -3e-2}};
    }
  }
  const int end = metres.NodeAt({0.2, 0.1, 0.1});
  metres.supports[end] = {.flags = "222", .values = {1e6, 2e6, 3e6}};
  millimetres.supports[end] = {.flags = "222", .values = {1e3, 2e3, 3e3}};
  metres.loads[end] = millimetres.loads[end] = {100, 200, 300};
  const auto ends = [](double side) {
    return [side](const Vector3& p) { return p[0] > 1.999 * side; };
  };
  metres.LoadSides("local_pressure_loads", {1e4, 2e4, -3e4}, ends(0.1));
  millimetres.LoadSides("local_pressure_loads", {0.01, 0.02, -0.03}, ends(100.0));
  const Solved a(metres.Text());
  const Solved b(millimetres.Text());
  ExpectSameDisplacements(metres, a, b, 1e-9);
  for (const auto& [node, support] : metres.supports)
    ExpectValues(b.Reaction(node), a.Reaction(node), 1e-9, 100.0);
  ExpectValues(a.Displacement(1), {1e-5, 2e-5, -3e-5}, 1e-12);
  const Tensor sa = StressAt(a, end);
  const Tensor sb = StressAt(b, end);
  ExpectValues({sb.begin(), sb.end()}, {sa.begin(), sa.end()}, 1e-9);
}

TEST_P(SolidModels, UnitsOfSingleRecords)
{
  SolidModel model = UnitSolid(GetParam());
  model.settings =
      "units_names\nN_mm N mm MPa 1 0.001\nN_m N m Pa 1 1\nend\n"
      "units_mesh m\nunits_mat_and_load N_m\nunits_res N_m";
  model.Prescribe(model.OuterNodes(), [](const Vector3&) { return Vector3{1, 2, 3}; });
  for (auto& [node, support] : model.supports)
    support.items = "units N_mm";
  ExpectValues(Solved(model.Text()).Displacement(4), {1e-3, 2e-3, 3e-3}, 1e-12);
}

TEST_P(SolidModels, SpringsHoldEveryComponent)
{
  SolidModel model = UnitSolid(GetParam());
  for (std::size_t i = 1; i <= model.nodes.size(); ++i)
    model.supports[static_cast<int>(i)] = {.flags = "222", .values = {5, 10, 20}};
  for (std::size_t i = 1; i <= model.nodes.size(); ++i)
    model.loads[static_cast<int>(i)] = {5.0 / 2, 10.0 / 4, 20.0 / 5};
  const Solved solved(model.Text());
  ExpectValues(solved.Displacement(1), {0.5, 0.25, 0.2}, 1e-6);
  ExpectValues(solved.Reaction(2), {-2.5, -2.5, -4.0}, 1e-6);
}

// The bar under tension, rotated about z by 30 degrees, with rollers rotated by their angles (a
// positive angle is clockwise).
TEST_P(SolidModels, SupportAxesTurnedAboutZ)
{
  constexpr double angle = std::numbers::pi / 6.0;
  const auto turn = [](const Vector3& v) {
    const double c = std::cos(angle), s = std::sin(angle);
    return Vector3{c * v[0] - s * v[1], s * v[0] + c * v[1], v[2]};
  };
  SolidModel model = PulledBar(GetParam());
  const std::vector<Vector3> straight = model.nodes;
  model.Map(turn);
  model.rest.replace(model.rest.find("face_loads"), 10, "local_pressure_loads");
  for (std::size_t at = 0; (at = model.rest.find(" 10 0 0", at)) != std::string::npos;)
    model.rest.replace(at, 7, " 0 0 10");
  for (auto& [node, support] : model.supports)
    support.items = "Euler1 -0.52359877559829887";
  const Solved solved(model.Text());
  for (std::size_t i = 0; i < straight.size(); ++i) {
    const Vector3 u = turn(PulledField(straight[i]));
    ExpectValues(solved.Displacement(static_cast<int>(i) + 1), {u[0], u[1], u[2]}, 1e-6, 0.03);
  }
  ExpectBalanced(model, solved);
}

TEST_P(SolidModels, TiltedSupportAxesAreRefused)
{
  for (const char* header : {"2d", "3d"}) {
    SolidModel model = PulledBar(GetParam());
    model.header = header;
    model.supports[1].items = "Euler2 0.1";
    ExpectFatal([&] { Solved solved(model.Text()); },
                "error: Local z axe must be (0,0,1) for 2D problems.Node: 1\n");
  }
}

TEST_P(SolidModels, DoubleSolverIsRefused)
{
  SolidModel model = PulledBar(GetParam());
  model.settings = "Solver Double";
  ExpectFatal([&] { Solved solved(model.Text()); },
              "error: Double solver not implemented for tetrahedras\n");
}

TEST_P(SolidModels, FaultyModelsAreRefused)
{
  const SolidModel good = PulledBar(GetParam());
  SolidModel turned = good;
  std::swap(turned.elements[3][0], turned.elements[3][1]);
  if (GetParam() == 10) {  // the mid-side nodes of these corners
    std::swap(turned.elements[3][MiddleOf(0, 2)], turned.elements[3][MiddleOf(1, 2)]);
    std::swap(turned.elements[3][MiddleOf(0, 3)], turned.elements[3][MiddleOf(1, 3)]);
  }
  SolidModel incompressible = good;
  incompressible.material = "E 1 nu 0.5";
  SolidModel warm = good;
  warm.rest = "temperature_loads\n1 1 1\nend\n";
  SolidModel face = good;
  face.rest = "face_loads\n1 4 1 0 0\nend\n";
  SolidModel orphan = good;
  orphan.nodes.push_back({9, 9, 9});
  const int last = static_cast<int>(orphan.nodes.size());
  orphan.supports[last] = {};
  SolidModel beam = good;
  beam.rest =
      "mesh dimension 3 elemtype Linear nnode 2 coordinates\nend\nelements\n99 1 2 1\nend\n";
  SolidModel unknown = good;
  unknown.elements[0][2] = 999;
  const struct
  {
    const SolidModel& model;
    std::string message;
  } cases[] = {
      {turned, GetParam() == 4 ? "error: element 4 has jacobian <=0\n"
                               : "error: element 4 has jacobian 0\n"},
      {incompressible, "error in element 1 nu is 0.5\n"},
      {warm, "temperature for 3D solids not implemented yet\n"},
      {face, "error in PreassureLT::AddToLoadVectorFaceTriangle\n"},
      {orphan, "error: node " + std::to_string(last) + " has no elements around\n"},
      {beam, "error: Element tetrahedra cannot be mixed with any other element type"},
      {unknown, "error: element 1 has an unknown node\n"},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { Solved solved(c.model.Text()); }, c.message);
}

TEST_P(SolidModels, FreeBodiesAreRefused)
{
  SolidModel model = PulledBar(GetParam());
  model.supports.clear();
  const auto message = [&] { return FatalCaught([&] { Solved solved(model.Text()); }); };
  EXPECT_TRUE(
      message().starts_with("There are no prescribed nodes in the model!!!\nerror when "
                            "solving system("))
      << message();
  model.supports[1] = {};
  EXPECT_TRUE(
      message().starts_with("There is only one prescribed node in the model!!!\n"
                            "At least 3 prescribed nodes are needed!!!\n"))
      << message();
  model.supports[2] = {};
  EXPECT_TRUE(
      message().starts_with("There are only two prescribed nodes in the model!!!\n"
                            "Model can rotate around axe: "))
      << message();
}

TEST_P(SolidModels, ProgressNamesTheSmoothing)
{
  const auto project = ReadProject(PulledBar(GetParam()).Text());
  project->Calc(1, nullptr);
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { project->CalcStrengthsAndReactions(info); }),
            "Beginning smooth of the gaussian variables\n");
}

}  // namespace morlen
