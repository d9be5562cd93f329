#include "support/reference_frame.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace morlen {

namespace {

using Axes = std::array<Vector3, 3>;  // three unit vectors
using Square = std::vector<std::vector<double>>;

Vector3 Cross(const Vector3& a, const Vector3& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 Unit(const Vector3& v)
{
  const double length = std::hypot(v[0], v[1], v[2]);
  return {v[0] / length, v[1] / length, v[2] / length};
}

Square Zeros(std::size_t n)
{
  return Square(n, std::vector<double>(n, 0.0));
}

Square Product(const Square& a, const Square& b)
{
  Square c = Zeros(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t k = 0; k < a.size(); ++k) {
      for (std::size_t j = 0; j < a.size(); ++j)
        c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

Square Transposed(const Square& a)
{
  Square t = Zeros(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a.size(); ++j)
      t[j][i] = a[i][j];
  }
  return t;
}

std::vector<double> Product(const Square& a, const std::vector<double>& v)
{
  std::vector<double> result(a.size(), 0.0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < v.size(); ++j)
      result[i] += a[i][j] * v[j];
  }
  return result;
}

// Gauss with partial pivoting.
std::vector<double> Solve(Square a, std::vector<double> b)
{
  const std::size_t n = b.size();
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t pivot = k;
    for (std::size_t i = k + 1; i < n; ++i) {
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k]))
        pivot = i;
    }
    std::swap(a[k], a[pivot]);
    std::swap(b[k], b[pivot]);
    for (std::size_t i = k + 1; i < n; ++i) {
      const double factor = a[i][k] / a[k][k];
      for (std::size_t j = k; j < n; ++j)
        a[i][j] -= factor * a[k][j];
      b[i] -= factor * b[k];
    }
  }
  for (std::size_t k = n; k-- > 0;) {
    for (std::size_t j = k + 1; j < n; ++j)
      b[k] -= a[k][j] * b[j];
    b[k] /= a[k][k];
  }
  return b;
}

// Local y is horizontal and z points upwards; a vertical beam has y along global x, at right angles
// to the beam.
Axes BeamAxes(const Vector3& first, const Vector3& second)
{
  const Vector3 x = Unit({second[0] - first[0], second[1] - first[1], second[2] - first[2]});
  const bool vertical = std::hypot(x[0], x[1]) <= 1e-6;
  const Vector3 y =
      vertical ? Unit({1.0 - x[0] * x[0], -x[0] * x[1], -x[0] * x[2]}) : Unit({-x[1], x[0], 0.0});
  return {x, y, Cross(x, y)};
}

// Writes the axes as rows into `times` blocks on the diagonal of a matrix, from place `first` on.
void PutRows(const Axes& axes, std::size_t first, int times, Square& matrix)
{
  for (; times > 0; --times, first += 3) {
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j)
        matrix[first + i][first + j] = axes[i][j];
    }
  }
}

void AddSymmetric(Square& k, int i, int j, double value)
{
  k[i][j] += value;
  if (i != j)
    k[j][i] += value;
}

// Bending with deflections v1, v2 and rotations r1, r2. sign: that of the slope of a positive
// rotation.
void AddBending(Square& k, const std::array<int, 4>& at, double EI, double L, double sign)
{
  const double shear = 12.0 * EI / (L * L * L);
  const double mixed = sign * 6.0 * EI / (L * L);
  const auto [v1, r1, v2, r2] = at;
  AddSymmetric(k, v1, v1, shear);
  AddSymmetric(k, v2, v2, shear);
  AddSymmetric(k, v1, v2, -shear);
  AddSymmetric(k, v1, r1, mixed);
  AddSymmetric(k, v1, r2, mixed);
  AddSymmetric(k, v2, r1, -mixed);
  AddSymmetric(k, v2, r2, -mixed);
  AddSymmetric(k, r1, r1, 4.0 * EI / L);
  AddSymmetric(k, r2, r2, 4.0 * EI / L);
  AddSymmetric(k, r1, r2, 2.0 * EI / L);
}

void AddBar(Square& k, int i, int j, double stiffness)
{
  AddSymmetric(k, i, i, stiffness);
  AddSymmetric(k, j, j, stiffness);
  AddSymmetric(k, i, j, -stiffness);
}

Square LocalStiffness(const Frame::Section& s, double L)
{
  Square k = Zeros(12);
  AddBar(k, 0, 6, s.E * s.A / L);
  AddBar(k, 3, 9, s.G * s.J / L);
  AddBending(k, {1, 5, 7, 11}, s.E * s.Iz, L, 1.0);
  AddBending(k, {2, 4, 8, 10}, s.E * s.Iy, L, -1.0);
  return k;
}

// One beam in the system: its stiffness in local axes, the rotation of its end components from
// global to local axes, and the places of these components.
struct BeamMatrices
{
  Square local;
  Square turn;
  std::array<std::size_t, 12> places;
};

BeamMatrices MatricesOf(const Frame& frame, const Frame::Beam& beam)
{
  const Vector3& a = frame.nodes[beam.first - 1];
  const Vector3& b = frame.nodes[beam.second - 1];
  BeamMatrices m;
  m.local = LocalStiffness(frame.sections[beam.section - 1],
                           std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]));
  m.turn = Zeros(12);
  PutRows(BeamAxes(a, b), 0, 4, m.turn);
  for (std::size_t i = 0; i < 6; ++i) {
    m.places[i] = static_cast<std::size_t>(beam.first - 1) * 6 + i;
    m.places[6 + i] = static_cast<std::size_t>(beam.second - 1) * 6 + i;
  }
  return m;
}

