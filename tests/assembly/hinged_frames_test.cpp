// Structures with hinges and loaded members, against statics and closed forms.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "problem/beam_span.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

constexpr double kEI = 300.0;

// A plane frame with E = 100, Iz = 3 and this area.
Frame PlaneFrame(const std::vector<std::array<double, 2>>& nodes,
                 const std::vector<std::array<int, 2>>& beams, double area = 1e7)
{
  Frame frame;
  frame.space = false;
  frame.sections = {{.E = 100.0, .A = area, .Iz = 3.0}};
  for (const auto& at : nodes)
    frame.nodes.push_back({at[0], at[1], 0});
  for (const auto& ends : beams)
    frame.beams.push_back({ends[0], ends[1], 1});
  return frame;
}

void Support(Frame& frame, int node, const std::array<int, 6>& flags)
{
  frame.supports.push_back({.node = node, .flags = flags});
}

constexpr std::array<int, 6> kPin = {1, 1, 0, 0, 0, 0};
constexpr std::array<int, 6> kRoller = {0, 1, 0, 0, 0, 0};
constexpr std::array<int, 6> kHeld = {1, 1, 1, 0, 0, 0};

}  // namespace

// A beam of length 10 with an overhang of 2 that carries a suspended span of 8, under the load 5.
TEST(GerberBeam, IsStaticallyDeterminate)
{
  Frame frame = PlaneFrame({{0, 0}, {10, 0}, {12, 0}, {20, 0}}, {{1, 2}, {2, 3}, {3, 4}}, 2.0);
  Support(frame, 1, kPin);
  Support(frame, 2, kRoller);
  Support(frame, 4, kRoller);
  const std::string load = Block("global_pressure_loads", "1 0 -5\n2 0 -5\n3 0 -5");
  // The hinge is at the end of the overhang, at the beginning of the suspended span, or in the
  // node.
  for (const std::string& hinge : {Block("elem_rotules", "2 10"), Block("elem_rotules", "3 01"),
                                   Block("rotules", "3 hinge")}) {
    SCOPED_TRACE(hinge);
    const Solved solved(ProblemText(frame) + hinge + load);
    ExpectValues(solved.Reaction(1), {0, 20, 0}, 1e-11);
    ExpectValues(solved.Reaction(2), {0, 60, 0}, 1e-11);
    ExpectValues(solved.Reaction(4), {0, 20, 0}, 1e-11);
    ExpectValues(LoadedEndForces(solved, 1), {0, 20, 0, 0, 30, -50}, 1e-11);
    ExpectValues(LoadedEndForces(solved, 3), {0, 20, 0, 0, 20, 0}, 1e-11);
    EXPECT_NEAR(LoadedStrength(solved, 2, 3, 0.0), -50, 1e-10);  // over the support
    EXPECT_NEAR(LoadedStrength(solved, 3, 3, 0.5), 40, 1e-10);
    EXPECT_NEAR(solved.Displacement(3)[1], 20 / kEI, 1e-11);  // the hinge rises
    // The middle of the suspended span moves by half of that, plus its own deflection.
    EXPECT_NEAR(LoadedDisplacements(solved, 3, 2)[1][1],
                10 / kEI - 5.0 * 5 * std::pow(8, 4) / (384 * kEI), 1e-10);
    ExpectLoadedEquilibrium(solved, {{1, {0, -5, 0}}, {2, {0, -5, 0}}, {3, {0, -5, 0}}});
    for (const int elem : {1, 2, 3})
      ExpectDiagrams(solved, elem, {0, -5});
  }
}

namespace {

// Feet at (0, 0) and (12, 0), eaves 4 high, ridge at (6, 6).
Frame ThreeHinged()
{
  Frame frame =
      PlaneFrame({{0, 0}, {0, 4}, {6, 6}, {12, 4}, {12, 0}}, {{1, 2}, {2, 3}, {3, 4}, {4, 5}}, 2.0);
  Support(frame, 1, kPin);
  Support(frame, 5, kPin);
  return frame;
}

}  // namespace

