// Badly scaled models against a computation in higher precision. A result without a warning is
// accurate, and other models are refused or have a warning.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "support/judged.h"
#include "support/precise.h"
#include "support/structure.h"

namespace morlen {

namespace {

struct RoughModel
{
  std::string text;  ///< description for the table
  std::function<Structure()> make;
  /// True when the model must not be refused. Its factors in double precision reduce an error to
  /// 1/10 or less, and its pivots are larger than their rounding errors. The reference shows that
  /// refinement with exact residuals then needs at most six steps.
  bool solvable = true;
};

void PrintTo(const RoughModel& model, std::ostream* out)
{
  *out << model.text;
}

std::string NameOf(const testing::TestParamInfo<RoughModel>& info)
{
  return TestName(info.param.text);
}

/// Errors of this size need no warning: loads and sections are less accurate.
constexpr double kReliable = 1e-5;
/// A warning is given for corrections up to 1e-3. The error may be several times larger.
constexpr double kWarned = 1e-2;

std::string Text(const char* format, double value)
{
  char text[100];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

Vector3 Inclined(double angle)
{
  return {std::cos(angle), std::sin(angle), 0};
}

void AddChains(std::vector<RoughModel>& models)
{
  for (const int beams : {1000, 2000, 4000, 4990, 10000}) {
    for (const double angle : {0.0, 0.3, 1.4}) {
      for (const bool all : {false, true}) {
        models.push_back(
            {"cantilever of " + std::to_string(beams) + " beams, " +
                 (angle == 0.0 ? "horizontal" : "inclined" + Text(" by %g", angle)) +
                 (all ? ", loads on all nodes" : ", load at its tip"),
             [=] {
               Structure s = Chain(beams, false, angle == 0.0 ? Vector3{1, 0, 0} : Inclined(angle));
               s.HoldNode(1, kClamped);
               return all ? s.LoadAll({0, -1}) : s.Load(beams + 1, {0, -1});
             },
             beams <= 2000 || (angle == 0.0 && beams < 5000)});
      }
    }
  }
  for (const int beams : {1000, 2000, 4990}) {
    for (const double angle : {0.0, 0.3}) {
      models.push_back({"simple beam of " + std::to_string(beams) + " parts" +
                            (angle == 0.0 ? "" : ", inclined by 0.3"),
                        [=] {
                          Structure s = Chain(beams, false, Inclined(angle));
                          s.HoldNode(1, kPin).HoldNode(beams + 1, kRollerInX);
                          return s.LoadAll({0, -1});
                        },
                        beams <= 2000 || angle == 0.0});
    }
  }
  for (const int beams : {1000, 2490}) {
    models.push_back({"cantilever in space of " + std::to_string(beams) + " beams, oblique",
                      [=] {
                        Structure s = Chain(beams, true, {0.48, 0.6, 0.64});
                        return s.HoldNode(1, kClamped).Load(beams + 1, {1, 1, -1, 2, 0, 0});
                      },
                      beams == 1000});
  }
}

void AddTallStructures(std::vector<RoughModel>& models)
{
  for (const int panels : {600, 2400}) {
    for (const double angle : {0.0, 0.3}) {
      models.push_back({"truss mast of " + std::to_string(panels) + " panels" +
                            (angle == 0.0 ? "" : ", inclined by 0.3"),
                        [=] {
                          const Vector3 x = Inclined(angle);
                          Structure s = TrussGirder(panels);
                          s.Hold(At(0, 0), kPin).Load(2 * panels + 2, {1, -1});
                          return s.Map([&](const Vector3& p) {
                            return p[0] * x + p[1] * Vector3{-x[1], x[0], 0};
                          });
                        }});
    }
  }
  models.push_back({"square truss mast of 600 panels", [] {
                      Structure s = TrussMast(600);
                      return s.Hold(At(2, 0), kBall).Load(s.NodeCount(), {1, 2, -3});
                    }});
  models.push_back({"plane frame of 1600 storeys", [] {
                      return Storeys(3, 1600, kClamped).Load(4801, {1, -1});
                    }});
  models.push_back({"tower of 600 storeys", [] {
                      return Tower(600, kClamped).Load(2401, {1, 0.3, -1});
                    }});
}

/// The same section `factor` times stiffer.
Frame::Section Stiffer(double factor)
{
  Frame::Section section = Steel();
  section.E *= factor;
  section.G *= factor;
  return section;
}

/// A girder of 40 beams of 1 m on columns of 2 m, rotated by an angle.
Structure GirderOnLinks(double factor, double angle)
{
  const Vector3 x = Inclined(angle);
  const Vector3 y = {-x[1], x[0], 0};
  Structure s = Chain(40, false, x);
  s.sections.push_back(Stiffer(factor));
  for (const int above : {1, 11, 21, 31, 41}) {
    s.nodes.push_back(s.nodes[above - 1] - 2.0 * y);
    s.HoldNode(s.NodeCount(), kClamped).AddBeams({s.NodeCount(), above}, 2);
  }
  return s.LoadAll({1, -1});
}

/// Two girders of 50 beams side by side, joined at every node by rigid links.
Structure LinkedGirders(double length, double factor, double angle)
{
  const Vector3 x = Inclined(angle);
  const Vector3 y = {-x[1], x[0], 0};
  Structure s = SteelFrame(true);
  s.sections.push_back(Stiffer(factor));
  for (int i = 0; i <= 50; ++i) {
    s.nodes.push_back(1.0 * i * x);
    s.nodes.push_back(1.0 * i * x + length * y);
    const int node = 2 * i + 1;
    s.AddBeams({node, node + 1}, 2);
    if (i > 0)
      s.AddBeams({node - 2, node}).AddBeams({node - 1, node + 1});
  }
  return s.HoldNode(1, kClamped).HoldNode(2, kClamped).Load(101, {0, -1, 1, 0, 0, 0});
}

/// A cantilever of 40 beams. Every fourth beam is stiffer.
Structure ChainWithLinks(double factor, double angle)
{
  Structure s = Chain(40, false, Inclined(angle));
  s.sections.push_back(Stiffer(factor));
  for (std::size_t i = 3; i < s.beams.size(); i += 4)
    s.beams[i].section = 2;
  return s.HoldNode(1, kClamped).Load(41, {0, -1});
}

void AddLinks(std::vector<RoughModel>& models)
{
  for (const double factor : {1e4, 1e6, 1e8, 1e10, 1e12}) {
    for (const double angle : {0.0, 0.3})
      models.push_back({"beams with links between them " + Text("%g times stiffer", factor) +
                            (angle == 0.0 ? "" : ", inclined by 0.3"),
                        [=] { return ChainWithLinks(factor, angle); }, factor < 1e9});
  }
  for (const double factor : {1e4, 1e6, 1e8, 1e10, 1e12}) {
    for (const double angle : {0.0, 0.3})
      models.push_back({"girder on links " + Text("%g times stiffer", factor) +
                            (angle == 0.0 ? "" : ", inclined by 0.3"),
                        [=] { return GirderOnLinks(factor, angle); }});
  }
  for (const double length : {0.005, 0.05, 0.5}) {
    for (const double factor : {1e4, 1e8})
      models.push_back({"girders joined by links of " + Text("%g m, ", length) +
                            Text("%g times stiffer", factor),
                        [=] { return LinkedGirders(length, factor, 0.3); },
                        length > 0.01 && factor < 1e5});
  }
  for (const double length : {1e-1, 1e-2, 1e-3}) {
    models.push_back({"beams of 1 m and of " + Text("%g m by turns", length),
                      [=] {
                        Structure s = Chain(200, false, Inclined(0.3));
                        for (int i = 0; i <= 200; ++i)
                          s.nodes[i] = ((i + 1) / 2 + i / 2 * length) * Inclined(0.3);
                        return s.HoldNode(1, kClamped).Load(201, {0, -1});
                      },
                      length > 1e-3});
  }
}

Vector3 FlatPlace(double u, double v)
{
  return {u, v, 0};
}

Vector3 ObliquePlace(double u, double v)
{
  return Rotated({u, v, 0});
}

/// Three folds, 10 cm high.
Vector3 FoldedPlace(double u, double v)
{
  return {u, v, 0.1 * std::fabs(std::remainder(4 * v, 2.0))};
}

void AddSheets(std::vector<RoughModel>& models)
{
  const std::vector<std::pair<std::string, Vector3 (*)(double, double)>> surfaces = {
      {"flat", FlatPlace}, {"oblique", ObliquePlace}, {"folded", FoldedPlace}};
  for (const auto& [kind, place] : surfaces) {
    for (const int nnode : {3, 6}) {
      for (const double t : {1e-3, 1e-4, 1e-5})
        models.push_back(
            {kind + " sheet of " + std::to_string(nnode) + " nodes" + Text(", t/L = %g", t),
             [=, surface = place] {
               const int n = nnode == 3 ? 16 : 8;
               Structure s = ShellOn(surface, n, n, t, nnode);
               const Vector3 edge = surface(0, 1) - surface(0, 0);
               const Vector3 first = surface(0, 0);
               s.Hold([&](const Vector3& p) {
                 Vector3 off = p - first;
                 if (surface == FoldedPlace)
                   return std::fabs(off[0]) < 1e-9;
                 off = Cross(off, edge);
                 return Dot(off, off) < 1e-18;
               });
               return s.Load((n + 1) * (n + 1), {0.1, 0.2, -1, 0, 0, 0});
             }});
    }
  }
}

void AddCables(std::vector<RoughModel>& models)
{
  for (const double factor : {1e-3, 1e-6, 1e-9}) {
    for (const int beams : {20, 400}) {
      models.push_back({"cable of " + std::to_string(beams) + " beams, its I" +
                            Text(" %g of a beam's, inclined", factor),
                        [=] {
                          Structure s = Chain(beams, true, {0.48, 0.6, 0.64});
                          s.sections[0].Iy *= factor;
                          s.sections[0].Iz *= factor;
                          s.sections[0].J *= factor;
                          s.HoldNode(1, kClamped).HoldNode(beams + 1, kBall);
                          return s.LoadAll({1e-3, 0, -1e-2, 0, 0, 0});
                        },
                        factor == 1e-3 || (factor == 1e-6 && beams == 20)});
    }
  }
}

void AddSpringsAndSolids(std::vector<RoughModel>& models)
{
  for (const double stiffness : {1e-6, 1e10, 1e20, 1e30}) {
    models.push_back({"frame on springs of " + Text("%g kN/m", stiffness),
                      [=] {
                        Structure s = Storeys(4, 20, {2, 2, 2, 0, 0, 0});
                        for (Frame::Support& support : s.supports)
                          support.values = {stiffness, stiffness, stiffness};
                        return s.Load(81, {1, -1});
                      },
                      stiffness > 1.0});
  }
  for (const int nnode : {4, 10}) {
    for (const double nu : {0.49, 0.4999, 0.4999999}) {
      models.push_back(
          {"block of " + std::to_string(nnode) + " nodes, nu = " + Text("%.7g", nu), [=] {
             const int n = nnode == 4 ? 6 : 3;
             Structure s = SolidOf(SolidBlock({n, n, 2 * n}, {1, 1, 2}, nnode), {2.1e8, nu});
             s.Map(Rotated);
             const Vector3 up = Rotated({0, 0, 1});
             s.Hold([&](const Vector3& p) { return std::fabs(Dot(p, up)) < 1e-9; });
             return s.Load(s.NodeAt(Rotated({1, 1, 2})), {1, 2, -1});
           }});
    }
  }
}

/// The numbers of a model in other units, of `force` kN and `length` m.
Structure InUnits(Structure s, double force, double length)
{
  const double stress = length * length / force;
  for (Vector3& node : s.nodes)
    node = 1 / length * node;
  for (Frame::Section& section : s.sections) {
    section.E *= stress;
    section.G *= stress;
    section.A /= length * length;
    for (double* I : {&section.Iy, &section.Iz, &section.J})
      *I /= length * length * length * length;
  }
  s.shell.E *= stress;
  s.shell.G *= stress;
  s.shell.t /= length;
  s.solid.E *= stress;
  for (Frame::NodalLoad& load : s.loads) {
    for (int k = 0; k < 6; ++k)
      load.values[k] /= k < (s.space ? 3 : 2) ? force : force * length;
  }
  return s;
}

void AddUnits(std::vector<RoughModel>& models)
{
  static const struct
  {
    const char* name;
    double force;   ///< kN
    double length;  ///< m
  } units[] = {{"N and um", 1e-3, 1e-6}, {"MN and um", 1e3, 1e-6}, {"N and mm", 1e-3, 1e-3},
               {"N and m", 1e-3, 1},     {"N and km", 1e-3, 1e3},  {"MN and km", 1e3, 1e3}};
  const std::vector<std::pair<std::string, Structure (*)()>> kinds = {
      {"frame",
       [] {
         return Storeys(4, 20, kClamped).Load(81, {1, -1, 0.5});
       }},
      {"tower",
       [] {
         return Tower(10, kClamped).Load(41, {1, 0.3, -1, 0, 0, 2});
       }},
      {"plate",
       [] {
         return ShellOn(
                    [](double u, double v) {
                      return Rotated({4 * u, 3 * v, 0});
                    },
                    8, 8, 0.2)
             .Hold([](const Vector3& p) {
               const Vector3 off = Cross(p, Rotated({0, 1, 0}));
               return Dot(off, off) < 1e-18;
             })
             .Load(81, {0, 0.1, -1, 0, 0, 0});
       }},
      {"solid", [] {
         return SolidOf(SolidBlock({4, 4, 4}, {1, 1, 1}, 4)).Hold(At(2, 0)).Load(125, {1, 2, -1});
       }}};
  for (const auto& [kind, make] : kinds) {
    for (const auto& unit : units)
      models.push_back({kind + " in " + unit.name,
                        [=, model = make] { return InUnits(model(), unit.force, unit.length); }});
  }
}

std::vector<RoughModel> RoughModels()
{
  std::vector<RoughModel> models;
  AddChains(models);
  AddTallStructures(models);
  AddLinks(models);
  AddSheets(models);
  AddCables(models);
  AddSpringsAndSolids(models);
  AddUnits(models);
  return models;
}

Judged Outcome(const RoughModel& model, const Structure& structure)
{
  SCOPED_TRACE(model.text);
  static const std::string settings = "NumOfDivisions 1\n";
  const Judged refused = Judge(structure, settings);
  if (!refused.IsSolved())
    return refused;
  const PreciseResults exact = SolvePrecisely(structure);
  return Judge(structure, settings, &exact);
}

/// The outcome of a run as in the table.
std::string Ending(const Judged& judged)
{
  if (judged.IsSolved())
    return Text("%.0e", judged.errors.Largest()) + (judged.warned ? ", warned of" : "");
  if (judged.IsTooRough())
    return "refused";
  return judged.IsSolverRefusal() ? "refused as movable" : "refused: " + judged.message;
}

}  // namespace

class RoughModelTest : public testing::TestWithParam<RoughModel>
{
};

TEST_P(RoughModelTest, IsRightOrRefused)
{
  const Judged judged = Outcome(GetParam(), GetParam().make());
  if (judged.IsSolved())
    EXPECT_LE(judged.errors.Largest(), judged.warned ? kWarned : kReliable) << judged.Text();
  else
    EXPECT_TRUE(judged.IsSolverRefusal() && !GetParam().solvable) << judged.message;
}

INSTANTIATE_TEST_SUITE_P(All, RoughModelTest, testing::ValuesIn(RoughModels()), NameOf);

// Prints the lines of the table in docs/verification.md. scripts/rough_models.sh runs it.
TEST(RoughModels, DISABLED_Table)
{
  for (const RoughModel& model : RoughModels()) {
    const Structure structure = model.make();
    std::string ending = Ending(Outcome(model, structure));
    std::replace(ending.begin(), ending.end(), '\n', ' ');
    std::printf("| %s | %d | %s |\n", model.text.c_str(), structure.Equations(), ending.c_str());
  }
}

}  // namespace morlen
