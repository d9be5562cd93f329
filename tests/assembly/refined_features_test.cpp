// Refined shells together with the other features of problem files: local axes of supports,
// springs, settlements, beams, smoothing, principal values, solvers, result files, refusals.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "model/mesh.h"
#include "support/fatal.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/refined_model.h"
#include "support/result_files.h"
#include "support/run.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// Rounding errors times the condition of the models here, below 1e6.
constexpr double kRounding = 1e-9;

// A vault with a beam from its top to the ground, on supports, springs and a settlement. All is
// given in these axes, so that the results in them must not depend on the angles.
struct Vault
{
  Vault(int nnode, const std::string& settings, const Vector3& angles_)
      : angles(angles_), axes(AxesOfAngles(angles))
  {
    model = Refined(GridShell(6, 3, [](double u, double v) {
      return Vector3{2 * std::sin(2 * u - 1), v + 0.1 * u * v, 2 * std::cos(2 * u - 1)};
    }));
    if (nnode == 6)
      model = WithMidSideNodes(model);
    Support();
    for (Vector3& node : model.nodes)
      node = Turned(axes, node);
    const std::string pressure = InSpace({0.1, 0.3, -0.5});
    model.settings += settings + "\nGravityDirection" + InSpace({0.6, 0, -0.8}) + "\n";
    model.material =
        "E=2e6 nu=0.25 G=8e5 t=0.05 Weight=7\n2 E=2e6 G=8e5 A=0.01 Iy=1e-5 Iz=1e-5 J=2e-5";
    model.loads = "25" + InSpace({0.3, 0.2, -0.1}) + InSpace({0.01, -0.02, 0.03}) + "\n";
    model.rest = Block("global_pressure_loads", model.OnAll(pressure)) +
                 Block("local_pressure_loads", model.OnAll("0 0 -0.2")) +
                 "mesh dimension 3 elemtype Linear nnode 2\ncoordinates\nend\nelements\n1001 25 " +
                 std::to_string(model.nodes.size()) + " 2\nend elements\n";
  }

  void Support()
  {
    Hold(1, "111000 0 0.001 0 0 0 0");
    Hold(7, "111010 0 0 -0.002 0 0.001 0");
    Hold(22, "211000 300 0 0 0 0 0");
    Hold(28, "022002 0 500 400 0 0 20");
    model.nodes.push_back({0, 1, -1});
    Hold(static_cast<int>(model.nodes.size()), "111111 0 0 0 0 0 0");
  }

  void Hold(int node, const std::string& flagsAndValues)
  {
    supported.push_back(node);
    model.constraints += std::to_string(node) + " " + flagsAndValues;
    for (int k = 0; k < 3; ++k)
      model.constraints += " Euler" + std::to_string(k + 1) + "=" + Digits(angles[k]);
    model.constraints += "\n";
  }

  std::string InSpace(const Vector3& local) const
  {
    std::string text;
    for (const double component : Turned(axes, local))
      text += " " + Digits(component);
    return text;
  }

  // The components of a node in the axes of the model.
  std::vector<double> Local(const std::vector<double>& global) const
  {
    std::vector<double> local;
    for (std::size_t part = 0; part < 6; part += 3)
      for (const Vector3& axis : axes)
        local.push_back(Dot(axis, {global[part], global[part + 1], global[part + 2]}));
    return local;
  }

  Vector3 angles;
  std::array<Vector3, 3> axes;
  ShellModel model;
  std::vector<int> supported;
};

// Axial force, shear, torque and moment of the beam, which do not depend on its local axes.
std::vector<double> EndForcesOf(const Solved& solved)
{
  const std::vector<double> f = LoadedEndForces(solved, 1001);
  return {f[0], std::hypot(f[1], f[2]), f[3], std::hypot(f[4], f[5])};
}

constexpr Vector3 kUpright = {0, 0, 0};
constexpr Vector3 kOblique = {0.7, 1.2, -0.5};

}  // namespace

