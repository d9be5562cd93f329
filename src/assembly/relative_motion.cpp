#include "assembly/relative_motion.h"

#include <algorithm>
#include <cmath>

#include "base/node_components.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

/// The components of a node in a vector by equation, from 0.
const double* PartOf(const Node& node, int components, const double* vector)
{
  return vector + WithRotations(components).Equation(node.number, 1) - 1;
}

/// out = a − b.
void Difference(const double* a, const double* b, int count, double* out)
{
  for (int k = 0; k < count; ++k)
    out[k] = a[k] - b[k];
}

/// Adds the rest of a node's displacements.
void AddRest(const double* rest, int count, double* out)
{
  for (int k = 0; k < count; ++k)
    out[k] += rest[k];
}

/// out = u − base − ω × d for the first `count` components, with ω = turn. Extended precision keeps
/// the digits in which the nearly equal terms differ: a rounding error here would be a force of the
/// element.
void SubtractMotion(const double* u, const double* base, const std::array<double, 3>& turn,
                    const double* d, int count, double* out)
{
  for (int k = 0; k < count; ++k) {
    const int k1 = (k + 1) % 3;
    const int k2 = (k + 2) % 3;
    const long double first = static_cast<long double>(turn[k1]) * d[k2];
    const long double second = static_cast<long double>(turn[k2]) * d[k1];
    const long double moved = static_cast<long double>(u[k]) - base[k];
    out[k] = static_cast<double>(moved - (first - second));
  }
}

/// The first node (from 0) at which the beam is not hinged; -1 when it is hinged at both.
int ContinuousEnd(HingeCode hingeCode)
{
  if (!hingeCode.FirstHinged())
    return 0;
  return hingeCode.SecondHinged() ? -1 : 1;
}

/// The place of the second node of a beam relative to the first.
std::array<double, 3> SpanFrom(const Elem& beam, int components)
{
  const Node& a = *beam(0);
  const Node& b = *beam(1);
  return {b(1) - a(1), b(2) - a(2), components == 6 ? b(3) - a(3) : 0.0};
}

/// The rotation d × u / d² of the chord d of a beam whose second node moves by u relative to the
/// first.
std::array<double, 3> TurnOfChord(const std::array<double, 3>& d, int components, const double* u)
{
  const double w = components == 6 ? u[2] : 0.0;
  const double squares = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
  return {(d[1] * w - d[2] * u[1]) / squares, (d[2] * u[0] - d[0] * w) / squares,
          (d[0] * u[1] - d[1] * u[0]) / squares};
}

/// The rotation of a node of a beam about the three axes.
std::array<double, 3> TurnOfNode(int components, const double* rotations)
{
  if (components == 6)
    return {rotations[0], rotations[1], rotations[2]};
  return {0.0, 0.0, rotations[0]};
}

/// The rotation of a shell in global axes: the tilt of the plane through its corners and the turn
/// of its first edge.
std::array<double, 3> TurnOfShell(const Elem& shell, const Matriu& T, const double* x,
                                  const double* y, const double* u)
{
  double corners[3][3];
  for (int i = 0; i < 3; ++i) {
    Difference(PartOf(*shell(i), 6, u), PartOf(*shell(0), 6, u), 3, corners[i]);
    TurnVector(T, Turn::ToLocal, 3, corners[i]);
  }
  const double* second = corners[1];
  const double* third = corners[2];
  const double twoA = x[1] * y[2] - x[2] * y[1];
  const double slopeX = (second[2] * y[2] - third[2] * y[1]) / twoA;
  const double slopeY = (third[2] * x[1] - second[2] * x[2]) / twoA;
  const double inPlane = (x[1] * second[1] - y[1] * second[0]) / (x[1] * x[1] + y[1] * y[1]);
  std::array<double, 3> turn = {slopeY, -slopeX, inPlane};
  TurnVector(T, Turn::ToGlobal, 3, turn.data());
  return turn;
}

/// Half the curl of the linear field that has the displacements u, relative to the first node,
/// at the corners d of a tetrahedron.
std::array<double, 3> TurnOfSolid(const double (*d)[3], const double* u)
{
  double gradients[4][3] = {};  // of the corners' shape functions, times the determinant
  for (int i = 1; i < 4; ++i) {
    const double* a = d[i % 3 + 1];
    const double* b = d[(i + 1) % 3 + 1];
    for (int k = 0; k < 3; ++k) {
      const int k1 = (k + 1) % 3;
      const int k2 = (k + 2) % 3;
      gradients[i][k] = a[k1] * b[k2] - a[k2] * b[k1];
    }
  }
  double determinant = 0.0;
  for (int k = 0; k < 3; ++k)
    determinant += d[1][k] * gradients[1][k];
  std::array<double, 3> turn = {};
  for (int i = 1; i < 4; ++i) {
    for (int k = 0; k < 3; ++k) {
      const int k1 = (k + 1) % 3;
      const int k2 = (k + 2) % 3;
      turn[k] += gradients[i][k1] * u[3 * i + k2] - gradients[i][k2] * u[3 * i + k1];
    }
  }
  for (double& component : turn)
    component /= 2.0 * determinant;
  return turn;
}

