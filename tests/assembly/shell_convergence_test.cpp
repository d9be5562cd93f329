// Shells on coarse meshes against published solutions and closed forms. The computed value divided
// by the reference must be in a band. For finer meshes see docs/verification.md.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "support/loaded_beams.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;

struct ConvergenceCase
{
  ShellModel model;
  int node;       ///< the node of the compared displacement
  int component;  ///< from 1
  double reference;
};

double Ratio(ConvergenceCase problem, bool six)
{
  problem.model.settings += std::string("\nSolver SkyLine") + (six ? "\nConvertTo6Nodes" : "");
  return Solved(problem.model.Text()).Displacement(problem.node)[problem.component - 1] /
         problem.reference;
}

std::string Isotropic(double E, double nu, double t)
{
  return "E=" + Digits(E) + " nu=" + Digits(nu) + " G=" + Digits(E / 2 / (1 + nu)) +
         " t=" + Digits(t);
}

// Collects the supports of a grid of n by m quadrilaterals line by line.
class GridSupports
{
public:
  GridSupports(int nx, int ny) : n(nx), m(ny), flags((nx + 1) * (ny + 1), "000000") {}

  void Column(int i, const std::string& held)  // i = 0 or n
  {
    for (int j = 0; j <= m; ++j)
      Merge(i + j * (n + 1), held);
  }
  void Row(int j, const std::string& held)
  {
    for (int i = 0; i <= n; ++i)
      Merge(i + j * (n + 1), held);
  }
  void Node(int node, const std::string& held) { Merge(node - 1, held); }

  void ApplyTo(ShellModel& model) const
  {
    for (std::size_t i = 0; i < flags.size(); ++i) {
      if (flags[i] != "000000")
        model.Hold(static_cast<int>(i) + 1, flags[i]);
    }
  }

private:
  void Merge(int index, const std::string& held)
  {
    for (int k = 0; k < 6; ++k) {
      if (held[k] == '1')
        flags[index][k] = '1';
    }
  }

  int n, m;
  std::vector<std::string> flags;
};

// A plate of 10 by 2, clamped at x = 0, with a load along its tip. The reference is a beam with
// shear.
ConvergenceCase Cantilever(int n, double t)
{
  const double E = 1e6, L = 10, b = 2, P = 1;
  const int m = std::max(n / 4, 1);
  ConvergenceCase p{GridShell(
                        n, m,
                        [&](double u, double v) {
                          return Vector3{L * u, b * v, 0};
                        },
                        Cut::BothWays),
                    n + 1, 3,
                    P * L * L * L / (3 * E * b * t * t * t / 12) + P * L / (E / 2 * b * t * 5 / 6)};
  p.model.material = Isotropic(E, 0, t);
  GridSupports supports(n, m);
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  std::string edges;
  for (std::size_t i = 0; i < p.model.triangles.size(); ++i) {
    for (int k = 0; k < 3; ++k) {
      const auto at = [&](int corner) {
        return p.model.nodes[p.model.triangles[i][corner % 3] - 1];
      };
      if (at(k)[0] == L && at(k + 1)[0] == L)
        edges += std::to_string(i + 1) + " " + std::to_string(k) + " 0 0 " + Digits(P / b) + "\n";
    }
  }
  p.model.rest = Block("face_loads", edges);
  return p;
}

// A quarter of a plate of 10 by 10 under pressure. The middle of the plate is the origin, where the
// deflection is the factor times q a⁴/D.
ConvergenceCase Plate(int n, double t, bool clamped, double factor)
{
  const double E = 1e6, nu = 0.3;
  ConvergenceCase p{GridShell(
                        n, n,
                        [](double u, double v) {
                          return Vector3{5 * u, 5 * v, 0};
                        },
                        Cut::BothWays),
                    1, 3, factor * 1e4 / (E * t * t * t / 12 / (1 - nu * nu))};
  p.model.material = Isotropic(E, nu, t);
  GridSupports supports(n, n);
  supports.Column(0, "100011");
  supports.Row(0, "010101");
  supports.Column(n, clamped ? "111111" : "111100");
  supports.Row(n, clamped ? "111111" : "111010");
  supports.ApplyTo(p.model);
  p.model.rest = Block("global_pressure_loads", p.model.OnAll("0 0 1"));
  return p;
}

// The deflection of the middle of a simply supported plate with sides of 10: Navier's series with
// the shear of Mindlin's theory.
double SupportedFactor(double t)
{
  const double nu = 0.3, D = 1 / (12 * (1 - nu * nu)) * t * t * t;
  const double shear = 5.0 / 6 * t / (2 * (1 + nu));
  double sum = 0.0;
  for (int m = 1; m < 200; m += 2) {
    for (int n = 1; n < 200; n += 2) {
      const double k = (m * m + n * n) * kPi * kPi / 100;
      const double sign = (m + n) / 2 % 2 == 1 ? 1 : -1;
      sum += sign * 16 / (kPi * kPi * m * n) * (1 / (D * k * k) + 1 / (shear * k));
    }
  }
  return sum * D / 1e4;
}

