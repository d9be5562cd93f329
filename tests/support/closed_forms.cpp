// The closed forms of the verification manual. Lengths are in m and forces in kN unless stated.

#include <cmath>
#include <numbers>

#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/verification.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kE = 2.1e8;
constexpr double kG = 8.1e7;
constexpr double kA = 78e-4;
constexpr double kI = 57e-6;
constexpr double kJ = 0.6e-6;
constexpr double kEI = kE * kI;

const std::string kBeamTheory = "Euler-Bernoulli beam, closed form";
const std::string kRoark = "Young and Budynas, Roark's Formulas, beam tables";

/// A frame of members with one steel section between these nodes.
Frame SteelFrame(bool space, const std::vector<Vector3>& nodes,
                 const std::vector<Frame::Beam>& beams, double area = kA)
{
  Frame frame;
  frame.space = space;
  frame.nodes = nodes;
  frame.sections = {{.E = kE, .G = kG, .A = area, .Iy = kI, .Iz = kI, .J = kJ}};
  frame.beams = beams;
  return frame;
}

/// A beam of 6 m along x.
Frame OneBeam(bool space = false)
{
  Frame frame = SteelFrame(space, {{0, 0, 0}, {6, 0, 0}}, {{1, 2}});
  frame.supports = {{1, kClamped}};
  return frame;
}

VerifiedSection Beams()
{
  const std::string load = Block("global_pressure_loads", "1 0 -10");
  Frame both = OneBeam();
  both.supports.push_back({2, kClamped});
  const Solved clamped(ProblemText(both) + load);
  Frame propped = OneBeam();
  propped.supports.push_back({2, {0, 1}});
  const Solved prop(ProblemText(propped) + load);
  Frame twisted = OneBeam(true);
  twisted.loads = {{2, {0, 0, 0, 3, 0, 0}}};
  const Solved twist(ProblemText(twisted));
  const Solved warm(ProblemText(both) + Block("temperature_loads", "1 1.2e-5 30"));
  const std::string propText = "Clamped beam on a roller, L = 6, uniform load q = 10";
  return {"Beams",
          {{"Beam clamped at both ends, L = 6, uniform load q = 10", kRoark, "moment qL²/12", 30.0,
            clamped.Reaction(1)[2]},
           {propText, kRoark, "reaction of the roller 3qL/8", 22.5, prop.Reaction(2)[1]},
           {propText, kRoark, "rotation at the roller qL³/48EI", 10 * 216 / (48 * kEI),
            prop.Displacement(2)[2]},
           {"Space cantilever, L = 6, torque T = 3 at its end", kBeamTheory, "rotation TL/GJ",
            18 / (kG * kJ), twist.Displacement(2)[3]},
           {"Beam between fixed ends, warmed by 30 degrees", kBeamTheory, "axial force EAαΔT",
            kE * kA * 3.6e-4, warm.Reaction(1)[0]}}};
}

// Columns of h = 4 and a girder of l = 6 with one section, almost without axial strain.
Frame Portal()
{
  Frame frame = SteelFrame(false, {{0, 0, 0}, {0, 4, 0}, {6, 4, 0}, {6, 0, 0}},
                           {{1, 2}, {2, 3}, {3, 4}}, 1e3);
  frame.supports = {{1, kClamped}, {4, kClamped}};
  return frame;
}

VerifiedSection Frames()
{
  Frame pushed = Portal();
  pushed.loads = {{2, {5}}, {3, {5}}};
  const Solved sway(ProblemText(pushed));
  const Solved loaded(ProblemText(Portal()) + Block("global_pressure_loads", "2 0 -10"));
  const double k = 4.0 / 6.0;  // (I girder / I column)·(h / l)
  const std::string text = "Portal frame with clamped feet, h = 4, l = 6";
  const std::string source = "Kleinlogel, Rahmenformeln, frame with clamped feet";
  return {"Frames",
          {{text + ", H = 10 at the girder", source, "moment at the foot (Hh/2)(3k+1)/(6k+1)",
            20 * (3 * k + 1) / (6 * k + 1), sway.Reaction(1)[2], 1e-5},
           {text + ", q = 10 on the girder", source, "thrust ql²/(4h(k+2))",
            10 * 36 / (16 * (k + 2)), loaded.Reaction(1)[0], 1e-5}}};
}

VerifiedSection Hinges()
{
  Frame gerber =
      SteelFrame(false, {{0, 0, 0}, {10, 0, 0}, {12, 0, 0}, {20, 0, 0}}, {{1, 2}, {2, 3}, {3, 4}});
  gerber.supports = {{1, {1, 1}}, {2, {0, 1}}, {4, {0, 1}}};
  const Solved beam(ProblemText(gerber) + Block("rotules", "3 hinge") +
                    Block("global_pressure_loads", "1 0 -5\n2 0 -5\n3 0 -5"));
  Frame rafters = SteelFrame(false, {{0, 0, 0}, {5, 3, 0}, {10, 0, 0}}, {{1, 2}, {2, 3}});
  rafters.supports = {{1, {1, 1}}, {3, {1, 1}}};
  const Solved frame(ProblemText(rafters) + Block("rotules", "2 hinge") +
                     Block("global_projected_pressure_loads", "1 0 -4\n2 0 -4"));
  return {"Hinges",
          {{"Gerber beam: 10, overhang 2, hung-in span 8, uniform load 5", "statics",
            "reaction before the hinge", 60.0, beam.Reaction(2)[1]},
           {"Three-hinged frame, span 10, rise 3, snow 4 by the ground", "statics", "thrust ql²/8f",
            4 * 100 / 24.0, frame.Reaction(1)[0]}}};
}

