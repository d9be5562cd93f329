#pragma once

// An independent formulation of the refined shell triangles of isotropic materials, for any number
// type R; see docs/theory.md for the formulas. Their elements are lists of points like those of
// precise_elements.h. The shares of the nodes are computed with 64 bits and rounded to doubles: a
// difference of 1e-16 of a share changes the stiffness of an element by as little, and no rigid
// motion depends on it.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>
#include <vector>

#include "support/precise_elements.h"
#include "support/structure.h"

namespace morlen::precise {

/// The share of each node (from 0) in the drilling freedoms.
inline std::vector<double> SharesOfNodes(const Structure& s)
{
  using R = long double;
  std::vector<std::vector<std::size_t>> around(s.nodes.size());
  std::vector<Vec<R>> normals;  // as long as twice the area
  for (std::size_t i = 0; i < s.triangles.size(); ++i) {
    const Vector3& a = s.nodes[s.triangles[i][0] - 1];
    normals.push_back(Cross(Between<R>(a, s.nodes[s.triangles[i][1] - 1]),
                            Between<R>(a, s.nodes[s.triangles[i][2] - 1])));
    for (const int node : s.triangles[i])
      around[node - 1].push_back(i);
  }
  constexpr R degree = std::numbers::pi_v<R> / 180;
  std::vector<double> shares;
  for (const std::vector<std::size_t>& triangles : around) {
    R turn = 0;
    R areas = 0;
    for (const std::size_t i : triangles) {
      areas += std::sqrt(Dot(normals[i], normals[i])) / 2;
      for (const std::size_t j : triangles) {
        const Vec<R> c = Cross(normals[i], normals[j]);
        const R angle = std::atan2(std::sqrt(Dot(c, c)), std::fabs(Dot(normals[i], normals[j])));
        const R fade = std::min(std::max((angle / degree - 20) / 20, R(0)), R(1));
        turn = std::max(turn, angle * (1 - fade) * (1 - fade) * (1 + 2 * fade));
      }
    }
    const R size = triangles.empty() ? R(0) : std::sqrt(2 * areas / R(triangles.size()));
    shares.push_back(static_cast<double>(1 / (1 + std::pow(turn * size / R(s.shell.t), 4))));
  }
  return shares;
}

/// The triangle of the corners.
template <class R>
struct Corners
{
  explicit Corners(const std::vector<Vec<R>>& at)
      : area(((at[1][0] - at[0][0]) * (at[2][1] - at[0][1]) -
              (at[2][0] - at[0][0]) * (at[1][1] - at[0][1])) /
             R(2))
  {
    for (int i = 0; i < 3; ++i) {
      const Vec<R>& second = at[(i + 1) % 3];
      const Vec<R>& third = at[(i + 2) % 3];
      gradients[i] = {(second[1] - third[1]) / (R(2) * area),
                      (third[0] - second[0]) / (R(2) * area)};
      edges[i] = {second[0] - at[i][0], second[1] - at[i][1]};
      squares[i] = edges[i][0] * edges[i][0] + edges[i][1] * edges[i][1];
    }
  }

  /// The part of the drilling stiffness that a node without a share keeps.
  R Remainder(R t) const
  {
    const R part = t * t / (R(10) * area);
    return part < R(1) ? part : R(1);
  }

  R area;
  std::array<std::array<R, 2>, 3> gradients;  ///< of the area coordinates
  std::array<std::array<R, 2>, 3> edges;      ///< from a corner to the next
  std::array<R, 3> squares;                   ///< of the lengths of the edges
};

template <class R>
Rows<R> PartOf(const Rows<R>& D, std::size_t first, std::size_t count)
{
  Rows<R> part = Zeros<R>(count, count);
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = 0; j < count; ++j)
      part[i][j] = D[first + i][first + j];
  }
  return part;
}

/// A single row with its stiffness.
template <class R>
Point<R> Single(std::vector<R> row, R stiffness)
{
  return {{std::move(row)}, {{stiffness}}, R(1), false};
}

