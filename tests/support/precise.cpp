// The same discrete model as that of the program, in other words: every element is a list of
// points with strains B·u and forces D·B·u in its axes. All of it is a template on the type of
// numbers.

#include "support/precise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

#include "numeric/plex_range.h"
#include "problem/project.h"

namespace {

// Numbers of 113 bits. Where the compiler has no such type, its long double is one.
#ifdef __SIZEOF_FLOAT128__
__extension__ typedef __float128 Quad;
#else
using Quad = long double;
#endif

template <class R>
using Vec = std::array<R, 3>;
template <class R>
using Axes = std::array<Vec<R>, 3>;
template <class R>
using Rows = std::vector<std::vector<R>>;

template <class R>
R Root(R x)
{
  R root = static_cast<R>(std::sqrt(static_cast<double>(x)));
  for (int i = 0; i < 2; ++i)  // 53, 106, 212 bits
    root = (root + x / root) / R(2);
  return root;
}

template <class R>
R Abs(R x)
{
  return x < R(0) ? -x : x;
}

template <class R>
R Dot(const Vec<R>& a, const Vec<R>& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

template <class R>
Vec<R> Cross(const Vec<R>& a, const Vec<R>& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

template <class R>
Vec<R> Unit(const Vec<R>& v)
{
  const R length = Root<R>(Dot(v, v));
  return {v[0] / length, v[1] / length, v[2] / length};
}

template <class R>
Vec<R> Between(const Vector3& a, const Vector3& b)
{
  return {R(b[0]) - R(a[0]), R(b[1]) - R(a[1]), R(b[2]) - R(a[2])};
}

template <class R>
Rows<R> Zeros(std::size_t rows, std::size_t columns)
{
  return Rows<R>(rows, std::vector<R>(columns, R(0)));
}

// --- Elements ---

/// Strains B·u of the local displacements u; they make the forces D·B·u, whose work counts
/// `weight` times.
template <class R>
struct Point
{
  Rows<R> B;
  Rows<R> D;
  R weight = R(1);
  bool isResult = true;
};

template <class R>
struct Element
{
  std::vector<int> nodes;  ///< from 0
  Axes<R> axes;            ///< unit vectors in global coordinates
  std::vector<Point<R>> points;
};

template <class R>
Rows<R> UnitRows(std::size_t n)
{
  Rows<R> rows = Zeros<R>(n, n);
  for (std::size_t i = 0; i < n; ++i)
    rows[i][i] = R(1);
  return rows;
}

template <class R>
void AddSymmetric(Rows<R>& k, int i, int j, R value)
{
  k[i][j] += value;
  if (i != j)
    k[j][i] += value;
}

/// Bending over v1, r1, v2, r2, whose rotations are released where the code says so.
template <class R>
void AddBending(Rows<R>& k, const std::array<int, 4>& at, R EI, R L, int code, R sign)
{
  const auto [v1, r1, v2, r2] = at;
  const bool first = code / 10 == 1;
  const bool second = code % 10 == 1;
  if (!first && !second)
    return;
  const bool both = first && second;
  // The deflection of end 1 against the chord's turn, per end that is held.
  const R a = first ? R(both ? 6 : 3) * EI / (L * L) : R(0);
  const R b = second ? R(both ? 6 : 3) * EI / (L * L) : R(0);
  const R shear = (a + b) / L;
  AddSymmetric(k, v1, v1, shear);
  AddSymmetric(k, v2, v2, shear);
  AddSymmetric(k, v1, v2, -shear);
  AddSymmetric(k, v1, r1, sign * a);
  AddSymmetric(k, v2, r1, -sign * a);
  AddSymmetric(k, v1, r2, sign * b);
  AddSymmetric(k, v2, r2, -sign * b);
  AddSymmetric(k, r1, r1, first ? R(both ? 4 : 3) * EI / L : R(0));
  AddSymmetric(k, r2, r2, second ? R(both ? 4 : 3) * EI / L : R(0));
  AddSymmetric(k, r1, r2, both ? R(2) * EI / L : R(0));
}

template <class R>
void AddBar(Rows<R>& k, int i, int j, R stiffness)
{
  AddSymmetric(k, i, i, stiffness);
  AddSymmetric(k, j, j, stiffness);
  AddSymmetric(k, i, j, -stiffness);
}

template <class R>
Axes<R> BeamAxes(const Vec<R>& along, bool space)
{
  const Vec<R> x = Unit(along);
  const R small(1e-15);  // of which rounding may make a direction that is meant to be vertical
  if (!space)
    return {x, {-x[1], x[0], R(0)}, {R(0), R(0), R(1)}};
  const bool vertical = Abs(x[0]) < small && Abs(x[1]) < small;
  const Vec<R> y = vertical ? Vec<R>{R(1), R(0), R(0)} : Unit(Vec<R>{-x[1], x[0], R(0)});
  return {x, y, Cross(x, y)};
}

template <class R>
Element<R> BeamElement(const Structure& s, int index)
{
  const Frame::Beam& beam = s.beams[index];
  const Frame::Section& section = s.sections[beam.section - 1];
  const auto found = s.hinges.find(index + 1);
  const int code = found == s.hinges.end() ? 11 : found->second;
  const Vec<R> along = Between<R>(s.nodes[beam.first - 1], s.nodes[beam.second - 1]);
  const R L = Root<R>(Dot(along, along));
  const R E(section.E);
  const int n = s.Components();
  Rows<R> k = Zeros<R>(2 * n, 2 * n);
  AddBar(k, 0, n, E * R(section.A) / L);
  if (s.space) {
    AddBar(k, 3, 9, R(section.G) * R(section.J) / L);
    AddBending(k, {1, 5, 7, 11}, E * R(section.Iz), L, code, R(1));
    AddBending(k, {2, 4, 8, 10}, E * R(section.Iy), L, code, R(-1));
  } else {
    AddBending(k, {1, 2, 4, 5}, E * R(section.Iz), L, code, R(1));
  }
  return {{beam.first - 1, beam.second - 1},
          BeamAxes(along, s.space),
          {{UnitRows<R>(2 * n), std::move(k)}}};
}

/// Values of the shape functions at a point and their derivatives by natural coordinates.
template <class R>
struct Shape
{
  std::vector<R> N;
  std::vector<Vec<R>> slopes;
};

/// Linear or quadratic functions of the natural coordinates of a triangle (two) or a tetrahedron
/// (three); `edges` are the corners beside each node in the middle of an edge.
template <class R>
Shape<R> ShapeAt(const std::vector<R>& natural, const std::vector<std::array<int, 2>>& edges,
                 bool quadratic)
{
  const std::size_t dimension = natural.size();
  std::vector<R> L = {R(1)};  // the first corner's is what the others leave
  std::vector<Vec<R>> dL(dimension + 1, Vec<R>{});
  for (std::size_t a = 0; a < dimension; ++a) {
    L[0] -= natural[a];
    L.push_back(natural[a]);
    dL[0][a] = R(-1);
    dL[a + 1][a] = R(1);
  }
  if (!quadratic)
    return {L, dL};
  Shape<R> shape;
  for (std::size_t i = 0; i <= dimension; ++i) {
    shape.N.push_back(L[i] * (R(2) * L[i] - R(1)));
    shape.slopes.push_back(dL[i]);
    for (R& slope : shape.slopes.back())
      slope *= R(4) * L[i] - R(1);
  }
  for (const auto& [i, j] : edges) {
    shape.N.push_back(R(4) * L[i] * L[j]);
    Vec<R> slope;
    for (std::size_t a = 0; a < 3; ++a)
      slope[a] = R(4) * (L[i] * dL[j][a] + L[j] * dL[i][a]);
    shape.slopes.push_back(slope);
  }
  return shape;
}

/// Derivatives of the shape functions by the coordinates of the places, by Cramer's rule;
/// returns the determinant. In a plane the third coordinate is its own natural one.
template <class R>
R Gradients(const std::vector<Vec<R>>& places, const Shape<R>& shape, bool plane,
            std::vector<Vec<R>>& gradients)
{
  Axes<R> J{};
  for (std::size_t i = 0; i < places.size(); ++i) {
    for (std::size_t a = 0; a < 3; ++a) {
      for (std::size_t k = 0; k < 3; ++k)
        J[a][k] += shape.slopes[i][a] * places[i][k];
    }
  }
  if (plane)
    J[2] = {R(0), R(0), R(1)};
  const Axes<R> columns = {
      Vec<R>{J[0][0], J[1][0], J[2][0]}, {J[0][1], J[1][1], J[2][1]}, {J[0][2], J[1][2], J[2][2]}};
  const R det = Dot(columns[0], Cross(columns[1], columns[2]));
  for (const Vec<R>& slope : shape.slopes)
    gradients.push_back({Dot(slope, Cross(columns[1], columns[2])) / det,
                         Dot(slope, Cross(columns[2], columns[0])) / det,
                         Dot(slope, Cross(columns[0], columns[1])) / det});
  return det;
}

template <class R>
Axes<R> TriangleAxes(const Vec<R>& normal)
{
  const R limit(1.0 / 64.0);
  const bool horizontal = Abs(normal[0]) < limit && Abs(normal[1]) < limit;
  const Vec<R> up = horizontal ? Vec<R>{R(0), R(1), R(0)} : Vec<R>{R(0), R(0), R(1)};
  const Vec<R> x = Unit(Cross(up, normal));
  return {x, Cross(normal, x), normal};
}

template <class R>
Rows<R> ShellD(const Structure::Shell& shell)
{
  const R t(shell.t), nu(shell.nu), f = t * R(shell.E) / (R(1) - nu * nu), G(shell.G);
  Rows<R> D = Zeros<R>(8, 8);
  for (int part = 0; part < 2; ++part) {
    const int k = 3 * part;
    const R factor = part == 0 ? R(1) : t * t / R(12);
    D[k][k] = D[k + 1][k + 1] = factor * f;
    D[k][k + 1] = D[k + 1][k] = factor * f * nu;
    D[k + 2][k + 2] = factor * t * G;
  }
  D[6][6] = D[7][7] = R(5) / R(6) * t * G;
  return D;
}

/// Strains of the membrane, of bending and of shear over u, v, w and rotations about axes.
template <class R>
Rows<R> ShellB(const std::vector<R>& N, const std::vector<Vec<R>>& gradients)
{
  Rows<R> B = Zeros<R>(8, 6 * N.size());
  for (std::size_t i = 0; i < N.size(); ++i) {
    const auto [x, y, none] = gradients[i];
    const std::size_t u = 6 * i, v = u + 1, w = u + 2, rx = u + 3, ry = u + 4;
    B[0][u] = B[2][v] = x;
    B[1][v] = B[2][u] = y;
    B[3][ry] = x;
    B[4][rx] = -y;
    B[5][ry] = y;
    B[5][rx] = -x;
    B[6][w] = x;
    B[6][ry] = N[i];
    B[7][w] = y;
    B[7][rx] = -N[i];
  }
  return B;
}

template <class R>
Vec<R> NormalOf(const Structure& s, const std::vector<int>& triangle)
{
  const Vector3& a = s.nodes[triangle[0] - 1];
  return Unit(
      Cross(Between<R>(a, s.nodes[triangle[1] - 1]), Between<R>(a, s.nodes[triangle[2] - 1])));
}

/// What holds the rotation about the normal: at nodes of one plane the area times E, at folds very
/// little against the mean turn of the membrane.
template <class R>
void AddTurns(const std::vector<char>& folded, R area, R E, Element<R>& e)
{
  const std::size_t count = e.nodes.size();
  std::vector<R> mean(6 * count, R(0));
  for (std::size_t i = 0; i < count; ++i) {
    for (const Point<R>& point : e.points) {
      mean[6 * i] += point.weight / area * point.B[1][6 * i + 1] / R(2);
      mean[6 * i + 1] -= point.weight / area * point.B[0][6 * i] / R(2);
    }
  }
  const R little = R(1e-10) * e.points[0].D[3][3];
  for (std::size_t i = 0; i < count; ++i) {
    const bool fold = folded[e.nodes[i]] != 0;
    Point<R> point{{fold ? mean : std::vector<R>(6 * count, R(0))}, {{fold ? little : area * E}}};
    point.B[0][6 * i + 5] = R(1);
    point.isResult = false;
    e.points.push_back(std::move(point));
  }
}

template <class R>
Element<R> TriangleElement(const Structure& s, int index, const std::vector<char>& folded)
{
  const std::vector<int>& triangle = s.triangles[index];
  Element<R> e;
  e.axes = TriangleAxes(NormalOf<R>(s, triangle));
  std::vector<Vec<R>> places;
  for (const int node : triangle) {
    e.nodes.push_back(node - 1);
    const Vec<R> d = Between<R>(s.nodes[triangle[0] - 1], s.nodes[node - 1]);
    places.push_back({Dot(e.axes[0], d), Dot(e.axes[1], d), R(0)});
  }
  const bool six = triangle.size() == 6;
  const R half = R(1) / R(2);
  const R third = R(1) / R(3);
  const Rows<R> at =
      six ? Rows<R>{{half, R(0)}, {half, half}, {R(0), half}} : Rows<R>{{third, third}};
  R area(0);
  for (const std::vector<R>& natural : at) {
    const Shape<R> shape = ShapeAt<R>(natural, {{0, 1}, {1, 2}, {2, 0}}, six);
    std::vector<Vec<R>> gradients;
    const R weight = Gradients(places, shape, true, gradients) / R(six ? 6 : 2);
    e.points.push_back({ShellB(shape.N, gradients), ShellD<R>(s.shell), weight});
    area += weight;
  }
  AddTurns(folded, area, R(s.shell.E), e);
  return e;
}

template <class R>
Rows<R> SolidD(const Structure::Solid& solid)
{
  const R nu(solid.nu);
  const R G = R(solid.E) / (R(2) * (R(1) + nu));
  const R lambda = R(2) * G * nu / (R(1) - R(2) * nu);
  Rows<R> D = Zeros<R>(6, 6);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      D[i][j] = lambda + (i == j ? R(2) * G : R(0));
    D[i + 3][i + 3] = G;
  }
  return D;
}

template <class R>
Element<R> SolidElement(const Structure& s, int index)
{
  const std::vector<int>& nodes = s.tetrahedra[index];
  Element<R> e;
  e.axes = {Vec<R>{R(1), R(0), R(0)}, {R(0), R(1), R(0)}, {R(0), R(0), R(1)}};
  std::vector<Vec<R>> places;
  for (const int node : nodes) {
    e.nodes.push_back(node - 1);
    places.push_back(Between<R>(s.nodes[nodes[0] - 1], s.nodes[node - 1]));
  }
  const bool ten = nodes.size() == 10;
  const R a(0.5854102), b(0.1381966);
  const Rows<R> at = ten ? Rows<R>{{a, b, b}, {b, a, b}, {b, b, a}, {b, b, b}} : Rows<R>{{b, b, b}};
  for (const std::vector<R>& natural : at) {
    const Shape<R> shape =
        ShapeAt<R>(natural, {{0, 1}, {1, 2}, {0, 2}, {0, 3}, {1, 3}, {2, 3}}, ten);
    std::vector<Vec<R>> gradients;
    const R det = Gradients(places, shape, false, gradients);
    Rows<R> B = Zeros<R>(6, 3 * nodes.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const auto [x, y, z] = gradients[i];
      B[0][3 * i] = B[3][3 * i + 1] = B[4][3 * i + 2] = x;
      B[1][3 * i + 1] = B[3][3 * i] = B[5][3 * i + 2] = y;
      B[2][3 * i + 2] = B[4][3 * i] = B[5][3 * i + 1] = z;
    }
    e.points.push_back({std::move(B), SolidD<R>(s.solid), det / R(ten ? 24 : 6)});
  }
  return e;
}

/// The nodes (from 0) around which the triangles do not all lie in one plane.
std::vector<char> FoldedNodes(const Structure& s)
{
  const long double cosine = 1.0L - 5e-15L;  // of 1e-7
  std::vector<char> folded(s.nodes.size(), 0);
  std::vector<int> first(s.nodes.size(), -1);
  std::vector<Vec<long double>> normals;
  for (const std::vector<int>& triangle : s.triangles) {
    normals.push_back(NormalOf<long double>(s, triangle));
    for (const int node : triangle) {
      int& known = first[node - 1];
      if (known == -1)
        known = static_cast<int>(normals.size()) - 1;
      else if (Dot(normals[known], normals.back()) < cosine)
        folded[node - 1] = 1;
    }
  }
  return folded;
}

enum class Family
{
  Beams,
  Triangles,
  Tetrahedra
};

/// Calls visit(element, family) for each.
template <class R, class Visit>
void ForEachElement(const Structure& s, Visit visit)
{
  const std::vector<char> folded = FoldedNodes(s);
  for (std::size_t i = 0; i < s.beams.size(); ++i)
    visit(BeamElement<R>(s, static_cast<int>(i)), Family::Beams);
  for (std::size_t i = 0; i < s.triangles.size(); ++i)
    visit(TriangleElement<R>(s, static_cast<int>(i), folded), Family::Triangles);
  for (std::size_t i = 0; i < s.tetrahedra.size(); ++i)
    visit(SolidElement<R>(s, static_cast<int>(i)), Family::Tetrahedra);
}

/// Turns groups of three components into the axes, or back.
template <class R>
void TurnToLocal(const Axes<R>& axes, int components, R* values)
{
  for (R* v = values; v != values + components; v += 3) {
    const Vec<R> global = {v[0], v[1], v[2]};
    for (int i = 0; i < 3; ++i)
      v[i] = Dot(axes[i], global);
  }
}

template <class R>
void TurnToGlobal(const Axes<R>& axes, int components, R* values)
{
  for (R* v = values; v != values + components; v += 3) {
    const Vec<R> local = {v[0], v[1], v[2]};
    for (int k = 0; k < 3; ++k)
      v[k] = axes[0][k] * local[0] + axes[1][k] * local[1] + axes[2][k] * local[2];
  }
}

/// Forces of an element on its nodes from their displacements, both in global axes; those
/// of its points go to `results`, where it is not null.
template <class R>
std::vector<R> ForcesOf(const Element<R>& e, std::vector<R> u, std::vector<double>* results)
{
  const int size = static_cast<int>(u.size());
  TurnToLocal(e.axes, size, u.data());
  std::vector<R> f(u.size(), R(0));
  for (const Point<R>& point : e.points) {
    std::vector<R> strains(point.B.size(), R(0));
    for (std::size_t r = 0; r < strains.size(); ++r) {
      for (std::size_t c = 0; c < u.size(); ++c) {
        if (point.B[r][c] != R(0) && u[c] != R(0))
          strains[r] += point.B[r][c] * u[c];
      }
    }
    for (std::size_t r = 0; r < strains.size(); ++r) {
      R stress(0);
      for (std::size_t c = 0; c < strains.size(); ++c) {
        if (point.D[r][c] != R(0) && strains[c] != R(0))
          stress += point.D[r][c] * strains[c];
      }
      if (results && point.isResult)
        results->push_back(static_cast<double>(stress));
      if (stress == R(0))
        continue;
      for (std::size_t c = 0; c < u.size(); ++c) {
        if (point.B[r][c] != R(0))
          f[c] += point.weight * point.B[r][c] * stress;
      }
    }
  }
  TurnToGlobal(e.axes, size, f.data());
  return f;
}

/// The values of an element's nodes out of those of all.
template <class R>
std::vector<R> AtNodes(const Element<R>& e, int n, const std::vector<R>& all)
{
  std::vector<R> values;
  for (const int node : e.nodes)
    values.insert(values.end(), all.begin() + node * n, all.begin() + (node + 1) * n);
  return values;
}

template <class R>
void AddAtNodes(const Element<R>& e, int n, const std::vector<R>& values, std::vector<R>& all)
{
  for (std::size_t i = 0; i < values.size(); ++i)
    all[e.nodes[i / n] * n + i % n] += values[i];
}

// --- Supports ---

/// The support of each node; its axes are those of the doubles that angles have, since 1e-16 of
/// an angle is a change of the model, not of its solution.
template <class R>
class Supports
{
public:
  explicit Supports(const Structure& s) : n(s.Components()), of(s.nodes.size())
  {
    for (const Frame::Support& support : s.supports) {
      Held& held = of[support.node - 1];
      held.flags = support.flags;
      for (int k = 0; k < 6; ++k)
        held.values[k] = R(support.values[k]);
      if (support.euler)
        SetAxes(*support.euler, held);
    }
    if (!s.hinges.empty())
      FixLooseRotations(s);
  }

  bool IsPrescribed(int equation) const { return of[equation / n].flags[equation % n] == 1; }
  R Value(int equation) const { return of[equation / n].values[equation % n]; }
  R Spring(int equation) const
  {
    return of[equation / n].flags[equation % n] == 2 ? Value(equation) : R(0);
  }
  /// Sets rotations that nothing holds to 0.
  void FixLoose(std::vector<R>& u) const
  {
    for (const int equation : loose)
      u[equation] = R(0);
  }
  bool Takes(int equation) const
  {
    return of[equation / n].hasAxes || of[equation / n].flags[equation % n] != 0;
  }

  void ToSupportAxes(std::vector<R>& values) const
  {
    for (std::size_t i = 0; i < of.size(); ++i) {
      if (of[i].hasAxes)
        TurnToLocal(of[i].axes, n, values.data() + i * n);
    }
  }
  void ToGlobalAxes(std::vector<R>& values) const
  {
    for (std::size_t i = 0; i < of.size(); ++i) {
      if (of[i].hasAxes)
        TurnToGlobal(of[i].axes, n, values.data() + i * n);
    }
  }
  const Axes<R>* AxesAt(int node) const { return of[node].hasAxes ? &of[node].axes : nullptr; }

private:
  struct Held
  {
    std::array<int, 6> flags{};
    std::array<R, 6> values{};
    bool hasAxes = false;
    Axes<R> axes{};
  };

  static void SetAxes(const Vector3& a, Held& held)
  {
    const R c1(std::cos(a[0])), s1(std::sin(a[0])), c2(std::cos(a[1])), s2(std::sin(a[1])),
        c3(std::cos(a[2])), s3(std::sin(a[2]));
    held.hasAxes = true;
    held.axes = {Vec<R>{c3 * c1 - c2 * s1 * s3, -s3 * c1 - c2 * s1 * c3, s2 * s1},
                 {c3 * s1 + c2 * c1 * s3, -s3 * s1 + c2 * c1 * c3, -s2 * c1},
                 {s3 * s2, c3 * s2, c2}};
  }

  /// Rotations of nodes at which every beam end is hinged are prescribed.
  void FixLooseRotations(const Structure& s)
  {
    std::vector<char> held(s.nodes.size(), 0);
    for (std::size_t i = 0; i < s.beams.size(); ++i) {
      const auto found = s.hinges.find(static_cast<int>(i) + 1);
      const int code = found == s.hinges.end() ? 11 : found->second;
      held[s.beams[i].first - 1] |= static_cast<char>(code / 10);
      held[s.beams[i].second - 1] |= static_cast<char>(code % 10);
    }
    for (const std::vector<int>& triangle : s.triangles) {
      for (const int node : triangle)
        held[node - 1] = 1;
    }
    for (std::size_t i = 0; i < of.size(); ++i) {
      for (int k = s.space ? 3 : 2; k < n && !held[i]; ++k) {
        if (of[i].flags[k] != 0)
          continue;
        of[i].flags[k] = 1;
        loose.push_back(static_cast<int>(i) * n + k);
      }
    }
  }

  int n;
  std::vector<Held> of;
  std::vector<int> loose;
};

// --- The system of equations ---

/// The lower half of a symmetric matrix, row by row from its first entry, and its factors
/// L·D·Lᵀ in the same place.
template <class R>
class Profile
{
public:
  explicit Profile(const std::vector<int>& first_) : first(first_), starts(first_.size() + 1, 0)
  {
    for (std::size_t i = 0; i < first.size(); ++i)
      starts[i + 1] = starts[i] + i - first[i] + 1;
    values.assign(starts.back(), R(0));
  }

  /// The entry (i, j), first <= j <= i.
  R& At(std::size_t i, std::size_t j) { return values[starts[i] + (j - first[i])]; }

  /// False when the matrix is not positive definite.
  bool Factorise()
  {
    for (std::size_t i = 0; i < first.size(); ++i) {
      const std::size_t begin = first[i];
      for (std::size_t j = begin; j < i; ++j)
        At(i, j) -= Product(i, j);
      R& diagonal = At(i, i);
      for (std::size_t j = begin; j < i; ++j) {
        const R ratio = At(i, j) / At(j, j);
        diagonal -= ratio * At(i, j);
        At(i, j) = ratio;
      }
      if (!(diagonal > R(0)))
        return false;
    }
    return true;
  }

  void Solve(std::vector<R>& b)
  {
    for (std::size_t i = 0; i < b.size(); ++i) {
      for (std::size_t j = first[i]; j < i; ++j)
        b[i] -= At(i, j) * b[j];
    }
    for (std::size_t i = 0; i < b.size(); ++i)
      b[i] /= At(i, i);
    for (std::size_t i = b.size(); i-- > 0;) {
      for (std::size_t j = first[i]; j < i; ++j)
        b[j] -= At(i, j) * b[i];
    }
  }

private:
  /// Of the rows i and j, as far as both go, before column j.
  R Product(std::size_t i, std::size_t j)
  {
    const std::size_t begin = std::max(first[i], first[j]);
    if (begin >= j)
      return R(0);
    const R* const a = &At(i, begin);
    const R* const b = &At(j, begin);
    R sum(0);
    for (std::size_t k = 0; k < j - begin; ++k)
      sum += a[k] * b[k];
    return sum;
  }

  std::vector<int> first;
  std::vector<std::size_t> starts;
  std::vector<R> values;
};

/// Lengths of the box around all nodes.
Vector3 ExtentOf(const Structure& s)
{
  Vector3 low = s.nodes[0];
  Vector3 high = low;
  for (const Vector3& node : s.nodes) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], node[k]);
      high[k] = std::max(high[k], node[k]);
    }
  }
  return high - low;
}

