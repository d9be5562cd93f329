// Refined shells as patches: constant strain and curvature on distorted meshes in oblique planes
// and along ridges, assembled folds, rigid motions, numbering of the nodes of the elements.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/refined_element.h"
#include "support/refined_model.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

using Components = std::array<double, 6>;

// Rounding errors of 1e-16 times (h/t)², to 1e6, the ratio of shear or membrane to bending.
constexpr double kRounding = 1e-10;

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr char kOrthotropic[] = "Ex=2000 Ey=1000 nuXY=0.125 nuYX=0.25 Gxy=300 Gxz=200 Gyz=250 t=";
constexpr double kFactor = 1.0 / (1.0 - 1.0 / 32.0);

std::array<double, 3> TimesD(const std::array<double, 3>& strain)
{
  return {kFactor * (2000 * strain[0] + 250 * strain[1]),
          kFactor * (250 * strain[0] + 1000 * strain[1]), 300 * strain[2]};
}

std::string EulerItems(const Vector3& angles)
{
  std::string items;
  for (int k = 0; k < 3; ++k)
    items += " Euler" + std::to_string(k + 1) + "=" + Digits(angles[k]);
  return items;
}

// A distorted plate of 4 by 2 in the plane of these angles, prescribed to a field of the plane at
// its border.
struct PlanePatch
{
  template <class Field>
  PlanePatch(int nnode, const Vector3& angles, double t, Field field)
  {
    model = Refined(GridShell(4, 3, DistortedRectangle(4, 2), Cut::BothWays));
    if (nnode == 6)
      model = WithMidSideNodes(model);
    model.material = kOrthotropic + Digits(t) + EulerItems(angles);
    const auto axes = AxesOfAngles(angles);
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
      const auto [x, y, z] = model.nodes[i];
      const Components local = field(x, y);
      const Vector3 u = Turned(axes, {local[0], local[1], local[2]});
      const Vector3 r = Turned(axes, {local[3], local[4], local[5]});
      expected.push_back({u[0], u[1], u[2], r[0], r[1], r[2]});
      const bool isInner = x > 1e-9 && x < 4 - 1e-9 && y > 1e-9 && y < 2 - 1e-9;
      if (!isInner)
        model.Hold(static_cast<int>(i) + 1, "111111", expected.back());
      inner += isInner;
      model.nodes[i] = Vector3{3, -2, 5} + Turned(axes, model.nodes[i]);
    }
  }

  void ExpectField(const Solved& solved, double tolerance) const
  {
    for (std::size_t i = 0; i < expected.size(); ++i)
      ExpectValues(solved.Displacement(static_cast<int>(i) + 1),
                   {expected[i].begin(), expected[i].end()}, tolerance, 0.01);
  }

  ShellModel model;
  std::vector<Components> expected;  // by node - 1
  int inner = 0;
};

constexpr Vector3 kPlanes[] = {{0, 0, 0}, {0.3, 0.9, -0.4}, {-1.1, 2.2, 0.7}};

}  // namespace

TEST(RefinedPatch, ConstantStrainIsExactInAnyPlane)
{
  const auto field = [](double x, double y) {
    return Components{0.01 + 0.002 * x + 0.003 * y, -0.02 - 0.001 * x + 0.004 * y, 0, 0, 0, -0.002};
  };
  for (const Vector3& angles : kPlanes) {
    for (const int nnode : {3, 6}) {
      for (const double t : {1.0, 0.1, 1e-3}) {
        const PlanePatch patch(nnode, angles, t, field);
        ASSERT_GT(patch.inner, 5);
        const Solved solved(patch.model.Text());
        patch.ExpectField(solved, kRounding);
        const auto N = TimesD({0.002, 0.004, 0.002});
        ExpectForcesEverywhere(solved, {t * N[0], t * N[1], t * N[2], 0, 0, 0, 0, 0}, kRounding);
      }
    }
  }
}

