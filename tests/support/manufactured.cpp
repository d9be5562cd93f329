// Manufactured solutions: smooth displacement fields and the loads that cause them. The order of
// convergence follows from the L2 norm of the error on a grid and on one with twice as many cells
// in each direction. Norms and loads are computed by quadrature.

#include <cmath>
#include <functional>
#include <numbers>
#include <utility>

#include "support/loaded_beams.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/verification.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;

/// A field on the unit square or cube.
using Field = std::function<Vector3(const Vector3&)>;

/// A point of a quadrature over a simplex: one coordinate for each corner, and the weight as a part
/// of the simplex.
struct Point
{
  std::vector<double> corners;
  double weight;
};

/// The conical product rule: Gauss's rule of three points in each direction of a square or cube,
/// one side of which is collapsed to a point (A. H. Stroud, Approximate Calculation of Multiple
/// Integrals, 1971).
std::vector<Point> Quadrature(int dimension)
{
  const double off = std::sqrt(0.15);
  const std::pair<double, double> line[] = {
      {0.5 - off, 5.0 / 18}, {0.5, 8.0 / 18}, {0.5 + off, 5.0 / 18}};
  std::vector<Point> points = {{{1.0}, 1.0}};
  for (int d = 1; d <= dimension; ++d) {
    std::vector<Point> next;
    for (const Point& point : points) {
      for (const auto& [u, weight] : line) {
        Point split = {{u}, d * point.weight * weight * std::pow(1 - u, d - 1)};
        for (const double corner : point.corners)
          split.corners.push_back((1 - u) * corner);
        next.push_back(split);
      }
    }
    points = next;
  }
  return points;
}

/// The shape functions of the corners, then those of the nodes in the middle of the edges.
std::vector<double> Shapes(const std::vector<double>& L, std::size_t count)
{
  if (count == L.size())
    return L;
  std::vector<double> N;
  for (const double l : L)
    N.push_back(l * (2 * l - 1));
  if (L.size() == 3) {
    for (int i = 0; i < 3; ++i)
      N.push_back(4 * L[i] * L[(i + 1) % 3]);
    return N;
  }
  N.resize(count);
  for (int i = 0; i < 4; ++i) {
    for (int j = i + 1; j < 4; ++j)
      N[MiddleOf(i, j)] = 4 * L[i] * L[j];
  }
  return N;
}

/// Nodes and elements with straight sides.
struct Grid
{
  std::vector<Vector3> nodes;
  std::vector<std::vector<int>> elements;
  int dimension;

  /// Calls visit(element, shape functions, place, part of the area or volume) for each point of the
  /// quadrature.
  template <class Visit>
  void ForEachPoint(Visit visit) const
  {
    const std::vector<Point> points = Quadrature(dimension);
    for (const std::vector<int>& element : elements) {
      const double size = SizeOf(element);
      for (const Point& point : points) {
        Vector3 place{};
        for (int i = 0; i <= dimension; ++i)
          place = place + point.corners[i] * nodes[element[i] - 1];
        visit(element, Shapes(point.corners, element.size()), place, size * point.weight);
      }
    }
  }

  /// The nodal forces that are equivalent to a load per area or volume.
  std::vector<Vector3> NodalForces(const Field& load) const
  {
    std::vector<Vector3> forces(nodes.size());
    ForEachPoint([&](const std::vector<int>& element, const std::vector<double>& N,
                     const Vector3& place, double size) {
      const Vector3 b = load(place);
      for (std::size_t i = 0; i < N.size(); ++i)
        forces[element[i] - 1] = forces[element[i] - 1] + size * N[i] * b;
    });
    return forces;
  }

  /// The L2 norm of the difference between the field and the computed displacements.
  double Error(const Solved& solved, const Field& field) const
  {
    std::vector<Vector3> u;
    for (std::size_t i = 1; i <= nodes.size(); ++i) {
      const std::vector<double> all = solved.Displacement(static_cast<int>(i));
      u.push_back({all[0], all[1], all[2]});
    }
    double sum = 0.0;
    ForEachPoint([&](const std::vector<int>& element, const std::vector<double>& N,
                     const Vector3& place, double size) {
      Vector3 missing = field(place);
      for (std::size_t i = 0; i < N.size(); ++i)
        missing = missing - N[i] * u[element[i] - 1];
      sum += size * Dot(missing, missing);
    });
    return std::sqrt(sum);
  }

private:
  double SizeOf(const std::vector<int>& element) const
  {
    const Vector3 a = nodes[element[1] - 1] - nodes[element[0] - 1];
    const Vector3 b = nodes[element[2] - 1] - nodes[element[0] - 1];
    const Vector3 c = Cross(a, b);
    return dimension == 2 ? std::sqrt(Dot(c, c)) / 2
                          : std::fabs(Dot(c, nodes[element[3] - 1] - nodes[element[0] - 1])) / 6;
  }
};

double S(double x)
{
  return std::sin(kPi * x);
}

double C(double x)
{
  return std::cos(kPi * x);
}

// --- Membrane and plate: the unit square, E = 1000, nu = 0.3, t = 0.1 ---

constexpr double kE = 1000.0;
constexpr double kNu = 0.3;
constexpr double kT = 0.1;
constexpr double kG = kE / (2 * (1 + kNu));

Vector3 MembraneField(const Vector3& p)
{
  return {S(p[0]) * S(p[1]), S(p[0]) * S(2 * p[1]), 0};
}