/// The order of the nodes in the matrix: that of the structure, or along its longest side.
class Ordering
{
public:
  explicit Ordering(const Structure& structure) : s(structure), place(s.nodes.size())
  {
    std::vector<int> order(place.size());
    std::iota(order.begin(), order.end(), 0);
    Take(order);
    const std::vector<int> given = place;
    const std::vector<int> lowest = FirstPlaces();
    const int axis = LongestAxis();
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return s.nodes[a][axis] < s.nodes[b][axis]; });
    Take(order);
    if (Size(FirstPlaces()) >= Size(lowest))
      place = given;
  }

  /// The row of an equation.
  int Row(int equation) const
  {
    const int n = s.Components();
    return place[equation / n] * n + equation % n;
  }

  /// First entry of each row of the matrix.
  std::vector<int> FirstEntries() const
  {
    const int n = s.Components();
    std::vector<int> first;
    for (const int low : FirstPlaces())
      first.insert(first.end(), n, low * n);
    return first;
  }

private:
  void Take(const std::vector<int>& order)
  {
    for (std::size_t i = 0; i < order.size(); ++i)
      place[order[i]] = static_cast<int>(i);
  }

  /// The lowest place that shares an element with each.
  std::vector<int> FirstPlaces() const
  {
    std::vector<int> lowest(place.size());
    std::iota(lowest.begin(), lowest.end(), 0);
    const auto join = [&](const std::vector<int>& nodes) {  // from 1
      int low = place[nodes[0] - 1];
      for (const int node : nodes)
        low = std::min(low, place[node - 1]);
      for (const int node : nodes)
        lowest[place[node - 1]] = std::min(lowest[place[node - 1]], low);
    };
    for (const Frame::Beam& beam : s.beams)
      join({beam.first, beam.second});
    for (const auto* elements : {&s.triangles, &s.tetrahedra})
      std::for_each(elements->begin(), elements->end(), join);
    return lowest;
  }

  static double Size(const std::vector<int>& lowest)
  {
    double size = 0.0;
    for (std::size_t i = 0; i < lowest.size(); ++i) {
      const double length = static_cast<double>(i) - lowest[i];
      size += length * length;
    }
    return size;
  }

  int LongestAxis() const
  {
    const Vector3 extent = ExtentOf(s);
    return static_cast<int>(std::max_element(extent.begin(), extent.end()) - extent.begin());
  }

  const Structure& s;
  std::vector<int> place;  ///< of each node, from 0
};

