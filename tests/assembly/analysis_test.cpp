// Whole analyses against closed forms, against the reference solution, and against the same model
// with other numbers, units and positions.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "model/mesh.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/reference_frame.h"
#include "support/solved.h"
#include "support/tested_solver.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

// A chain of beams along x with nodes at these places. E = 200, Iz = 3, A = 5.
Frame PlaneChain(const std::vector<double>& places)
{
  Frame frame;
  frame.space = false;
  frame.sections = {{.E = 200.0, .A = 5.0, .Iz = 3.0}};
  for (const double x : places) {
    frame.nodes.push_back({x, 0, 0});
    if (frame.nodes.size() > 1) {
      const int last = static_cast<int>(frame.nodes.size());
      frame.beams.push_back({last - 1, last, 1});
    }
  }
  return frame;
}

constexpr double kEI = 600.0;
constexpr double kEA = 1000.0;

// The same frame with node i (from 0) at place order[i].
Frame Reordered(const Frame& frame, const std::vector<int>& order)
{
  Frame other = frame;
  for (std::size_t i = 0; i < order.size(); ++i)
    other.nodes[order[i]] = frame.nodes[i];
  const auto move = [&](int& node) { node = order[node - 1] + 1; };
  for (Frame::Beam& beam : other.beams) {
    move(beam.first);
    move(beam.second);
  }
  for (Frame::Support& support : other.supports)
    move(support.node);
  for (Frame::NodalLoad& load : other.loads)
    move(load.node);
  return other;
}

std::vector<int> RandomOrder(std::size_t count, std::mt19937& random)
{
  std::vector<int> order(count);
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), random);
  return order;
}

// A connected frame of random nodes, members, sections, loads, and supports of all kinds.
Frame RandomFrame(std::mt19937& random, bool space)
{
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> count(3, 7);
  const auto positive = [&] { return 1.5 + unit(random); };
  Frame frame;
  frame.space = space;
  const int nodes = count(random);
  for (int i = 1; i <= nodes; ++i)
    frame.nodes.push_back({3 * unit(random), 3 * unit(random), space ? 3 * unit(random) : 0.0});
  for (int i = 0; i < 3; ++i)
    frame.sections.push_back({.E = positive(),
                              .G = positive(),
                              .A = positive(),
                              .Iy = positive(),
                              .Iz = positive(),
                              .J = positive()});
  const auto pick = [&](int last) { return std::uniform_int_distribution<int>(1, last)(random); };
  for (int i = 2; i <= nodes; ++i)
    frame.beams.push_back({i, pick(i - 1), pick(3)});
  frame.beams.push_back({1, nodes, pick(3)});

  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.supports[0].values = {0.01 * unit(random), 0.02 * unit(random), 0.01 * unit(random)};
  Frame::Support skew = {.node = 2, .flags = {1, 2, 0}, .values = {0.05, 2.0}};
  if (space) {
    skew.flags = {0, 1, 2, 1, 0, 2};
    skew.values = {0, 0.05, 2.0, -0.02, 0, 3.0};
  }
  skew.euler = {unit(random), space ? unit(random) : 0.0, unit(random)};
  frame.supports.push_back(skew);
  frame.supports.push_back(
      {.node = 3, .flags = {2, 0, 2, 0, 2, 0}, .values = {1.0, 0, 4.0, 0, 2.0, 0}});
  for (int i = 1; i <= nodes; ++i) {
    Frame::NodalLoad load = {.node = i, .values = {}};
    for (int k = 0; k < frame.Components(); ++k)
      load.values[k] = unit(random);
    frame.loads.push_back(load);
  }
  return frame;
}

Doubles Picked(const double* spaceValues, bool space)
{
  if (space)
    return {spaceValues, spaceValues + 6};
  return {spaceValues[0], spaceValues[1], spaceValues[5]};
}

