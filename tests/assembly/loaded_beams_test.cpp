// Beams under loads along their span: equilibrium, diagrams, deflections, and members that are
// divided into pieces.

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

using Axes = std::array<Vector3, 3>;
using Doubles = std::vector<double>;

constexpr int kCodes[] = {11, 10, 1, 0};
constexpr double kL = 2.5;
const Frame::Section kSection = {.E = 200.0, .G = 80.0, .A = 3.0, .Iy = 5.0, .Iz = 7.0, .J = 2.0};

const double kR2 = std::sqrt(0.5);

// Local y is horizontal, and z points upwards. A vertical beam has y along global x.
const Axes kSpaceAxes[] = {
    {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}},
    {Vector3{0, -1, 0}, Vector3{1, 0, 0}, Vector3{0, 0, 1}},
    {Vector3{0, 0, 1}, Vector3{1, 0, 0}, Vector3{0, 1, 0}},
    {Vector3{0, 0, -1}, Vector3{1, 0, 0}, Vector3{0, -1, 0}},
    {Vector3{kR2, 0, -kR2}, Vector3{0, 1, 0}, Vector3{kR2, 0, kR2}},
    {Vector3{0.48, 0.64, 0.6}, Vector3{-0.8, 0.6, 0}, Vector3{-0.36, -0.48, 0.8}},
};

const Axes kPlaneAxes[] = {
    {Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}},
    {Vector3{0, 1, 0}, Vector3{-1, 0, 0}, Vector3{0, 0, 1}},
    {Vector3{0.6, 0.8, 0}, Vector3{-0.8, 0.6, 0}, Vector3{0, 0, 1}},
    {Vector3{-0.8, -0.6, 0}, Vector3{0.6, -0.8, 0}, Vector3{0, 0, 1}},
};

enum class Kind
{
  Local,
  Global,
  Projected,
  Face
};

struct TestLoad
{
  Kind kind;
  Vector3 values;
  double torque = 0.0;
};

using TestLoads = std::vector<TestLoad>;

double Dot(const Vector3& a, const Vector3& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// The components of a load in the axes of the beam: three forces and a torque per length.
std::array<double, 4> InBeamAxes(const TestLoad& load, const Axes& axes)
{
  if (load.kind == Kind::Local)
    return {load.values[0], load.values[1], load.values[2], load.torque};
  const double along = Dot(load.values, axes[0]) / std::sqrt(Dot(load.values, load.values));
  const double factor = load.kind == Kind::Projected ? std::sqrt(1 - along * along) : 1.0;
  std::array<double, 4> q{};
  for (int i = 0; i < 3; ++i)
    q[i] = factor * Dot(axes[i], load.values);
  return q;
}

std::array<double, 4> SumInBeamAxes(const TestLoads& loads, const Axes& axes)
{
  std::array<double, 4> sum{};
  for (const TestLoad& load : loads) {
    const std::array<double, 4> q = InBeamAxes(load, axes);
    for (int i = 0; i < 4; ++i)
      sum[i] += q[i];
  }
  return sum;
}

LineLoad InGlobalAxes(int elem, const std::array<double, 4>& q, const Axes& axes)
{
  LineLoad line{.elem = elem};
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 3; ++i)
      line.force[k] += q[i] * axes[i][k];
    line.moment[k] = q[3] * axes[0][k];
  }
  return line;
}

// The loads as blocks of a problem file, on elements 1 to `elements`.
std::string BlocksOf(const TestLoads& loads, bool space, int elements)
{
  static const char* const keywords[] = {"local_pressure_loads", "global_pressure_loads",
                                         "global_projected_pressure_loads", "face_loads"};
  std::string text;
  for (const TestLoad& load : loads) {
    std::string records;
    for (int elem = 1; elem <= elements; ++elem) {
      records += std::to_string(elem) + Digits(load.values[0]) + Digits(load.values[1]);
      if (space)
        records += Digits(load.values[2]);
      if (space && load.kind == Kind::Local)
        records += Digits(load.torque);
      records += "\n";
    }
    text += Block(keywords[static_cast<int>(load.kind)], records);
  }
  return text;
}