template <class R>
Profile<R> Assembled(const Structure& s, const Supports<R>& supports, const Ordering& ordering)
{
  const int n = s.Components();
  Profile<R> matrix(ordering.FirstEntries());
  const auto equation = [n](const Element<R>& e, int i) { return e.nodes[i / n] * n + i % n; };
  ForEachElement<R>(s, [&](const Element<R>& e, Family) {
    const int size = static_cast<int>(e.nodes.size()) * n;
    for (int c = 0; c < size; ++c) {  // a column for a unit displacement
      if (supports.IsPrescribed(equation(e, c)))
        continue;
      const int column = ordering.Row(equation(e, c));
      std::vector<R> u(size, R(0));
      u[c] = R(1);
      if (const Axes<R>* axes = supports.AxesAt(e.nodes[c / n]))
        TurnToGlobal(*axes, n, &u[c / n * n]);
      std::vector<R> f = ForcesOf(e, std::move(u), nullptr);
      for (std::size_t i = 0; i < e.nodes.size(); ++i) {
        if (const Axes<R>* axes = supports.AxesAt(e.nodes[i]))
          TurnToLocal(*axes, n, &f[i * n]);
      }
      for (int r = 0; r < size; ++r) {
        const int row = ordering.Row(equation(e, r));
        if (row >= column && !supports.IsPrescribed(equation(e, r)))
          matrix.At(row, column) += f[r];
      }
    }
  });
  for (int i = 0; i < s.Equations(); ++i) {
    const int row = ordering.Row(i);
    matrix.At(row, row) += supports.IsPrescribed(i) ? R(1) : supports.Spring(i);
  }
  return matrix;
}