TEST(RefinedFeatures, ResultsDoNotDependOnThePlaceInSpace)
{
  for (const int nnode : {3, 6}) {
    for (const char* settings : {"", "ConvertTo6Nodes", "Solver SkyLine"}) {
      SCOPED_TRACE(settings);
      const Vault upright(nnode, settings, kUpright);
      const Vault oblique(nnode, settings, kOblique);
      const Solved expected(upright.model.Text());
      const Solved solved(oblique.model.Text());
      for (std::size_t i = 1; i <= upright.model.nodes.size(); ++i) {
        const int node = static_cast<int>(i);
        ExpectValues(oblique.Local(solved.Displacement(node)), expected.Displacement(node),
                     kRounding, 0.01);
      }
      for (const int node : upright.supported)
        ExpectValues(oblique.Local(solved.Reaction(node)), expected.Reaction(node), 10 * kRounding,
                     1.0);
      ExpectValues(EndForcesOf(solved), EndForcesOf(expected), 10 * kRounding, 1.0);
    }
  }
}

TEST(RefinedFeatures, SupportsAndSpringsDoWhatTheFileSays)
{
  for (const int nnode : {3, 6}) {
    const Vault vault(nnode, "", kUpright);
    const Solved solved(vault.model.Text());
    EXPECT_DOUBLE_EQ(solved.Displacement(1)[1], 0.001);
    EXPECT_DOUBLE_EQ(solved.Displacement(7)[2], -0.002);
    EXPECT_DOUBLE_EQ(solved.Displacement(7)[4], 0.001);
    EXPECT_NEAR(solved.Reaction(22)[0], -300 * solved.Displacement(22)[0], kRounding);
    EXPECT_NEAR(solved.Reaction(28)[2], -400 * solved.Displacement(28)[2], kRounding);
    EXPECT_NEAR(solved.Reaction(28)[5], -20 * solved.Displacement(28)[5], kRounding);
    EXPECT_NE(solved.Displacement(22)[0], 0.0);
    EXPECT_NE(solved.Displacement(28)[5], 0.0);
  }
}

TEST(RefinedFeatures, AllSolversAgree)
{
  const Solved expected(Vault(3, "ConvertTo6Nodes\nSolver SkyLine", kUpright).model.Text());
  const struct
  {
    const char* settings;
    double tolerance;  // of the iteration, times a condition of 1e2 to 1e3 for such a model
  } cases[] = {{"ConvertTo6Nodes", kRounding},
               {"ConvertTo6Nodes\nSolver Sparse 1e-11 1e-11 20000", 1e-6},
               {"Solver Double", 1e-3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.settings);
    const Solved solved(Vault(3, c.settings, kUpright).model.Text());
    for (int node = 1; node <= 29; ++node)
      ExpectValues(solved.Displacement(node), expected.Displacement(node), c.tolerance, 0.01);
  }
}

TEST(RefinedFeatures, OrderOfTheEquationsDoesNotMatter)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    const std::string text = Vault(3, settings, kOblique).model.Text();
    const Solved renumbered(text);
    const Solved kept(text, false);
    for (int node = 1; node <= 29; ++node)
      ExpectValues(kept.Displacement(node), renumbered.Displacement(node), kRounding, 0.01);
  }
}

namespace {

// A plate 4 × 2 in the plane of the axes of the file under a constant strain that is prescribed.
ShellModel Stretched(int nnode, const std::string& settings)
{
  ShellModel model = Refined(GridShell(4, 2, [](double u, double v) {
    return Vector3{4 * u, 2 * v, 0};
  }));
  if (nnode == 6)
    model = WithMidSideNodes(model);
  model.settings += settings;
  model.material = "E=1000 nu=0 G=500 t=0.5 Euler1=0 Euler2=0 Euler3=0";
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const auto [x, y, z] = model.nodes[i];
    model.Hold(static_cast<int>(i) + 1, "111111",
               {0.002 * x + 0.003 * y, 0.001 * x + 0.004 * y, 0, 0, 0, -0.001});
  }
  return model;
}