// A member of `parts` beams from a clamped end with a settlement to a loaded end on springs. All
// components move.
Frame Member(const Axes& axes, bool space, int parts)
{
  const Vector3 start = {0.5, -2.0, space ? 1.0 : 0.0};
  Frame frame;
  frame.space = space;
  frame.sections = {kSection};
  for (int i = 0; i <= parts; ++i) {
    const double s = kL * i / parts;
    frame.nodes.push_back(
        {start[0] + s * axes[0][0], start[1] + s * axes[0][1], start[2] + s * axes[0][2]});
    if (i > 0)
      frame.beams.push_back({i, i + 1, 1});
  }
  frame.supports = {
      {.node = 1, .flags = kClamped, .values = {0.01, -0.02, 0.03, 0.02, 0.01, -0.03}},
      {.node = parts + 1, .flags = {2, 2, 2, 2, 2, 2}, .values = {40, 50, 60, 30, 20, 10}}};
  frame.loads = {{.node = parts + 1, .values = {3, -2, 1, 0.5, -1, 2}}};
  return frame;
}

// The hinge code of the whole member on its first and last beam.
std::string HingesOf(int code, int parts)
{
  if (parts == 1)
    return Block("elem_rotules", "1 " + std::to_string(code));
  return Block("elem_rotules", std::string("1 ") + (code / 10 ? "11" : "01") + "\n" +
                                   std::to_string(parts) + (code % 10 ? " 11" : " 10"));
}

std::string MemberText(const Axes& axes, bool space, int parts, int code, const TestLoads& loads)
{
  return ProblemText(Member(axes, space, parts)) + HingesOf(code, parts) +
         BlocksOf(loads, space, parts);
}

const TestLoads kSpaceLoads[] = {
    {{Kind::Local, {1.5, -2, 3}, 0.7}},
    {{Kind::Local, {0, 4, 0}}},
    {{Kind::Global, {2, -1, -4}}},
    {{Kind::Projected, {2, -1, -4}}},
    {{Kind::Projected, {0, 0, -5}}},
    {{Kind::Local, {0, 4, 1}, -2}, {Kind::Global, {0, 0, -3}}, {Kind::Projected, {1, 0, -1}}},
};

const TestLoads kPlaneLoads[] = {
    {{Kind::Local, {1.5, -2, 0}}},
    {{Kind::Global, {2, -1, 0}}},
    {{Kind::Face, {2, -1, 0}}},
    {{Kind::Projected, {2, -1, 0}}},
    {{Kind::Projected, {0, -5, 0}}},
    {{Kind::Local, {0, 4, 0}}, {Kind::Global, {0, -3, 0}}, {Kind::Face, {1, 1, 0}}},
};

// One loaded beam with this hinge code.
void ExpectBeamHolds(const Axes& axes, bool space, int code, const TestLoads& loads)
{
  SCOPED_TRACE(testing::Message() << "code " << code << ", x' = " << axes[0][0] << " " << axes[0][1]
                                  << " " << axes[0][2] << BlocksOf(loads, space, 1));
  const Solved solved(MemberText(axes, space, 1, code, loads));
  const std::array<double, 4> q = SumInBeamAxes(loads, axes);
  ExpectLoadedEquilibrium(solved, {InGlobalAxes(1, q, axes)});
  ExpectDiagrams(solved, 1, {q.begin(), q.end()});
  const Doubles ends = LoadedEndForces(solved, 1);
  const int n = space ? 6 : 3;
  for (int k = space ? 4 : 2; k < n; ++k) {
    if (code / 10 == 0) {
      EXPECT_NEAR(ends[k], 0.0, 1e-12);
    }
    if (code % 10 == 0) {
      EXPECT_NEAR(ends[n + k], 0.0, 1e-12);
    }
  }
  const auto points = LoadedDisplacements(solved, 1, 4);
  for (const int end : {0, 1}) {
    Doubles u = solved.Displacement(end + 1);
    u.resize(space ? 3 : 2);
    ExpectValues(end == 0 ? points.front() : points.back(), u, 1e-13);
  }
}