double MeanLength(const Structure& s)
{
  double sum = 0.0;
  int count = 0;
  const auto add = [&](int a, int b) {
    const Vector3 d = s.nodes[b - 1] - s.nodes[a - 1];
    sum += std::sqrt(::Dot(d, d));
    ++count;
  };
  for (const Frame::Beam& beam : s.beams)
    add(beam.first, beam.second);
  for (const auto* elements : {&s.triangles, &s.tetrahedra}) {
    for (const std::vector<int>& nodes : *elements)
      add(nodes[0], nodes[1]);
  }
  return sum / count;
}

int Translations(const Structure& s)
{
  return s.space ? 3 : 2;
}

/// The improvement of a solution by the factors of a less precise matrix.
class CaseRefinement
{
public:
  explicit CaseRefinement(const Structure& structure)
      : s(structure),
        n(s.Components()),
        supports(s),
        length(MeanLength(s)),
        loads(s.Equations(), Quad(0)),
        displacements(s.Equations(), Quad(0))
  {
    ForEachElement<Quad>(s, [&](Element<Quad> e, Family) { elements.push_back(std::move(e)); });
    for (const Frame::NodalLoad& load : s.loads) {
      for (int k = 0; k < n; ++k)
        loads[(load.node - 1) * n + k] += Quad(load.values[k]);
    }
    for (int i = 0; i < s.Equations(); ++i) {
      if (supports.IsPrescribed(i))
        displacements[i] = supports.Value(i);
    }
    supports.ToGlobalAxes(displacements);
  }

