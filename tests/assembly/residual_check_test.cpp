// Structures that can move are refused under any load. Stable structures are solved, however soft,
// slender or unusually loaded they are.

#include "assembly/probe_load.h"
#include "assembly/refinement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/run.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/structure.h"

namespace morlen {

namespace {

/// The units in which each model is computed. The models are written in kN and m.
const std::vector<std::string> kUnits = {"kN-m", "N-mm", "MN-m", "kip-in"};

std::string ComputedIn(const std::string& units)
{
  return "units_names\n"
         "kN-m kN m kPa 1000 1\nN-mm N mm MPa 1 0.001\nMN-m MN m MPa2 1e6 1\n"
         "kip-in kip in ksi 4448.2216 0.0254\nend\n"
         "units_mesh m\nunits_mat_and_load kN-m\nunits_res " +
         units + "\nSolver SkyLine\n";
}

/// A model as a function of the lines after its header.
struct Model
{
  std::string name;
  std::function<std::string(const std::string& settings)> problem;
};

void PrintTo(const Model& model, std::ostream* out)
{
  *out << model.name;
}

std::string NameOf(const testing::TestParamInfo<Model>& info)
{
  return info.param.name;
}

/// Directions of chains. Rounding errors are smallest in horizontal ones.
const std::vector<std::pair<std::string, Vector3>> kInclined = {
    {"", {1, 0, 0}},
    {"Inclined", {std::cos(0.3), std::sin(0.3), 0}},
    {"Steep", {std::cos(1.4), std::sin(1.4), 0}}};

std::string EndOf(const Model& model, const std::string& units)
{
  const std::string problem = model.problem(ComputedIn(units));
  return FatalCaught([&] { const Solved solved(problem); });
}

/// True when the message, after the text of the support checks, is that of a refused pivot or of a
/// solution that does not balance its loads.
bool IsRefusal(const std::string& message)
{
  return message.find("error when solving system(") != std::string::npos ||
         message.ends_with(
             "error when solving system. Probably boundary conditions are not correct\n");
}

/// Adds the same model once for each of several loads.
void AddWithLoads(std::vector<Model>& models, const std::string& name,
                  const std::vector<std::pair<std::string, Vector3>>& loads,
                  const std::function<std::string(const std::string&, const Vector3&)>& text)
{
  for (const auto& [kind, load] : loads)
    models.push_back(
        {name + kind, [=](const std::string& settings) { return text(settings, load); }});
}

// --- Beams ---

std::string Loaded(Frame frame, const std::string& settings, int node, const Vector3& load,
                   const std::string& rest = "")
{
  frame.loads.push_back({node, {load[0], load[1], load[2], 0, 0, 0}});
  return ProblemText(frame, settings) + rest;
}

/// Adds hinges at both ends of the beams.
std::string Hinged(int first, int last)
{
  std::string records;
  for (int elem = first; elem <= last; ++elem)
    records += std::to_string(elem) + " 00\n";
  return Block("elem_rotules", records);
}

void AddPlaneChains(std::vector<Model>& models)
{
  for (const int beams : {1, 7, 400}) {
    for (const auto& [inclined, direction] : kInclined) {
      AddWithLoads(models, "PlaneChainWithoutRotationSupport" + std::to_string(beams) + inclined,
                   {{"Turned", {0, -1, 0}}, {"Pulled", {1, 0, 0}}, {"Unloaded", {}}},
                   [=, along = direction](const std::string& settings, const Vector3& load) {
                     Frame frame = Chain(beams, false, along);
                     frame.supports = {{1, kPin}};
                     return Loaded(frame, settings, beams + 1, load);
                   });
      // The rollers let the structure slide along its axis.
      const std::optional<Vector3> axes =
          inclined.empty() ? std::optional<Vector3>()
                           : Vector3{-std::atan2(direction[1], direction[0]), 0, 0};
      AddWithLoads(
          models, "PlaneBeamOnRollers" + std::to_string(beams) + inclined,
          {{"Driven", {1, -1, 0}}, {"Across", {0, 0, 1}}},
          [=, along = direction](const std::string& settings, const Vector3& load) {
            Frame frame = Chain(beams, false, along);
            frame.supports = {{1, kRollerInX, {}, axes}, {beams + 1, kRollerInX, {}, axes}};
            return Loaded(frame, settings, beams / 2 + 1, load);
          });
    }
  }
}

void AddPlaneMechanisms(std::vector<Model>& models)
{
  AddPlaneChains(models);
  for (const int storeys : {2, 24, 99}) {
    AddWithLoads(models, "FreeSwayFrame" + std::to_string(12 * (storeys + 1)),
                 {{"Driven", {1, 0, 0}}, {"NotDriven", {0, -1, 0}}, {"Moment", {0, 0, 1}}},
                 [=](const std::string& settings, const Vector3& load) {
                   return Loaded(Storeys(4, storeys, kRollerInX), settings, 9, load);
                 });
    AddWithLoads(models, "HingedColumns" + std::to_string(storeys),
                 {{"Driven", {1, 0, 0}}, {"NotDriven", {0, -1, 0}}},
                 [=](const std::string& settings, const Vector3& load) {
                   return Loaded(Storeys(2, storeys, kClamped), settings, 5, load,
                                 Hinged(3 * storeys - 2, 3 * storeys - 1));
                 });
  }
  AddWithLoads(models, "SkewRollersOnOneSlope", {{"Driven", {1, 0, 0}}, {"NotDriven", {-1, 2, 0}}},
               [](const std::string& settings, const Vector3& load) {
                 return Loaded(OnSkewRollers(-0.4636476090008061), settings, 3, load);
               });
  AddWithLoads(models, "SpringAcrossTheSway", {{"Driven", {1, 0, 0}}, {"NotDriven", {0, -1, 0}}},
               [](const std::string& settings, const Vector3& load) {
                 Frame frame = Storeys(4, 24, kRollerInX);
                 frame.supports.push_back({50, {0, 2, 2}, {0, 100, 100}});
                 return Loaded(frame, settings, 9, load);
               });
  for (const auto& [inclined, direction] : kInclined) {
    AddWithLoads(models, "ThreeHingesInARow" + inclined,
                 {{"Driven", {0, -1, 0}}, {"NotDriven", direction}},
                 [along = direction](const std::string& settings, const Vector3& load) {
                   Frame frame = Chain(4, false, along);
                   frame.supports = {{1, kClamped}, {5, kClamped}};
                   return Loaded(frame, settings, 3, load, Hinged(2, 3));
                 });
  }
}

/// The residual of a large mechanism is distributed over many nodes.
void AddLargePlaneMechanisms(std::vector<Model>& models)
{
  const std::vector<std::pair<std::string, Vector3>> loads = {{"Driven", {0, -1, 0}},
                                                              {"Unloaded", {}}};
  for (const int beams : {800, 5000}) {
    for (const int degrees : {0, 17, 31, 57, 83}) {
      AddWithLoads(models,
                   "LineOnOneHinge" + std::to_string(beams) + "At" + std::to_string(degrees), loads,
                   [=](const std::string& settings, const Vector3& load) {
                     const double angle = degrees * std::acos(-1.0) / 180;
                     Frame frame = Chain(beams, false, {std::cos(angle), std::sin(angle), 0});
                     frame.supports = {{1, kPin}};
                     return Loaded(frame, settings, beams + 1, load);
                   });
    }
  }
  for (const int storeys : {40, 150}) {
    AddWithLoads(models, "FrameOnOneFoot" + std::to_string(storeys), loads,
                 [=](const std::string& settings, const Vector3& load) {
                   Frame frame = Storeys(5, storeys, kPin);
                   frame.supports.resize(1);
                   return Loaded(frame, settings, 5, load);
                 });
  }
  // The columns of the storey at half the height have hinges at both ends.
  constexpr int kStoreys = 400;
  const int first = 1 + kStoreys / 2 * 5;
  AddWithLoads(models, "TallFrameWithHingedStorey", {{"Driven", {1, 0, 0}}, {"Unloaded", {}}},
               [=](const std::string& settings, const Vector3& load) {
                 return Loaded(Storeys(3, kStoreys, kClamped), settings, 3 * kStoreys, load,
                               Hinged(first, first + 2));
               });
}

void AddSpaceMechanisms(std::vector<Model>& models)
{
  for (const int beams : {1, 5, 300}) {
    auto directions = kInclined;
    directions.push_back({"Oblique", {0.48, 0.6, 0.64}});
    for (const auto& [inclined, direction] : directions) {
      AddWithLoads(models, "FreeTorsion" + std::to_string(beams) + inclined,
                   {{"Across", {0, 0, -1}}, {"Unloaded", {}}},
                   [=, along = direction](const std::string& settings, const Vector3& load) {
                     Frame frame = Chain(beams, true, along);
                     frame.supports = {{1, kBall}, {beams + 1, kBall}};
                     return Loaded(frame, settings, beams / 2 + 1, load);
                   });
    }
    for (const auto& [inclined, direction] : kInclined) {
      AddWithLoads(models, "SpaceChainOnABall" + std::to_string(beams) + inclined,
                   {{"Driven", {0, 1, -1}}, {"Pulled", {1, 0, 0}}},
                   [=, along = direction](const std::string& settings, const Vector3& load) {
                     Frame frame = Chain(beams, true, along);
                     frame.supports = {{1, kBall}};
                     return Loaded(frame, settings, beams + 1, load);
                   });
    }
  }
  const std::array<int, 6> slides = {0, 1, 1, 0, 0, 0};
  const std::array<int, 6> turns = {0, 0, 1, 0, 0, 0};
  for (const int storeys : {1, 10, 50}) {
    for (const auto& [kind, feet] : {std::pair{"Slides", slides}, std::pair{"Turns", turns}}) {
      AddWithLoads(models, std::string("Tower") + kind + std::to_string(storeys),
                   {{"Driven", {1, 0.3, 0}}, {"NotDriven", {0, 0, -1}}},
                   [=](const std::string& settings, const Vector3& load) {
                     return Loaded(Tower(storeys, feet), settings, 5, load);
                   });
    }
  }
  AddWithLoads(models, "SpaceFrameWithHingedStorey",
               {{"Driven", {1, 0, 0}}, {"NotDriven", {0, 0, -1}}},
               [](const std::string& settings, const Vector3& load) {
                 return Loaded(Tower(3, kClamped), settings, 9, load,
                               Block("elem_rotules", "9 00\n11 00\n13 00\n15 00"));
               });
}

// --- Shells ---

/// A place on a shell as a function of u and v from 0 to 1.
using Surface = std::function<Vector3(double, double)>;

const std::vector<std::pair<std::string, Surface>> kSurfaces = {
    {"Flat",
     [](double u, double v) {
       return Vector3{4 * u, 3 * v, 0};
     }},
    {"Oblique",
     [](double u, double v) {
       return Rotated({4 * u, 3 * v, 0});
     }},
    {"Curved", [](double u, double v) {
       return Vector3{4 * u, 3 * std::sin(v), 3 * std::cos(v)};
     }}};

/// A concrete slab, n by n.
ShellModel Slab(int n, bool six, const Surface& surface, double t = 0.2)
{
  ShellModel model = GridShell(n, n, surface, Cut::BothWays);
  if (six)
    model = WithMidSideNodes(model);
  model.material = "E=3e7 nu=0.2 G=1.25e7 t=" + Digits(t);
  return model;
}

/// The nodes on the edge u = 0, including those in the middle of sides.
std::vector<int> FirstEdge(const ShellModel& model, int n)
{
  const Vector3 from = model.nodes[0];
  const Vector3 along = model.nodes[(n + 1) * n] - from;
  std::vector<int> found;
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const Vector3 off = model.nodes[i] - from;
    const Vector3 across = Cross(off, along);
    if (Dot(across, across) < 1e-18)
      found.push_back(static_cast<int>(i) + 1);
  }
  return found;
}

void AddShellMechanisms(std::vector<Model>& models)
{
  for (const auto& [kind, surface] : kSurfaces) {
    for (const bool six : {false, true}) {
      for (const int n : {2, 12}) {
        const std::string shell = kind + (six ? "6" : "3") + "x" + std::to_string(n);
        const auto text = [=](const std::string& settings, const Vector3& load,
                              const std::string& corners, const std::string& held) {
          ShellModel model = Slab(n, six, surface);
          model.settings = settings;
          const int ends[] = {1, n + 1, (n + 1) * (n + 1)};
          for (std::size_t i = 0; i < corners.size(); ++i) {
            if (corners[i] == '1')
              model.Hold(ends[i], held);
          }
          model.Load((n + 1) * (n / 2) + n / 2 + 1, {load[0], load[1], load[2], 0, 0, 0});
          return model.Text();
        };
        const std::vector<std::pair<std::string, Vector3>> loads = {{"Across", {0, 0.1, -1}},
                                                                    {"Unloaded", {}}};
        AddWithLoads(models, "OneCorner" + shell, loads,
                     [=](const std::string& settings, const Vector3& load) {
                       return text(settings, load, "100", "111000");
                     });
        AddWithLoads(models, "HingedAtTwoCorners" + shell, loads,
                     [=](const std::string& settings, const Vector3& load) {
                       return text(settings, load, "110", "111000");
                     });
        AddWithLoads(models, "OnThreeProps" + shell, loads,
                     [=](const std::string& settings, const Vector3& load) {
                       return text(settings, load, "111", "001000");
                     });
      }
    }
  }
}

void AddHingedEdges(std::vector<Model>& models)
{
  for (const bool six : {false, true}) {
    for (const int n : {2, 12}) {
      AddWithLoads(
          models,
          std::string("PlateHingedAlongOneEdge") + (six ? "6" : "3") + "x" + std::to_string(n),
          {{"Turned", {0, 0, -1}}, {"Pulled", {1, 0, 0}}},
          [=](const std::string& settings, const Vector3& load) {
            ShellModel model = Slab(n, six, kSurfaces[0].second);
            model.settings = settings;
            for (const int node : FirstEdge(model, n))
              model.Hold(node, "111000");
            model.Load(n + 1, {load[0], load[1], load[2], 0, 0, 0});
            return model.Text();
          });
    }
  }
}

// --- Solids ---

SolidModel Block3(int n, int nnode)
{
  SolidModel model = SolidBlock({n, n, n}, {1, 0.8, 1.2}, nnode);
  model.material = "E 2.1e8 nu 0.3";
  return model.Map(Rotated);
}

void AddSolidMechanisms(std::vector<Model>& models)
{
  for (const int nnode : {4, 10}) {
    for (const int n : {1, 2, 4}) {
      for (const bool two : {false, true}) {
        AddWithLoads(models,
                     std::string(two ? "SolidOnTwoNodes" : "SolidOnOneNode") +
                         std::to_string(nnode) + "x" + std::to_string(n),
                     {{"Loaded", {1, 2, -1}}, {"Unloaded", {}}},
                     [=](const std::string& settings, const Vector3& load) {
                       SolidModel model = Block3(n, nnode);
                       model.settings = settings;
                       model.supports[1] = {};
                       if (two)
                         model.supports[n + 1] = {};
                       model.loads[(n + 1) * (n + 1) * (n + 1)] = load;
                       return model.Text();
                     });
      }
    }
  }
}

std::vector<Model> Mechanisms()
{
  std::vector<Model> models;
  AddPlaneMechanisms(models);
  AddLargePlaneMechanisms(models);
  AddSpaceMechanisms(models);
  AddShellMechanisms(models);
  AddHingedEdges(models);
  AddSolidMechanisms(models);
  return models;
}

// --- Stable structures ---

std::string LongChain(const std::string& settings, const Vector3& load, const std::string& rest)
{
  constexpr int kBeams = 5000;
  Frame frame = Chain(kBeams, false);
  frame.supports = {{1, kClamped}};
  return Loaded(frame, "NumOfDivisions 1\n" + settings, kBeams + 1, load, rest);
}

std::string AlongAll(int beams, const std::string& record)
{
  std::string records;
  for (int elem = 1; elem <= beams; ++elem)
    records += std::to_string(elem) + " " + record + "\n";
  return records;
}

void AddChains(std::vector<Model>& models)
{
  AddWithLoads(
      models, "LongChain",
      {{"AtItsEnd", {0, -1, 0}}, {"Axially", {1, 0, 0}}, {"Moment", {0, 0, 1}}, {"Unloaded", {}}},
      [](const std::string& settings, const Vector3& load) {
        return LongChain(settings, load, "");
      });
  for (const int beams : {1000, 2000}) {
    for (const auto& [inclined, direction] : kInclined) {
      AddWithLoads(models, "Cantilever" + std::to_string(beams) + inclined,
                   {{"Loaded", {1, -1, 0}}, {"Unloaded", {}}},
                   [=, along = direction](const std::string& settings, const Vector3& load) {
                     Frame frame = Chain(beams, false, along);
                     frame.supports = {{1, kClamped}};
                     return Loaded(frame, settings, beams + 1, load);
                   });
    }
  }
  models.push_back({"LongChainAlongIt", [](const std::string& settings) {
                      return LongChain(settings, {},
                                       Block("local_pressure_loads", AlongAll(5000, "0 -1")));
                    }});
}

void AddFrames(std::vector<Model>& models)
{
  AddChains(models);
  for (const int storeys : {1, 99}) {
    AddWithLoads(models, "StableFrame" + std::to_string(storeys),
                 {{"Pushed", {1, 0, 0}}, {"Moment", {0, 0, 1}}, {"Unloaded", {}}},
                 [=](const std::string& settings, const Vector3& load) {
                   return Loaded(Storeys(4, storeys, kClamped), settings, 9 - 4 / storeys, load);
                 });
  }
  models.push_back({"SoftSpringsUnderAStiffFrame", [](const std::string& settings) {
                      Frame frame = Storeys(4, 20, {2, 1, 0, 0, 0, 0});
                      for (Frame::Support& support : frame.supports)
                        support.values[0] = 1e-3;  // kN/m, under 1e6
                      return Loaded(frame, settings, 9, {1, -1, 0});
                    }});
  models.push_back({"SkewRollersOnTwoSlopes", [](const std::string& settings) {
                      return Loaded(OnSkewRollers(0.3), settings, 3, {1, -1, 0});
                    }});
  models.push_back({"SettlementOnly", [](const std::string& settings) {
                      Frame frame = Storeys(4, 20, kClamped);
                      frame.supports[0].values[1] = -0.01;
                      return ProblemText(frame, settings);
                    }});
  models.push_back({"TurnedSupportOnly", [](const std::string& settings) {
                      Frame frame = Tower(10, kClamped);
                      frame.supports[0].values[3] = 1e-3;
                      return ProblemText(frame, settings);
                    }});
  models.push_back({"TemperatureOnly", [](const std::string& settings) {
                      return ProblemText(Storeys(4, 20, kClamped), settings) +
                             Block("temperature_loads", AlongAll(50, "30 1e-5"));
                    }});
}

/// Adds structures in space with moments or without loads.
void AddMomentsInSpace(std::vector<Model>& models)
{
  for (const bool loaded : {false, true}) {
    models.push_back({loaded ? "TowerTwisted" : "TowerUnloaded", [=](const std::string& settings) {
                        Frame frame = Tower(20, kClamped);
                        if (loaded)
                          frame.loads = {{9, {0, 0, 0, 0, 0, 5}}};
                        return ProblemText(frame, settings);
                      }});
  }
  models.push_back({"SlenderMast", [](const std::string& settings) {
                      Frame frame = Chain(400, true, {0.48, 0.6, 0.64});
                      frame.supports = {{1, kClamped}};
                      return Loaded(frame, settings, 401, {1, 1, -1});
                    }});
}

/// A plate with a thickness of 1e-4 of its length, supported only by a clamped edge.
void AddThinShells(std::vector<Model>& models)
{
  for (const auto& [kind, surface] : kSurfaces) {
    for (const bool six : {false, true}) {
      for (const int n : {4, 16}) {
        AddWithLoads(models, "Thin" + kind + (six ? "6" : "3") + "x" + std::to_string(n),
                     {{"Loaded", {0, 0.1, -1}}, {"Unloaded", {}}},
                     [=](const std::string& settings, const Vector3& load) {
                       ShellModel model = Slab(n, six, surface, 4e-4);
                       model.settings = settings;
                       for (const int node : FirstEdge(model, n))
                         model.Hold(node, "111111");
                       model.Load((n + 1) * (n + 1), {load[0], load[1], load[2], 0, 0, 0});
                       return model.Text();
                     });
      }
    }
  }
}

void AddSolidsOnRollers(std::vector<Model>& models)
{
  for (const int nnode : {4, 10}) {
    AddWithLoads(models, "SolidOnRollers" + std::to_string(nnode),
                 {{"Loaded", {1, 2, -1}}, {"Unloaded", {}}},
                 [=](const std::string& settings, const Vector3& load) {
                   SolidModel model = SolidBlock({3, 3, 3}, {1, 1, 1}, nnode);
                   model.material = "E 2.1e8 nu 0.3";
                   model.settings = settings;
                   for (int axis = 0; axis < 3; ++axis)
                     model.Roller(axis, 0.0);
                   model.loads[model.NodeAt({1, 1, 1})] = load;
                   return model.Text();
                 });
  }
}

std::vector<Model> StableStructures()
{
  std::vector<Model> models;
  AddFrames(models);
  AddMomentsInSpace(models);
  AddThinShells(models);
  AddSolidsOnRollers(models);
  return models;
}

}  // namespace