TEST(ThreeHingedFrame, CarriesSnowByItsThrust)
{
  // Snow of 10 per metre of ground: V = qL/2 = 60, H = qL²/8f = 30 with f = 6.
  const std::string snow = Block("global_projected_pressure_loads", "2 0 -10\n3 0 -10");
  for (const std::string& hinge : {Block("elem_rotules", "2 10"), Block("elem_rotules", "3 01"),
                                   Block("rotules", "3 hinge")}) {
    SCOPED_TRACE(hinge);
    const Solved solved(ProblemText(ThreeHinged()) + hinge + snow);
    ExpectValues(solved.Reaction(1), {30, 60, 0}, 1e-11);
    ExpectValues(solved.Reaction(5), {-30, 60, 0}, 1e-11);
    EXPECT_NEAR(LoadedEndForces(solved, 1)[5], -120, 1e-9);  // H·4, tension outside
    // Along the rafter from (0, 4) to (6, 6): M = 60x - 5x² - 30y.
    for (const double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
      const double x = 6 * t;
      EXPECT_NEAR(LoadedStrength(solved, 2, 3, t), 60 * x - 5 * x * x - 30 * (4 + 2 * t), 1e-9);
      EXPECT_NEAR(LoadedStrength(solved, 3, 3, 1 - t), LoadedStrength(solved, 2, 3, t), 1e-9);
    }
    const double perLength = -10 * 6 / std::hypot(6, 2);
    ExpectLoadedEquilibrium(solved, {{2, {0, perLength, 0}}, {3, {0, perLength, 0}}});
  }
}

TEST(ThreeHingedFrame, CarriesWindOnItsColumn)
{
  // 3 per metre on the left column: moments about the right foot and about the ridge.
  const Solved solved(ProblemText(ThreeHinged()) + Block("elem_rotules", "2 10") +
                      Block("local_pressure_loads", "1 0 -3"));  // y' points to the left
  const double V = 3.0 * 4 * 2 / 12;
  const double right = V * 6 / 6;  // V·6 = H·6 for the right half
  ExpectValues(solved.Reaction(1), {-12 + right, -V, 0}, 1e-11);
  ExpectValues(solved.Reaction(5), {-right, V, 0}, 1e-11);
  ExpectLoadedEquilibrium(solved, {{1, {3, 0, 0}}});
}

TEST(PortalWithHingedFeet, ThrustOfTheClosedForm)
{
  // Height 4, span 6, one section: H = qL²/(4h(2k + 3)), k = h/L (A. Kleinlogel, Rigid Frame
  // Formulas, Ungar, 1952); members that hardly shorten.
  Frame frame = PlaneFrame({{0, 0}, {0, 4}, {6, 4}, {6, 0}}, {{1, 2}, {2, 3}, {3, 4}});
  const double H = 5.0 * 36 / (16 * (8.0 / 6 + 3));
  const std::string load = Block("global_pressure_loads", "2 0 -5");
  Support(frame, 1, kPin);
  Support(frame, 4, kPin);
  const Solved pinned(ProblemText(frame) + load);
  ExpectValues(pinned.Reaction(1), {H, 15, 0}, 1e-6);
  EXPECT_NEAR(LoadedStrength(pinned, 2, 3, 0.5), 5 * 36 / 8.0 - 4 * H, 1e-5);

  // The same with clamped feet and hinges, as codes of the columns or at the nodes.
  frame.supports.clear();
  Support(frame, 1, kHeld);
  Support(frame, 4, kHeld);
  for (const std::string& hinges :
       {Block("elem_rotules", "1 01\n3 10"), Block("rotules", "1 h\n4 h")}) {
    SCOPED_TRACE(hinges);
    const Solved hinged(ProblemText(frame) + hinges + load);
    for (const int node : {2, 3})
      ExpectValues(hinged.Displacement(node), pinned.Displacement(node), 1e-9);
    for (const int foot : {1, 4}) {
      ExpectValues(hinged.Reaction(foot), pinned.Reaction(foot), 1e-9);
      EXPECT_EQ(hinged.Displacement(foot), (Doubles{0, 0, 0}));
    }
    for (const int elem : {1, 2, 3})
      ExpectValues(LoadedEndForces(hinged, elem), LoadedEndForces(pinned, elem), 1e-9);
    ExpectLoadedEquilibrium(hinged, {{2, {0, -5, 0}}});
  }
}