// The same member as one beam and as eight.
void ExpectCutMemberTheSame(const Axes& axes, bool space, int code, const TestLoads& loads)
{
  constexpr int kParts = 8;
  SCOPED_TRACE(testing::Message() << "code " << code << ", x' = " << axes[0][0] << " " << axes[0][1]
                                  << " " << axes[0][2] << BlocksOf(loads, space, 1));
  const Solved one(MemberText(axes, space, 1, code, loads));
  const Solved cut(MemberText(axes, space, kParts, code, loads));
  ExpectValues(cut.Displacement(kParts + 1), one.Displacement(2));
  ExpectValues(cut.Reaction(1), one.Reaction(1));
  ExpectValues(cut.Reaction(kParts + 1), one.Reaction(2));
  const int n = space ? 6 : 3;
  const Doubles ends = LoadedEndForces(one, 1);
  Doubles cutEnds = LoadedEndForces(cut, 1);
  const Doubles last = LoadedEndForces(cut, kParts);
  std::copy(last.begin() + n, last.end(), cutEnds.begin() + n);
  ExpectValues(cutEnds, ends);

  // Four points of each part.
  const auto points = LoadedDisplacements(one, 1, 4 * kParts);
  for (int part = 0; part < kParts; ++part) {
    const auto cutPoints = LoadedDisplacements(cut, part + 1, 4);
    for (int i = 0; i <= 4; ++i) {
      ExpectValues(cutPoints[i], points[4 * part + i]);
      const double t = (part + i / 4.0) / kParts;
      for (int k = 1; k <= n; ++k)
        EXPECT_NEAR(LoadedStrength(cut, part + 1, k, i / 4.0), LoadedStrength(one, 1, k, t), 1e-9)
            << "component " << k << " at " << t;
    }
  }
}

// A plane or space beam along x, 4 long, EIz = EIy = 800, held by these two supports.
constexpr double kSpan = 4.0;
constexpr double kEI = 800.0;

}  // namespace

TEST(LoadedBeam, HoldsItsLoadInSpace)
{
  for (const Axes& axes : kSpaceAxes) {
    for (const int code : kCodes) {
      for (const TestLoads& loads : kSpaceLoads)
        ExpectBeamHolds(axes, true, code, loads);
    }
  }
}

TEST(LoadedBeam, HoldsItsLoadInThePlane)
{
  for (const Axes& axes : kPlaneAxes) {
    for (const int code : kCodes) {
      for (const TestLoads& loads : kPlaneLoads)
        ExpectBeamHolds(axes, false, code, loads);
    }
  }
}

TEST(LoadedBeam, EightPiecesGiveTheSameInSpace)
{
  for (const Axes& axes : kSpaceAxes) {
    for (const int code : kCodes)
      ExpectCutMemberTheSame(axes, true, code, {{Kind::Local, {0, -2, 3}, 0.7}});
    // Along the beam too, where no piece has one hinge and its uneven shares.
    ExpectCutMemberTheSame(axes, true, 11, {{Kind::Global, {2, -1, -4}}});
  }
}

TEST(LoadedBeam, EightPiecesGiveTheSameInThePlane)
{
  for (const Axes& axes : kPlaneAxes) {
    for (const int code : kCodes)
      ExpectCutMemberTheSame(axes, false, code, {{Kind::Local, {0, -2, 0}}});
    ExpectCutMemberTheSame(axes, false, 11, {{Kind::Projected, {2, -1, 0}}});
  }
}

