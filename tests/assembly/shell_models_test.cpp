// Shells as structures: folds, beams on plates, symmetry, several meshes, rounded coordinates.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

constexpr double kThickness = 0.2;
constexpr double kBending = 1e6 * 0.2 * 0.2 * 0.2 / 12;  // per width, without Poisson's ratio
constexpr char kNoPoisson[] = "E=1e6 nu=0 G=5e5 t=0.2";

// A strip of length 4 and width 1, clamped at its beginning, of triangles with `nnode` nodes. Its
// second half is turned up by the angle about the y axis.
ShellModel Strip(int nnode, int divisions, double fold)
{
  ShellModel strip = GridShell(divisions, 2, [&](double u, double v) {
    const double s = 4 * u;
    const double beyond = std::max(s - 2, 0.0);
    return Vector3{std::min(s, 2.0) + beyond * std::cos(fold), v, beyond * std::sin(fold)};
  });
  if (nnode == 6)
    strip = WithMidSideNodes(strip);
  strip.material = kNoPoisson;
  for (const int node :
       NodesWhere(strip, [](const Vector3& x) { return x[0] == 0.0 && x[2] == 0.0; }))
    strip.Hold(node, "111111");
  return strip;
}

// The shares of a uniform load along the last edge of the strip, whose two parts have a
// length of 0.5 each.
void LoadEnd(ShellModel& strip, const ShellModel& flat, const std::array<double, 6>& total)
{
  const bool six = strip.triangles[0].size() == 6;
  const auto end = NodesWhere(flat, [](const Vector3& x) { return x[0] > 4 - 1e-9; });
  for (const int node : end) {
    const double v = flat.nodes[node - 1][1];
    const bool corner = std::fabs(v - std::round(2 * v) / 2) < 1e-9;
    const bool outer = v < 1e-9 || v > 1 - 1e-9;
    const double share =
        six ? (corner ? (outer ? 1.0 : 2.0) / 12 : 4.0 / 12) : (outer ? 0.25 : 0.5);
    std::array<double, 6> load = total;
    for (double& value : load)
      value *= share;
    strip.Load(node, load);
  }
}

}  // namespace

// Under a constant moment about the fold, the rotation at the arc length s is M s / D with and
// without the fold.
TEST(ShellModels, AFoldedStripBendsAboutItsFoldAsTheFlatOneDoes)
{
  const double M = 3.0;
  for (const double fold : {0.0, std::acos(-1.0) / 2, 0.4, -1.0, 1e-5}) {
    ShellModel strip = Strip(6, 8, fold);
    const ShellModel flat = Strip(6, 8, 0.0);
    LoadEnd(strip, flat, {0, 0, 0, 0, M, 0});
    const Solved solved(strip.Text());
    for (std::size_t i = 0; i < flat.nodes.size(); ++i) {
      const double s = flat.nodes[i][0];
      const std::vector<double> u = solved.Displacement(static_cast<int>(i) + 1);
      EXPECT_NEAR(u[4], M * s / kBending, 1e-8) << fold;
      const double beyond = std::max(s - 2, 0.0);
      // The displacement along the normals is -M s²/2D up to the fold. Beyond the fold its motion
      // is added.
      const double w2 = -M * 4 / (2 * kBending);
      const double slope = M * 2 / kBending;
      const double along = -(slope * beyond + M * beyond * beyond / (2 * kBending));
      if (s <= 2) {
        EXPECT_NEAR(u[2], -M * s * s / (2 * kBending), 1e-8);
      } else {
        EXPECT_NEAR(u[0], -along * std::sin(fold), 1e-8);
        EXPECT_NEAR(u[2], w2 + along * std::cos(fold), 1e-8);
      }
    }
  }
}

TEST(ShellModels, AFoldOfThreeNodeTrianglesIsNoHinge)
{
  const double M = 3.0;
  const auto turn = [&](double fold) {
    ShellModel strip = Strip(3, 32, fold);
    LoadEnd(strip, Strip(3, 32, 0.0), {0, 0, 0, 0, M, 0});
    // The middle of the end.
    return Solved(strip.Text()).Displacement(2 * 33)[4];
  };
  const double flat = turn(0.0);
  EXPECT_NEAR(flat, M * 4 / kBending, 0.1 * M * 4 / kBending);
  EXPECT_NEAR(turn(std::acos(-1.0) / 2), flat, 0.02 * flat);
}