TEST(Truss, OfDoublyHingedMembers)
{
  // Two panels of 4, 3 high: bottom 1-2-3, top 4-5-6, 12 at node 2; EA = 500.
  Frame frame =
      PlaneFrame({{0, 0}, {4, 0}, {8, 0}, {0, 3}, {4, 3}, {8, 3}},
                 {{1, 2}, {2, 3}, {4, 5}, {5, 6}, {1, 4}, {2, 5}, {3, 6}, {4, 2}, {2, 6}}, 5.0);
  Support(frame, 1, kPin);
  Support(frame, 3, kRoller);
  frame.loads = {{2, {0, -12, 0}}};
  const std::string codes =
      Block("elem_rotules", "1 00\n2 00\n3 00\n4 00\n5 00\n6 00\n7 00\n8 00\n9 00");
  const std::string nodes = Block("rotules", "1 h\n2 h\n3 h\n4 h\n5 h\n6 h");
  // Joint by joint: columns -6, diagonals 10, top -8, bottom and middle post 0.
  const double forces[] = {0, 0, -8, -8, -6, 0, -6, 10, 10};
  const double lengths[] = {4, 4, 4, 4, 3, 3, 3, 5, 5};
  double energy = 0.0;
  for (const std::string& hinges : {codes, nodes}) {
    const Solved solved(ProblemText(frame) + hinges);
    energy = 0.0;
    for (int elem = 1; elem <= 9; ++elem) {
      const double N = forces[elem - 1];
      ExpectValues(solved.EndForces(elem), {-N, 0, 0, N, 0, 0}, 1e-11, 10.0);
      energy += N * N * lengths[elem - 1] / 500;
    }
    EXPECT_NEAR(-12 * solved.Displacement(2)[1], energy, 1e-11);  // work of the load
    ExpectLoadedEquilibrium(solved, {});
  }
}

TEST(Truss, OfDoublyHingedMembersInSpace)
{
  // A tripod: feet on a circle of radius 3, apex 4 high; 30 down and 6 along x at the apex.
  Frame frame;
  const double s = 3 * std::sqrt(0.75);
  frame.nodes = {{3, 0, 0}, {-1.5, s, 0}, {-1.5, -s, 0}, {0, 0, 4}};
  frame.sections = {{.E = 100.0, .G = 40.0, .A = 5.0, .Iy = 2.0, .Iz = 2.0, .J = 1.0}};
  frame.beams = {{1, 4, 1}, {2, 4, 1}, {3, 4, 1}};
  for (const int foot : {1, 2, 3})
    frame.supports.push_back({.node = foot, .flags = {1, 1, 1, 0, 0, 0}});
  frame.loads = {{4, {6, 0, -30, 0, 0, 0}}};
  const Solved solved(ProblemText(frame) + Block("elem_rotules", "1 00\n2 00\n3 0"));
  // Per unit of its force a leg lifts the apex by 0.8 and pulls it outwards by 0.6.
  const double vertical = -30.0 / (3 * 0.8);
  const double legs[] = {vertical - 6 / (1.5 * 0.6), vertical + 3 / (1.5 * 0.6),
                         vertical + 3 / (1.5 * 0.6)};
  for (int leg = 1; leg <= 3; ++leg) {
    const double N = legs[leg - 1];
    ExpectValues(solved.EndForces(leg), {-N, 0, 0, 0, 0, 0, N, 0, 0, 0, 0, 0}, 1e-11, 15.0);
  }
  const Doubles apex = solved.Displacement(4);
  EXPECT_NEAR(apex[0], 6 / (3 * 0.36 * 0.5 * 100), 1e-13);  // EA/L = 100
  EXPECT_NEAR(apex[2], -30 / (3 * 0.64 * 100), 1e-13);
  EXPECT_EQ((Doubles{apex.begin() + 3, apex.end()}), (Doubles{0, 0, 0}));
  ExpectLoadedEquilibrium(solved, {});
}