TEST(RefinedPatch, ConstantCurvatureIsExactInAnyPlane)
{
  constexpr double k[] = {0.01, -0.02, 0.03};  // w,xx, w,yy, 2 w,xy
  const auto field = [&](double x, double y) {
    const double w = (k[0] * x * x + k[1] * y * y + k[2] * x * y) / 2 + 0.001 * x - 0.002 * y;
    return Components{0, 0, w, k[1] * y + k[2] / 2 * x - 0.002, -k[0] * x - k[2] / 2 * y - 0.001,
                      0};
  };
  for (const Vector3& angles : kPlanes) {
    for (const int nnode : {3, 6}) {
      for (const double t : {0.5, 0.01}) {
        const PlanePatch patch(nnode, angles, t, field);
        const Solved solved(patch.model.Text());
        patch.ExpectField(solved, 10 * kRounding);
        auto M = TimesD({-k[0], -k[1], -k[2]});
        for (double& m : M)
          m *= t * t * t / 12.0;
        ExpectForcesEverywhere(solved, {0, 0, 0, M[0], M[1], M[2], 0, 0}, 10 * kRounding);
      }
    }
  }
}

namespace {

// Two distorted plates of 2 by 1 that meet along the x axis, the second turned by the fold angle.
// Symmetric supports at x = 0; a uniform tension of 3 per length at x = 2.
ShellModel Ridge(int nnode, double fold, double t)
{
  const auto flat = DistortedRectangle(2, 1);
  ShellModel model = Refined(GridShell(4, 8, [&](double u, double v) {
    const bool second = v > 0.5;
    const Vector3 p = flat(u, second ? 2 * v - 1 : 2 * v);
    const double along = second ? p[1] : p[1] - 1;
    return second ? Vector3{p[0], along * std::cos(fold), along * std::sin(fold)}
                  : Vector3{p[0], along, 0};
  }));
  if (nnode == 6)
    model = WithMidSideNodes(model);
  model.material = "E=2000 nu=0.3 G=769.23076923076928 t=" + Digits(t);
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[0] == 0.0; })) {
    const Vector3& x = model.nodes[node - 1];
    const bool onRidge = std::fabs(x[1]) + std::fabs(x[2]) < 1e-12;
    model.Hold(node, onRidge ? "111011" : x[1] == -1.0 ? "101011" : "100011");
  }
  model.rest = EdgeLoads(model, {3, 0, 0}, [](const Vector3& x) { return x[0] > 2 - 1e-9; });
  return model;
}

void ExpectTension(const ShellModel& model, double strain)
{
  const Solved solved(model.Text());
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const Vector3& x = model.nodes[i];
    ExpectValues(solved.Displacement(static_cast<int>(i) + 1),
                 {strain * x[0], -0.3 * strain * x[1], -0.3 * strain * x[2], 0, 0, 0},
                 100 * kRounding, 2 * strain);
  }
  for (std::size_t triangle = 1; triangle <= model.triangles.size(); ++triangle)
    for (const ShellForces& force : ForcesOf(solved, static_cast<int>(triangle)))
      EXPECT_NEAR(std::hypot(force[0], force[1], force[2]), 3.0, 10 * kRounding);
}

}  // namespace

TEST(RefinedPatch, TensionAlongRidgesIsExact)
{
  for (const int nnode : {3, 6}) {
    for (const double degrees : {0.0, 0.001, 5.0, 15.0, 30.0, 60.0, 90.0}) {
      for (const double t : {1.0, 0.1, 0.01, 0.001}) {
        SCOPED_TRACE(std::to_string(nnode) + " nodes, fold " + Digits(degrees) + ", t " +
                     Digits(t));
        ExpectTension(Ridge(nnode, degrees * kDegree, t), 3 / (2000 * t));
      }
    }
  }
}

namespace {

// Two triangles on a common edge, turned about it by the angle.
ShellModel TwoTriangles(int nnode, double fold)
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {2, 0.3, 0}, {0.5, 1.4, 0}};
  const Vector3 edge = model.nodes[1];
  const double L = std::hypot(edge[0], edge[1]);
  const Vector3 e = (1 / L) * edge;
  const Vector3 across = {e[1], -e[0], 0};
  model.nodes.push_back(0.6 * e + 1.1 * std::cos(fold) * across +
                        Vector3{0, 0, 1.1 * std::sin(fold)});
  model.triangles = {{1, 2, 3}, {2, 1, 4}};
  model.material = "E=200000 nu=0.3 G=76923.076923076922 t=0.1";
  return Refined(nnode == 6 ? WithMidSideNodes(model) : model);
}

}  // namespace

