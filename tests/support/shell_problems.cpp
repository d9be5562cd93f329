// The shells that tests compare with published displacements, on grids of quadrilaterals that are
// cut into triangles. scripts/shell_problems.py has the same ones and more.

#include "support/shell_problems.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/loaded_beams.h"
#include "support/refined_model.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;

// A grid of this kind. Inner places of a distorted one are up to a quarter of an element away; the
// columns in `folds` are not.
ShellModel Grid(int nx, int ny, const std::function<Vector3(double, double)>& place, ShellGrid grid,
                const std::vector<int>& folds = {})
{
  // Fractions of multiples of irrational numbers are spread evenly.
  const auto shift = [](double x) { return 0.5 * std::fmod(x, 1.0) - 0.25; };
  const auto distorted = [&](double u, double v) {
    const int i = static_cast<int>(std::lround(u * nx));
    const int j = static_cast<int>(std::lround(v * ny));
    if (i == 0 || i == nx || j == 0 || j == ny || std::ranges::count(folds, i) > 0)
      return place(u, v);
    return place(u + shift(0.618034 * i + 0.754878 * j * j) / nx,
                 v + shift(0.569840 * j + 0.414214 * i * i) / ny);
  };
  if (grid == ShellGrid::Distorted)
    return GridShell(nx, ny, distorted, Cut::BothWays);
  return GridShell(nx, ny, place, grid == ShellGrid::OneWay ? Cut::OneWay : Cut::BothWays);
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

}  // namespace

double ShellProblem::Ratio(bool six) const
{
  ShellModel shell = model;
  shell.settings += std::string("\nSolver SkyLine") + (six ? "\nConvertTo6Nodes" : "");
  return Solved(shell.Text()).Displacement(node)[component - 1] / reference;
}

ShellProblem ShellProblem::Refined() const
{
  ShellProblem refined = *this;
  refined.model = morlen::Refined(model);
  return refined;
}

// A plate of 10 by 2, clamped at x = 0, with a load along its tip. The reference is a beam with
// shear.
ShellProblem Cantilever(int n, double t, ShellGrid grid)
{
  const double E = 1e6, L = 10, b = 2, P = 1;
  const int m = std::max(n / 4, 1);
  ShellProblem p{Grid(
                     n, m,
                     [&](double u, double v) {
                       return Vector3{L * u, b * v, 0};
                     },
                     grid),
                 n + 1, 3,
                 P * L * L * L / (3 * E * b * t * t * t / 12) + P * L / (E / 2 * b * t * 5 / 6)};
  p.model.material = Isotropic(E, 0, t);
  GridSupports supports(n, m);
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  p.model.rest = EdgeLoads(p.model, {0, 0, P / b}, [&](const Vector3& x) { return x[0] == L; });
  return p;
}