namespace {

const char* const kBeams = "mesh dimension 3 elemtype Linear nnode 2\ncoordinates\nend\nelements\n";

// A strip with stiff beams along its end, and on them a loaded mast of height 2.
ShellModel StripWithMast(const Vector3& force)
{
  ShellModel strip = Strip(6, 8, 0.0);
  const int top = static_cast<int>(strip.nodes.size()) + 1;
  strip.nodes.push_back({4, 0.5, 2});
  strip.material += " A=1e4 Iy=1e4 Iz=1e4 J=1e4";
  strip.Load(top, {force[0], force[1], force[2], 0, 0, 0});
  const auto end = NodesWhere(strip, [](const Vector3& x) { return x[0] == 4.0 && x[2] == 0.0; });
  const auto at = [&](double y) {
    for (const int node : end) {
      if (strip.nodes[node - 1][1] == y)
        return node;
    }
    return 0;
  };
  strip.rest = kBeams;
  for (int i = 0; i < 4; ++i)
    strip.rest += std::to_string(101 + i) + " " + std::to_string(at(i / 4.0)) + " " +
                  std::to_string(at((i + 1) / 4.0)) + " 1\n";
  strip.rest += "110 " + std::to_string(at(0.5)) + " " + std::to_string(top) + " 1\nend elements\n";
  return strip;
}

}  // namespace

TEST(ShellModels, ABeamClampedToAPlateTurnsWithIt)
{
  // A horizontal force F at the top causes the moment 2 F and the tension F in the plate.
  const double F = 1.5;
  const Solved solved(StripWithMast({F, 0, 0}).Text());
  const double turn = 2 * F * 4 / kBending;
  const double stretch = F * 4 / (1e6 * kThickness);
  const int top = solved.Model().initialNumNodes;
  const std::vector<double> u = solved.Displacement(top);
  EXPECT_NEAR(u[4], turn, 1e-5 * turn);
  EXPECT_NEAR(u[0], 2 * turn + stretch, 1e-5 * turn);
  EXPECT_NEAR(u[2], -2 * F * 16 / (2 * kBending), 1e-5 * turn);
  EXPECT_NEAR(u[1], 0.0, 1e-5 * turn);
  // A sideways force twists the strip about its axis, and the mast leans in its direction.
  const Solved sideways(StripWithMast({0, F, 0}).Text());
  const std::vector<double> v = sideways.Displacement(top);
  EXPECT_LT(v[3], 0.0);
  EXPECT_GT(v[1], 0.0);
}

// The drilling stiffness resists a beam that rotates a coplanar node about the normal. The moment
// goes to the ground.
TEST(ShellModels, DrillingStiffnessResistsAMomentAboutTheNormal)
{
  ShellModel plate = GridShell(2, 2, [](double u, double v) { return Vector3{2 * u, 2 * v, 0}; });
  plate.material = "E=1e6 nu=0 G=5e5 t=0.2";
  for (const int node : NodesWhere(plate, [](const Vector3& x) { return x[0] == 0.0; }))
    plate.Hold(node, "111111");
  plate.Load(5, {0, 0, 0, 0, 0, 6});
  const Solved solved(plate.Text());
  // Six triangles of area 1/2 around the node in the middle.
  EXPECT_NEAR(solved.Displacement(5)[5], 6.0 / (3.0 * 1e6), 1e-18);
  const auto sum = SumOfReactions(solved);
  for (const double component : sum)
    EXPECT_NEAR(component, 0.0, 1e-12);
}