ConvergenceCase Roof(int n)
{
  const double R = 25, angle = 40 * kPi / 180;
  ConvergenceCase p{GridShell(
                        n, n,
                        [&](double u, double v) {
                          return Vector3{R * std::sin(angle * u), 25 * v, R * std::cos(angle * u)};
                        },
                        Cut::BothWays),
                    n + 1, 3, -0.3024};
  p.model.material = Isotropic(4.32e8, 0, 0.25) + " Weight=360";
  p.model.settings = "GravityDirection 0 0 -1";
  GridSupports supports(n, n);
  supports.Column(0, "100011");
  supports.Row(0, "010101");
  supports.Row(n, "101000");
  supports.ApplyTo(p.model);
  return p;
}

ConvergenceCase PinchedCylinder(int n)
{
  ConvergenceCase p{
      GridShell(
          n, n,
          [](double u, double v) {
            return Vector3{300 * std::sin(kPi / 2 * u), 300 * v, 300 * std::cos(kPi / 2 * u)};
          },
          Cut::BothWays),
      1, 3, -1.8248e-5};
  p.model.material = Isotropic(3e6, 0.3, 3);
  GridSupports supports(n, n);
  supports.Column(0, "100011");
  supports.Column(n, "001110");
  supports.Row(0, "010101");
  supports.Row(n, "101000");
  supports.ApplyTo(p.model);
  p.model.Load(1, {0, 0, -0.25, 0, 0, 0});
  return p;
}

// The place on the hemisphere of radius 10 at the part u of a sector and the part v of the height.
Vector3 OnHemisphere(double sector, double u, double v)
{
  const double a = sector * u, b = 72 * kPi / 180 * v;
  return {10 * std::cos(a) * std::cos(b), 10 * std::sin(a) * std::cos(b), 10 * std::sin(b)};
}

// A quarter. Its symmetry planes hold the displacement across them, and their rotations or not.
ConvergenceCase Hemisphere(int n, bool rotations)
{
  ConvergenceCase p{
      GridShell(
          n, n, [](double u, double v) { return OnHemisphere(kPi / 2, u, v); }, Cut::BothWays),
      1, 1, 0.0924};
  p.model.material = Isotropic(6.825e7, 0.3, 0.04);
  GridSupports supports(n, n);
  supports.Column(0, rotations ? "010101" : "010000");
  supports.Column(n, rotations ? "100011" : "100000");
  supports.Node(1, "001000");
  supports.ApplyTo(p.model);
  p.model.Load(1, {1, 0, 0, 0, 0, 0});
  p.model.Load(n + 1, {0, -1, 0, 0, 0, 0});
  return p;
}

// The same without symmetry planes: four times as many elements around. The last column of the grid
// is the first one.
ConvergenceCase WholeHemisphere(int n)
{
  const int around = 4 * n;
  ShellModel grid = GridShell(
      around, n, [](double u, double v) { return OnHemisphere(2 * kPi, u, v); }, Cut::BothWays);
  ConvergenceCase p{{}, 1, 1, 0.0924};
  for (std::size_t i = 0; i < grid.nodes.size(); ++i) {
    if (static_cast<int>(i) % (around + 1) != around)
      p.model.nodes.push_back(grid.nodes[i]);
  }
  p.model.triangles = grid.triangles;
  for (std::vector<int>& triangle : p.model.triangles) {
    for (int& node : triangle)
      node = 1 + (node - 1) % (around + 1) % around + (node - 1) / (around + 1) * around;
  }
  p.model.material = Isotropic(6.825e7, 0.3, 0.04);
  // At the loaded points symmetry leaves the held components 0.
  p.model.Hold(1, "011000");
  p.model.Hold(1 + n, "101000");
  p.model.Hold(1 + 2 * n, "011000");
  p.model.Load(1, {2, 0, 0, 0, 0, 0});
  p.model.Load(1 + n, {0, -2, 0, 0, 0, 0});
  p.model.Load(1 + 2 * n, {-2, 0, 0, 0, 0, 0});
  p.model.Load(1 + 3 * n, {0, 2, 0, 0, 0, 0});
  return p;
}

// A strip that is twisted by a quarter turn over its length. At the tip its width is along z.
ConvergenceCase TwistedStrip(int n, int component)
{
  ConvergenceCase p{
      GridShell(
          6 * n, n,
          [](double u, double v) {
            const double y = 1.1 * (v - 0.5);
            return Vector3{12 * u, y * std::cos(kPi / 2 * u), y * std::sin(kPi / 2 * u)};
          },
          Cut::BothWays),
      6 * n + 1 + (6 * n + 1) * (n / 2), component, component == 3 ? 5.424e-3 : 1.754e-3};
  p.model.material = Isotropic(29e6, 0.22, 0.32);
  GridSupports supports(6 * n, n);
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  std::array<double, 6> force{};
  force[component - 1] = 1.0;
  p.model.Load(p.node, force);
  return p;
}

struct Band
{
  std::function<ConvergenceCase()> problem;
  bool six;
  double low, high;
};