/// The rotation of corner k minus that of the linear field of the corners.
template <class R>
std::vector<R> RelativeTurn(const Corners<R>& c, int k)
{
  std::vector<R> row(18, R(0));
  for (int i = 0; i < 3; ++i) {
    row[6 * i] = c.gradients[i][1] / R(2);
    row[6 * i + 1] = -c.gradients[i][0] / R(2);
  }
  row[6 * k + 5] = R(1);
  return row;
}

/// Constant strains from the movement of the edges, which bend by the rotations of their ends.
template <class R>
Rows<R> EdgeStrains(const Corners<R>& c, const std::array<double, 3>& f)
{
  Rows<R> B = Zeros<R>(3, 18);
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const auto [x, y] = c.edges[i];
    const R bend = Root<R>(R(f[i]) * R(f[j])) / (R(8) * c.area);
    for (const int node : {i, j}) {
      B[0][6 * node] += y / (R(2) * c.area);
      B[1][6 * node + 1] -= x / (R(2) * c.area);
      B[2][6 * node] -= x / (R(2) * c.area);
      B[2][6 * node + 1] += y / (R(2) * c.area);
      const R signedBend = node == i ? -bend : bend;
      B[0][6 * node + 5] += signedBend * y * y;
      B[1][6 * node + 5] += signedBend * x * x;
      B[2][6 * node + 5] -= signedBend * R(2) * x * y;
    }
  }
  return B;
}

/// Strains in the middle of edge e from the relative rotations of the corners.
template <class R>
Rows<R> HigherStrains(const Corners<R>& c, const std::array<double, 3>& f, int e)
{
  // By corner, edge and node. The rotations of the other corners follow by turning the numbers.
  constexpr std::array<std::array<int, 3>, 3> kFirst = {{{1, 2, 1}, {0, 1, -1}, {-1, -1, -2}}};
  std::array<Vec<R>, 3> along;  // (x², y², x y) / l of the edges
  for (int edge = 0; edge < 3; ++edge) {
    const auto [x, y] = c.edges[edge];
    along[edge] = {x * x / c.squares[edge], y * y / c.squares[edge], x * y / c.squares[edge]};
  }
  const R det = Dot(along[0], Cross(along[1], along[2]));
  Rows<R> B = Zeros<R>(3, 18);
  for (int edge = 0; edge < 3; ++edge) {
    const Vec<R> inverse = Cross(along[(edge + 1) % 3], along[(edge + 2) % 3]);
    for (int node = 0; node < 3; ++node) {
      int number = 0;
      for (const int corner : {e, (e + 1) % 3})
        number += kFirst[(edge + 3 - corner) % 3][(node + 3 - corner) % 3];
      const R factor = R(f[node]) * c.area / R(3) * R(number) / c.squares[edge] / det;
      const std::vector<R> turn = RelativeTurn(c, node);
      for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t i = 0; i < 18; ++i)
          B[k][i] += inverse[k] * factor * turn[i];
      }
    }
  }
  return B;
}

/// Adds the rows 3 to 7, curvatures and shear strains of the plate, at the area coordinates L.
template <class R>
void SetPlateRows(const Corners<R>& c, const Rows<R>& D, const Vec<R>& L, Rows<R>& B)
{
  for (int i = 0; i < 3; ++i) {
    const auto [gx, gy] = c.gradients[i];
    B[3][6 * i + 4] += gx;
    B[4][6 * i + 3] -= gy;
    B[5][6 * i + 4] += gy;
    B[5][6 * i + 3] -= gx;
    const int j = (i + 1) % 3;
    const auto [x, y] = c.edges[i];
    std::vector<R> chord(18, R(0));  // its slope minus that of the normals, times the length
    chord[6 * i + 2] = R(-1);
    chord[6 * j + 2] = R(1);
    for (const int node : {i, j}) {
      chord[6 * node + 4] = x / R(2);
      chord[6 * node + 3] = -y / R(2);
    }
    const R phi = R(12) * D[3][3] / (D[6][6] * c.squares[i]);
    const R bend = R(-6) / (c.squares[i] * (R(1) + phi));
    const R shear = phi / (R(1) + phi);
    const auto [hx, hy] = c.gradients[j];
    const R Px = bend * (L[i] * hx + L[j] * gx);
    const R Py = bend * (L[i] * hy + L[j] * gy);
    for (std::size_t k = 0; k < 18; ++k) {
      B[3][k] += Px * x * chord[k];
      B[4][k] += Py * y * chord[k];
      B[5][k] += (Py * x + Px * y) * chord[k];
      B[6][k] += shear * (L[i] * hx - L[j] * gx) * chord[k];
      B[7][k] += shear * (L[i] * hy - L[j] * gy) * chord[k];
    }
  }
}

