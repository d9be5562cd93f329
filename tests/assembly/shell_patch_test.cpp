// Patch tests: states of constant forces on distorted patches in rotated planes.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

using Components = std::array<double, 6>;

constexpr Vector3 kPlanes[] = {{0, 0, 0}, {0.3, 0.9, -0.4}, {-1.1, 2.2, 0.7}, {0.5, 1.5707963, 0}};
constexpr Vector3 kOrigin = {3.0, -2.0, 5.0};

struct Patch
{
  ShellModel model;
  std::array<Vector3, 3> axes;            ///< of the plane, and of the forces
  std::vector<std::array<double, 2>> at;  ///< places of the nodes in the plane

  std::vector<int> Inner() const
  {
    std::vector<int> inner;
    for (std::size_t i = 0; i < at.size(); ++i) {
      const auto [x, y] = at[i];
      if (x > 1e-9 && x < 4.0 - 1e-9 && y > 1e-9 && y < 2.0 - 1e-9)
        inner.push_back(static_cast<int>(i) + 1);
    }
    return inner;
  }

  // The global components of a node, from those in the axes of the plane.
  Components InSpace(const Components& local) const
  {
    const Vector3 u = Turned(axes, {local[0], local[1], local[2]});
    const Vector3 r = Turned(axes, {local[3], local[4], local[5]});
    return {u[0], u[1], u[2], r[0], r[1], r[2]};
  }

  // Prescribes the field, by the place in the plane, at all nodes that are not free.
  template <class Field>
  void Prescribe(Field field, const std::string& innerFlags)
  {
    const std::vector<int> inner = Inner();
    for (int node = 1; node <= static_cast<int>(at.size()); ++node) {
      const bool free = std::find(inner.begin(), inner.end(), node) != inner.end();
      if (free && innerFlags == "000000")
        continue;
      model.Hold(node, free ? innerFlags : "111111",
                 InSpace(field(at[node - 1][0], at[node - 1][1])));
    }
  }

  template <class Field>
  void ExpectField(const Solved& solved, Field field) const
  {
    for (int node = 1; node <= static_cast<int>(at.size()); ++node) {
      const Components u = InSpace(field(at[node - 1][0], at[node - 1][1]));
      ExpectValues(solved.Displacement(node), {u.begin(), u.end()}, 1e-9, 0.01);
    }
  }
};

// A plate of 4 by 2 with four distorted rows. Its nodes are a grid of 4 by 3. Material axes, if
// given, are those of the plane rotated about its normal.
Patch DistortedPatch(int nnode, const Vector3& angles, const std::string& material)
{
  const auto plane = [](double u, double v) {
    const double bump = u * (1 - u) * v * (1 - v);
    const double x = 4 * u + 4.0 * bump * std::sin(5 * u + 3 * v);
    const double y = 2 * v + 3.0 * bump * std::cos(7 * u - 2 * v);
    return Vector3{x, y, 0.0};
  };
  Patch patch;
  patch.model = GridShell(4, 3, plane, Cut::BothWays);
  if (nnode == 6)
    patch.model = WithMidSideNodes(patch.model);
  for (const Vector3& place : patch.model.nodes)
    patch.at.push_back({place[0], place[1]});
  patch.axes = AxesOfAngles(angles);
  for (Vector3& place : patch.model.nodes)
    place = kOrigin + Turned(patch.axes, place);
  patch.model.material = material;
  for (int k = 0; k < 3; ++k)
    patch.model.material += " Euler" + std::to_string(k + 1) + "=" + Digits(angles[k]);
  return patch;
}

constexpr char kOrthotropic[] =
    "Ex=2000 Ey=1000 nuXY=0.125 nuYX=0.25 Gxy=300 Gxz=200 Gyz=250 t=0.5";
constexpr double kFactor = 0.5 / (1.0 - 1.0 / 32.0);

std::array<double, 3> TimesD(const std::array<double, 3>& strain)
{
  return {kFactor * (2000 * strain[0] + 250 * strain[1]),
          kFactor * (250 * strain[0] + 1000 * strain[1]), 150 * strain[2]};
}

}  // namespace

TEST(PatchTest, Membrane)
{
  const auto field = [](double x, double y) {
    return Components{0.01 + 0.002 * x + 0.003 * y, -0.02 - 0.001 * x + 0.004 * y, 0, 0, 0, 0};
  };
  const auto N = TimesD({0.002, 0.004, 0.002});
  for (const Vector3& angles : kPlanes) {
    for (const int nnode : {3, 6}) {
      for (const char* settings : {"", "ConvertTo6Nodes"}) {
        Patch patch = DistortedPatch(nnode, angles, kOrthotropic);
        patch.model.settings = settings;
        patch.Prescribe(field, "000000");
        const Solved solved(patch.model.Text());
        patch.ExpectField(solved, field);
        ExpectForcesEverywhere(solved, {N[0], N[1], N[2], 0, 0, 0, 0, 0}, 1e-9);
      }
    }
  }
}