VerifiedSection Supports()
{
  Frame settled = OneBeam();
  settled.supports.push_back({2, {0, 1}, {0, -0.01}});
  const Solved settlement(ProblemText(settled));
  Frame sprung = OneBeam();
  sprung.supports.push_back({2, {0, 2}, {0, 500}});
  sprung.loads = {{2, {0, -10}}};
  const Solved spring(ProblemText(sprung));
  // The force of the roller is normal to a plane with a slope of 30 degrees.
  Frame skew = OneBeam();
  skew.supports = {{1, {1, 1}}, {2, {0, 1}, {}, Vector3{-kPi / 6, 0, 0}}};
  const Solved roller(ProblemText(skew) + Block("global_pressure_loads", "1 0 -10"));
  return {
      "Supports",
      {{"Cantilever, L = 6, its roller settles by 0.01", kRoark, "moment 3EIδ/L²",
        3 * kEI * 0.01 / 36, settlement.Reaction(1)[2]},
       {"Cantilever, L = 6, on a spring of 500, load 10 at its end", kBeamTheory,
        "deflection P/(k + 3EI/L³)", -10 / (500 + 3 * kEI / 216), spring.Displacement(2)[1]},
       {"Beam, L = 6, on a pin and a roller on a plane that rises by 30°, uniform load q = 10",
        "statics", "push of the pin (qL/2)·tan 30°", 30 / std::sqrt(3.0), roller.Reaction(1)[0]}}};
}

VerifiedSection UnitSystems()
{
  Frame tip = OneBeam();
  tip.loads = {{2, {0, -10}}};
  const auto in = [&](const std::string& system) {
    return Solved(ProblemText(tip,
                              "units_names\nkN-m kN m kPa 1000 1\nN-mm N mm MPa 1 0.001\n"
                              "kip-in kip in ksi 4448.2216152605 0.0254\nend\n"
                              "units_mesh m\nunits_mat_and_load kN-m\nunits_res " +
                                  system));
  };
  const std::string text = "Cantilever, L = 6, load 10 at its end, given in kN and m";
  const double deflection = -10 * 216 / (3 * kEI);
  return {
      "Units",
      {{text, kBeamTheory, "deflection PL³/3EI in m", deflection, in("kN-m").Displacement(2)[1]},
       {text, kBeamTheory, "the same in mm", 1000 * deflection, in("N-mm").Displacement(2)[1]},
       {text, kBeamTheory, "the same in inches", deflection / 0.0254,
        in("kip-in").Displacement(2)[1]},
       {text, kBeamTheory, "moment PL in N mm", 6e7, in("N-mm").Reaction(1)[2]},
       {text, kBeamTheory, "moment PL in kip in", 60 / 4.4482216152605 / 0.0254,
        in("kip-in").Reaction(1)[2]}}};
}

// 10 by 2, clamped at x = 0, a line load at the other end.
double PlateDeflection(double t)
{
  ShellModel model = GridShell(
      16, 4,
      [](double u, double v) {
        return Vector3{10 * u, 2 * v, 0};
      },
      Cut::BothWays);
  model.settings = "ConvertTo6Nodes\nSolver SkyLine";
  model.material = "E=1e6 nu=0 G=5e5 t=" + Digits(t);
  for (int j = 0; j <= 4; ++j) {
    model.Hold(1 + 17 * j, "111111");
    model.Load(17 + 17 * j, {0, 0, j % 4 == 0 ? -0.125 : -0.25, 0, 0, 0});
  }
  return Solved(model.Text()).Displacement(17 * 3)[2];
}

double PlateReference(double t)
{
  return -1000 / (3 * 1e6 * 2 * t * t * t / 12) - 6 * 10 / (5 * 5e5 * 2 * t);
}

VerifiedSection Shells()
{
  const std::string text = "Cantilever plate 10 × 2, six nodes, 16 × 4, load 1 at its end, t = ";
  const std::string source = "Timoshenko beam, PL³/3EI + 6PL/5GA";
  return {"Plates and shells",
          {{text + "2", source, "deflection", PlateReference(2), PlateDeflection(2), 5e-3},
           {text + "0.1", source, "deflection", PlateReference(0.1), PlateDeflection(0.1), 5e-3}}};
}

/// A bar of 4 × 1 × 1 along x under tension, on rollers at its three planes through the origin.
VerifiedResult PulledBar(int nnode)
{
  SolidModel model = SolidBlock({4, 1, 1}, {4, 1, 1}, nnode);
  model.material = "E 1000 nu 0.25";
  for (int axis = 0; axis < 3; ++axis)
    model.Roller(axis, 0.0);
  model.LoadSides("face_loads", {2, 0, 0}, [](const Vector3& p) { return p[0] > 3.9; });
  const Solved solved(model.Text());
  return {"Bar of solids, " + std::to_string(nnode) + " nodes, E = 1000, ν = 0.25, stress 2",
          "Hooke's law", "contraction νσ/E", -5e-4,
          solved.Displacement(model.NodeAt({4, 1, 1}))[1]};
}

}  // namespace

std::vector<VerifiedSection> ClosedForms()
{
  return {Beams(),       Frames(),   Hinges(),
          Supports(),    Shells(),   {"Tetrahedra", {PulledBar(4), PulledBar(10)}},
          UnitSystems(), LoadCases()};
}

}  // namespace morlen