/// The points of a triangle of three nodes. The results are those of a point without weight.
template <class R>
std::vector<Point<R>> RefinedThreeNodes(const std::vector<Vec<R>>& places, const Rows<R>& D, R nu,
                                        R t, const std::array<double, 3>& f)
{
  const Corners<R> c(places);
  const Rows<R> Dm = PartOf(D, 0, 3);
  const Rows<R> basic = EdgeStrains(c, f);
  std::vector<Point<R>> points = {{basic, Dm, c.area, false}};
  const R least = R(1) / R(10);
  R higher = (R(1) - R(4) * nu * nu) / R(2);
  higher = higher < least ? least : higher;
  for (int e = 0; e < 3; ++e)
    points.push_back({HigherStrains(c, f, e), Dm, R(3) / R(4) * higher * c.area, false});
  for (int k = 0; k < 3; ++k)
    points.push_back(
        Single(RelativeTurn(c, k), (R(1) - R(f[k])) * c.Remainder(t) * D[2][2] * c.area / R(3)));
  const R half = R(1) / R(2);
  const R third = R(1) / R(3);
  for (const Vec<R>& L : {Vec<R>{half, half, R(0)}, {R(0), half, half}, {half, R(0), half}}) {
    points.push_back({Zeros<R>(8, 18), D, c.area / R(3), false});
    SetPlateRows(c, D, L, points.back().B);
  }
  points.push_back({Zeros<R>(8, 18), D, R(0)});
  std::copy(basic.begin(), basic.end(), points.back().B.begin());
  SetPlateRows(c, D, {third, third, third}, points.back().B);
  return points;
}

/// A triangle of six nodes. In its membrane the mid-side nodes move with the linear field of the
/// corners as far as they have no share. A node off the plane (third coordinate) has a rigid link
/// to its place in the plane.
template <class R>
class RefinedSixNodes
{
public:
  RefinedSixNodes(const std::vector<Vec<R>>& places_, const std::array<double, 6>& f_)
      : places(places_), corners(places_), f(f_)
  {
    for (int m = 0; m < 3; ++m) {
      for (int c = 0; c < 3; ++c)
        L[m][c] = R(1) + corners.gradients[c][0] * (places[3 + m][0] - places[c][0]) +
                  corners.gradients[c][1] * (places[3 + m][1] - places[c][1]);
    }
  }

  std::vector<Point<R>> Points(Rows<R> D, R t) const
  {
    const R remainder = corners.Remainder(t);
    const R longest =
        std::max(corners.squares[0], std::max(corners.squares[1], corners.squares[2]));
    const R shear = t * t / (t * t + longest / R(100));
    D[6][6] *= shear;
    D[7][7] *= shear;
    const R half = R(1) / R(2);
    std::vector<Point<R>> points;
    for (const auto& at : {std::vector<R>{half, R(0)}, {half, half}, {R(0), half}}) {
      R det(0);
      Rows<R> B = RowsAt(at, det);
      points.push_back({std::move(B), D, det / R(6)});
    }
    for (int m = 0; m < 3; ++m) {
      for (int k = 0; k < 2; ++k)
        points.push_back(Single(Deviation(m, k), (R(1) - R(f[3 + m])) * remainder * D[2][2]));
    }
    const Rows<R> nodes = {{R(0), R(0)}, {R(1), R(0)}, {R(0), R(1)},
                           {half, R(0)}, {half, half}, {R(0), half}};
    for (int k = 0; k < 6; ++k) {
      const R part = R(f[k]) + (R(1) - R(f[k])) * remainder;
      points.push_back(Single(RelativeTurnAt(nodes[k], k), part * D[2][2] * corners.area / R(6)));
    }
    for (Point<R>& point : points) {
      for (std::vector<R>& row : point.B)
        ReplaceOffsets(row);
    }
    return points;
  }

private:
  /// Replaces the displacement of each mid-side node by that of its place in the plane, to which a
  /// rigid link goes.
  void ReplaceOffsets(std::vector<R>& row) const
  {
    for (int m = 3; m < 6; ++m) {
      row[6 * m + 4] -= places[m][2] * row[6 * m];
      row[6 * m + 3] += places[m][2] * row[6 * m + 1];
    }
  }

