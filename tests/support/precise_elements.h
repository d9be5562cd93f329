#pragma once

// An independent formulation of the program's elements, for any number type R: every element is a
// list of points with strains B·u and forces D·B·u in its axes. See docs/theory.md for the
// formulas.

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "support/structure.h"

namespace morlen::precise {

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

/// A point of an element: the strains B·u of the local displacements u, and the forces D·B·u. The
/// work of the forces has the factor `weight`.
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

/// Bending with the displacements v1, r1, v2, r2. The hinge code releases rotations.
template <class R>
void AddBending(Rows<R>& k, const std::array<int, 4>& at, R EI, R L, int code, R sign)
{
  const auto [v1, r1, v2, r2] = at;
  const bool first = code / 10 == 1;
  const bool second = code % 10 == 1;
  if (!first && !second)
    return;
  const bool both = first && second;
  // The moments of the ends for a unit deflection of end 1; that of a hinged end is 0.
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
  const R lean(1e-6);  // of a vertical beam, at most
  if (!space)
    return {x, {-x[1], x[0], R(0)}, {R(0), R(0), R(1)}};
  const bool vertical = x[0] * x[0] + x[1] * x[1] <= lean * lean;
  const Vec<R> y = vertical ? Unit(Vec<R>{R(1) - x[0] * x[0], -x[0] * x[1], -x[0] * x[2]})
                            : Unit(Vec<R>{-x[1], x[0], R(0)});
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

/// The values of the shape functions at a point and their derivatives by natural coordinates.
template <class R>
struct Shape
{
  std::vector<R> N;
  std::vector<Vec<R>> slopes;
};

/// Linear or quadratic shape functions of a triangle (two natural coordinates) or a tetrahedron
/// (three). edges: the two corners of the edge of each mid-side node.
template <class R>
Shape<R> ShapeAt(const std::vector<R>& natural, const std::vector<std::array<int, 2>>& edges,
                 bool quadratic)
{
  const std::size_t dimension = natural.size();
  std::vector<R> L = {R(1)};  // that of the first corner is 1 minus the others
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

/// Computes the derivatives of the shape functions by the coordinates with Cramer's rule, and
/// returns the determinant. In a plane the third coordinate is also the third natural coordinate.
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

/// Strains of membrane, bending and shear of a node with the displacements u, v, w and the
/// rotations about the axes.
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

/// The stiffness of the rotation about the normal: area times E against the ground at nodes of one
/// plane, a very small one against the mean rotation of the membrane at folds.
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

/// By node (from 0): 1 when the triangles around it do not all lie in one plane.
inline std::vector<char> FoldedNodes(const Structure& s)
{
  const long double cosine = 1.0L - 5e-15L;  // of the angle 1e-7
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

/// Rotates groups of three components into the axes, or back.
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

/// The forces of an element on its nodes for their displacements, both in global axes. Appends the
/// forces of its points to `results` unless that is null.
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

/// The values of the nodes of an element, from those of all nodes.
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

}  // namespace morlen::precise