TEST(Truss, LoadsAcrossMembersGoToTheNodes)
{
  Frame frame = PlaneFrame({{0, 0}, {4, 3}, {8, 0}}, {{1, 2}, {2, 3}}, 5.0);
  Support(frame, 1, kPin);
  Support(frame, 3, kPin);
  const Solved solved(ProblemText(frame) + Block("rotules", "1 h\n2 h\n3 h") +
                      Block("global_pressure_loads", "1 0 -2"));
  // 5 at each node: half of the apex's 5 goes down each bar, 2.5 / 0.6.
  const double N = 2.5 / 0.6;
  const Doubles ends = LoadedEndForces(solved, 1);
  EXPECT_NEAR(ends[0], N + 5 * 0.6, 1e-12);
  EXPECT_NEAR(ends[3], -N + 5 * 0.6, 1e-12);
  EXPECT_NEAR(ends[1], 5 * 0.8, 1e-12);
  EXPECT_NEAR(LoadedStrength(solved, 1, 3, 0.5), 2 * 0.8 * 25 / 8, 1e-12);
  ExpectValues(LoadedEndForces(solved, 2), {N, 0, 0, -N, 0, 0}, 1e-12);
  ExpectLoadedEquilibrium(solved, {{1, {0, -2, 0}}});
}

TEST(HingedNode, TwoCantileversMeet)
{
  // Each cantilever carries half of the force. The node does not rotate.
  Frame frame = PlaneFrame({{0, 0}, {2, 0}, {4, 0}}, {{1, 2}, {2, 3}}, 2.0);
  Support(frame, 1, kHeld);
  Support(frame, 3, kHeld);
  frame.loads = {{2, {0, -12, 0}}};
  const Solved solved(ProblemText(frame) + Block("rotules", "2 h"));
  ExpectValues(solved.Displacement(2), {0, -6.0 * 8 / (3 * kEI), 0}, 1e-12);
  ExpectValues(solved.EndForces(1), {0, 6, 12, 0, -6, 0}, 1e-12);
  ExpectValues(solved.Reaction(2), {0, 0, 0}, 0, 1e-12);
  // Between the ends the deflection is that of a cantilever.
  const auto points = solved.SpanDisplacements(1, 4);
  for (int i = 0; i <= 4; ++i) {
    const double x = 0.5 * i;
    EXPECT_NEAR(points[i][1], -6 * x * x * (6 - x) / (6 * kEI), 1e-13);
  }
}

TEST(HingedNode, AMomentOnItIsResistedByItsFixedRotation)
{
  Frame frame = PlaneFrame({{0, 0}, {2, 0}, {4, 0}}, {{1, 2}, {2, 3}}, 2.0);
  Support(frame, 1, kHeld);
  Support(frame, 3, kHeld);
  frame.loads = {{2, {0, 0, 7}}};
  const Solved fixed(ProblemText(frame) + Block("rotules", "2 h"));
  ExpectValues(fixed.Reaction(2), {0, 0, -7}, 1e-12);
  ExpectValues(fixed.Displacement(2), {0, 0, 0}, 0, 1.0);
}