  /// Factors with numbers of this type; false when that is not enough.
  template <class R>
  bool ImproveByFactors()
  {
    const Ordering ordering(s);
    Profile<R> matrix = Assembled<R>(s, Supports<R>(s), ordering);
    if (!matrix.Factorise())
      return false;
    return Improve(1e-20, [&](const std::vector<Quad>& residual) {
      std::vector<R> rows(residual.size());
      for (int i = 0; i < s.Equations(); ++i)
        rows[ordering.Row(i)] = static_cast<R>(residual[i]);
      matrix.Solve(rows);
      std::vector<Quad> correction;
      for (int i = 0; i < s.Equations(); ++i)
        correction.push_back(rows[ordering.Row(i)]);
      supports.ToGlobalAxes(correction);
      return correction;
    });
  }

  /// Runs of the program on what is left of the loads.
  bool ImproveByRuns()
  {
    constexpr double kSmall = 1e-6;  // what one run leaves of an error, or less
    return Improve(kSmall, [&](const std::vector<Quad>& residual) {
      Structure rest = s;
      rest.loads.clear();
      for (Frame::Support& support : rest.supports) {
        for (int k = 0; k < n; ++k)
          support.values[k] = support.flags[k] == 1 ? 0.0 : support.values[k];
      }
      std::vector<Quad> forces = residual;
      supports.ToGlobalAxes(forces);
      for (int i = 0; i < s.Equations(); i += n) {
        rest.Load(i / n + 1, {});
        std::copy_n(forces.begin() + i, n, rest.loads.back().values.begin());
      }
      const Solved solved(rest.Text("Solver SkyLine\n"));
      std::vector<Quad> correction;
      for (int node = 1; node <= s.NodeCount(); ++node) {
        const std::vector<double> u = solved.Displacement(node);
        correction.insert(correction.end(), u.begin(), u.end());
      }
      return correction;
    });
  }