// Without angles the axes of the forces follow from the normal alone.
TEST(PatchTest, MembraneInAxesOfTheNormal)
{
  const auto field = [](double x, double y) {
    return Components{0.002 * x + 0.003 * y, -0.001 * x + 0.004 * y, 0, 0, 0, 0};
  };
  for (const int nnode : {3, 6}) {
    Patch patch = DistortedPatch(nnode, {0, 0, 0}, "");
    patch.model.material = "E=1000 nu=0 G=500 t=0.5";
    // A wall with the normal X: x' = Y, y' = Z.
    patch.axes = {Vector3{0, 1, 0}, Vector3{0, 0, 1}, Vector3{1, 0, 0}};
    for (std::size_t i = 0; i < patch.at.size(); ++i)
      patch.model.nodes[i] = Turned(patch.axes, {patch.at[i][0], patch.at[i][1], 0});
    patch.Prescribe(field, "000000");
    const Solved solved(patch.model.Text());
    ExpectForcesEverywhere(solved, {1, 2, 0.5, 0, 0, 0, 0, 0}, 1e-9);
  }
}

TEST(PatchTest, BendingOfSixNodeTriangles)
{
  constexpr double k[] = {0.01, -0.02, 0.03};  // w,xx, w,yy, 2 w,xy
  const auto field = [&](double x, double y) {
    const double wx = k[0] * x + k[2] / 2 * y + 0.001;
    const double wy = k[1] * y + k[2] / 2 * x - 0.002;
    const double w = (k[0] * x * x + k[1] * y * y + k[2] * x * y) / 2 + 0.001 * x - 0.002 * y;
    return Components{0, 0, w, wy, -wx, 0};
  };
  auto M = TimesD({-k[0], -k[1], -k[2]});
  for (double& m : M)
    m *= 0.25 / 12.0;
  for (const Vector3& angles : kPlanes) {
    Patch patch = DistortedPatch(6, angles, kOrthotropic);
    patch.Prescribe(field, "000000");
    const Solved solved(patch.model.Text());
    patch.ExpectField(solved, field);
    ExpectForcesEverywhere(solved, {0, 0, 0, M[0], M[1], M[2], 0, 0}, 1e-9);
  }
}

TEST(PatchTest, ShearWithTheRotationsPrescribed)
{
  const auto field = [](double x, double y) {
    return Components{0, 0, 0.3 + 0.01 * x - 0.02 * y, 0.004, -0.003, 0};
  };
  // γ = w,x - θa with θa = -r_y, θb = r_x.
  const double Qx = 5.0 / 6.0 * 0.5 * 200 * (0.01 - 0.003);
  const double Qy = 5.0 / 6.0 * 0.5 * 250 * (-0.02 - 0.004);
  for (const Vector3& angles : kPlanes) {
    for (const int nnode : {3, 6}) {
      for (const char* settings : {"", "ConvertTo6Nodes"}) {
        Patch patch = DistortedPatch(nnode, angles, kOrthotropic);
        patch.model.settings = settings;
        patch.Prescribe(field, "000111");
        const Solved solved(patch.model.Text());
        patch.ExpectField(solved, field);
        ExpectForcesEverywhere(solved, {0, 0, 0, 0, 0, 0, Qx, Qy}, 1e-9);
      }
    }
  }
}

namespace {

// The largest error of w inside a plate of 4 by 2 and thickness t, divided by the largest w. The
// outer nodes are prescribed to w = x²/2.
double BendingError(int divisions, double t)
{
  ShellModel model = GridShell(
      2 * divisions, divisions,
      [](double u, double v) {
        return Vector3{4 * u, 2 * v, 0};
      },
      Cut::BothWays);
  model.material = "E=1000 nu=0.25 G=400 t=" + Digits(t);
  std::vector<int> inner;
  for (int node = 1; node <= static_cast<int>(model.nodes.size()); ++node) {
    const auto [x, y, z] = model.nodes[node - 1];
    if (x > 0 && x < 4 && y > 0 && y < 2)
      inner.push_back(node);
    else
      model.Hold(node, "111111", {0, 0, x * x / 2, 0, -x, 0});
  }
  const Solved solved(model.Text());
  double error = 0.0;
  for (const int node : inner) {
    const double x = model.nodes[node - 1][0];
    error = std::max(error, std::fabs(solved.Displacement(node)[2] - x * x / 2));
  }
  return error / 8.0;
}

}  // namespace

// The three-node element cannot represent a constant curvature without shear, but converges to it.
TEST(PatchTest, BendingOfThreeNodeTrianglesConverges)
{
  for (const double t : {1.0, 0.1}) {
    const double errors[] = {BendingError(4, t), BendingError(8, t), BendingError(16, t)};
    EXPECT_GT(errors[0], 1e-4) << t;
    EXPECT_LT(errors[1], 0.4 * errors[0]) << t;
    EXPECT_LT(errors[2], 0.4 * errors[1]) << t;
  }
}

}  // namespace morlen