// A clamped square plate, and a quarter of it with supported rotations along the planes of
// symmetry.
TEST(ShellModels, SymmetryHoldsRotationsAboutAxes)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    const auto plate = [&](int n, double side) {
      ShellModel model = GridShell(
          n, n,
          [&](double u, double v) {
            return Vector3{1 - side * u, 0, 1 - side * v};
          },
          Cut::BothWays);
      model.settings = settings;
      model.material = "E=1e6 nu=0.3 G=3.846153846e5 t=0.1";
      model.rest = Block("global_pressure_loads", model.OnAll("0 2 0"));
      for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        const Vector3& x = model.nodes[i];
        const int node = static_cast<int>(i) + 1;
        if (std::fabs(x[0]) == 1 || std::fabs(x[2]) == 1)
          model.Hold(node, "111111");
        else if (side == 1.0 && x[0] == 0 && x[2] == 0)
          model.Hold(node, "101111");
        else if (side == 1.0 && x[0] == 0)
          model.Hold(node, "100011");  // the plane x = 0
        else if (side == 1.0 && x[2] == 0)
          model.Hold(node, "001110");  // the plane z = 0
      }
      return model;
    };
    const Solved whole(plate(8, 2.0).Text());
    const Solved quarter(plate(4, 1.0).Text());
    for (int j = 0; j <= 4; ++j) {
      for (int i = 0; i <= 4; ++i)
        ExpectValues(quarter.Displacement(i + 1 + 5 * j), whole.Displacement(i + 1 + 9 * j), 1e-9,
                     1e-3);
    }
  }
}

namespace {

// A box without lid, its walls clamped at the ground, under wind and a load on top.
ShellModel Walls()
{
  const auto round = [](double u, double v) {
    const double s = 4 * u;
    const double x = s < 1 ? s : s < 2 ? 1 : s < 3 ? 3 - s : 0;
    const double y = s < 1 ? 0 : s < 2 ? s - 1 : s < 3 ? 1 : 4 - s;
    return Vector3{x, y, v};
  };
  ShellModel walls = GridShell(8, 2, round);
  // Close the ring: the last column is the first.
  for (std::vector<int>& triangle : walls.triangles) {
    for (int& node : triangle)
      node -= node % 9 == 0 ? 8 : 0;
  }
  walls.material = "E=1e6 nu=0.2 G=4e5 t=0.05";
  for (int j = 0; j < 3; ++j)
    walls.Hold(9 * (j + 1), "111111");  // the nodes left over
  for (int i = 1; i <= 8; ++i)
    walls.Hold(i, "111111");
  walls.Load(20, {0.3, 0.2, -1, 0, 0, 0});
  return walls;
}

}  // namespace

TEST(ShellModels, MayBeCutIntoMeshes)
{
  for (const std::string conversion : {"", "ConvertTo6Nodes"}) {
    for (const std::string solver : {"", "\nSolver Sparse 1e-9 1e-9 5000"}) {
      ShellModel walls = Walls();
      walls.settings = conversion + solver;
      const std::string one = walls.Text();
      std::string three = one;
      for (const int first : {9, 21}) {
        const std::size_t at =
            three.find("\n" + std::to_string(first) + " ", three.find("end coordinates"));
        three.insert(at + 1,
                     "end elements\nmesh dimension 3 elemtype Triangle nnode 3\n"
                     "coordinates\nend coordinates\nelements\n");
      }
      const Solved whole(one);
      const Solved cut(three);
      EXPECT_EQ(cut.Model().meshes.size(), 3U);
      EXPECT_EQ(cut.Model().numNodes, whole.Model().numNodes);
      EXPECT_EQ(cut.Model().coplanarity, whole.Model().coplanarity);
      const double tolerance = solver.empty() ? 1e-9 : 1e-4;
      for (int node = 1; node <= 27; ++node)
        ExpectValues(cut.Displacement(node), whole.Displacement(node), tolerance, 1e-3);
      for (int node = 1; node <= 9; ++node)
        ExpectValues(cut.Reaction(node), whole.Reaction(node), tolerance, 1.0);
      for (int triangle = 1; triangle <= 32; ++triangle)
        EXPECT_NEAR(ForcesOf(cut, triangle)[0][0], ForcesOf(whole, triangle)[0][0], 10 * tolerance);
    }
  }
}

TEST(ShellModels, OrderOfTheEquationsDoesNotMatter)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    ShellModel walls = Walls();
    walls.settings = settings;
    const Solved renumbered(walls.Text());
    const Solved kept(walls.Text(), false);
    for (int node = 1; node <= 27; ++node)
      ExpectValues(kept.Displacement(node), renumbered.Displacement(node), 1e-9, 1e-3);
  }
}