namespace {

// Ends of a beam: free, pinned or clamped.
struct Ends
{
  const char* name;
  const char* plane[2];  // flags of the first and of the second node
  const char* space[2];
  int code;
  double (*deflection)(double x, double L);  // for q = EI = 1
};

double Clamped(double x, double L)
{
  return x * x * (L - x) * (L - x) / 24;
}

double Simple(double x, double L)
{
  return x * (L * L * L - 2 * L * x * x + x * x * x) / 24;
}

double Propped(double x, double L)
{
  return x * x * (L - x) * (3 * L - 2 * x) / 48;
}

double ProppedBehind(double x, double L)
{
  return Propped(L - x, L);
}

double Cantilever(double x, double L)
{
  return x * x * (6 * L * L - 4 * L * x + x * x) / 24;
}

const Ends kEnds[] = {
    {"clamped", {"111", "111"}, {"111111", "111111"}, 11, Clamped},
    {"simple, by supports", {"110", "110"}, {"111100", "111000"}, 11, Simple},
    {"simple, by hinges", {"111", "111"}, {"111111", "111111"}, 0, Simple},
    {"propped, by supports", {"111", "110"}, {"111111", "111000"}, 11, Propped},
    {"propped, by a hinge", {"111", "111"}, {"111111", "111111"}, 10, Propped},
    {"propped at the first end", {"111", "111"}, {"111111", "111111"}, 1, ProppedBehind},
    {"cantilever", {"111", "000"}, {"111111", "000000"}, 11, Cantilever},
};

std::string NodeLine(int node, const Vector3& at, bool space)
{
  return std::to_string(node) + Digits(at[0]) + Digits(at[1]) + (space ? Digits(at[2]) : "") + "\n";
}

// A beam along axes[0] with these ends under these local loads.
std::string BeamText(const Ends& ends, const Axes& axes, bool space, const std::string& load)
{
  ProblemParts parts = space ? SpaceProblem() : ProblemParts();
  const char* const* flags = space ? ends.space : ends.plane;
  const std::string zeros = space ? " 0 0 0 0 0 0" : " 0 0 0";
  const Vector3& x = axes[0];
  parts.coordinates = NodeLine(1, {1, 2, 3}, space) +
                      NodeLine(2, {1 + kSpan * x[0], 2 + kSpan * x[1], 3 + kSpan * x[2]}, space);
  parts.materials = "1 E 200 G 80 A 3 Iy 2 Iz 4 J 2";
  parts.constraints = std::string("1 ") + flags[0] + zeros + "\n2 " + flags[1] + zeros;
  parts.loads = "";
  parts.rest = Block("elem_rotules", "1 " + std::to_string(ends.code)) +
               Block("local_pressure_loads", "1 " + load);
  return parts.Text();
}

void ExpectDeflection(const Solved& solved, const Ends& ends, const Vector3& axis, double qOverEI)
{
  SCOPED_TRACE(ends.name);
  for (const int divisions : {1, 2, 10, 20}) {
    const auto points = LoadedDisplacements(solved, 1, divisions);
    for (int i = 0; i <= divisions; ++i) {
      const double w = qOverEI * ends.deflection(kSpan * i / divisions, kSpan);
      Doubles expected(axis.begin(), axis.end());
      expected.resize(points[i].size());
      for (double& component : expected)
        component *= w;
      ExpectValues(points[i], expected, 1e-12, 0.1);
    }
  }
}

}  // namespace

TEST(LoadedBeam, DeflectsByTheClosedFormsInThePlane)
{
  for (const Ends& ends : kEnds) {
    for (const Axes& axes : kPlaneAxes) {
      const Solved solved(BeamText(ends, axes, false, "0 -6"));
      ExpectDeflection(solved, ends, axes[1], -6 / kEI);
    }
  }
}

TEST(LoadedBeam, DeflectsByTheClosedFormsInSpace)
{
  for (const Ends& ends : kEnds) {
    for (const Axes& axes : kSpaceAxes) {
      // Pins of a simple beam leave its turn about itself; only that one hinders others.
      if (ends.space[0] == std::string("111100") && axes[0][0] != 1.0)
        continue;
      ExpectDeflection(Solved(BeamText(ends, axes, true, "0 -6 0")), ends, axes[1], -6 / kEI);
      ExpectDeflection(Solved(BeamText(ends, axes, true, "0 0 5")), ends, axes[2], 5 / (kEI / 2));
    }
  }
}