  const std::vector<Quad>& Displacements() const { return displacements; }

private:
  /// Adds corrections, which solve(residual) gives in global axes, until one is smaller than this
  /// part of the displacements.
  template <class Solve>
  bool Improve(double small, Solve solve)
  {
    constexpr int kMostSteps = 60;
    for (int step = 0; step < kMostSteps; ++step) {
      const std::vector<Quad> correction = solve(Residual());
      for (std::size_t i = 0; i < correction.size(); ++i)
        displacements[i] += correction[i];
      if (Size(correction) <= small * Size(displacements))
        return true;
    }
    return false;
  }

  /// In the axes of the supports; 0 at prescribed components.
  std::vector<Quad> Residual() const
  {
    std::vector<Quad> residual = loads;
    for (const Element<Quad>& e : elements) {
      std::vector<Quad> f = ForcesOf(e, AtNodes(e, n, displacements), nullptr);
      for (Quad& force : f)
        force = -force;
      AddAtNodes(e, n, f, residual);
    }
    std::vector<Quad> u = displacements;
    supports.ToSupportAxes(residual);
    supports.ToSupportAxes(u);
    for (int i = 0; i < s.Equations(); ++i)
      residual[i] = supports.IsPrescribed(i) ? Quad(0) : residual[i] - supports.Spring(i) * u[i];
    return residual;
  }

