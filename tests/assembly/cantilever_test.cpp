// Cantilevers in all directions, with all loads, against the formulas of beam theory.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "support/frame.h"
#include "support/reference_frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Components = std::array<double, 6>;
using Axes = std::array<Vector3, 3>;

const Frame::Section kSection = {.E = 200.0, .G = 80.0, .A = 3.0, .Iy = 5.0, .Iz = 7.0, .J = 2.0};

// The tip of a cantilever of length L under tip loads, all in its local axes (S. P.
// Timoshenko, Strength of Materials I, 3rd ed., van Nostrand, 1955, ch. V).
Components TipDisplacement(const Frame::Section& s, double L, const Components& f)
{
  const double EIz = s.E * s.Iz;
  const double EIy = s.E * s.Iy;
  return {f[0] * L / (s.E * s.A),
          f[1] * L * L * L / (3 * EIz) + f[5] * L * L / (2 * EIz),
          f[2] * L * L * L / (3 * EIy) - f[4] * L * L / (2 * EIy),
          f[3] * L / (s.G * s.J),
          -f[2] * L * L / (2 * EIy) + f[4] * L / EIy,
          f[1] * L * L / (2 * EIz) + f[5] * L / EIz};
}

Components ToLocal(const Axes& axes, const Components& global)
{
  Components local{};
  for (int part = 0; part < 6; part += 3) {
    for (int i = 0; i < 3; ++i) {
      for (int k = 0; k < 3; ++k)
        local[part + i] += axes[i][k] * global[part + k];
    }
  }
  return local;
}

Components ToGlobal(const Axes& axes, const Components& local)
{
  Components global{};
  for (int part = 0; part < 6; part += 3) {
    for (int i = 0; i < 3; ++i) {
      for (int k = 0; k < 3; ++k)
        global[part + k] += axes[i][k] * local[part + i];
    }
  }
  return global;
}

std::vector<double> List(const Components& c)
{
  return {c.begin(), c.end()};
}

Vector3 Negative(const Vector3& v)
{
  return {-v[0], -v[1], -v[2]};
}

// A cantilever from `start`, L long in direction x, loaded at its tip.
Frame Cantilever(const Vector3& start, const Vector3& x, double L, const Components& load,
                 const std::optional<Vector3>& euler = {})
{
  Frame frame;
  frame.nodes = {start, {start[0] + L * x[0], start[1] + L * x[1], start[2] + L * x[2]}};
  frame.sections = {kSection};
  frame.sections[0].euler = euler;
  frame.beams = {{1, 2, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{2, load}};
  return frame;
}

// Checks all results of a cantilever with these local axes.
void ExpectCantilever(const Frame& frame, const Axes& axes, double L)
{
  const Components& load = frame.loads[0].values;
  const Components local = ToLocal(axes, load);
  const Solved solved(ProblemText(frame));
  ExpectValues(solved.Displacement(2),
               List(ToGlobal(axes, TipDisplacement(frame.sections[0], L, local))), 1e-11);
  // The nodes exert the load on the second end, and the reaction on the first.
  std::vector<double> ends = {-local[0],
                              -local[1],
                              -local[2],
                              -local[3],
                              -local[4] + L * local[2],
                              -local[5] - L * local[1]};
  const Components reaction =
      ToGlobal(axes, {ends[0], ends[1], ends[2], ends[3], ends[4], ends[5]});
  ends.insert(ends.end(), local.begin(), local.end());
  ExpectValues(solved.EndForces(1), ends, 1e-11);
  ExpectValues(solved.Reaction(1), List(reaction), 1e-11);
  ExpectEquilibrium(solved);
}

const Components kLoad = {11, -7, 5, 3, -2, 13};
const Vector3 kStart = {0.5, -2.0, 1.0};
constexpr double kL = 2.5;

}  // namespace

TEST(Cantilever, EveryTipLoadInThePlane)
{
  for (int k = 0; k < 3; ++k) {
    Frame frame;
    frame.space = false;
    frame.nodes = {{0, 0, 0}, {kL, 0, 0}};
    frame.sections = {kSection};
    frame.beams = {{1, 2, 1}};
    frame.supports = {{.node = 1, .flags = kClamped}};
    frame.loads = {{.node = 2, .values = {}}};
    frame.loads[0].values[k] = 10.0;
    Components inSpace{};
    inSpace[kPlaneComponents[k]] = 10.0;
    const Components tip = TipDisplacement(kSection, kL, inSpace);
    const Solved solved(ProblemText(frame));
    ExpectValues(solved.Displacement(2), {tip[0], tip[1], tip[5]}, 1e-13);
    ExpectEquilibrium(solved);
  }
}

TEST(Cantilever, EveryTipLoadInSpace)
{
  for (int k = 0; k < 6; ++k) {
    Components load{};
    load[k] = 10.0;
    ExpectCantilever(Cantilever(kStart, {1, 0, 0}, kL, load),
                     {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}}, kL);
  }
}