void ExpectReference(const Frame& frame, bool renumber)
{
  const ReferenceSolution reference = SolveReference(frame.space ? frame : InSpace(frame));
  const Solved solved(ProblemText(frame), renumber);
  for (std::size_t i = 0; i < frame.nodes.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "node " << i + 1);
    ExpectValues(solved.Displacement(static_cast<int>(i) + 1),
                 Picked(reference.displacements[i].data(), frame.space), 1e-9);
  }
  for (const Frame::Support& support : frame.supports) {
    SCOPED_TRACE(testing::Message() << "support " << support.node);
    ExpectValues(solved.Reaction(support.node),
                 Picked(reference.reactions[support.node - 1].data(), frame.space), 1e-9, 1.0);
  }
  for (std::size_t i = 0; i < frame.beams.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "beam " << i + 1);
    Doubles ends = Picked(reference.endForces[i].data(), frame.space);
    const Doubles second = Picked(reference.endForces[i].data() + 6, frame.space);
    ends.insert(ends.end(), second.begin(), second.end());
    ExpectValues(solved.EndForces(static_cast<int>(i) + 1), ends, 1e-9);
  }
  ExpectEquilibrium(solved);
}

}  // namespace

TEST(Analysis, RandomFramesAgreeWithTheReference)
{
  std::mt19937 random(1);
  for (int i = 0; i < 60; ++i) {
    SCOPED_TRACE(testing::Message() << "frame " << i);
    ExpectReference(RandomFrame(random, i % 2 == 1), i % 4 < 2);
  }
}

TEST(Analysis, NumbersOfNodesDoNotMatter)
{
  std::mt19937 random(2);
  for (int i = 0; i < 20; ++i) {
    SCOPED_TRACE(testing::Message() << "frame " << i);
    const Frame frame = RandomFrame(random, i % 2 == 1);
    const std::vector<int> order = RandomOrder(frame.nodes.size(), random);
    const Solved original(ProblemText(frame), false);
    for (const bool renumber : {false, true}) {
      const Solved other(ProblemText(Reordered(frame, order)), renumber);
      for (std::size_t k = 0; k < order.size(); ++k)
        ExpectValues(other.Displacement(order[k] + 1),
                     original.Displacement(static_cast<int>(k) + 1), 1e-9);
      for (const Frame::Support& support : frame.supports)
        ExpectValues(other.Reaction(order[support.node - 1] + 1), original.Reaction(support.node),
                     1e-9, 1.0);
      for (std::size_t k = 1; k <= frame.beams.size(); ++k)
        ExpectValues(other.EndForces(static_cast<int>(k)), original.EndForces(static_cast<int>(k)),
                     1e-9);
    }
  }
}

// A portal of height h and width b under a force H at its beam (A. Kleinlogel, Rigid Frame
// Formulas, Ungar, New York 1952, frame 40). The axial strain of the members is negligible.
TEST(Analysis, PortalUnderALateralForce)
{
  const double h = 3.0;
  const double b = 4.0;
  const double H = 10.0;
  Frame frame;
  frame.space = false;
  frame.nodes = {{0, 0, 0}, {0, h, 0}, {b, h, 0}, {b, 0, 0}};
  frame.sections = {{.E = 100.0, .A = 1e6, .Iz = 2.0}, {.E = 100.0, .A = 1e6, .Iz = 5.0}};
  frame.beams = {{1, 2, 1}, {2, 3, 2}, {3, 4, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}, {.node = 4, .flags = kClamped}};
  frame.loads = {{2, {H}}};
  const Solved solved(ProblemText(frame));
  const double k = 5.0 / 2.0 * h / b;
  const double base = H * h / 2 * (3 * k + 1) / (6 * k + 1);
  const double top = H * h / 2 * 3 * k / (6 * k + 1);
  const double V = 2 * top / b;
  ExpectValues(solved.Reaction(1), {-H / 2, -V, base}, 1e-5);
  ExpectValues(solved.Reaction(4), {-H / 2, V, base}, 1e-5);
  ExpectValues(solved.EndForces(2), {H / 2, -V, -top, -H / 2, V, -top}, 1e-5);
  ExpectEquilibrium(solved);
}