TEST(RefinedPatch, TwoFoldedTrianglesHaveSixZeroEigenvalues)
{
  for (const int nnode : {3, 6}) {
    for (const double degrees : {0.0, 0.001, 5.0, 90.0}) {
      SCOPED_TRACE(Digits(degrees));
      ExpectSixZeroEigenvalues(AssembledMatrix(TwoTriangles(nnode, degrees * kDegree)));
    }
  }
}

TEST(RefinedPatch, ARigidMotionAtThreeNodesNeedsNoForces)
{
  const Vector3 shift = {0.01, -0.02, 0.015};
  const Vector3 turn = {0.003, -0.005, 0.007};
  for (const int nnode : {3, 6}) {
    for (const double degrees : {0.0, 0.001, 5.0, 90.0}) {
      SCOPED_TRACE(Digits(degrees));
      ShellModel model = TwoTriangles(nnode, degrees * kDegree);
      const auto moved = [&](int node) {
        const Vector3 u = shift + Cross(turn, model.nodes[node - 1]);
        return Components{u[0], u[1], u[2], turn[0], turn[1], turn[2]};
      };
      for (int node = 1; node <= 3; ++node)
        model.Hold(node, "111111", moved(node));
      const Solved solved(model.Text());
      const double limit = 1e-13 * 200000 * 0.1 * 0.03;  // E t |u|
      for (int node = 1; node <= 3; ++node)
        ExpectValues(solved.Reaction(node), {0, 0, 0, 0, 0, 0}, limit, 1.0);
      for (int node = 4; node <= static_cast<int>(model.nodes.size()); ++node) {
        const Components u = moved(node);
        ExpectValues(solved.Displacement(node), {u.begin(), u.end()}, kRounding);
      }
    }
  }
}

namespace {

// A bent strip under forces at a node.
ShellModel BentStrip(int nnode)
{
  ShellModel model = Refined(GridShell(6, 3, [](double u, double v) {
    return Vector3{2 * std::sin(u), v + 0.1 * u * v, 2 * std::cos(u)};
  }));
  if (nnode == 6)
    model = WithMidSideNodes(model);
  model.material = "E=2000 nu=0.3 G=769.23076923076928 t=0.05 Weight=3";
  for (const int node : NodesWhere(model, [](const Vector3& x) { return x[0] == 0.0; }))
    model.Hold(node, "111111");
  model.Load(7, {0.1, 0.2, -0.1, 0.01, -0.02, 0.03});
  return model;
}

std::vector<int> InOtherOrder(const std::vector<int>& t, int first, bool reversed)
{
  std::vector<int> order(t.size());
  for (int i = 0; i < 3; ++i) {
    order[i] = t[(first + (reversed ? 3 - i : i)) % 3];
    if (t.size() == 6)
      order[3 + i] = t[3 + (first + (reversed ? 2 - i : i)) % 3];
  }
  return order;
}

std::string WithLoads(ShellModel model)
{
  model.settings += "GravityDirection 0.6 0 -0.8\n";
  model.rest = EdgeLoads(model, {0.3, -0.2, 0.1},
                         [](const Vector3& x) { return x[0] > 2 * std::sin(1.0) - 1e-9; }) +
               Block("global_pressure_loads", model.OnAll("0.1 0.2 -0.3"));
  return model.Text();
}

}  // namespace

TEST(RefinedPatch, OrderOfTheNodesOfAnElementDoesNotMatter)
{
  for (const int nnode : {3, 6}) {
    const ShellModel model = BentStrip(nnode);
    const Solved expected(WithLoads(model));
    for (const bool reversed : {false, true}) {
      ShellModel other = model;
      for (std::size_t i = 0; i < other.triangles.size(); ++i)
        other.triangles[i] = InOtherOrder(model.triangles[i], static_cast<int>(i % 3), reversed);
      const Solved solved(WithLoads(other));
      for (std::size_t node = 1; node <= model.nodes.size(); ++node)
        ExpectValues(solved.Displacement(static_cast<int>(node)),
                     expected.Displacement(static_cast<int>(node)), 10 * kRounding, 0.1);
    }
  }
}

}  // namespace morlen