TEST(LoadedBeam, MidspanValuesOfTheTextbooks)
{
  const double qL4 = 6 * std::pow(kSpan, 4) / kEI;
  const double qL2 = 6 * kSpan * kSpan;
  static const struct
  {
    int ends;
    double deflection, moment;  // at midspan, divided by qL⁴/EI and qL²
  } cases[] = {{0, 1.0 / 384, 1.0 / 24}, {1, 5.0 / 384, 1.0 / 8}, {3, 1.0 / 192, 1.0 / 16}};
  for (const auto& c : cases) {
    const Solved solved(BeamText(kEnds[c.ends], kPlaneAxes[0], false, "0 -6"));
    EXPECT_NEAR(LoadedDisplacements(solved, 1, 2)[1][1], -c.deflection * qL4, 1e-13);
    EXPECT_NEAR(LoadedStrength(solved, 1, 3, 0.5), c.moment * qL2, 1e-11);
  }
}

TEST(LoadedBeam, BetweenFixedEndsAnAxialLoadIsSharedByTheHinges)
{
  // Each end carries half when no end or both are hinged. A single hinged end carries 3/8.
  static const struct
  {
    int code;
    double first;
  } cases[] = {{11, 0.5}, {10, 0.625}, {1, 0.375}, {0, 0.5}};
  for (const auto& c : cases) {
    Ends ends = kEnds[0];
    ends.code = c.code;
    const Solved solved(BeamText(ends, kPlaneAxes[2], false, "10 0"));
    const Doubles forces = LoadedEndForces(solved, 1);
    EXPECT_NEAR(forces[0], -40 * c.first, 1e-12);
    EXPECT_NEAR(forces[3], -40 * (1 - c.first), 1e-12);
    EXPECT_NEAR(LoadedStrength(solved, 1, 1, 0.25), 40 * c.first - 10, 1e-12);
  }
}

namespace {

// A bar of EA = 600 from (1, 1) to (4, 5) with a thermal strain of 0.002. Its second node is held,
// or free along the bar.
ProblemParts WarmBar(const std::string& secondSupport)
{
  ProblemParts parts;
  parts.coordinates = "1 1 1\n2 4 5";
  parts.materials = "1 E 200 A 3 Iz 7";
  parts.constraints = "1 111 0 0 0\n" + secondSupport;
  parts.rest = Block("temperature_loads", "1 1e-5 200");
  return parts;
}

}  // namespace

TEST(Temperature, AFreeBarLengthensWithoutForce)
{
  const Solved solved(WarmBar("").Text());
  ExpectValues(solved.Displacement(2), {0.002 * 3, 0.002 * 4, 0}, 1e-12);
  ExpectValues(LoadedEndForces(solved, 1), Doubles(6, 0.0), 1e-12, 1.0);
  ExpectValues(solved.Reaction(1), {0, 0, 0}, 1e-12, 1.0);
  for (int k = 1; k <= 3; ++k)
    EXPECT_NEAR(LoadedStrength(solved, 1, k, 0.4), 0.0, 1e-12);
  const auto points = LoadedDisplacements(solved, 1, 5);
  for (int i = 0; i <= 5; ++i)
    ExpectValues(points[i], {0.002 * 3 * i / 5, 0.002 * 4 * i / 5}, 1e-12);
}

TEST(Temperature, AClampedBarIsCompressed)
{
  for (const char* values : {"1 1e-5 200", "1 200 1e-5", "1 1e-5 150\n1 1e-5 50"}) {
    const ProblemParts parts =
        WarmBar("2 111 0 0 0").With(&ProblemParts::rest, Block("temperature_loads", values));
    const Solved solved(parts.Text());
    ExpectValues(solved.Displacement(2), {0, 0, 0}, 0, 1.0);
    ExpectValues(LoadedEndForces(solved, 1), {1.2, 0, 0, -1.2, 0, 0}, 1e-12);
    ExpectValues(solved.Reaction(2), {-1.2 * 0.6, -1.2 * 0.8, 0}, 1e-12);
    EXPECT_NEAR(LoadedStrength(solved, 1, 1, 0.7), -1.2, 1e-12);
    EXPECT_NEAR(LoadedStrength(solved, 1, 3, 0.7), 0.0, 1e-12);
    ExpectLoadedEquilibrium(solved, {});
    ExpectDiagrams(solved, 1, {0, 0});
  }
}