TEST(ProbeLoad, LoadsEveryFreeComponentAndStaysSmallInAll)
{
  Frame frame = Chain(1000, false);
  frame.supports = {{1, kClamped}};
  const std::unique_ptr<Project> project = ReadProject(ProblemText(frame));
  const ReaVecV loads = ProbeLoad(project->problem.GiveNodes(), {3, 2, 10.0}, 3003);
  double sums[3] = {};
  for (int i = 1; i <= 3003; ++i) {
    const int component = (i - 1) % 3;
    const double load = std::fabs(loads(i)) / (component == 2 ? 10.0 : 1.0);
    EXPECT_TRUE(i <= 3 ? load == 0.0 : load >= 0.5 && load <= 1.0) << i << ": " << load;
    sums[component] += loads(i);
    EXPECT_LE(std::fabs(sums[component]), component == 2 ? 120.0 : 12.0) << i;
  }
}

class Mechanism : public testing::TestWithParam<Model>
{
};

TEST_P(Mechanism, IsRefusedInEveryUnit)
{
  for (const std::string& units : kUnits) {
    const std::string message = EndOf(GetParam(), units);
    EXPECT_TRUE(IsRefusal(message)) << units << ": " << message;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Mechanism, testing::ValuesIn(Mechanisms()), NameOf);

TEST(ResidualCheck, EndsTheRunWithStatus2)
{
  Frame frame = Storeys(4, 99, kRollerInX);
  frame.loads = {{9, {0, -1}}};
  const RunResult run = RunOnProblem(ProblemText(frame));
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(IsRefusal(run.err)) << run.err;
}

class StableStructure : public testing::TestWithParam<Model>
{
};

TEST_P(StableStructure, IsSolvedInAnyUnit)
{
  for (const std::string& units : {kUnits[0], kUnits[1]})
    EXPECT_EQ(EndOf(GetParam(), units), "(the run went on)") << units;
}

INSTANTIATE_TEST_SUITE_P(All, StableStructure, testing::ValuesIn(StableStructures()), NameOf);

// The motion is a translation of the whole tower, so that no other component moves as much.
TEST(Refinement, NamesTheComponentThatMovesMost)
{
  static const struct
  {
    std::array<int, 6> feet;
    const char* name;
  } cases[] = {{{0, 1, 1, 0, 0, 0}, "Degree of freedom 1 from 6 (X displ.)\n"},
               {{1, 0, 1, 0, 0, 0}, "Degree of freedom 2 from 6 (Y displ.)\n"}};
  for (const auto& c : cases) {
    for (const int storeys : {5, 20, 50}) {
      Structure tower = Tower(storeys, c.feet);
      tower.LoadAll({0.1, 0.2, -1});
      const std::string message = FatalCaught([&] { Solved(tower.Text("Solver SkyLine\n")); });
      EXPECT_NE(message.find(c.name), std::string::npos) << message;
    }
  }
}

// The relative correction of zero displacements is 0, not 0 / 0.
TEST(Refinement, WithoutLoadsTheErrorIsZero)
{
  Structure tower = Tower(5, kClamped);
  const Solved solved(tower.Text("Solver SkyLine\n"));
  EXPECT_EQ(solved.Result().accuracy.error, 0.0);
  EXPECT_EQ(solved.Result().accuracy.residual, 0.0);
}

// The forces of a stiff part are accurate although a soft part has much larger displacements.
TEST(Refinement, KeepsTheForcesOfAStiffPartBesideASoftOne)
{
  Structure s = Chain(2, false);
  s.sections.push_back(s.sections.front());
  s.sections.back().E *= 1e10;
  s.beams[1].section = 2;
  s.HoldNode(1, kClamped).Load(3, {1, -1});
  const Solved solved(s.Text("Solver SkyLine\n"));
  // The second beam carries the load at its end: N = 1, V = -1, M = -1 at its beginning.
  ExpectValues(solved.EndForces(2), {-1, 1, 1, 1, -1, 0}, 1e-12);  // rounding of 1e10 x 1e-16
}

// The soft part has the largest displacement, so that the corrections of the motion are small
// relative to it.
TEST(Refinement, FindsAMotionBesideASoftPart)
{
  for (const double spring : {1e-6, 1e-8, 1e-10}) {
    for (const bool moves : {true, false}) {
      Structure s = Storeys(4, 24, moves ? kRollerInX : kClamped);
      s.Load(9, {0, -1});
      s.nodes.push_back({100, 0, 0});
      const int loose = s.NodeCount();
      s.supports.push_back({loose, {2, 2, 2}, {spring, spring, spring}});
      s.Load(loose, {1e-9, 0, 0});
      const std::string message = FatalCaught([&] { Solved(s.Text("Solver SkyLine\n")); });
      EXPECT_EQ(IsRefusal(message), moves) << spring << ": " << message;
    }
  }
}

}  // namespace morlen