Square GlobalStiffness(const Frame& frame)
{
  Square stiffness = Zeros(frame.nodes.size() * 6);
  for (const Frame::Beam& beam : frame.beams) {
    const BeamMatrices m = MatricesOf(frame, beam);
    const Square k = Product(Product(Transposed(m.turn), m.local), m.turn);
    for (std::size_t i = 0; i < 12; ++i) {
      for (std::size_t j = 0; j < 12; ++j)
        stiffness[m.places[i]][m.places[j]] += k[i][j];
    }
  }
  return stiffness;
}

// Rotates all components into the axes of the supports that have local axes.
Square SupportTurn(const Frame& frame)
{
  Square turn = Zeros(frame.nodes.size() * 6);
  for (std::size_t i = 0; i < turn.size(); ++i)
    turn[i][i] = 1.0;
  for (const Frame::Support& support : frame.supports) {
    if (support.euler)
      PutRows(AxesOfAngles(*support.euler), static_cast<std::size_t>(support.node - 1) * 6, 2,
              turn);
  }
  return turn;
}

void ApplySupports(const Frame& frame, Square& k, std::vector<double>& f)
{
  for (const Frame::Support& support : frame.supports) {
    for (int i = 0; i < 6; ++i) {
      const std::size_t row = static_cast<std::size_t>(support.node - 1) * 6 + i;
      if (support.flags[i] == 2)
        k[row][row] += support.values[i];
      if (support.flags[i] != 1)
        continue;
      k[row].assign(k.size(), 0.0);
      k[row][row] = 1.0;
      f[row] = support.values[i];
    }
  }
}

std::array<double, 12> EndForces(const BeamMatrices& m, const std::vector<double>& u)
{
  std::vector<double> ends(12);
  for (std::size_t i = 0; i < 12; ++i)
    ends[i] = u[m.places[i]];
  const std::vector<double> forces = Product(m.local, Product(m.turn, ends));
  std::array<double, 12> result;
  std::copy(forces.begin(), forces.end(), result.begin());
  return result;
}

}  // namespace

ReferenceSolution SolveReference(const Frame& frame)
{
  const Square stiffness = GlobalStiffness(frame);
  std::vector<double> loads(stiffness.size(), 0.0);
  for (const Frame::NodalLoad& load : frame.loads) {
    for (int i = 0; i < 6; ++i)
      loads[static_cast<std::size_t>(load.node - 1) * 6 + i] += load.values[i];
  }
  const Square turn = SupportTurn(frame);
  Square k = Product(Product(turn, stiffness), Transposed(turn));
  std::vector<double> f = Product(turn, loads);
  ApplySupports(frame, k, f);
  const std::vector<double> u = Product(Transposed(turn), Solve(k, f));
  const std::vector<double> forces = Product(stiffness, u);

  ReferenceSolution solution;
  solution.displacements.resize(frame.nodes.size());
  solution.reactions.resize(frame.nodes.size());
  for (std::size_t i = 0; i < u.size(); ++i)
    solution.displacements[i / 6][i % 6] = u[i];
  for (const Frame::Support& support : frame.supports) {
    for (int i = 0; i < 6; ++i) {
      const std::size_t row = static_cast<std::size_t>(support.node - 1) * 6 + i;
      solution.reactions[row / 6][i] = forces[row] - loads[row];
    }
  }
  for (const Frame::Beam& beam : frame.beams)
    solution.endForces.push_back(EndForces(MatricesOf(frame, beam), u));
  return solution;
}

Frame InSpace(const Frame& plane)
{
  Frame space = plane;
  space.space = true;
  for (std::size_t i = 1; i <= space.nodes.size(); ++i)
    space.supports.push_back({.node = static_cast<int>(i), .flags = {0, 0, 1, 1, 1, 0}});
  for (std::size_t i = 0; i < plane.supports.size(); ++i) {
    Frame::Support& support = space.supports[i];
    support.flags[5] = std::exchange(support.flags[2], 0);
    support.values[5] = std::exchange(support.values[2], 0.0);
  }
  for (Frame::NodalLoad& load : space.loads)
    load.values[5] = std::exchange(load.values[2], 0.0);
  return space;
}

std::array<Vector3, 3> AxesOfAngles(const Vector3& angles)
{
  const auto turn = [](double angle, std::size_t axis) {
    Square m = Zeros(3);
    const std::size_t i = (axis + 1) % 3;
    const std::size_t j = (axis + 2) % 3;
    m[axis][axis] = 1.0;
    m[i][i] = m[j][j] = std::cos(angle);
    m[i][j] = std::sin(angle);
    m[j][i] = -std::sin(angle);
    return m;
  };
  const Square m = Product(Product(turn(angles[2], 2), turn(angles[1], 0)), turn(angles[0], 2));
  return {Vector3{m[0][0], m[1][0], m[2][0]}, Vector3{m[0][1], m[1][1], m[2][1]},
          Vector3{m[0][2], m[1][2], m[2][2]}};
}

}  // namespace morlen