  double Size(const std::vector<Quad>& u) const
  {
    double size = 0.0;
    for (std::size_t i = 0; i < u.size(); ++i) {
      const bool rotation = static_cast<int>(i) % n >= Translations(s);
      size = std::max(size, std::fabs(static_cast<double>(u[i])) * (rotation ? length : 1.0));
    }
    return size;
  }

  const Structure& s;
  int n;
  Supports<Quad> supports;
  double length;
  std::vector<Element<Quad>> elements;
  std::vector<Quad> loads;
  std::vector<Quad> displacements;
};

/// Everything that follows from displacements; the loads are those of the structure.
template <class R>
PreciseResults ResultsOf(const Structure& s, const std::vector<R>& u)
{
  const int n = s.Components();
  PreciseResults results;
  std::vector<R> forces(u.size(), R(0));
  ForEachElement<R>(s, [&](const Element<R>& e, Family family) {
    std::vector<double>& values = family == Family::Beams       ? results.beams
                                  : family == Family::Triangles ? results.triangles
                                                                : results.tetrahedra;
    AddAtNodes(e, n, ForcesOf(e, AtNodes(e, n, u), &values), forces);
  });
  for (const Frame::NodalLoad& load : s.loads) {
    for (int k = 0; k < n; ++k)
      forces[(load.node - 1) * n + k] -= R(load.values[k]);
  }
  const Supports<R> supports(s);
  for (int i = 0; i < s.Equations(); ++i) {
    results.displacements.push_back(static_cast<double>(u[i]));
    results.reactions.push_back(supports.Takes(i) ? static_cast<double>(forces[i]) : 0.0);
  }
  return results;
}

}  // namespace

PreciseResults SolvePrecisely(const Structure& structure)
{
  CaseRefinement refinement(structure);
  if (!refinement.ImproveByFactors<long double>() && !refinement.ImproveByFactors<Quad>())
    ADD_FAILURE() << "the reference does not converge";
  return ResultsOf(structure, refinement.Displacements());
}

PreciseResults RefinePrecisely(const Structure& structure)
{
  CaseRefinement refinement(structure);
  if (!refinement.ImproveByRuns())
    ADD_FAILURE() << "the reference does not converge";
  return ResultsOf(structure, refinement.Displacements());
}