// εx = 0.002, εy = 0.004, γ = 0.004: N = 1, 2, 1 and principal values 1.5 ± √(0.25 + 1).
void ExpectConstantForces(int nnode, const std::string& settings)
{
  SCOPED_TRACE(settings);
  const ShellForces local = {1, 2, 1, 0, 0, 0, 0, 0};
  ExpectForcesEverywhere(Solved(Stretched(nnode, settings).Text()), local, kRounding);
  const Solved main(Stretched(nnode, "MainStresses" + settings).Text());
  const Solved both(Stretched(nnode, "MainAndLocalStresses" + settings).Text());
  ExpectForcesEverywhere(both, local, kRounding);
  const MeshResults& results = both.Result().results.front();
  for (int triangle = 1; triangle <= 16; ++triangle) {
    const ShellForces force = ForcesOf(main, triangle).front();
    EXPECT_NEAR(force[0] + force[1], 3.0, kRounding);
    EXPECT_NEAR(std::fabs(force[0] - force[1]), 2 * std::sqrt(1.25), kRounding);
    const int first = results.Block(triangle);
    EXPECT_NEAR(results.mainStrengths(first + 1), force[0], kRounding);
    EXPECT_NEAR(results.mainStrengths(first + 2), force[1], kRounding);
  }
}

}  // namespace

TEST(RefinedFeatures, ConstantForcesAreSmoothedAndTurnedToPrincipalAxes)
{
  for (const int nnode : {3, 6}) {
    for (const std::string conversion : {"", "\nConvertTo6Nodes"}) {
      for (const char* smoothing : {"", "\nDoSmoothing 0.5"})
        ExpectConstantForces(nnode, conversion + smoothing);
    }
  }
}

namespace {

std::map<std::string, std::string> FilesOf(const std::string& problem)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunProgram(folder, {"-p", "model.dat", "model.txt"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  return folder.Files();
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
  const std::size_t at = text.find(from);
  return at == text.npos ? text : text.replace(at, from.size(), to);
}

// The number of points and of values of each element in a block.
std::map<int, std::vector<std::size_t>> ShapeOf(const std::string& kiv, const std::string& block)
{
  std::map<int, std::vector<std::size_t>> shape;
  for (const auto& [number, points] : KivBlock(kiv, block)) {
    for (const std::vector<double>& point : points)
      shape[number].push_back(point.size());
  }
  return shape;
}

constexpr const char* kRefined = "ShellFormulation Refined\n";
constexpr const char* kStandard = "ShellFormulation Standard\n";

}  // namespace

TEST(RefinedFeatures, ResultFilesHaveTheLayoutOfTheStandard)
{
  for (const int nnode : {3, 6}) {
    for (const std::string settings :
         {"", "ConvertTo6Nodes", "MainStresses", "MainAndLocalStresses",
          "ConvertTo6Nodes\nDoSmoothing 0.5"}) {
      SCOPED_TRACE(settings);
      const ShellModel model = Vault(nnode, settings, kUpright).model;
      const std::string text = model.Text();
      const auto refined = FilesOf(text);
      const auto standard = FilesOf(Replaced(text, kRefined, kStandard));
      ASSERT_EQ(refined.size(), standard.size());
      EXPECT_EQ(refined.at("model.morlen.bon"), standard.at("model.morlen.bon"));
      const std::string& a = refined.at("model.morlen.res");
      const std::string& b = standard.at("model.morlen.res");
      EXPECT_NE(a, b);
      EXPECT_EQ(KivBlockNames(a), KivBlockNames(b));
      for (const std::string& block : KivBlockNames(b))
        EXPECT_EQ(ShapeOf(a, block), ShapeOf(b, block)) << block;
      EXPECT_EQ(ParseTextResults(refined.at("model.txt")).displacements.size(), model.nodes.size());
    }
  }
}

TEST(RefinedFeatures, PrintedReactionsBalanceTheLoads)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    ShellModel model = Vault(3, settings, kUpright).model;
    const auto files = FilesOf(model.Text());
    const TextResults text = ParseTextResults(files.at("model.txt"));
    Vector3 reactions{}, loads = {0.3, 0.2, -0.1};
    for (const auto& [node, r] : text.reactions)
      reactions = reactions + Vector3{r[0], r[1], r[2]};
    for (const std::vector<int>& t : model.triangles) {
      const Vector3& a = model.nodes[t[0] - 1];
      const Vector3 n = 0.5 * Cross(model.nodes[t[1] - 1] - a, model.nodes[t[2] - 1] - a);
      const double area = std::hypot(n[0], n[1], n[2]);
      loads = loads + area * Vector3{0.1, 0.3, -0.5} + -0.2 * n +
              7 * 0.05 * area * Vector3{0.6, 0, -0.8};
    }
    // Six digits are printed, of reactions up to about 10 times the loads.
    ExpectValues({reactions.begin(), reactions.end()}, {-loads[0], -loads[1], -loads[2]}, 1e-4);
  }
}