// A quarter of a plate of 10 by 10 under pressure. The middle of the plate is the origin, where the
// deflection is the factor times q a⁴/D.
ShellProblem SquarePlate(int n, double t, bool clamped, double factor, ShellGrid grid)
{
  const double E = 1e6, nu = 0.3;
  ShellProblem p{Grid(
                     n, n,
                     [](double u, double v) {
                       return Vector3{5 * u, 5 * v, 0};
                     },
                     grid),
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

ShellProblem Roof(int n, ShellGrid grid)
{
  const double R = 25, angle = 40 * kPi / 180;
  ShellProblem p{Grid(
                     n, n,
                     [&](double u, double v) {
                       return Vector3{R * std::sin(angle * u), 25 * v, R * std::cos(angle * u)};
                     },
                     grid),
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

ShellProblem PinchedCylinder(int n, ShellGrid grid)
{
  ShellProblem p{
      Grid(
          n, n,
          [](double u, double v) {
            return Vector3{300 * std::sin(kPi / 2 * u), 300 * v, 300 * std::cos(kPi / 2 * u)};
          },
          grid),
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
ShellProblem Hemisphere(int n, bool rotations, ShellGrid grid)
{
  ShellProblem p{Grid(
                     n, n, [](double u, double v) { return OnHemisphere(kPi / 2, u, v); }, grid),
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
ShellProblem WholeHemisphere(int n, ShellGrid grid)
{
  const int around = 4 * n;
  const ShellModel whole = Grid(
      around, n, [](double u, double v) { return OnHemisphere(2 * kPi, u, v); }, grid);
  ShellProblem p{{}, 1, 1, 0.0924};
  for (std::size_t i = 0; i < whole.nodes.size(); ++i) {
    if (static_cast<int>(i) % (around + 1) != around)
      p.model.nodes.push_back(whole.nodes[i]);
  }
  p.model.triangles = whole.triangles;
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
ShellProblem TwistedStrip(int n, double t, int component, double reference, ShellGrid grid)
{
  ShellProblem p{Grid(
                     6 * n, n,
                     [](double u, double v) {
                       const double y = 1.1 * (v - 0.5);
                       return Vector3{12 * u, y * std::cos(kPi / 2 * u), y * std::sin(kPi / 2 * u)};
                     },
                     grid),
                 6 * n + 1 + (6 * n + 1) * (n / 2), component, reference};
  p.model.material = Isotropic(29e6, 0.22, t);
  GridSupports supports(6 * n, n);
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  std::array<double, 6> force{};
  force[component - 1] = 1.0;
  p.model.Load(p.node, force);
  return p;
}

// A tapered panel in its plane, under a shear of 1 on its right side. The deflection in the middle
// of the side is that of fine meshes.
ShellProblem TaperedPanel(int n, ShellGrid grid)
{
  ShellProblem p{Grid(
                     n, n,
                     [](double u, double v) {
                       return Vector3{48 * u, 44 * u + v * (44 - 28 * u), 0};
                     },
                     grid),
                 (n + 1) * (n / 2 + 1), 2, 23.965};
  p.model.material = Isotropic(1, 1 / 3.0, 1);
  GridSupports supports(n, n);
  for (int node = 1; node <= (n + 1) * (n + 1); ++node)
    supports.Node(node, "001110");
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  p.model.rest =
      EdgeLoads(p.model, {0, 1 / 16.0, 0}, [](const Vector3& x) { return x[0] > 47.99; });
  return p;
}

// A beam of 10 by 1 in its plane, n / 4 elements deep, under a shear of 1 on its end. The clamped
// end is free to get narrower. The reference is a beam with shear.
ShellProblem DeepBeam(int n, ShellGrid grid)
{
  const double E = 1e6, nu = 0.3, L = 10, t = 0.1, G = E / 2 / (1 + nu);
  const int m = n / 4;
  ShellProblem p{Grid(
                     10 * m, m,
                     [](double u, double v) {
                       return Vector3{10 * u, v, 0};
                     },
                     grid),
                 10 * m + 1, 2, L * L * L / (3 * E * t / 12) + 1.2 * L / (G * t)};
  p.model.material = Isotropic(E, nu, t);
  GridSupports supports(10 * m, m);
  for (int node = 1; node <= (10 * m + 1) * (m + 1); ++node)
    supports.Node(node, "001110");
  supports.Column(0, "101111");
  supports.Node(1, "010000");
  supports.ApplyTo(p.model);
  p.model.rest = EdgeLoads(p.model, {0, 1, 0}, [](const Vector3& x) { return x[0] > 9.99; });
  return p;
}

// Two arcs: radius 14 over 60 degrees with n elements, clamped, and radius 46 over 150 degrees with
// 5 n; 20 wide. A force of 1 across the arcs is spread over the end.
ShellProblem Hook(int n, ShellGrid grid)
{
  const double turn = kPi / 3;
  const auto place = [&](double u, double v) {
    if (u <= 1 / 6.0)
      return Vector3{14 * std::sin(6 * u * turn), 14 - 14 * std::cos(6 * u * turn), 20 * v};
    const double a = turn - (u - 1 / 6.0) * kPi;
    return Vector3{60 * std::sin(turn) - 46 * std::sin(a),
                   14 - 60 * std::cos(turn) + 46 * std::cos(a), 20 * v};
  };
  ShellProblem p{Grid(6 * n, n, place, grid, {n}), (6 * n + 1) * (n / 2 + 1), 3, 4.9352};
  p.model.material = Isotropic(3300, 0.35, 2);
  GridSupports supports(6 * n, n);
  supports.Column(0, "111111");
  supports.ApplyTo(p.model);
  const Vector3 end = place(1, 0);
  p.model.rest = EdgeLoads(p.model, {0, 0, 1 / 20.0}, [&](const Vector3& x) {
    return std::hypot(x[0] - end[0], x[1] - end[1]) < 1e-6;
  });
  return p;
}

}  // namespace morlen