// A grid of two members at a right angle in the x-y plane. The force at the tip of one twists the
// other.
TEST(Analysis, BentCantileverInSpaceIsTwisted)
{
  const double a = 2.0;
  const double b = 3.0;
  const double P = 6.0;
  Frame frame;
  frame.nodes = {{0, 0, 0}, {a, 0, 0}, {a, b, 0}};
  frame.sections = {{.E = 100.0, .G = 40.0, .A = 1.0, .Iy = 2.0, .Iz = 7.0, .J = 3.0}};
  frame.beams = {{1, 2, 1}, {2, 3, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{3, {0, 0, -P}}};
  const Solved solved(ProblemText(frame));
  const double EI = 200.0;
  const double GJ = 120.0;
  const double w = P * a * a * a / (3 * EI) + P * b * b * b / (3 * EI) + P * b * b * a / GJ;
  const double twist = P * b * a / GJ;
  const double slope = P * a * a / (2 * EI);
  ExpectValues(solved.Displacement(3), {0, 0, -w, -twist - P * b * b / (2 * EI), slope, 0}, 1e-11);
  ExpectValues(solved.Reaction(1), {0, 0, P, P * b, -P * a, 0}, 1e-11);
  ExpectEquilibrium(solved);
}

TEST(Analysis, PrescribedDisplacementBendsACantilever)
{
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped},
                    {.node = 2, .flags = {0, 1, 0}, .values = {0, 0.04, 0}}};
  const Solved solved(ProblemText(frame));
  const double force = 3 * kEI * 0.04 / 8;
  ExpectValues(solved.Displacement(2), {0, 0.04, 1.5 * 0.04 / 2}, 1e-12);
  ExpectValues(solved.Reaction(2), {0, force, 0}, 1e-12);
  ExpectValues(solved.Reaction(1), {0, -force, -2 * force}, 1e-12);
  ExpectEquilibrium(solved);
}

TEST(Analysis, PrescribedRotationBendsAFixedBeam)
{
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped, .values = {0, 0, 0.01}},
                    {.node = 2, .flags = kClamped}};
  const Solved solved(ProblemText(frame));
  ExpectValues(solved.Reaction(1), {0, 6 * kEI * 0.01 / 4, 4 * kEI * 0.01 / 2}, 1e-13);
  ExpectValues(solved.Reaction(2), {0, -6 * kEI * 0.01 / 4, 2 * kEI * 0.01 / 2}, 1e-13);
  ExpectEquilibrium(solved);
}

// The middle one of three supports at distances L settles by s: M = 3EI·s/L² there.
TEST(Analysis, SettlementOfAContinuousBeam)
{
  Frame frame = PlaneChain({0, 3, 6});
  frame.supports = {{.node = 1, .flags = {1, 1, 0}},
                    {.node = 2, .flags = {0, 1, 0}, .values = {0, -0.03, 0}},
                    {.node = 3, .flags = {0, 1, 0}}};
  frame.loads = {{2, {0, -5.0, 0}}, {1, {2.0, 7.0, 0}}};
  const Solved solved(ProblemText(frame));
  const double R = 3 * kEI * 0.03 / 27;
  ExpectValues(solved.Reaction(2), {0, -2 * R + 5.0, 0}, 1e-12);
  ExpectValues(solved.Reaction(1), {-2.0, R - 7.0, 0}, 1e-12);
  ExpectValues(solved.Reaction(3), {0, R, 0}, 1e-12);
  EXPECT_NEAR(solved.EndForces(1)[5], 3 * R, 1e-11);
  ExpectEquilibrium(solved);
}

TEST(Analysis, LoadsOnSupportedComponentsGoIntoTheReaction)
{
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{1, {3, -4, 5}}};
  const Solved solved(ProblemText(frame));
  ExpectValues(solved.Displacement(2), {0, 0, 0}, 0.0);
  ExpectValues(solved.Reaction(1), {-3, 4, -5}, 0.0);
}