TEST(RefinedFeatures, StandardIsWhatFilesWithoutTheKeywordGet)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    const std::string text = Vault(3, settings, kUpright).model.Text();
    EXPECT_EQ(FilesOf(Replaced(text, kRefined, "")).at("model.morlen.res"),
              FilesOf(Replaced(text, kRefined, kStandard)).at("model.morlen.res"));
  }
}

TEST(RefinedFeatures, BeamsAndSolidsAreTheSame)
{
  const std::string beam = SpaceProblem().With(&ProblemParts::loads, "2 1 2 3 0 0 0").Text();
  const std::string solid =
      UnitSolid(4).Prescribe({1, 2, 3}, [](const Vector3& x) { return 0.01 * x; }).Text();
  for (const std::string& text : {beam, solid}) {
    const std::string refined = Replaced(text, "3d\n", std::string("3d\n") + kRefined);
    ASSERT_NE(refined, text);
    EXPECT_EQ(FilesOf(refined).at("model.morlen.res"), FilesOf(text).at("model.morlen.res"));
  }
}

namespace {

ShellModel Square()
{
  ShellModel model;
  model.nodes = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
  model.triangles = {{1, 2, 3}, {1, 3, 4}};
  for (int node = 1; node <= 3; ++node)
    model.Hold(node, "111111");
  model.Load(4, {0, 0, 1, 0, 0, 0});
  return Refined(model);
}

}  // namespace

TEST(RefinedFeatures, WrongModelsAreRefusedLikeStandardOnes)
{
  ShellModel opposite = Square(), flat = Square();
  opposite.triangles[1] = {1, 4, 3};
  flat.nodes[3] = {3, 3, 0};
  std::vector<ShellModel> models = {opposite, flat};
  for (const char* material :
       {"E=1000 nu=0.25 G=400", "E=1000 nu=0.25 G=400 t=0", "E=1000 nu=0.25 G=400 t=-0.1",
        "nu=0.25 G=400 t=0.1", "E=1000 nu=0.25 t=0.1", "E=1000 nu=1 G=400 t=0.1"}) {
    models.push_back(Square());
    models.back().material = material;
  }
  for (const ShellModel& model : models) {
    for (const std::string conversion : {"", "ConvertTo6Nodes\n"}) {
      const std::string text = Replaced(model.Text(), kRefined, kRefined + conversion);
      const std::string message = FatalCaught([&] { Solved{text}; });
      EXPECT_NE(message, "(the run went on)") << text;
      EXPECT_EQ(message, FatalCaught([&] { Solved{Replaced(text, kRefined, kStandard)}; })) << text;
    }
  }
}

// Without the ground, a plate on a ball joint moves freely, and so does one on rollers in its
// plane.
TEST(RefinedFeatures, ModelsThatCanMoveAreRefused)
{
  for (const char* settings : {"", "ConvertTo6Nodes\n"}) {
    for (const std::string flags : {"111000", "110001", "001110"}) {
      ShellModel loose = Square();
      loose.settings += settings;
      loose.constraints = "1 " + flags + " 0 0 0 0 0 0\n";
      EXPECT_NE(FatalCaught([&] { Solved{loose.Text()}; }).find("Could not solve system"),
                std::string::npos)
          << flags;
    }
  }
}

}  // namespace morlen