TEST(ShellModels, SupportsMayHaveLocalAxes)
{
  // A square that is supported and loaded in its own axes: upright and rotated.
  const Vector3 angles = {0.7, 1.2, -0.5};
  const auto axes = AxesOfAngles(angles);
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    const auto square = [&](bool turned) {
      ShellModel model = GridShell(2, 2, [](double u, double v) {
        return Vector3{u, v + 0.2 * u, 0};
      });
      std::string items;
      for (int k = 0; k < 3; ++k)
        items += " Euler" + std::to_string(k + 1) + "=" + Digits(turned ? angles[k] : 0.0);
      if (turned) {
        for (Vector3& node : model.nodes)
          node = Turned(axes, node);
      }
      model.settings = settings;
      model.material = "E=1000 nu=0.25 G=400 t=0.1" + items;
      for (const int node : {1, 4, 7})
        model.constraints += std::to_string(node) + " 111011 0.01 0 0.02 0 0 0" + items + "\n";
      model.rest = Block("local_pressure_loads", model.OnAll("0.3 0.1 -0.2"));
      return model;
    };
    const Solved upright(square(false).Text());
    const Solved turned(square(true).Text());
    for (int node = 1; node <= 9; ++node) {
      const std::vector<double> u = upright.Displacement(node);
      const Vector3 d = Turned(axes, {u[0], u[1], u[2]});
      const Vector3 r = Turned(axes, {u[3], u[4], u[5]});
      ExpectValues(turned.Displacement(node), {d[0], d[1], d[2], r[0], r[1], r[2]}, 1e-9);
    }
    for (const int node : {1, 4, 7}) {
      const std::vector<double> f = upright.Reaction(node);
      const Vector3 p = Turned(axes, {f[0], f[1], f[2]});
      const Vector3 m = Turned(axes, {f[3], f[4], f[5]});
      ExpectValues(turned.Reaction(node), {p[0], p[1], p[2], m[0], m[1], m[2]}, 1e-9);
    }
  }
}

namespace {

// An oblique square plate under a load along its normal. Coordinates have this number of digits.
ShellModel Oblique(int digits, const std::string& settings)
{
  const auto axes = AxesOfAngles({0.3, 0.6, -0.4});
  ShellModel plate = GridShell(8, 8, [&](double u, double v) {
    Vector3 place = Vector3{20, -15, 33} + Turned(axes, {10 * u, 10 * v, 0});
    for (double& x : place) {
      char text[40];
      std::snprintf(text, sizeof text, "%.*g", digits, x);
      x = std::stod(text);
    }
    return place;
  });
  plate.settings = settings;
  plate.material = "E=1e6 nu=0.3 G=3.846153846e5 t=0.4";
  for (int j = 0; j <= 8; ++j) {
    for (int i = 0; i <= 8; ++i) {
      if (i % 8 == 0 || j % 8 == 0)
        plate.Hold(i + 1 + 9 * j, "111111");
    }
  }
  plate.rest = Block("local_pressure_loads", plate.OnAll("0 0 1"));
  return plate;
}

double MiddleDeflection(const ShellModel& plate)
{
  const std::vector<double> u = Solved(plate.Text()).Displacement(41);
  return std::hypot(u[0], u[1], u[2]);
}

}  // namespace

// Rounding of coordinates to eight or nine digits makes folds of about the coplanarity angle.
TEST(ShellModels, ObliquePlatesOfRoundedCoordinatesSolve)
{
  for (const std::string conversion : {"", "ConvertTo6Nodes"}) {
    const double exact = MiddleDeflection(Oblique(17, conversion));
    for (const int digits : {10, 9, 8}) {
      EXPECT_NEAR(MiddleDeflection(Oblique(digits, conversion)), exact, 0.01 * exact) << digits;
      EXPECT_NEAR(MiddleDeflection(Oblique(digits, conversion + "\nCoplanarityAngle 1e-5")), exact,
                  1e-6 * exact)
          << digits;
    }
    EXPECT_NEAR(MiddleDeflection(Oblique(6, conversion + "\nCoplanarityAngle 1e-3")), exact,
                1e-4 * exact);
  }
}

TEST(ShellModels, NeedSpace)
{
  std::string text = Walls().Text();
  text.replace(text.find("3d"), 2, "2d");
  EXPECT_NE(FatalCaught([&] { Solved{text}; }), "(the run went on)");
}

}  // namespace morlen