TEST(Analysis, SpringsReactWithTheirStiffness)
{
  // A cantilever on springs at its loaded tip: all stiffnesses are in parallel.
  const double L = 2.0;
  const double kx = 40.0;
  const double ky = 25.0;
  Frame frame = PlaneChain({0, L});
  frame.supports = {{.node = 1, .flags = kClamped},
                    {.node = 2, .flags = {2, 2, 0}, .values = {kx, ky, 0}}};
  frame.loads = {{2, {30, -12, 0}}};
  const Solved solved(ProblemText(frame));
  const double u = 30 / (kEA / L + kx);
  const double v = -12 / (3 * kEI / (L * L * L) + ky);
  ExpectValues(solved.Displacement(2), {u, v, 1.5 * v / L}, 1e-13);
  ExpectValues(solved.Reaction(2), {-kx * u, -ky * v, 0}, 1e-13);
  ExpectEquilibrium(solved);
}

TEST(Analysis, RotationalSpringReactsWithAMoment)
{
  const double L = 2.0;
  const double k = 100.0;
  Frame frame = PlaneChain({0, L});
  frame.supports = {{.node = 1, .flags = {1, 1, 2}, .values = {0, 0, k}},
                    {.node = 2, .flags = {0, 1, 0}}};
  frame.loads = {{1, {0, 0, 9.0}}};
  const Solved solved(ProblemText(frame));
  const double theta = 9.0 / (3 * kEI / L + k);
  ExpectValues(solved.Displacement(1), {0, 0, theta}, 1e-13);
  ExpectValues(solved.Reaction(1), {0, 3 * kEI * theta / (L * L), -k * theta}, 1e-13);
  ExpectEquilibrium(solved);
}

// A beam from a hinge to a skew roller. The roller is held along its y axis, (sin a, cos a), and
// moves along its x axis, (cos a, -sin a).
TEST(Analysis, SkewRollerReactsAlongItsHeldAxis)
{
  const double a = 0.4;
  Frame frame = PlaneChain({0, 2, 4});
  frame.supports = {{.node = 1, .flags = {1, 1, 0}},
                    {.node = 3, .flags = {0, 1, 0}, .euler = Vector3{a, 0, 0}}};
  frame.loads = {{2, {0, -10, 0}}};
  const Solved solved(ProblemText(frame));
  const double V = 5.0;
  const double N = V * std::tan(a);
  ExpectValues(solved.Reaction(3), {N, V, 0}, 1e-11);
  ExpectValues(solved.Reaction(1), {-N, V, 0}, 1e-11);
  const Doubles u = solved.Displacement(3);
  EXPECT_NEAR(std::sin(a) * u[0] + std::cos(a) * u[1], 0.0, 1e-14);
  EXPECT_NEAR(u[0], N * 4 / kEA, 1e-13);
  ExpectEquilibrium(solved);
}

TEST(Analysis, LoadAlongTheFreeDirectionOfASkewRollerIsNoReaction)
{
  const double a = 0.4;
  const double P = 7.0;
  for (const bool settled : {false, true}) {
    Frame frame = PlaneChain({0, 2});
    frame.supports = {{.node = 1, .flags = kClamped},
                      {.node = 2, .flags = {0, 1, 0}, .euler = Vector3{a, 0, 0}}};
    if (settled)
      frame.supports[1].values[1] = 0.02;
    frame.loads = {{2, {P * std::cos(a), -P * std::sin(a), 0}}};
    const Solved solved(ProblemText(frame));
    const Doubles reaction = solved.Reaction(2);
    EXPECT_NEAR(std::cos(a) * reaction[0] - std::sin(a) * reaction[1], 0.0, 1e-12);
    EXPECT_NEAR(reaction[2], 0.0, 1e-12);
    ExpectEquilibrium(solved);
  }
}

TEST(Analysis, PrescribedDisplacementAlongASkewAxis)
{
  // Both components are prescribed, so that the tip moves by them in any frame.
  const double a = 0.4;
  Frame frame = PlaneChain({0, 2});
  frame.supports = {
      {.node = 1, .flags = kClamped},
      {.node = 2, .flags = {1, 1, 1}, .values = {0.03, 0.05, 0.02}, .euler = Vector3{a, 0, 0}}};
  const Solved solved(ProblemText(frame));
  ExpectValues(
      solved.Displacement(2),
      {0.03 * std::cos(a) + 0.05 * std::sin(a), -0.03 * std::sin(a) + 0.05 * std::cos(a), 0.02},
      1e-13);
  ExpectEquilibrium(solved);
}