TEST(HingedNode, SpringsAndPrescribedRotationsStay)
{
  Frame frame = PlaneFrame({{0, 0}, {2, 0}, {4, 0}}, {{1, 2}, {2, 3}}, 2.0);
  Support(frame, 1, kHeld);
  Support(frame, 3, kHeld);
  frame.loads = {{2, {0, 0, 7}}};
  frame.supports.push_back({.node = 2, .flags = {0, 0, 2}, .values = {0, 0, 35}});
  const Solved spring(ProblemText(frame) + Block("rotules", "2 h"));
  ExpectValues(spring.Displacement(2), {0, 0, 0.2}, 1e-12);
  ExpectValues(spring.Reaction(2), {0, 0, -7}, 1e-12);
  frame.supports.back() = {.node = 2, .flags = {0, 0, 1}, .values = {0, 0, 0.3}};
  const Solved turned(ProblemText(frame) + Block("rotules", "2 h"));
  ExpectValues(turned.Displacement(2), {0, 0, 0.3}, 1e-12);
  ExpectValues(turned.EndForces(1), Doubles(6, 0.0), 0, 1.0);
}

TEST(HingedNode, InSpaceTorsionIsNeverReleased)
{
  // Two beams at right angles; the torque at the hinged end of the first goes nowhere else.
  Frame frame;
  frame.nodes = {{0, 0, 0}, {2, 0, 0}, {4, 0, 0}};
  frame.sections = {{.E = 100.0, .G = 40.0, .A = 5.0, .Iy = 2.0, .Iz = 3.0, .J = 1.0}};
  frame.beams = {{1, 2, 1}, {2, 3, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}, {.node = 3, .flags = kClamped}};
  frame.loads = {{2, {0, 6, 12, 8, 0, 0}}};
  const Solved solved(ProblemText(frame) + Block("elem_rotules", "1 10"));
  const Doubles u = solved.Displacement(2);
  EXPECT_NEAR(u[3], 4 * 2 / 40.0, 1e-12);  // half of the torque each way
  ExpectLoadedEquilibrium(solved, {});
  const Doubles ends = solved.EndForces(1);
  for (const int k : {10, 11})
    EXPECT_NEAR(ends[k], 0.0, 1e-12);
  // Both beams are cantilevers (3EI/L³), because nothing else supports their common end.
  EXPECT_NEAR(u[1], 6 / (2 * 3 * 300.0 / 8), 1e-12);
  EXPECT_NEAR(u[2], 12 / (2 * 3 * 200.0 / 8), 1e-12);
}

namespace {

// Two storeys of two bays by one, 5 and 4 wide, 3 high, with a roof that slopes.
Frame MultiStorey()
{
  Frame frame;
  for (const double z : {0.0, 3.0, 6.0}) {
    for (const double y : {0.0, 4.0}) {
      for (const double x : {0.0, 5.0, 10.0})
        frame.nodes.push_back({x, y, z > 3 ? z + 0.1 * x : z});
    }
  }
  frame.sections = {{.E = 2000, .G = 800, .A = 0.5, .Iy = 0.3, .Iz = 0.2, .J = 0.1}};
  for (int storey = 0; storey < 2; ++storey) {
    const int below = 6 * storey;
    for (int i = 1; i <= 6; ++i)
      frame.beams.push_back({below + i, below + 6 + i, 1});
    const int floor = below + 6;
    for (const int i : {1, 2, 4, 5})
      frame.beams.push_back({floor + i, floor + i + 1, 1});
    for (const int i : {1, 2, 3})
      frame.beams.push_back({floor + i, floor + i + 3, 1});
  }
  for (int foot = 1; foot <= 6; ++foot)
    frame.supports.push_back({.node = foot, .flags = kClamped});
  return frame;
}

// The force and the moment on an end of a clamped beam under q per length: half of the load, and
// L²/12 times x' × q on the first end or the opposite on the second.
void AddFixedEndLoads(const LineLoad& load, Frame& frame)
{
  const Frame::Beam& beam = frame.beams[load.elem - 1];
  const Vector3& a = frame.nodes[beam.first - 1];
  const Vector3& b = frame.nodes[beam.second - 1];
  const Vector3 d = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  const double L = std::hypot(d[0], d[1], d[2]);
  for (const double sign : {1.0, -1.0}) {
    Frame::NodalLoad share = {.node = sign > 0 ? beam.first : beam.second, .values = {}};
    for (int i = 0; i < 3; ++i) {
      const int j = (i + 1) % 3;
      const int k = (i + 2) % 3;
      share.values[i] = load.force[i] * L / 2;
      share.values[3 + i] = sign * L / 12 * (d[j] * load.force[k] - d[k] * load.force[j]);
    }
    frame.loads.push_back(share);
  }
}

}  // namespace

