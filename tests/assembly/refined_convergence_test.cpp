// Refined shells against published displacements, on grids of 8 or 16 elements a side. The bands
// are about the literature's values: errors of a percent or two, on any grid, where standard shells
// are several times too soft or too stiff. All grids and finer meshes: docs/verification.md.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/loaded_beams.h"
#include "support/shell_problems.h"

namespace morlen {

namespace {

struct Limits
{
  double three, six;  ///< the largest relative error with three nodes and with six
};

using ProblemOn = std::function<ShellProblem(ShellGrid)>;

void ExpectWithin(const ProblemOn& problem, const Limits& regular, const Limits& distorted)
{
  for (const ShellGrid grid : {ShellGrid::Alternating, ShellGrid::OneWay, ShellGrid::Distorted}) {
    const Limits& limits = grid == ShellGrid::Distorted ? distorted : regular;
    const ShellProblem refined = problem(grid).Refined();
    SCOPED_TRACE("grid " + std::to_string(static_cast<int>(grid)));
    EXPECT_NEAR(refined.Ratio(false), 1.0, limits.three);
    EXPECT_NEAR(refined.Ratio(true), 1.0, limits.six);
  }
}

// A slab of 12 by 4, t = 0.2, nu = 0, over two spans: on lines of supports at its ends and in its
// middle, where the middle nodes of the conversion have no supports.
ShellModel SlabOverTwoSpans(int n)
{
  ShellModel slab = GridShell(
      2 * n, n / 2,
      [](double u, double v) {
        return Vector3{12 * u, 4 * v, 0};
      },
      Cut::BothWays);
  slab.settings = "ShellFormulation Refined\nSolver SkyLine\nConvertTo6Nodes";
  slab.material = "E=3e7 nu=0 G=1.5e7 t=0.2";
  for (const double x : {0.0, 6.0, 12.0}) {
    for (const int node : NodesWhere(slab, [&](const Vector3& at) { return at[0] == x; }))
      slab.Hold(node, "001000");
  }
  slab.Hold(1, "110001");
  slab.Hold(2 * n + 1, "010000");
  slab.rest = Block("global_pressure_loads", slab.OnAll("0 0 -10"));
  return slab;
}

}  // namespace

// Roof, cylinder, hemisphere and the thick strip: R. H. MacNeal, R. L. Harder, A proposed standard
// set of problems to test finite element accuracy, Finite Elements in Analysis and Design 1 (1985).
TEST(RefinedConvergence, CylindricalRoof)
{
  const auto roof = [](int n) { return [=](ShellGrid grid) { return Roof(n, grid); }; };
  ExpectWithin(roof(8), {0.03, 0.01}, {0.05, 0.015});
  ExpectWithin(roof(16), {0.01, 0.004}, {0.01, 0.004});
}

// A wave of bending of 0.1 of the radius is under the force: eight elements are few.
TEST(RefinedConvergence, PinchedCylinder)
{
  ExpectWithin([](ShellGrid grid) { return PinchedCylinder(8, grid); }, {0.16, 0.11}, {0.2, 0.15});
  ExpectWithin([](ShellGrid grid) { return PinchedCylinder(16, grid); }, {0.02, 0.02},
               {0.02, 0.03});
}

TEST(RefinedConvergence, Hemisphere)
{
  ExpectWithin([](ShellGrid grid) { return Hemisphere(8, true, grid); }, {0.01, 0.1}, {0.05, 0.15});
  ExpectWithin([](ShellGrid grid) { return Hemisphere(16, true, grid); }, {0.01, 0.01},
               {0.02, 0.03});
}

// The thin strip, t = 0.0032: T. Belytschko, H. Stolarski, W. K. Liu, N. Carpenter, J. S.-J. Ong,
// Stress projection for membrane and shear locking, Comput. Methods Appl. Mech. Engrg. 51 (1985).
TEST(RefinedConvergence, TwistedStrip)
{
  const auto strip = [](double t, int component, double reference) {
    return [=](ShellGrid grid) { return TwistedStrip(8, t, component, reference, grid); };
  };
  ExpectWithin(strip(0.32, 3, 5.424e-3), {0.005, 0.003}, {0.005, 0.003});
  ExpectWithin(strip(0.32, 2, 1.754e-3), {0.005, 0.003}, {0.005, 0.003});
  // Stiff on coarse distorted grids: the facets warp.
  ExpectWithin(strip(0.0032, 3, 5256), {0.02, 0.02}, {0.2, 0.15});
  ExpectWithin(strip(0.0032, 2, 1294), {0.02, 0.02}, {0.2, 0.15});
}

TEST(RefinedConvergence, SimplySupportedPlate)
{
  for (const double t : {1.0, 0.1, 0.01}) {
    ExpectWithin([=](ShellGrid grid) { return SquarePlate(8, t, false, SupportedFactor(t), grid); },
                 {0.005, 0.005}, {0.006, 0.006});
  }
}

// Mindlin's theory by Ritz's method, scripts/shell_problems.py.
TEST(RefinedConvergence, ClampedPlate)
{
  const struct
  {
    double t, factor;
  } plates[] = {{1.0, 0.0015046}, {0.1, 0.0012678}, {0.01, 0.0012653}};
  for (const auto& plate : plates) {
    ExpectWithin([&](ShellGrid grid) { return SquarePlate(8, plate.t, true, plate.factor, grid); },
                 {0.02, 0.016}, {0.015, 0.02});
    ExpectWithin([&](ShellGrid grid) { return SquarePlate(16, plate.t, true, plate.factor, grid); },
                 {0.006, 0.004}, {0.004, 0.005});
  }
}

// 23.965 is the limit of fine meshes: Cook, Malkus, Plesha, Concepts and Applications of Finite
// Element Analysis.
TEST(RefinedConvergence, TaperedPanel)
{
  ExpectWithin([](ShellGrid grid) { return TaperedPanel(16, grid); }, {0.025, 0.003},
               {0.02, 0.003});
}

TEST(RefinedConvergence, DeepBeam)
{
  ExpectWithin([](ShellGrid grid) { return DeepBeam(8, grid); }, {0.01, 0.002}, {0.01, 0.002});
}

// 4.9352 is without shear deformation, with it about 5.02: N. F. Knight, Raasch challenge for shell
// elements, AIAA Journal 35 (1997).
TEST(RefinedConvergence, Hook)
{
  ExpectWithin([](ShellGrid grid) { return Hook(8, grid); }, {0.03, 0.02}, {0.03, 0.02});
}

// The slab is a beam with shear over two spans l under q: the moment over the support is
// q l²/8 / (1 + 3EI/GA'l²).
TEST(RefinedConvergence, ASlabOverAnInteriorLineOfSupportsConverges)
{
  const double l = 6, b = 4, q = 10, EI = 3e7 * 0.008 / 12, GA = 1.5e7 * 0.2 * 5 / 6;
  const double M = q * l * l / 8 / (1 + 3 * EI / GA / l / l);
  const double deflection =
      5 * q * l * l * l * l / 384 / EI + q * l * l / 8 / GA - M * l * l / 16 / EI;
  const struct
  {
    int n;
    double limit;
  } grids[] = {{8, 0.01}, {16, 0.003}};
  for (const auto& grid : grids) {
    const ShellModel slab = SlabOverTwoSpans(grid.n);
    const Solved solved(slab.Text());
    const int middle = grid.n / 2 + 1 + grid.n / 4 * (2 * grid.n + 1);
    EXPECT_NEAR(solved.Displacement(middle)[2] / -deflection, 1.0, grid.limit);
    double reaction = 0.0;
    for (const int node : NodesWhere(slab, [](const Vector3& x) { return x[0] == 6.0; }))
      reaction += solved.Reaction(node)[2];
    EXPECT_NEAR(reaction / (b * (q * l + 2 * M / l)), 1.0, grid.limit / 5);
  }
}

// Timoshenko and Woinowsky-Krieger, Theory of Plates and Shells, 2nd ed., tables 8 and 35: moments
// in the middle, 0.0479 q a² supported and 0.0231 clamped, with sides of 10.
TEST(RefinedConvergence, MomentsOfPlates)
{
  for (const bool clamped : {false, true}) {
    for (const char* nodes : {"", "\nConvertTo6Nodes"}) {
      ShellModel plate = SquarePlate(16, 0.1, clamped, 1.0).Refined().model;
      plate.settings += nodes;
      const Solved solved(plate.Text());
      // The triangle at the middle of the plate; its points are up to half an element away.
      for (const ShellForces& forces : ForcesOf(solved, 1)) {
        for (const int component : {3, 4})
          EXPECT_NEAR(forces[component] / (clamped ? 2.31 : 4.79), 1.0, 0.025);
      }
    }
  }
}

// On the same meshes the standard element of three nodes locks, and that of six softens.
TEST(RefinedConvergence, StandardShellsAreFarFromTheseValues)
{
  EXPECT_LT(Roof(8).Ratio(false), 0.5);
  EXPECT_LT(Hemisphere(8, true).Ratio(true), 0.5);
  EXPECT_GT(TwistedStrip(8, 0.32, 3, 5.424e-3).Ratio(true), 1.5);
  EXPECT_GT(Hook(8).Ratio(true), 1.3);
}

}  // namespace morlen