// Minus the divergence of the stresses of plane stress.
Vector3 MembraneLoad(const Vector3& p)
{
  const Vector3 u = MembraneField(p);
  const double mixedU = C(p[0]) * C(p[1]);
  const double mixedV = 2 * C(p[0]) * C(2 * p[1]);
  const double factor = kT * kE / (1 - kNu * kNu) * kPi * kPi;
  const double shear = (1 - kNu) / 2;
  return {factor * ((1 + shear) * u[0] - (1 + kNu) / 2 * mixedV),
          factor * ((4 + shear) * u[1] - (1 + kNu) / 2 * mixedU), 0};
}

Vector3 PlateLoad(const Vector3& p)
{
  return {0, 0, S(p[0]) * S(p[1])};
}

// Navier's solution with shear (Mindlin 1951): each amplitude is the load divided by its stiffness.
Vector3 PlateField(const Vector3& p)
{
  const double bending = 4 * std::pow(kPi, 4) * kE * kT * kT * kT / (12 * (1 - kNu * kNu));
  const double shear = 2 * kPi * kPi * 5.0 / 6 * kG * kT;
  return (1 / bending + 1 / shear) * PlateLoad(p);
}

bool IsEnd(double x)
{
  return x < 1e-9 || x > 1 - 1e-9;
}

/// Holds the edges. With `bending` the rotation about an edge stays free.
void HoldEdges(ShellModel& model, bool bending)
{
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const bool x = IsEnd(model.nodes[i][0]);
    const bool y = IsEnd(model.nodes[i][1]);
    if (x || y)
      model.Hold(static_cast<int>(i) + 1, !bending || (x && y) ? "111111"
                                          : x                  ? "111101"
                                                               : "111011");
  }
}

double ShellError(int n, bool six, const Field& field, const Field& load, bool bending)
{
  ShellModel model = GridShell(
      n, n,
      [](double u, double v) {
        return Vector3{u, v, 0};
      },
      Cut::BothWays);
  if (six)
    model = WithMidSideNodes(model);
  model.settings = "Solver SkyLine";
  model.material = "E=1000 nu=0.3 G=" + Digits(kG) + " t=0.1";
  HoldEdges(model, bending);
  const Grid grid = {model.nodes, model.triangles, 2};
  const std::vector<Vector3> forces = grid.NodalForces(load);
  for (std::size_t i = 0; i < forces.size(); ++i)
    model.Load(static_cast<int>(i) + 1, {forces[i][0], forces[i][1], forces[i][2], 0, 0, 0});
  return grid.Error(Solved(model.Text()), field);
}

// --- Solid: the unit cube, E = 1000, nu = 0.25, so that both constants of Lamé are 400 ---

constexpr double kLame = 400.0;
constexpr Vector3 kParts = {1.0, -0.5, 0.7};

Vector3 SolidField(const Vector3& p)
{
  return S(p[0]) * S(p[1]) * S(p[2]) * kParts;
}

// -(λ + μ) grad div u - μ div grad u.
Vector3 SolidLoad(const Vector3& p)
{
  const double f = S(p[0]) * S(p[1]) * S(p[2]);
  Vector3 load = 3 * kLame * kPi * kPi * f * kParts;
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) {
      const double mixed = i == k ? -f : C(p[i]) * C(p[k]) * S(p[3 - i - k]);
      load[i] -= 2 * kLame * kPi * kPi * kParts[k] * mixed;
    }
  }
  return load;
}

double SolidError(int n, int nnode)
{
  SolidModel model = SolidBlock({n, n, n}, {1, 1, 1}, nnode);
  model.settings = "Solver SkyLine";
  const Grid grid = {model.nodes, model.elements, 3};
  model.Prescribe(model.OuterNodes(), [](const Vector3&) { return Vector3{}; });
  const std::vector<Vector3> forces = grid.NodalForces(SolidLoad);
  for (std::size_t i = 0; i < forces.size(); ++i)
    model.loads[static_cast<int>(i) + 1] = forces[i];
  return grid.Error(Solved(model.Text()), SolidField);
}

VerifiedResult Order(const std::string& problem, const std::string& source, double expected, int n,
                     const std::function<double(int)>& error, double tolerance = 0.1)
{
  return {problem + ", grids of " + std::to_string(n) + " and " + std::to_string(2 * n),
          source,
          "order of convergence",
          expected,
          std::log2(error(n) / error(2 * n)),
          tolerance};
}

}  // namespace

VerifiedSection ManufacturedSolutions()
{
  const auto membrane = [](bool six) {
    return [six](int n) { return ShellError(n, six, MembraneField, MembraneLoad, false); };
  };
  const auto plate = [](bool six) {
    return [six](int n) { return ShellError(n, six, PlateField, PlateLoad, true); };
  };
  const auto solid = [](int nnode) { return [nnode](int n) { return SolidError(n, nnode); }; };
  const std::string theory = "Strang and Fix, degree of the shape functions + 1";
  const std::string observed = "the same; locking fades beside it";
  return {"Manufactured solutions",
          {Order("Membrane, 3 nodes", theory, 2, 12, membrane(false)),
           Order("Membrane, 6 nodes", theory, 3, 6, membrane(true)),
           Order("Plate, t = a/10, 3 nodes", observed, 2, 12, plate(false), 0.15),
           Order("Plate, t = a/10, 6 nodes", observed, 3, 6, plate(true), 0.15),
           Order("Solid, 4 nodes", theory, 2, 6, solid(4)),
           Order("Solid, 10 nodes", theory, 3, 3, solid(10))}};
}

}  // namespace morlen