TEST(MultiStoreyFrame, WeightSnowAndWindAgreeWithTheReference)
{
  Frame frame = MultiStorey();
  std::string problem = ProblemText(frame, "GravityDirection 0 0 -1");
  const std::string section = "materials\n1 E";
  problem.replace(problem.find(section), section.size(), "materials\n1 Weight 24 E");
  std::vector<LineLoad> lines;
  for (int elem = 1; elem <= 26; ++elem)
    lines.push_back({elem, {0, 0, -12}});
  std::string snow;
  for (const int elem : {20, 21, 22, 23}) {  // rafters that rise by 1 in 10
    snow += std::to_string(elem) + " 0 0 -6\n";
    lines.push_back({elem, {0, 0, -6 / std::sqrt(1.01)}});
  }
  std::string wind;
  for (const int elem : {1, 4, 14, 17}) {
    wind += std::to_string(elem) + " 2 0 0\n";
    lines.push_back({elem, {2, 0, 0}});
  }
  problem += Block("global_projected_pressure_loads", snow) + Block("global_pressure_loads", wind);

  for (const LineLoad& line : lines)
    AddFixedEndLoads(line, frame);
  const ReferenceSolution reference = SolveReference(frame);
  const Solved solved(problem);
  for (int node = 1; node <= 18; ++node) {
    const auto& u = reference.displacements[node - 1];
    ExpectValues(solved.Displacement(node), {u.begin(), u.end()}, 1e-9, 1.0);
  }
  for (int foot = 1; foot <= 6; ++foot) {
    const auto& r = reference.reactions[foot - 1];
    ExpectValues(solved.Reaction(foot), {r.begin(), r.end()}, 1e-9);
  }
  ExpectLoadedEquilibrium(solved, lines);
}

TEST(HallFrame, HingedFeetWeightSnowAndWind)
{
  // Columns of 5, a roof that rises by 1 to its ridge, feet in hinges of clamped supports.
  Frame frame =
      PlaneFrame({{0, 0}, {0, 5}, {8, 6}, {16, 5}, {16, 0}}, {{1, 2}, {2, 3}, {3, 4}, {4, 5}}, 2.0);
  Support(frame, 1, kHeld);
  Support(frame, 5, kHeld);
  std::string problem = ProblemText(frame, "GravityDirection 0 -1 0");
  const std::string section = "materials\n1 E";
  problem.replace(problem.find(section), section.size(), "materials\n1 Weight 0.5 E");
  problem += Block("rotules", "1 h\n5 h") +
             Block("global_projected_pressure_loads", "2 0 -4\n3 0 -4") +
             Block("local_pressure_loads", "1 0 -3\n4 0 -1.5");
  const Solved solved(problem);
  const double snow = -4 * 8 / std::sqrt(65.0);
  ExpectLoadedEquilibrium(
      solved,
      {{1, {3, -1, 0}}, {2, {0, -1 + snow, 0}}, {3, {0, -1 + snow, 0}}, {4, {-1.5, -1, 0}}});
  for (const int foot : {1, 5}) {
    EXPECT_NEAR(solved.Reaction(foot)[2], 0.0, 1e-11);
    EXPECT_EQ(solved.Displacement(foot), (Doubles{0, 0, 0}));
  }
  EXPECT_NEAR(LoadedStrength(solved, 1, 3, 0.0), 0.0, 1e-10);
  EXPECT_NEAR(LoadedStrength(solved, 4, 3, 1.0), 0.0, 1e-10);
}

}  // namespace morlen