/// The normal of the corners d of a shell, on the side of the third axis of T. A normal of only 16
/// digits would give a rotation about an axis in the plane a component that the ground resists.
std::array<long double, 3> NormalOf(const double (*d)[3], const Matriu& T)
{
  std::array<long double, 3> normal;
  long double squares = 0.0L;
  long double side = 0.0L;
  for (int k = 0; k < 3; ++k) {
    const int k1 = (k + 1) % 3;
    const int k2 = (k + 2) % 3;
    normal[k] = static_cast<long double>(d[1][k1]) * d[2][k2] -
                static_cast<long double>(d[1][k2]) * d[2][k1];
    squares += normal[k] * normal[k];
    side += normal[k] * T(k + 1, 3);
  }
  const long double length = std::copysign(std::sqrt(squares), side);
  for (long double& component : normal)
    component /= length;
  return normal;
}

}  // namespace

void CalcRelativeBeam(const Elem& beam, HingeCode hingeCode, int components, const Matriu& T,
                      const SplitView& u, double* local)
{
  const int translations = WithRotations(components).translations;
  const int rotations = components - translations;
  const int end = ContinuousEnd(hingeCode);
  const double* const base = PartOf(*beam(0), components, u.value);
  const double* const other = PartOf(*beam(1), components, u.value);
  const double* const turned = (end == 1 ? other : base) + translations;
  const std::array<double, 3> d = SpanFrom(beam, components);
  double moved[3];
  Difference(other, base, translations, moved);
  const std::array<double, 3> turn =
      end < 0 ? TurnOfChord(d, components, moved) : TurnOfNode(components, turned);
  double* const second = local + components;
  std::fill_n(local, translations, 0.0);
  SubtractMotion(other, base, turn, d.data(), translations, second);
  Difference(base + translations, turned, rotations, local + translations);
  Difference(other + translations, turned, rotations, second + translations);
  for (int i = 0; i < 2; ++i) {
    if (u.rest)
      AddRest(PartOf(*beam(i), components, u.rest), components, local + i * components);
    TurnVector(T, Turn::ToLocal, components, local + i * components);
  }
}

void CalcRelativeShell(const Elem& shell, const Matriu& T, const double* x, const double* y,
                       const std::array<bool, 6>& folded, const SplitView& u, double* local)
{
  const std::array<double, 3> turn = TurnOfShell(shell, T, x, y, u.value);
  const double* const base = PartOf(*shell(0), 6, u.value);
  const int nnode = shell.Nnode();
  double d[6][3];
  CalcPlacesFromFirst(shell, nnode, d);
  const std::array<long double, 3> normal = NormalOf(d, T);
  for (int i = 0; i < nnode; ++i) {
    double* const out = local + 6 * i;
    const double* const own = PartOf(*shell(i), 6, u.value);
    SubtractMotion(own, base, turn, d[i], 3, out);
    Difference(own + 3, turn.data(), 3, out + 3);
    if (u.rest)
      AddRest(PartOf(*shell(i), 6, u.rest), 6, out);
    TurnVector(T, Turn::ToLocal, 6, out);
    if (folded[i])
      continue;
    long double aboutNormal = 0.0L;
    for (int k = 0; k < 3; ++k)
      aboutNormal +=
          normal[k] * (own[3 + k] + (u.rest ? PartOf(*shell(i), 6, u.rest)[3 + k] : 0.0L));
    out[5] = static_cast<double>(aboutNormal);
  }
}

void CalcRelativeSolid(const Elem& solid, const SplitView& u, double* relative)
{
  const int nnode = solid.Nnode();
  double d[10][3];
  CalcPlacesFromFirst(solid, nnode, d);
  const double* const base = PartOf(*solid(0), 3, u.value);
  double corners[3 * 4];
  for (int i = 0; i < 4; ++i)
    Difference(PartOf(*solid(i), 3, u.value), base, 3, corners + 3 * i);
  const std::array<double, 3> turn = TurnOfSolid(d, corners);
  for (int i = 0; i < nnode; ++i) {
    SubtractMotion(PartOf(*solid(i), 3, u.value), base, turn, d[i], 3, relative + 3 * i);
    if (u.rest)
      AddRest(PartOf(*solid(i), 3, u.rest), 3, relative + 3 * i);
  }
}

}  // namespace morlen
