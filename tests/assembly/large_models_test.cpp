// Models of at least 15,000 equations with the default settings. Structures that can move are
// refused with either solver. Stable structures have accurate results.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/judged.h"
#include "support/precise.h"
#include "support/structure.h"

namespace morlen {

namespace {

constexpr const char* kSettings = "NumOfDivisions 1\n";
constexpr int kLarge = 15000;
constexpr double kPi = 3.14159265358979323846;

enum class Reference
{
  Solved,   ///< by the reference alone
  Refined,  ///< by refined runs of the program, for a profile that is too large for the reference
  Bent      ///< the loads are computed from displacements
};

struct LargeModel
{
  std::string name;
  std::function<Structure()> make;
  Reference reference = Reference::Solved;
  std::vector<Bend> bends = {};
};

PreciseResults ExactResults(const LargeModel& model, Structure& structure)
{
  switch (model.reference) {
    case Reference::Solved:
      return SolvePrecisely(structure);
    case Reference::Refined:
      return RefinePrecisely(structure);
    case Reference::Bent:
      break;
  }
  return LoadFor(structure, BentDisplacements(structure, model.bends));
}

void PrintTo(const LargeModel& model, std::ostream* out)
{
  *out << model.name;
}

std::string NameOf(const testing::TestParamInfo<LargeModel>& info)
{
  return info.param.name;
}

const Vector3 kIncline = {std::cos(0.3), std::sin(0.3), 0};
const Vector3 kOblique = {0.48, 0.6, 0.64};
constexpr std::array<int, 6> kProp = {0, 0, 1, 0, 0, 0};
constexpr std::array<int, 6> kSlide = {0, 1, 1, 0, 0, 0};

Structure::Places Between(int axis, double low, double high)
{
  return [=](const Vector3& p) { return p[axis] > low && p[axis] < high; };
}

// --- Shells and solids of both parts ---

/// A plate of 4 m by 3 m.
Vector3 Flat(double u, double v)
{
  return {4 * u, 3 * v, 0};
}

/// A cylindrical roof that spans 4 m.
Vector3 Roof(double u, double v)
{
  return {4 * u, 3 * std::sin(v - 0.5), 3 * std::cos(v - 0.5)};
}

/// Ridges along x at distances of 0.6 m. The grid in v must be a multiple of ten.
Vector3 Folded(double u, double v)
{
  return {4 * u, 3 * v, 0.3 * std::fabs(std::remainder(10 * v, 2.0))};
}

/// A tank of 5 m radius and 6 m height.
Vector3 Tank(double u, double v)
{
  return {5 * std::cos(2 * kPi * u), 5 * std::sin(2 * kPi * u), 6 * v};
}

using Surface = Vector3 (*)(double, double);

struct NamedSurface
{
  std::string name;
  Surface surface;
};

const std::vector<NamedSurface> kSurfaces = {
    {"Plate", Flat}, {"Roof", Roof}, {"FoldedRoof", Folded}};

/// 51 by 51 nodes.
Structure Sheet(Surface surface, double t, int nnode)
{
  const int n = nnode == 3 ? 50 : 25;
  const int m = nnode == 3 ? 50 : surface == Folded ? 30 : 25;
  return ShellOn(surface, n, m, t, nnode);
}

/// 18³ or 19³ nodes.
Structure Cube(int nnode)
{
  const int n = nnode == 4 ? 17 : 9;
  return SolidOf(SolidBlock({n, n, n + 1}, {1, 0.8, 1.2}, nnode));
}

/// Beams along every tenth line of a 51 by 51 grid.
Structure Stiffened(Structure s)
{
  s.sections = {Steel()};
  for (int line = 0; line <= 50; line += 10) {
    std::vector<int> along, across;
    for (int i = 0; i <= 50; ++i) {
      along.push_back(1 + i + 51 * line);
      across.push_back(1 + line + 51 * i);
    }
    s.AddBeams(along).AddBeams(across);
  }
  return s;
}

// --- Structures that can move ---

struct NamedLoad
{
  std::string name;
  int node;  ///< 0: none
  std::array<double, 6> values;
};

/// Adds a structure once for each of several loads.
void AddWithLoads(std::vector<LargeModel>& models, const std::string& name,
                  const std::function<Structure()>& make, const std::vector<NamedLoad>& loads)
{
  for (const NamedLoad& load : loads) {
    models.push_back({name + load.name, [=] {
                        Structure s = make();
                        return load.node == 0 ? s : s.Load(load.node, load.values);
                      }});
  }
}

const NamedLoad kUnloaded = {"Unloaded", 0, {}};

void AddPlaneMechanisms(std::vector<LargeModel>& models)
{
  AddWithLoads(models, "PlaneFrameOnRollers", [] { return Storeys(10, 520, kRollerInX); },
               {{"Driven", 200, {1, 0, 0}}, {"NotDriven", 200, {0, -1, 0}}, kUnloaded});
  AddWithLoads(models, "PlaneFrameWithHingedStorey",
               [] {
                 Structure s = Storeys(10, 520, kClamped);
                 return s.Hinge(At(1, 300), At(1, 303));
               },
               {{"Driven", 5000, {1, 0, 0}}, {"NotDriven", 5000, {0, -1, 0}}});
  AddWithLoads(models, "WideFrameOnOneFoot",
               [] {
                 Structure s = Storeys(100, 50, kPin);
                 s.supports.resize(1);
                 return s;
               },
               {{"Driven", 5000, {0, -1, 0}}, kUnloaded});
  AddWithLoads(
      models, "PlaneChainOnOneHinge", [] { return Chain(5200, false, kIncline).HoldNode(1, kPin); },
      {{"Driven", 5201, {0, -1, 0}}, {"Pulled", 5201, {kIncline[0], kIncline[1], 0}}, kUnloaded});
  AddWithLoads(models, "SkewRollersOnOneSlope",
               [] { return OnSkewRollers(-0.4636476090008061, 5200); },
               {{"Driven", 2601, {1, 0, 0}}, {"NotDriven", 2601, {-1, 2, 0}}});
  AddWithLoads(models, "ThreeHingesInARow",
               [] {
                 Structure s = Chain(5200, false, kIncline);
                 s.hinges = {{2600, 0}, {2601, 0}};
                 return s.HoldNode(1, kClamped).HoldNode(5201, kClamped);
               },
               {{"Driven", 2601, {0, -1, 0}}, kUnloaded});
  AddWithLoads(models, "FrameBesideALoosePart",
               [] {
                 Structure s = Storeys(10, 520, kClamped);
                 s.nodes.insert(s.nodes.end(), {{100, 0, 0}, {101, 0.5, 0}, {102, 1, 0}});
                 return s.AddBeams({5211, 5212, 5213});
               },
               {{"Driven", 5212, {0, -1, 0}}, {"NotDriven", 5000, {1, 0, 0}}});
}

/// 945 kN of wind on a building of 8 by 8 bays.
Structure WindOn(Structure s)
{
  for (int i = 1; i <= s.NodeCount(); ++i) {
    if (s.nodes[i - 1][0] == 0.0 && s.nodes[i - 1][2] > 0.0)
      s.Load(i, {945.0 / (9 * 35), 0, 0, 0, 0, 0});
  }
  return s;
}

Structure SoftStorey(int storey)
{
  const double foot = 3.5 * (storey - 1);
  return Building(8, 8, 35, kClamped).Hinge(At(2, foot), At(2, foot + 3.5));
}

void AddBuildingMechanisms(std::vector<LargeModel>& models)
{
  for (const int storey : {1, 18}) {
    const std::string name = "SoftStorey" + std::to_string(storey);
    models.push_back({name + "InTheWind", [=] { return WindOn(SoftStorey(storey)); }});
    AddWithLoads(models, name, [=] { return SoftStorey(storey); },
                 {{"NotDriven", 2916, {0, 0, -1, 0, 0, 0}}, kUnloaded});
  }
  for (const auto& [kind, feet] : {std::pair{"Slides", kSlide}, std::pair{"Turns", kProp}}) {
    AddWithLoads(
        models, std::string("Building") + kind, [feet = feet] { return Building(8, 8, 35, feet); },
        {{"Driven", 1500, {1, 0.3, 0, 0, 0, 0}}, {"NotDriven", 1500, {0, 0, -1, 0, 0, 0}}});
    AddWithLoads(models, std::string("Tower") + kind, [feet = feet] { return Tower(640, feet); },
                 {{"Driven", 5, {1, 0.3, 0, 0, 0, 0}}, kUnloaded});
  }
  AddWithLoads(models, "RockingBuilding",
               [] {
                 Structure s = Building(2, 8, 100, kBall);
                 std::erase_if(s.supports, [&](const Frame::Support& support) {
                   return s.nodes[support.node - 1][0] != 6.0;
                 });
                 return s;
               },
               {{"Driven", 2700, {1, 0, 0, 0, 0, 0}}, {"NotDriven", 2700, {0, 1, 0, 0, 0, 0}}});
  AddWithLoads(models, "BuildingWithALooseJoint",  // between two bars in one line
               [] {
                 Structure s = Building(8, 8, 35, kClamped);
                 const int top = s.beams[2000].second;
                 s.nodes.push_back(0.5 * (s.nodes[s.beams[2000].first - 1] + s.nodes[top - 1]));
                 s.beams[2000].second = s.NodeCount();
                 s.AddBeams({s.NodeCount(), top});
                 s.hinges = {{2001, 0}, {static_cast<int>(s.beams.size()), 0}};
                 return s;
               },
               {{"Driven", 2917, {1, 1, 1, 0, 0, 0}}, {"NotDriven", 2916, {1, 0, 0, 0, 0, 0}}});
}

void AddSpaceMechanisms(std::vector<LargeModel>& models)
{
  AddBuildingMechanisms(models);
  AddWithLoads(models, "BeamThatSpinsBesideABuilding",
               [] {
                 Structure s = Building(8, 8, 35, kClamped);
                 s.nodes.insert(s.nodes.end(), {{60, 0, 0}, {61, 1, 1}});
                 return s.AddBeams({2917, 2918}).HoldNode(2917, kBall).HoldNode(2918, kBall);
               },
               {{"Driven", 2917, {0, 0, 0, 1, 1, 1}}, {"NotDriven", 2916, {1, 0, 0, 0, 0, 0}}});
  AddWithLoads(
      models, "FreeTorsion",
      [] { return Chain(2600, true, kOblique).HoldNode(1, kBall).HoldNode(2601, kBall); },
      {{"Driven", 1300, {0, 0, 0, 0.48, 0.6, 0.64}}, {"Across", 1300, {0, 0, -1, 0, 0, 0}}});
  AddWithLoads(models, "SpaceChainOnABall",
               [] { return Chain(2600, true, kOblique).HoldNode(1, kBall); },
               {{"Driven", 2601, {0, 0, -1, 0, 0, 0}}, kUnloaded});
}

void AddTrussMechanisms(std::vector<LargeModel>& models)
{
  AddWithLoads(models, "TrussGirderOnOneHinge", [] { return TrussGirder(2600).HoldNode(1, kPin); },
               {{"Driven", 5201, {0, -1, 0}}, kUnloaded});
  AddWithLoads(models, "TrussGirderWithoutADiagonal",
               [] {
                 Structure s = TrussGirder(2600);
                 s.beams.erase(s.beams.begin() + 4 * 1300 + 3);
                 s.hinges.erase(std::prev(s.hinges.end()));
                 return s.HoldNode(1, kPin).HoldNode(5201, kRollerInX);
               },
               {{"Driven", 2601, {0, -1, 0}}, kUnloaded});
  AddWithLoads(models, "TrussMastOnOneBall", [] { return TrussMast(640).HoldNode(1, kBall); },
               {{"Driven", 2560, {1, 0, 0, 0, 0, 0}}, kUnloaded});
  AddWithLoads(models, "TrussWallOnRollers",
               [] { return TrussWall(70, 75).Hold(At(1, 0), kRollerInX); },
               {{"Driven", 3000, {1, 0, 0}}, {"NotDriven", 3000, {0, -1, 0}}});
}

void AddShellMechanisms(std::vector<LargeModel>& models)
{
  for (const int nnode : {3, 6}) {
    const std::string nodes = std::to_string(nnode);
    const int load = nnode == 3 ? 1300 : 300;
    for (const auto& [kind, surface] : kSurfaces) {
      const auto sheet = [=, on = surface] { return Sheet(on, 0.2, nnode); };
      const auto onCorners = [=](int count, const std::array<int, 6>& flags) {
        Structure s = sheet();
        const int corners[] = {1, nnode == 3 ? 51 : 26, s.NodeAt(s.nodes[0] + Vector3{0, 3, 0})};
        for (int i = 0; i < count; ++i)
          s.HoldNode(corners[i], flags);
        return s;
      };
      AddWithLoads(
          models, kind + nodes + "OnThreeProps", [=] { return onCorners(3, kProp); },
          {{"Driven", load, {1, 0.1, 0, 0, 0, 0}}, {"NotDriven", load, {0, 0, -1, 0, 0, 0}}});
      AddWithLoads(models, kind + nodes + "OnTwoCorners", [=] { return onCorners(2, kBall); },
                   {{"Driven", load, {0, 0.1, -1, 0, 0, 0}}});
    }
    AddWithLoads(models, "PlateHingedAlongOneEdge" + nodes,
                 [=] { return Sheet(Flat, 0.2, nnode).Hold(At(0, 0), kBall); },
                 {{"Driven", load, {0, 0, -1, 0, 0, 0}}, {"NotDriven", load, {1, 0, 0, 0, 0, 0}}});
  }
  AddWithLoads(models, "TankOnRollers",
               [] { return ShellOn(Tank, 80, 40, 0.02).Hold(At(2, 0), kProp); },
               {{"Driven", 3000, {1, 0, 0, 0, 0, 0}}, kUnloaded});
  AddWithLoads(models, "StiffenedPlateOnThreeProps",
               [] {
                 Structure s = Stiffened(Sheet(Flat, 0.02, 3));
                 return s.HoldNode(1, kProp).HoldNode(51, kProp).HoldNode(2601, kProp);
               },
               {{"Driven", 1300, {1, 0, 0, 0, 0, 0}}, {"NotDriven", 1300, {0, 0, -1, 0, 0, 0}}});
  AddWithLoads(models, "PlateWithALooseBeam",
               [] {
                 Structure s = Stiffened(Sheet(Flat, 0.02, 3));
                 s.nodes.insert(s.nodes.end(), {{8, 0, 0}, {8, 1, 1}});
                 return s.AddBeams({2602, 2603}).Hold(At(0, 0));
               },
               {{"NotDriven", 1300, {0, 0, -1, 0, 0, 0}}});
}

void AddSolidMechanisms(std::vector<LargeModel>& models)
{
  for (const int nnode : {4, 10}) {
    const std::string nodes = std::to_string(nnode);
    AddWithLoads(models, "SolidOnTwoNodes" + nodes,
                 [=] { return Cube(nnode).Map(Rotated).HoldNode(1, kBall).HoldNode(18, kBall); },
                 {{"Driven", 400, {1, 2, -1}}, kUnloaded});
    AddWithLoads(models, "SolidThatSlides" + nodes,
                 [=] { return Cube(nnode).Hold(At(2, 0), kProp); },
                 {{"Driven", 400, {1, 0, 0}}, {"NotDriven", 400, {0, 0, -1}}});
  }
}

std::vector<LargeModel> Mechanisms()
{
  std::vector<LargeModel> models;
  AddPlaneMechanisms(models);
  AddSpaceMechanisms(models);
  AddTrussMechanisms(models);
  AddShellMechanisms(models);
  AddSolidMechanisms(models);
  return models;
}

// --- Stable structures ---

const std::vector<Bend> kSway = {{2, 0, 1e-4}, {2, 1, 0.7e-4}};
const std::vector<Bend> kSag = {{0, 2, 1e-3}, {1, 2, 0.6e-3}};

/// Loads every node, mostly downwards.
constexpr std::array<double, 6> kLoad = {0.1, 0.2, -1, 0, 0, 0};

/// Slabs of 12 m by 8 m at vertical distances of 3 m, each on two walls.
Structure SlabsAndWalls(int storeys)
{
  ShellModel model;
  const auto add = [&](int nx, int ny, const std::function<Vector3(double, double)>& place) {
    const int before = static_cast<int>(model.nodes.size());
    const ShellModel grid = GridShell(nx, ny, place, Cut::BothWays);
    model.nodes.insert(model.nodes.end(), grid.nodes.begin(), grid.nodes.end());
    for (std::vector<int> triangle : grid.triangles) {
      for (int& node : triangle)
        node += before;
      model.triangles.push_back(triangle);
    }
  };
  for (int k = 0; k < storeys; ++k) {
    for (const double x : {0.0, 12.0})
      add(10, 4, [=](double u, double v) { return Vector3{x, 8 * u, 3 * (k + v)}; });
    add(16, 10, [=](double u, double v) { return Vector3{12 * u, 8 * v, 3.0 * (k + 1)}; });
  }
  return ShellOf(model, {}).Hold(At(2, 0));
}

void AddChainsAndPlaneFrames(std::vector<LargeModel>& models)
{
  models.push_back({"Cantilever5200", [] {
                      return Chain(5200, false).HoldNode(1, kClamped).Load(5201, {1, -1, 0});
                    }});
  models.push_back({"InclinedSpaceChain", [] {
                      Structure s = Chain(2600, true, {std::cos(0.3), 0, std::sin(0.3)});
                      for (const int node : {1, 651, 1301, 1951, 2601})
                        s.HoldNode(node, kClamped);
                      return s.LoadAll(kLoad);
                    }});
  models.push_back({"ContinuousBeam10000", [] {
                      Structure s = Chain(10000, false, kIncline);
                      for (int node = 1; node <= 10001; node += 100)
                        s.HoldNode(node, kPin);
                      return s.LoadAll({0, -1, 0});
                    }});
  models.push_back({"SlenderFrame", [] {
                      return Storeys(3, 1700, kClamped).Load(5101, {1, -1, 0});
                    }});
  models.push_back({"TallFrame", [] { return Storeys(10, 520, kClamped).LoadAll({0.1, -1, 0}); }});
  models.push_back({"WideFrame", [] { return Storeys(170, 30, kPin).LoadAll({0.1, -1, 0}); }});
  models.push_back({"FrameWithHingedColumns", [] {
                      Structure s = Storeys(10, 520, kClamped);
                      return s.Hinge(At(0, 5), Between(0, 4, 6)).LoadAll({0.1, -1, 0});
                    }});
}

void AddFrames(std::vector<LargeModel>& models)
{
  AddChainsAndPlaneFrames(models);
  models.push_back({"Tower", [] { return Tower(640, kClamped).LoadAll({1, 0.3, -1, 0, 0, 0.1}); }});
  models.push_back({"SlenderBuilding", [] {
                      return Building(3, 3, 160, kClamped).LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    }});
  models.push_back({"BuildingOnSprings", [] {
                      Structure s = Building(3, 3, 160, {2, 2, 2, 0, 0, 1});
                      for (Frame::Support& support : s.supports)
                        support.values = {1e4, 1e4, 1e6};
                      return s.LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    }});
  models.push_back(
      {"TallBuilding", [] { return WindOn(Building(8, 8, 35, kClamped)); }, Reference::Refined});
  models.push_back({"LoadedBuilding",
                    [] {
                      return Building(8, 8, 35, kClamped).LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    },
                    Reference::Refined});
  models.push_back({"LargeBuilding",
                    [] {
                      return Building(10, 10, 50, kClamped).LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    },
                    Reference::Refined});
  models.push_back({"WideBuilding", [] {
                      return Building(50, 12, 3, kClamped).LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    }});
  models.push_back({"LongBuilding", [] {
                      return Building(120, 6, 2, kBall).LoadAll({0.1, 0.03, -1, 0, 0, 0});
                    }});
}

void AddTrusses(std::vector<LargeModel>& models)
{
  models.push_back({"TrussGirder", [] {
                      Structure s = TrussGirder(2600);
                      for (int node = 1; node <= 5201; node += 2 * 260)
                        s.HoldNode(node, node == 1 ? kPin : kRollerInX);
                      return s.LoadAll({0, -1, 0});
                    }});
  models.push_back(
      {"SimpleTrussGirder", [] {
         return TrussGirder(2600).HoldNode(1, kPin).HoldNode(5201, kRollerInX).LoadAll({0, -1, 0});
       }});
  models.push_back(
      {"TrussMast", [] { return TrussMast(700).Hold(At(2, 0), kBall).LoadAll(kLoad); }});
  models.push_back({"TrussWall", [] {
                      return TrussWall(70, 75).Hold(At(1, 0), kPin).LoadAll({0.5, -1, 0});
                    }});
  models.push_back({"LongTrussWall",
                    [] { return TrussWall(200, 60).Hold(At(0, 0), kPin); },
                    Reference::Bent,
                    {{0, 1, 1e-4}}});
}

void AddSheetsAndTanks(std::vector<LargeModel>& models)
{
  for (const int nnode : {3, 6}) {
    for (const double t : {0.2, 0.02, 0.004}) {
      const std::string kind = std::to_string(nnode) + (t == 0.2    ? "Thick"
                                                        : t == 0.02 ? "Thin"
                                                                    : "VeryThin");
      for (const auto& [name, surface] : kSurfaces) {
        const auto sheet = [=, on = surface] { return Sheet(on, t, nnode).Hold(At(0, 0)); };
        if (nnode == 3)
          models.push_back({name + kind, sheet, Reference::Bent, kSag});
        else
          models.push_back(
              {name + kind, [=] { return sheet().LoadAll(kLoad); }, Reference::Refined});
      }
    }
    models.push_back({"Tank" + std::to_string(nnode),
                      [=] {
                        return ShellOn(Tank, nnode == 3 ? 80 : 40, nnode == 3 ? 40 : 20, 0.02,
                                       nnode)
                            .Hold(At(2, 0));
                      },
                      Reference::Bent, kSway});
  }
  models.push_back({"LargeTank", [] { return ShellOn(Tank, 160, 80, 0.01).Hold(At(2, 0)); },
                    Reference::Bent, kSway});
  models.push_back({"LargePlate", [] { return ShellOn(Flat, 120, 120, 0.05).Hold(At(0, 0)); },
                    Reference::Bent, kSag});
}

void AddShells(std::vector<LargeModel>& models)
{
  AddSheetsAndTanks(models);
  models.push_back({"PlateUnderLoads", [] {
                      Structure s = Sheet(Flat, 0.02, 3);
                      return s.Hold(At(0, 0)).LoadAll(kLoad);
                    }});
  models.push_back({"ObliquePlateUnderLoads", [] {
                      Structure s = Sheet(Flat, 0.02, 3).Hold(At(0, 0)).LoadAll(kLoad);
                      return s.Map(Rotated);
                    }});
  models.push_back({"RoofUnderLoads", [] {
                      Structure s = Sheet(Roof, 0.05, 3);
                      return s.Hold(At(0, 0)).Hold(At(0, 4), kSlide).LoadAll({0, 0.2, -1, 0, 0, 0});
                    }});
  models.push_back({"PlateStrip", [] {
                      Structure s = ShellOn(
                          [](double u, double v) {
                            return Rotated({u, 60 * v, 0});
                          },
                          4, 600, 0.1);
                      for (int node = 1; node <= s.NodeCount(); node += 250)
                        s.HoldNode(node, kClamped).HoldNode(node + 4, kClamped);
                      return s.LoadAll({0, 0, -1, 0, 0, 0});
                    }});
  models.push_back(
      {"SlabsAndWalls", [] { return SlabsAndWalls(10).LoadAll(kLoad); }, Reference::Refined});
  models.push_back({"StiffenedPlate", [] { return Stiffened(Sheet(Flat, 0.02, 3)).Hold(At(0, 0)); },
                    Reference::Bent, kSag});
  models.push_back({"StiffenedRoof", [] { return Stiffened(Sheet(Roof, 0.02, 3)).Hold(At(0, 0)); },
                    Reference::Bent, kSag});
}

/// A curved rod of length 8 with wider, round ends.
Vector3 RodPlace(const Vector3& p)
{
  const double x = p[0] / 4 - 1;  // -1 to 1
  const double width = 0.4 + 1.2 * x * x * x * x;
  const double angle = 0.5 * x;
  const double radius = 8 + width * (p[1] - 0.5);
  return {radius * std::sin(angle), radius * std::cos(angle), width * (p[2] - 0.5)};
}

void AddSolids(std::vector<LargeModel>& models)
{
  for (const int nnode : {4, 10}) {
    const std::string nodes = std::to_string(nnode);
    models.push_back({"Cube" + nodes, [=] { return Cube(nnode).Hold(At(2, 0), kBall); },
                      Reference::Bent, kSway});
    models.push_back({"TiltedCube" + nodes,
                      [=] {
                        Structure s = Cube(nnode).Hold(At(2, 0), kBall);
                        return s.Map(Rotated);
                      },
                      Reference::Bent, kSway});
    models.push_back({"LargeBlock" + nodes,
                      [=] {
                        const int n = nnode == 4 ? 1 : 2;
                        return SolidOf(SolidBlock({40 / n, 24 / n, 24 / n}, {4, 2, 2}, nnode))
                            .Hold(At(0, 0), kBall);
                      },
                      Reference::Bent,
                      {{0, 1, 1e-3}, {0, 2, 1e-3}}});
    models.push_back({"ConnectingRod" + nodes,
                      [=] {
                        const int n = nnode == 4 ? 1 : 2;
                        SolidModel block = SolidBlock({100 / n, 8 / n, 8 / n}, {8, 1, 1}, 4);
                        block.Map(RodPlace);
                        if (nnode == 10)
                          block.ToTenNodes();
                        Structure s = SolidOf(block);
                        for (int i = 0; i < s.NodeCount(); ++i) {
                          if (s.nodes[i][0] < -3.7)
                            s.HoldNode(i + 1, kBall);
                        }
                        return s.LoadAll({0.1, 0.2, -1});
                      },
                      Reference::Refined});
  }
  models.push_back({"Bar4", [] {
                      // The numbers run across, so that the reference can be solved.
                      Structure s = SolidOf(SolidBlock({5, 5, 150}, {0.3, 0.3, 9}, 4));
                      return s.Hold(At(2, 0), kBall).LoadAll({0.1, 0.2, -1});
                    }});
}

std::vector<LargeModel> StableStructures()
{
  std::vector<LargeModel> models;
  AddFrames(models);
  AddTrusses(models);
  AddShells(models);
  AddSolids(models);
  return models;
}

}  // namespace

class LargeMechanism : public testing::TestWithParam<LargeModel>
{
};

TEST_P(LargeMechanism, IsRefused)
{
  const Structure structure = GetParam().make();
  ASSERT_GE(structure.Equations(), kLarge);
  const Judged judged = Judge(structure, kSettings);
  EXPECT_TRUE(judged.IsSolverRefusal()) << judged.Text();
}

INSTANTIATE_TEST_SUITE_P(All, LargeMechanism, testing::ValuesIn(Mechanisms()), NameOf);

class LargeStructure : public testing::TestWithParam<LargeModel>
{
};

TEST_P(LargeStructure, IsRight)
{
  // The errors that a user may expect. Refined solutions are usually far better.
  constexpr double kDirect = 1e-5;
  constexpr double kIterated = 1e-4;
  Structure structure = GetParam().make();
  ASSERT_GE(structure.Equations(), kLarge);
  ASSERT_LE(structure.Equations(), 100000);
  const PreciseResults exact = ExactResults(GetParam(), structure);
  const Judged judged = Judge(structure, kSettings, &exact);
  RecordProperty("outcome", judged.Text());
  ASSERT_TRUE(judged.IsSolved()) << judged.message;
  EXPECT_LE(judged.errors.Largest(), judged.direct ? kDirect : kIterated) << judged.Text();
  EXPECT_FALSE(judged.warned);
}

INSTANTIATE_TEST_SUITE_P(All, LargeStructure, testing::ValuesIn(StableStructures()), NameOf);

}  // namespace morlen