TEST(Analysis, SettlementsDoNotLeakIntoOtherReactions)
{
  // The far support of an unloaded beam after a settled one is not touched.
  Frame frame = PlaneChain({0, 2, 4, 6});
  frame.supports = {{.node = 1, .flags = kClamped, .values = {0, 0.5, 0}},
                    {.node = 2, .flags = kClamped},
                    {.node = 3, .flags = kClamped},
                    {.node = 4, .flags = kClamped}};
  const Solved solved(ProblemText(frame));
  ExpectValues(solved.Reaction(3), {0, 0, 0}, 0.0);
  ExpectValues(solved.Reaction(4), {0, 0, 0}, 0.0);
  ExpectEquilibrium(solved);
}

TEST(Analysis, TiltedSupportAxesOfAPlaneNodeAreRefused)
{
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped},
                    {.node = 2, .flags = {0, 1, 0}, .euler = Vector3{0, 0.1, 0}}};
  for (const bool renumber : {false, true})
    ExpectFatal([&] { Solved(ProblemText(frame), renumber); },
                "error: Local z axe must be (0,0,1) for 2D problems.Node: 2\n");
}

TEST(Analysis, RigidMotionOfTheModelChangesNothing)
{
  // With equal inertias the axes of a section have no effect.
  Frame frame;
  frame.nodes = {{0, 0, 0}, {1, 2, 3}, {3, 1, 2}, {2, -1, 1}};
  frame.sections = {{.E = 3.0, .G = 2.0, .A = 5.0, .Iy = 4.0, .Iz = 4.0, .J = 1.0}};
  frame.beams = {{1, 2, 1}, {2, 3, 1}, {3, 4, 1}, {2, 4, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{3, {1, 2, 3, 4, 5, 6}}, {4, {-2, 1, 0, 0, 3, 1}}};
  const auto axes = AxesOfAngles({0.3, 0.5, 0.7});
  const auto turned = [&](const double* v) {
    Vector3 result{};
    for (int i = 0; i < 3; ++i) {
      for (int k = 0; k < 3; ++k)
        result[k] += axes[i][k] * v[i];
    }
    return result;
  };
  Frame moved = frame;
  for (Vector3& node : moved.nodes) {
    node = turned(node.data());
    node[0] += 10.0;
    node[2] -= 4.0;
  }
  for (Frame::NodalLoad& load : moved.loads) {
    for (const int part : {0, 3}) {
      const Vector3 vector = turned(load.values.data() + part);
      std::copy(vector.begin(), vector.end(), load.values.begin() + part);
    }
  }
  const Solved original(ProblemText(frame));
  const Solved other(ProblemText(moved));
  for (int node = 1; node <= 4; ++node) {
    const Doubles u = original.Displacement(node);
    const Vector3 translation = turned(u.data());
    const Vector3 rotation = turned(u.data() + 3);
    ExpectValues(
        other.Displacement(node),
        {translation[0], translation[1], translation[2], rotation[0], rotation[1], rotation[2]},
        1e-10);
  }
  for (int beam = 1; beam <= 4; ++beam) {
    EXPECT_NEAR(other.EndForces(beam)[0], original.EndForces(beam)[0], 1e-9);
    EXPECT_NEAR(other.EndForces(beam)[3], original.EndForces(beam)[3], 1e-9);
  }
  ExpectEquilibrium(other);
}

namespace {

const char* const kUnitsNames =
    "units_names\nN_m N m Pa 1 1\nkN_m kN m kPa 1000 1\nN_mm N mm MPa 1 0.001\nend\n";

// A sloped steel cantilever on a spring, in N and m and in other units.
struct UnitsCase
{
  const char* name;
  std::string settings;
  std::string coordinates;
  std::string element;
  std::string material;
  std::string constraints;
  std::string load;
  double force = 1.0;  ///< units of the results
  double length = 1.0;
};

std::vector<UnitsCase> UnitsCases()
{
  const UnitsCase base = {.name = "N and m",
                          .settings = "",
                          .coordinates = "1 0 0\n2 3 4",
                          .element = "1 1 2 1",
                          .material = "1 E 2e11 A 0.01 Iz 8e-6",
                          .constraints = "1 111 0.002 0 0.001\n2 020 0 5e4 0\n2 002 0 0 3e5",
                          .load = "2 0 -5000 700"};
  std::vector<UnitsCase> cases(5, base);
  cases[1] = {.name = "kN and m throughout",
              .settings = "",
              .coordinates = "1 0 0\n2 3 4",
              .element = "1 1 2 1",
              .material = "1 E 2e8 A 0.01 Iz 8e-6",
              .constraints = "1 111 0.002 0 0.001\n2 020 0 50 0\n2 002 0 0 300",
              .load = "2 0 -5 0.7",
              .force = 1000.0};
  cases[2] = {.name = "N and mm converted to N and m",
              .settings = std::string(kUnitsNames) +
                          "units_mesh mm\nunits_mat_and_load N_mm\nunits_res N_m",
              .coordinates = "1 0 0\n2 3000 4000",
              .element = "1 1 2 1",
              .material = "1 E 2e5 A 10000 Iz 8e6",
              .constraints = "1 111 2 0 0.001\n2 020 0 50 0\n2 002 0 0 3e8",
              .load = "2 0 -5000 700000"};
  cases[3] = {.name = "N and m, results in kN and mm",
              .settings =
                  "units_names\nN_m N m Pa 1 1\nres kN mm GPa 1000 0.001\nend\n"
                  "units_res res",
              .coordinates = base.coordinates,
              .element = base.element,
              .material = base.material,
              .constraints = base.constraints,
              .load = base.load,
              .force = 1000.0,
              .length = 0.001};
  cases[4] = {.name = "records with units of their own",
              .settings = std::string(kUnitsNames) +
                          "units_mesh mm\nunits_mat_and_load kN_m\nunits_res N_m",
              .coordinates = "1 0 0\n2 3000 4000",
              .element = "1 1 2 1 A=10000 units=N_mm",
              .material = "1 units=N_mm E 2e5 A 1 Iz 8e6",
              .constraints =
                  "1 111 2 0 0.001 units=N_mm\n2 020 0 50 0\n"
                  "2 002 0 0 3e5 units=N_m",
              .load = "2 0 -5 0\n2 0 0 700000 units=N_mm"};
  return cases;
}

}  // namespace

TEST(Analysis, UnitsOfEveryKindGiveTheSamePhysics)
{
  std::vector<std::vector<double>> expected;
  for (const UnitsCase& c : UnitsCases()) {
    SCOPED_TRACE(c.name);
    const Solved solved(ProblemParts{.settings = c.settings,
                                     .coordinates = c.coordinates,
                                     .elements = c.element,
                                     .materials = c.material,
                                     .constraints = c.constraints,
                                     .loads = c.load}
                            .Text());
    ExpectEquilibrium(solved);
    // In N and m.
    const double moment = c.force * c.length;
    const Doubles u = solved.Displacement(2);
    const Doubles r = solved.Reaction(2);
    const Doubles r1 = solved.Reaction(1);
    const Doubles f = solved.EndForces(1);
    const std::vector<Doubles> actual = {
        {u[0] * c.length, u[1] * c.length},
        {u[2]},
        {r[0] * c.force, r[1] * c.force},
        {r[2] * moment},
        {r1[0] * c.force, r1[1] * c.force},
        {r1[2] * moment},
        {f[0] * c.force, f[1] * c.force, f[3] * c.force, f[4] * c.force},
        {f[2] * moment, f[5] * moment}};
    if (expected.empty())
      expected = actual;
    for (std::size_t i = 0; i < actual.size(); ++i)
      ExpectValues(actual[i], expected[i], 1e-9);
  }
}

TEST(Analysis, MeshesShareTheirNodesAndMoveThem)
{
  // The second mesh repeats the nodes at twice the distance and adds a beam. The model is a chain
  // of two beams of length 2.
  const std::string problem =
      "problem type 2d\n"
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 1 0\n3 2 0\nend\n"
      "elements\n5 1 2 1\nend\n"
      "materials\n1 E 200 A 5 Iz 3\nend\n"
      "constraints\n1 111 0 0 0\nend\nnodal_point_loads\n3 0 -6 0\nend\n"
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 2 0\n3 4 0\nend\n"
      "elements\n2 3 2 1\nend\n";
  for (const bool renumber : {false, true}) {
    const Solved solved(problem, renumber);
    ExpectValues(solved.Displacement(3), {0, -6.0 * 64 / (3 * kEI), -6.0 * 16 / (2 * kEI)}, 1e-11);
    ExpectValues(solved.Reaction(1), {0, 6, 24}, 1e-11);
    ExpectValues(solved.EndForces(5), {0, 6, 24, 0, -6, -12}, 1e-11);
    // A beam from the tip inwards, whose axes are rotated about z.
    ExpectValues(solved.EndForces(2), {0, 6, 0, 0, -6, 12}, 1e-11);
    ExpectEquilibrium(solved);
  }
}

TEST(Analysis, NodesAddedByALaterMeshArePartOfTheModel)
{
  const std::string problem =
      "problem type 2d\n"
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 2 0\nend\n"
      "elements\n1 1 2 1\nend\n"
      "mesh dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 2 0\n3 4 0\nend\n"
      "elements\n2 2 3 1\nend\n"
      "materials\n1 E 200 A 5 Iz 3\nend\n"
      "constraints\n1 111 0 0 0\nend\nnodal_point_loads\n3 0 -6 0\nend\n";
  const Solved solved(problem);
  ExpectValues(solved.Displacement(3), {0, -6.0 * 64 / (3 * kEI), -6.0 * 16 / (2 * kEI)}, 1e-11);
  ExpectEquilibrium(solved);
}

TEST(Analysis, HugeElementNumbersCostNothing)
{
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{2, {4, 0, 0}}};
  std::string problem = ProblemText(frame);
  const std::string element = "elements\n1 1 2 1\n";
  problem.replace(problem.find(element), element.size(),
                  "elements\n2000000000 1 2 1\n2147483647 2 1 1\n");
  const Solved solved(problem);
  ExpectValues(solved.EndForces(2000000000), {-2, 0, 0, 2, 0, 0}, 1e-12);
  ExpectValues(solved.EndForces(2147483647), {-2, 0, 0, 2, 0, 0}, 1e-12);
}