TEST(Cantilever, LocalAxesFollowTheDirection)
{
  const double r2 = std::sqrt(0.5);
  // Local y is horizontal, and z points upwards. A vertical beam has y along global x.
  const Axes cases[] = {
      {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}},
      {Vector3{-1, 0, 0}, Vector3{0, -1, 0}, Vector3{0, 0, 1}},
      {Vector3{0, 1, 0}, Vector3{-1, 0, 0}, Vector3{0, 0, 1}},
      {Vector3{0, -1, 0}, Vector3{1, 0, 0}, Vector3{0, 0, 1}},
      {Vector3{0, 0, 1}, Vector3{1, 0, 0}, Vector3{0, 1, 0}},
      {Vector3{0, 0, -1}, Vector3{1, 0, 0}, Vector3{0, -1, 0}},
      {Vector3{0.6, 0.8, 0}, Vector3{-0.8, 0.6, 0}, Vector3{0, 0, 1}},
      {Vector3{r2, 0, r2}, Vector3{0, 1, 0}, Vector3{-r2, 0, r2}},
      {Vector3{r2, 0, -r2}, Vector3{0, 1, 0}, Vector3{r2, 0, r2}},
      {Vector3{-r2, 0, r2}, Vector3{0, -1, 0}, Vector3{r2, 0, r2}},
      {Vector3{0, r2, r2}, Vector3{-1, 0, 0}, Vector3{0, -r2, r2}},
      {Vector3{0.48, 0.64, 0.6}, Vector3{-0.8, 0.6, 0}, Vector3{-0.36, -0.48, 0.8}},
      {Vector3{-0.48, 0.64, -0.6}, Vector3{-0.8, -0.6, 0}, Vector3{-0.36, 0.48, 0.8}},
  };
  for (const Axes& axes : cases) {
    SCOPED_TRACE(testing::Message() << axes[0][0] << " " << axes[0][1] << " " << axes[0][2]);
    ExpectCantilever(Cantilever(kStart, axes[0], kL, kLoad), axes, kL);
  }
}

TEST(Cantilever, MaterialAnglesGiveTheAxes)
{
  for (const Vector3& angles : {Vector3{0, 0, 0}, Vector3{0.3, 0.5, 0.7}, Vector3{2, 2.5, 5},
                                Vector3{0, std::numbers::pi / 2, 1}, Vector3{4, 0.1, 3}}) {
    SCOPED_TRACE(testing::Message() << angles[0] << " " << angles[1] << " " << angles[2]);
    const Axes axes = AxesOfAngles(angles);
    ExpectCantilever(Cantilever(kStart, axes[0], kL, kLoad, angles), axes, kL);
  }
}

TEST(Cantilever, MaterialAxesAgainstTheBeamAreTurned)
{
  for (const Vector3& angles : {Vector3{0, 0, 0}, Vector3{0.3, 0.5, 0.7}, Vector3{2, 2.5, 5}}) {
    SCOPED_TRACE(testing::Message() << angles[0] << " " << angles[1] << " " << angles[2]);
    Axes axes = AxesOfAngles(angles);
    axes[0] = Negative(axes[0]);
    Vector3& second = axes[2][2] > 1e-5 ? axes[1] : axes[2];
    second = Negative(second);
    ExpectCantilever(Cantilever(kStart, axes[0], kL, kLoad, angles), axes, kL);
  }
}

TEST(Cantilever, TiltedMaterialAxesKeepTheirYInThePlaneOfTheBeam)
{
  // With angles of 0, y0 is global y. A beam in the x-z plane keeps y0. For a beam in the x-y
  // plane, y0 is rotated about z.
  const Vector3 angles = {0, 0, 0};
  ExpectCantilever(Cantilever(kStart, {0.6, 0, 0.8}, kL, kLoad, angles),
                   {Vector3{0.6, 0, 0.8}, Vector3{0, 1, 0}, Vector3{-0.8, 0, 0.6}}, kL);
  ExpectCantilever(Cantilever(kStart, {0.6, 0.8, 0}, kL, kLoad, angles),
                   {Vector3{0.6, 0.8, 0}, Vector3{-0.8, 0.6, 0}, Vector3{0, 0, 1}}, kL);
  // z = x × y0 = (-0.6, 0, 0.48) / n, y = z × x.
  const double n = std::hypot(0.6, 0.48);
  ExpectCantilever(Cantilever(kStart, {0.48, 0.64, 0.6}, kL, kLoad, angles),
                   {Vector3{0.48, 0.64, 0.6},
                    Vector3{-0.48 * 0.64 / n, (0.48 * 0.48 + 0.36) / n, -0.6 * 0.64 / n},
                    Vector3{-0.6 / n, 0, 0.48 / n}},
                   kL);
  // Axes against the beam and tilted: they are first turned about z, so that y0 is minus global y.
  ExpectCantilever(Cantilever(kStart, {-0.6, 0, 0.8}, kL, kLoad, angles),
                   {Vector3{-0.6, 0, 0.8}, Vector3{0, -1, 0}, Vector3{0.8, 0, 0.6}}, kL);
}

TEST(Cantilever, ManyElementsGiveTheSame)
{
  const Vector3 x = {0.48, 0.64, 0.6};
  Frame frame = Cantilever(kStart, x, kL, kLoad);
  const Solved one(ProblemText(frame));
  constexpr int kParts = 8;
  frame.nodes.clear();
  frame.beams.clear();
  for (int i = 0; i <= kParts; ++i) {
    const double s = kL * i / kParts;
    frame.nodes.push_back({kStart[0] + s * x[0], kStart[1] + s * x[1], kStart[2] + s * x[2]});
    if (i > 0)
      frame.beams.push_back({i, i + 1, 1});
  }
  frame.loads[0].node = kParts + 1;
  const Solved many(ProblemText(frame));
  ExpectValues(many.Displacement(kParts + 1), one.Displacement(2), 1e-10);
  ExpectValues(many.Reaction(1), one.Reaction(1), 1e-10);
  ExpectEquilibrium(many);
}

}  // namespace morlen