TEST(Temperature, HingesMakeNoDifference)
{
  for (const int code : kCodes) {
    const ProblemParts parts =
        WarmBar("2 111 0 0 0")
            .With(&ProblemParts::rest, Block("elem_rotules", "1 " + std::to_string(code)) +
                                           Block("temperature_loads", "1 -1e-5 200"));
    ExpectValues(LoadedEndForces(Solved(parts.Text()), 1), {-1.2, 0, 0, 1.2, 0, 0}, 1e-12);
  }
}

TEST(Temperature, InSpaceOnSprings)
{
  for (const Axes& axes : kSpaceAxes) {
    const std::string warm = Block("temperature_loads", "1 1e-4 50");
    const Solved solved(ProblemText(Member(axes, true, 1)) + warm);
    ExpectLoadedEquilibrium(solved, {});
    ExpectDiagrams(solved, 1, {0, 0, 0, 0});
    // The model without the temperature, but with its forces EA·strain = 3 on the nodes.
    Frame pulled = Member(axes, true, 1);
    for (int k = 0; k < 3; ++k)
      pulled.loads[0].values[k] += 3 * axes[0][k];
    const Solved other(ProblemText(pulled));
    ExpectValues(solved.Displacement(2), other.Displacement(2), 1e-11);
    EXPECT_NEAR(LoadedStrength(solved, 1, 1, 0.3), other.Strength(1, 1, 0.3) - 3, 1e-10);
  }
}

TEST(Temperature, WithLoadsOnTheSameBeam)
{
  for (const char* order : {"temperature first", "temperature last"}) {
    const std::string warm = Block("temperature_loads", "1 1e-4 50");
    const std::string load = BlocksOf(kPlaneLoads[0], false, 1);
    const bool first = std::string(order) == "temperature first";
    const Solved solved(ProblemText(Member(kPlaneAxes[2], false, 1)) +
                        (first ? warm + load : load + warm));
    const auto q = SumInBeamAxes(kPlaneLoads[0], kPlaneAxes[2]);
    ExpectLoadedEquilibrium(solved, {InGlobalAxes(1, q, kPlaneAxes[2])});
    ExpectDiagrams(solved, 1, {q.begin(), q.end()});
  }
}

namespace {

// A cantilever of weight 2 per volume, A = 3, clamped in its first node.
ProblemParts Heavy(bool space, const std::string& settings)
{
  ProblemParts parts = space ? SpaceProblem() : ProblemParts();
  parts.settings = settings;
  parts.coordinates = space ? "1 0 0 0\n2 2 0 0" : "1 0 0\n2 2 0";
  parts.materials = "1 E 200 G 80 A 3 Iy 5 Iz 7 J 2 Weight 2";
  return parts;
}

}  // namespace

TEST(SelfWeight, ActsAlongGravity)
{
  // The weight is 12 and acts in the middle.
  const Solved down(Heavy(true, "GravityDirection 0 0 -9.81").Text());
  ExpectValues(down.Reaction(1), {0, 0, 12, 0, -12, 0}, 1e-12);
  ExpectLoadedEquilibrium(down, {{.force = {0, 0, -6}}});
  ExpectDiagrams(down, 1, {0, 0, -6, 0});
  EXPECT_NEAR(LoadedDisplacements(down, 1, 2)[2][2], -6 * 16.0 / (8 * 1000), 1e-13);

  const Solved slanted(Heavy(true, "GravityDirection 3 -4 0").Text());
  ExpectLoadedEquilibrium(slanted, {{.force = {3.6, -4.8, 0}}});
  ExpectDiagrams(slanted, 1, {3.6, -4.8, 0, 0});

  const Solved plane(Heavy(false, "GravityDirection 0 -1 0").Text());
  ExpectValues(plane.Reaction(1), {0, 12, 12}, 1e-12);
  ExpectLoadedEquilibrium(plane, {{.force = {0, -6, 0}}});
}

