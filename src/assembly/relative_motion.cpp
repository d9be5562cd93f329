#include "assembly/relative_motion.h"

#include <algorithm>
#include <cstddef>

#include "model/elem.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"

namespace {

/// The components of a node in a vector by equation, from 0.
const double* PartOf(const Node& node, int components, const double* vector)
{
  return vector + static_cast<std::ptrdiff_t>(node.number - 1) * components;
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

/// u −= ω × d, of which u has the first `count` components. Extended precision keeps the digits
/// in which u and the product, nearly equal, differ.
void SubtractTurn(const std::array<double, 3>& turn, const std::array<double, 3>& d, int count,
                  double* u)
{
  for (int k = 0; k < count; ++k) {
    const int k1 = (k + 1) % 3;
    const int k2 = (k + 2) % 3;
    const long double first = static_cast<long double>(turn[k1]) * d[k2];
    const long double second = static_cast<long double>(turn[k2]) * d[k1];
    u[k] = static_cast<double>(u[k] - (first - second));
  }
}

/// The node whose end of the beam is not hinged, from 0; -1 when both are.
int ContinuousEnd(int hingeCode)
{
  if (hingeCode / 10 == 1)
    return 0;
  return hingeCode % 10 == 1 ? 1 : -1;
}

/// Places of the second node of a beam from the first, three numbers.
std::array<double, 3> SpanFrom(const Elem& beam, int components)
{
  const Node& a = *beam(0);
  const Node& b = *beam(1);
  return {b(1) - a(1), b(2) - a(2), components == 6 ? b(3) - a(3) : 0.0};
}

/// The rotation of the chord of a beam whose second node moves by u from the first: d × u / d².
std::array<double, 3> TurnOfChord(const std::array<double, 3>& d, int components, const double* u)
{
  const double w = components == 6 ? u[2] : 0.0;
  const double squares = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
  return {(d[1] * w - d[2] * u[1]) / squares, (d[2] * u[0] - d[0] * w) / squares,
          (d[0] * u[1] - d[1] * u[0]) / squares};
}

/// The rotation of a node of a beam, three numbers.
std::array<double, 3> TurnOfNode(int components, const double* rotations)
{
  if (components == 6)
    return {rotations[0], rotations[1], rotations[2]};
  return {0.0, 0.0, rotations[0]};
}

/// The rotations about x' and y' of the plane through the corners of a shell, and the turn of
/// its first edge; local: six components a node.
std::array<double, 3> TurnOfShell(const double* x, const double* y, const double* local)
{
  const double* second = local + 6;
  const double* third = local + 12;
  const double twoA = x[1] * y[2] - x[2] * y[1];
  const double slopeX = (second[2] * y[2] - third[2] * y[1]) / twoA;
  const double slopeY = (third[2] * x[1] - second[2] * x[2]) / twoA;
  const double turn = (x[1] * second[1] - y[1] * second[0]) / (x[1] * x[1] + y[1] * y[1]);
  return {slopeY, -slopeX, turn};
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

}  // namespace

void TakeRelativeBeam(const Elem& beam, int hingeCode, int components, const Matriu& T,
                      const SplitView& u, double* local)
{
  const int translations = components == 6 ? 3 : 2;
  const int end = ContinuousEnd(hingeCode);
  const double* const base = PartOf(*beam(0), components, u.value);
  const double* const turn = PartOf(*beam(end < 0 ? 0 : end), components, u.value) + translations;
  for (int i = 0; i < 2; ++i) {
    double* const out = local + i * components;
    const double* const own = PartOf(*beam(i), components, u.value);
    Difference(own, base, translations, out);
    Difference(own + translations, turn, components - translations, out + translations);
  }
  const std::array<double, 3> d = SpanFrom(beam, components);
  double* const second = local + components;
  SubtractTurn(end < 0 ? TurnOfChord(d, components, second) : TurnOfNode(components, turn), d,
               translations, second);
  for (int i = 0; i < 2; ++i) {
    if (u.rest)
      AddRest(PartOf(*beam(i), components, u.rest), components, local + i * components);
    TurnVector(T, Turn::ToLocal, components, local + i * components);
  }
}

void TakeRelativeShell(const Elem& shell, const Matriu& T, const double* x, const double* y,
                       const std::array<bool, 6>& folded, const SplitView& u, double* local)
{
  const double* const base = PartOf(*shell(0), 6, u.value);
  const int nnode = shell.Nnode();
  for (int i = 0; i < nnode; ++i) {
    double* const out = local + 6 * i;
    const double* const own = PartOf(*shell(i), 6, u.value);
    Difference(own, base, 3, out);
    std::copy_n(own + 3, 3, out + 3);
    TurnVector(T, Turn::ToLocal, 6, out);
  }
  const std::array<double, 3> turn = TurnOfShell(x, y, local);
  for (int i = 0; i < nnode; ++i) {
    double* const out = local + 6 * i;
    SubtractTurn(turn, {x[i], y[i], 0.0}, 3, out);
    Difference(out + 3, turn.data(), folded[i] ? 3 : 2, out + 3);
    if (!u.rest)
      continue;
    double rest[6];
    std::copy_n(PartOf(*shell(i), 6, u.rest), 6, rest);
    TurnVector(T, Turn::ToLocal, 6, rest);
    AddRest(rest, 6, out);
  }
}

void TakeRelativeSolid(const Elem& solid, const SplitView& u, double* relative)
{
  const int nnode = solid.Nnode();
  double d[10][3];
  CalcPlacesFromFirst(solid, nnode, d);
  const double* const base = PartOf(*solid(0), 3, u.value);
  for (int i = 0; i < nnode; ++i)
    Difference(PartOf(*solid(i), 3, u.value), base, 3, relative + 3 * i);
  const std::array<double, 3> turn = TurnOfSolid(d, relative);
  for (int i = 0; i < nnode; ++i) {
    SubtractTurn(turn, {d[i][0], d[i][1], d[i][2]}, 3, relative + 3 * i);
    if (u.rest)
      AddRest(PartOf(*solid(i), 3, u.rest), 3, relative + 3 * i);
  }
}