void ExpectInBands(const std::vector<Band>& bands)
{
  for (std::size_t i = 0; i < bands.size(); ++i) {
    const double ratio = Ratio(bands[i].problem(), bands[i].six);
    EXPECT_GT(ratio, bands[i].low) << "line " << i + 1;
    EXPECT_LT(ratio, bands[i].high) << "line " << i + 1;
  }
}

}  // namespace

TEST(ShellConvergence, CantileverPlate)
{
  ExpectInBands({
      {[] { return Cantilever(4, 2.0); }, true, 0.995, 1.001},
      {[] { return Cantilever(4, 0.1); }, true, 0.99, 1.001},
      {[] { return Cantilever(16, 0.1); }, true, 0.998, 1.001},
      // Triangles of three nodes are accurate for thick plates and far too stiff for thin ones.
      {[] { return Cantilever(16, 2.0); }, false, 0.98, 1.0},
      {[] { return Cantilever(16, 0.5); }, false, 0.85, 0.92},
      {[] { return Cantilever(16, 0.1); }, false, 0.3, 0.5},
  });
}

// Timoshenko and Woinowsky-Krieger give 0.00406 for the thin plate.
TEST(ShellConvergence, SimplySupportedPlate)
{
  EXPECT_NEAR(SupportedFactor(0.01), 0.0040624, 1e-6);
  const auto plate = [](int n, double t) {
    return [=] { return Plate(n, t, false, SupportedFactor(t)); };
  };
  ExpectInBands({
      {plate(4, 2.0), true, 0.995, 1.001},
      {plate(4, 1.0), true, 0.99, 1.001},
      {plate(8, 0.1), true, 0.99, 1.001},
      {plate(8, 2.0), false, 0.96, 0.98},
      {plate(16, 1.0), false, 0.97, 0.985},
      {plate(8, 0.1), false, 0.08, 0.15},
  });
}

// 0.0012653: series for the thin plate (Timoshenko and Woinowsky-Krieger: 0.00126); 0.0015045
// and 0.0021721: Mindlin's theory by Ritz's method, scripts/verify_shells.py.
TEST(ShellConvergence, ClampedPlate)
{
  const auto plate = [](int n, double t, double factor) {
    return [=] { return Plate(n, t, true, factor); };
  };
  ExpectInBands({
      {plate(4, 2.0, 0.0021721), true, 0.995, 1.001},
      {plate(4, 1.0, 0.0015045), true, 0.985, 1.001},
      {plate(8, 0.1, 0.0012653), true, 0.98, 1.001},
      {plate(8, 2.0, 0.0021721), false, 0.97, 0.99},
      {plate(16, 1.0, 0.0015045), false, 0.98, 0.99},
      {plate(8, 0.1, 0.0012653), false, 0.15, 0.22},
  });
}

// 0.3024, 1.8248e-5, 0.0924, 5.424e-3 and 1.754e-3: R. H. MacNeal, R. L. Harder, A proposed
// standard set of problems to test finite element accuracy, Finite Elements in Analysis and
// Design 1 (1985).
TEST(ShellConvergence, CylindricalRoof)
{
  ExpectInBands({
      {[] { return Roof(4); }, true, 0.83, 0.88},
      {[] { return Roof(8); }, true, 0.95, 1.0},
      {[] { return Roof(8); }, false, 0.1, 0.25},
  });
}

TEST(ShellConvergence, PinchedCylinder)
{
  ExpectInBands({
      {[] { return PinchedCylinder(8); }, true, 0.58, 0.66},
      {[] { return PinchedCylinder(16); }, true, 0.86, 0.91},
      {[] { return PinchedCylinder(8); }, false, 0.15, 0.25},
  });
}

// Supports of symmetry planes hold two rotations. The drilling stiffness of their coplanar nodes,
// the middles and the ends, acts about a normal that is tilted against the plane and brakes the
// third one. Without the held rotations, or without symmetry planes, the hemisphere moves.
// Triangles of three nodes lock.
TEST(ShellConvergence, SymmetryPlanesHoldTheHemisphere)
{
  ExpectInBands({
      {[] { return Hemisphere(8, true); }, true, 0.0, 0.01},
      {[] { return Hemisphere(8, false); }, true, 0.5, 0.65},
      {[] { return WholeHemisphere(8); }, true, 0.3, 0.5},
      {[] { return WholeHemisphere(16); }, true, 0.87, 1.0},
      {[] { return Hemisphere(8, true); }, false, 0.0, 0.05},
      {[] { return WholeHemisphere(8); }, false, 0.0, 0.05},
  });
}

// The triangles are not larger than the thickness of the strip: folds transfer too little torsion.
TEST(ShellConvergence, TwistedStripIsTooSoftInTriangles)
{
  ExpectInBands({
      {[] { return TwistedStrip(2, 3); }, true, 1.1, 1.3},
      {[] { return TwistedStrip(2, 2); }, true, 1.1, 1.3},
      {[] { return TwistedStrip(2, 3); }, false, 0.5, 0.7},
      {[] { return TwistedStrip(2, 2); }, false, 0.5, 0.7},
  });
}

}  // namespace morlen