TEST(Analysis, RenumberingBelongsToTheSkylineSolver)
{
  // The nodes have the order 2-1-3 along x, which a renumbering would change.
  const auto project = ReadProject(ProblemParts()
                                       .With(&ProblemParts::coordinates, "1 1 0\n2 0 0\n3 5 0")
                                       .With(&ProblemParts::elements, "1 1 2 1\n2 1 3 1")
                                       .Text());
  project->Calc(0, nullptr);
  EXPECT_EQ(project->problem.meshes[0]->GiveOldNumber(1), 1);
  const auto renumbered = ReadProject(ProblemParts()
                                          .With(&ProblemParts::coordinates, "1 1 0\n2 0 0\n3 5 0")
                                          .With(&ProblemParts::elements, "1 1 2 1\n2 1 3 1")
                                          .Text());
  renumbered->Calc(1, nullptr);
  EXPECT_EQ(renumbered->problem.meshes[0]->GiveOldNumber(1), 3);
}

// The kit of these tests adds no solver.
TEST(Analysis, WithoutTheSparseDirectSolverItsNameIsRefused)
{
  if (TestsDirect())
    GTEST_SKIP() << "these tests have the solver";
  Frame frame = PlaneChain({0, 2});
  frame.supports = {{.node = 1, .flags = kClamped}};
  ExpectFatal([&] { Solved(ProblemText(frame, "Solver Direct\n")); },
              "error: this program has been built without the solver Direct\n");
}

}  // namespace morlen