PreciseResults LoadFor(Structure& structure, const std::vector<double>& displacements)
{
  using R = long double;
  const int n = structure.Components();
  structure.loads.clear();
  const Supports<R> supports(structure);
  std::vector<R> u(displacements.begin(), displacements.end());
  supports.FixLoose(u);
  std::vector<R> forces(u.size(), R(0));
  ForEachElement<R>(structure, [&](const Element<R>& e, Family) {
    AddAtNodes(e, n, ForcesOf(e, AtNodes(e, n, u), nullptr), forces);
  });
  std::vector<R> local = u;
  supports.ToSupportAxes(local);
  for (Frame::Support& support : structure.supports) {
    for (int k = 0; k < n; ++k) {
      if (support.flags[k] == 1)
        support.values[k] = static_cast<double>(local[(support.node - 1) * n + k]);
    }
  }
  supports.ToSupportAxes(forces);
  for (int i = 0; i < structure.Equations(); ++i)
    forces[i] = supports.IsPrescribed(i) ? R(0) : forces[i] + supports.Spring(i) * local[i];
  supports.ToGlobalAxes(forces);
  for (int node = 1; node <= structure.NodeCount(); ++node) {
    Frame::NodalLoad load = {node, {}};
    for (int k = 0; k < n; ++k)
      load.values[k] = static_cast<double>(forces[(node - 1) * n + k]);
    structure.loads.push_back(load);
  }
  return ResultsOf(structure, u);
}

std::vector<double> BentDisplacements(const Structure& structure, const std::vector<Bend>& bends,
                                      const Vector3& origin)
{
  std::vector<double> displacements;
  for (const Vector3& node : structure.nodes) {
    const Vector3 x = node - origin;
    std::array<double, 6> u{};
    for (const auto& [along, towards, curvature] : bends) {
      u[along] += curvature * x[along] * x[towards];
      u[towards] -= curvature * x[along] * x[along] / 2;
      const int axis = 3 - along - towards;
      const double sign = (along + 1) % 3 == axis ? 1.0 : -1.0;  // towards × along
      u[3 + axis] += sign * curvature * x[along];
    }
    if (!structure.space)
      u[2] = u[5];
    displacements.insert(displacements.end(), u.begin(), u.begin() + structure.Components());
  }
  return displacements;
}

// --- Errors ---

namespace {

/// Values of one kind: the largest, and the largest difference.
struct Kind
{
  double largest = 0.0;
  double difference = 0.0;

  void Take(double actual, double exact)
  {
    largest = std::max(largest, std::fabs(exact));
    const double d = std::fabs(actual - exact);
    if (!(d <= difference))  // of what is not a number too
      difference = d;
  }
  /// Relative to the largest, at least to what another kind makes of it.
  double Error(double other) const
  {
    const double scale = std::max(largest, other);
    return difference == 0.0 ? 0.0 : difference / scale;
  }
};

/// Two kinds of values that alternate, as forces and moments of nodes do.
struct Kinds
{
  Kind first;
  Kind second;

  /// Values in groups of `period`, of which those of the second kind lie in [begin, end).
  void Take(const double* actual, const std::vector<double>& exact, int period, int begin, int end)
  {
    for (std::size_t i = 0; i < exact.size(); ++i) {
      const int place = static_cast<int>(i) % period;
      (place >= begin && place < end ? second : first).Take(actual[i], exact[i]);
    }
  }
};

double SizeOf(const Structure& s)
{
  const Vector3 extent = ExtentOf(s);
  return std::sqrt(::Dot(extent, extent));
}

Kinds DisplacementsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  std::vector<double> actual;
  for (int node = 1; node <= s.NodeCount(); ++node) {
    const std::vector<double> u = solved.Displacement(node);
    actual.insert(actual.end(), u.begin(), u.end());
  }
  Kinds kinds;
  kinds.Take(actual.data(), exact.displacements, s.Components(), Translations(s), 6);
  return kinds;
}

Kinds ReactionsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  const int n = s.Components();
  Kinds kinds;
  for (const Frame::Support& support : s.supports) {
    const auto first = exact.reactions.begin() + (support.node - 1) * n;
    kinds.Take(solved.Reaction(support.node).data(), {first, first + n}, n, Translations(s), 6);
  }
  return kinds;
}

}  // namespace

double Errors::Largest() const
{
  return std::max({displacement, rotation, force, moment, reaction, reactionMoment});
}

Errors ErrorsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  const double length = MeanLength(s);
  const double size = SizeOf(s);
  const Kinds u = DisplacementsOf(solved, s, exact);
  const Kinds r = ReactionsOf(solved, s, exact);
  Errors errors{.displacement = u.first.Error(u.second.largest * length),
                .rotation = u.second.Error(u.first.largest / size),
                .reaction = r.first.Error(r.second.largest / size),
                .reactionMoment = r.second.Error(r.first.largest * length)};
  int mesh = 0;
  const auto take = [&](const std::vector<double>& values, int period, int begin, int end) {
    if (values.empty())
      return;
    Kinds forces;
    forces.Take(solved.Model().results[mesh++].strengths.Data(), values, period, begin, end);
    errors.force = std::max(errors.force, forces.first.Error(forces.second.largest / size));
    errors.moment = std::max(errors.moment, forces.second.Error(forces.first.largest * length));
  };
  take(exact.beams, s.Components(), Translations(s), 6);
  take(exact.triangles, 8, 3, 6);
  take(exact.tetrahedra, 6, 6, 6);
  return errors;
}