TEST(SelfWeight, ActsUpwardsByDefault)
{
  const Solved solved(Heavy(true, "").Text());
  ExpectValues(solved.Reaction(1), {0, 0, -12, 0, 12, 0}, 1e-12);
}

TEST(SelfWeight, AddsToTheLoadsOfTheElement)
{
  const ProblemParts parts =
      Heavy(false, "GravityDirection 0 -1 0")
          .With(&ProblemParts::rest, Block("local_pressure_loads", "1 1 -4"));
  const Solved solved(parts.Text());
  ExpectLoadedEquilibrium(solved, {{.force = {1, -10, 0}}});
  ExpectDiagrams(solved, 1, {1, -10});
}

TEST(SelfWeight, OfElementsWithTheirOwnMaterialValues)
{
  const ProblemParts parts =
      Heavy(false, "GravityDirection 0 -1 0").With(&ProblemParts::elements, "1 1 2 1 Weight=5");
  ExpectLoadedEquilibrium(Solved(parts.Text()), {{.force = {0, -15, 0}}});
}

TEST(SelfWeight, RespectsHinges)
{
  for (const int code : {11, 10, 1, 0}) {
    const ProblemParts parts =
        Heavy(false, "GravityDirection 0 -1 0")
            .With(&ProblemParts::constraints, "1 111 0 0 0\n2 111 0 0 0")
            .With(&ProblemParts::rest, Block("elem_rotules", "1 " + std::to_string(code)));
    const Solved solved(parts.Text());
    ExpectLoadedEquilibrium(solved, {{.force = {0, -6, 0}}});
    for (const double t : {0.0, 0.5, 1.0})
      EXPECT_NEAR(LoadedStrength(solved, 1, 3, t),
                  GiveLocalStrength(SpanPart::Bending, t, 2.0, -6.0, code), 1e-13);
  }
}

TEST(SelfWeight, WithoutWeightThereIsNone)
{
  for (const char* weight : {"", " Weight 0", " Weight -1e-16"}) {
    const ProblemParts parts =
        Heavy(false, "").With(&ProblemParts::materials, std::string("1 E 200 A 3 Iz 7") + weight);
    const Solved solved(parts.Text());  // gravity along z does not matter
    EXPECT_EQ(solved.Reaction(1), (Doubles{0, 0, 0}));
    EXPECT_EQ(LoadedEndForces(solved, 1), solved.EndForces(1));
  }
}

TEST(LoadedBeam, UnitsOfLoads)
{
  const char* const units =
      "units_names\nN_m N m Pa 1 1\nkN_m kN m kPa 1000 1\nN_mm N mm MPa 1 0.001\nend\n";
  // The same 5 kN/m across and 2 kN m/m about a beam of 3 m in different units.
  static const struct
  {
    const char* settings;
    const char* load;
    double force;
  } cases[] = {
      {"units_mat_and_load N_m\nunits_res N_m", "1 0 -5000 0 2000", 1.0},
      {"units_mat_and_load kN_m\nunits_res N_m", "1 0 -5 0 2", 1.0},
      {"units_mat_and_load N_m\nunits_res kN_m", "1 0 -5000 0 2000", 1000.0},
      {"units_mat_and_load N_m\nunits_res N_m", "1 0 -5 0 2 units=kN_m", 1.0},
      {"units_mat_and_load kN_m\nunits_res kN_m", "1 0 -5 0 0 units=N_mm\n1 0 0 0 2", 1000.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.settings);
    ProblemParts parts = SpaceProblem();
    parts.settings = units + std::string(c.settings);
    parts.coordinates = "1 0 0 0\n2 3 0 0";
    parts.elements = "1 1 2 1";
    parts.materials = "1 units=N_m E 2e11 G 8e10 A 0.01 Iy 8e-6 Iz 8e-6 J 1e-5";
    parts.rest = Block("local_pressure_loads", c.load);
    Doubles r = Solved(parts.Text()).Reaction(1);
    for (double& component : r)
      component *= c.force;
    ExpectValues(r, {0, 15000, 0, -6000, 0, 22500}, 1e-12);
  }
}

}  // namespace morlen