  std::vector<Vec<R>> GradientsAt(const std::vector<R>& natural, R& det, std::vector<R>& N) const
  {
    const Shape<R> shape = ShapeAt<R>(natural, {{0, 1}, {1, 2}, {2, 0}}, true);
    std::vector<Vec<R>> gradients;
    det = Gradients(places, shape, true, gradients);
    N = shape.N;
    return gradients;
  }

  /// Replaces u of the mid-side nodes by u0 + f (u - u0), u0 the linear field; v likewise.
  void Replace(std::vector<R>& row) const
  {
    for (int m = 0; m < 3; ++m) {
      for (int k = 0; k < 2; ++k) {
        R& own = row[6 * (3 + m) + k];
        for (int c = 0; c < 3; ++c)
          row[6 * c + k] += (R(1) - R(f[3 + m])) * L[m][c] * own;
        own *= R(f[3 + m]);
      }
    }
  }

  Rows<R> RowsAt(const std::vector<R>& natural, R& det) const
  {
    std::vector<R> N;
    const std::vector<Vec<R>> gradients = GradientsAt(natural, det, N);
    Rows<R> B = ShellB(N, gradients);
    for (int k = 0; k < 3; ++k)
      Replace(B[k]);
    return B;
  }

  std::vector<R> Deviation(int m, int k) const
  {
    std::vector<R> row(36, R(0));
    row[6 * (3 + m) + k] = R(1);
    for (int c = 0; c < 3; ++c)
      row[6 * c + k] = -L[m][c];
    return row;
  }

  std::vector<R> RelativeTurnAt(const std::vector<R>& natural, int k) const
  {
    R det(0);
    std::vector<R> N;
    const std::vector<Vec<R>> gradients = GradientsAt(natural, det, N);
    std::vector<R> row(36, R(0));
    for (int i = 0; i < 6; ++i) {
      row[6 * i] = gradients[i][1] / R(2);
      row[6 * i + 1] = -gradients[i][0] / R(2);
    }
    Replace(row);
    row[6 * k + 5] = R(1);
    return row;
  }

  std::vector<Vec<R>> places;
  Corners<R> corners;
  std::array<double, 6> f;
  std::array<Vec<R>, 3> L;  ///< area coordinates of the mid-side nodes
};

/// shares: by node, see SharesOfNodes.
template <class R>
Element<R> RefinedTriangleElement(const Structure& s, int index, const std::vector<double>& shares)
{
  const std::vector<int>& triangle = s.triangles[index];
  Element<R> e;
  e.axes = TriangleAxes(NormalOf<R>(s, triangle));
  std::vector<Vec<R>> places;
  std::array<double, 6> f{};
  for (const int node : triangle) {
    f[e.nodes.size()] = shares[node - 1];
    e.nodes.push_back(node - 1);
    const Vec<R> d = Between<R>(s.nodes[triangle[0] - 1], s.nodes[node - 1]);
    places.push_back({Dot(e.axes[0], d), Dot(e.axes[1], d), Dot(e.axes[2], d)});
  }
  const R t(s.shell.t);
  const Rows<R> D = ShellD<R>(s.shell);
  if (triangle.size() == 6)
    e.points = RefinedSixNodes<R>(places, f).Points(D, t);
  else
    e.points = RefinedThreeNodes(places, D, R(s.shell.nu), t, {f[0], f[1], f[2]});
  return e;
}

}  // namespace morlen::precise
