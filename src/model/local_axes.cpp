// Local axes of beams and flat triangles.
//
// Geometry fixes one axis: x of a beam runs from its first node to its second, z of a triangle
// is its normal by the right-hand rule. The material may give Euler angles for the other two;
// their axes need not fit the element exactly:
//
// - Beam: the Euler axes are reversed in pairs when their x runs against the beam. When x is then
//   the beam's direction up to rounding, they are used as they are. Else x becomes that direction,
//   y stays in the plane of x and the Euler y, and z completes the axes. With an x that deviates
//   from the beam by an angle d, an axial force N would lose the moment N L d. An Euler x at right
//   angles to the beam is refused.
// - Triangle: when z of the Euler axes is the normal they are used as they are; else their x is
//   projected into the plane of the triangle.
//
// Without angles, y of a beam in space is horizontal and z points upwards. A vertical beam has no
// such y: its y is the horizontal direction with the angle `alpha` from global X, less its part
// along the beam. In plane problems z is global Z. A triangle takes its x from AxesGivenZ.

#include <cmath>

#include "base/errorwriter.h"
#include "base/node_components.h"
#include "model/elem.h"
#include "model/euler.h"
#include "model/material.h"
#include "model/node.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

// The vector from a to b, with three components also in plane problems.
ReaVec Difference(const Node& a, const Node& b)
{
  ReaVec d(0.0, 0.0, 0.0);
  for (int i = 1; i <= 3; ++i)
    d(i) = (i <= b.Size() ? b(i) : 0.0) - (i <= a.Size() ? a(i) : 0.0);
  return d;
}

// Turns Euler axes whose x runs against the beam by 180 degrees: about z when z points upwards,
// else about y.
void TurnTowards(const ReaVec& beam, Axes& axes)
{
  if (Normalized(axes.x) * beam >= -EPSILONB)
    return;
  axes.x = -axes.x;
  ReaVec& second = axes.z(3) > EPSILONB ? axes.y : axes.z;
  second = -second;
}

void RequirePlaneAxes(const Axes& axes, int number)
{
  const double tilts[] = {axes.x(3), axes.y(3), axes.z(1), axes.z(2)};
  for (const double tilt : tilts) {
    if (!(std::fabs(tilt) < EPSILON))
      Fatal("error: Local z axe must be (0,0,1) for 2D problems.Element:", number, "\n");
  }
}

// True when the vectors are equal up to rounding.
bool AreSameUnits(const ReaVec& a, const ReaVec& b)
{
  for (int i = 1; i <= 3; ++i) {
    if (!(std::fabs(a(i) - b(i)) <= EPSILON))
      return false;
  }
  return true;
}

Axes BeamAxesFromEuler(const double angles[3], const ReaVec& x, int number, PROBLEMTYPE type)
{
  Axes axes = AxesFromEuler(angles);
  if (type == kPlane)
    RequirePlaneAxes(axes, number);
  TurnTowards(x, axes);
  if (!(Normalized(axes.x) * x >= EPSILONB))
    Fatal("error: Local x axe is orthogonal to the direction of the beam. Element:", number, "\n");
  if (AreSameUnits(axes.x, x))
    return axes;
  const ReaVec z = Normalized(VectorProd(x, Normalized(axes.y)));
  return {x, Normalized(VectorProd(z, x)), z};
}

Axes PlaneBeamAxes(const ReaVec& x)
{
  return {x, ReaVec(-x(2), x(1), 0.0), ReaVec(0.0, 0.0, 1.0)};
}

double LeanOf(const ReaVec& direction)
{
  return std::hypot(direction(1), direction(2));
}

Axes VerticalBeamAxes(const ReaVec& x, double alpha)
{
  const ReaVec h(std::cos(alpha), std::sin(alpha), 0.0);
  const ReaVec y = Normalized(h - x * (h * x));
  return {x, y, VectorProd(x, y)};
}

// y is horizontal and z points upwards.
Axes SpaceBeamAxes(const ReaVec& x, double alpha)
{
  if (LeanOf(x) <= Elem::kVerticalLean)
    return VerticalBeamAxes(x, alpha);
  if (std::fabs(alpha) >= EPSILON)
    Fatal("sorry, alpha!=0 with no vertical beams isn't implemented yet");
  ReaVec y = std::fabs(x(1)) < EPSILON ? ReaVec(1.0, 0.0, 0.0)
                                       : Normalized(ReaVec(-x(2) / x(1), 1.0, 0.0));
  if (VectorProd(x, y)(3) < 0.0)
    y = -y;
  return {x, y, VectorProd(x, y)};
}

// The Euler axes when their z is the normal n, else their x projected into the plane.
Axes TriangleAxesFromEuler(const double angles[3], const ReaVec& n, int number)
{
  constexpr double kParallel = 0.999999999999999;
  const Axes axes = AxesFromEuler(angles);
  if (n * axes.z >= kParallel)
    return axes;
  const ReaVec y = VectorProd(n, axes.x);
  if (!(y.modul() > EPSILON))
    Fatal("error in element ", number, ". Normal to element and X local are parallel\n");
  const ReaVec unit = Normalized(y);
  return {VectorProd(unit, n), unit, n};
}

}  // namespace

double Elem::Lean() const
{
  return LeanOf(Normalized(Difference(*nodes[0], *nodes[1])));
}

void Elem::CalcTransfMatrixBeam(Matriu& T, const Material* m, PROBLEMTYPE type) const
{
  if (type != kPlane && type != kSpace)
    Fatal("error in Elem::CalcTransfMatrixBeam. Type of problem unknown\n");
  const ReaVec x = Normalized(Difference(*nodes[0], *nodes[1]));
  const Axes axes = m && m->eulerGiven ? BeamAxesFromEuler(m->Euler, x, number, type)
                    : type == kPlane   ? PlaneBeamAxes(x)
                                       : SpaceBeamAxes(x, alpha);
  FillFrame(axes, ComponentsOf(type).count, T);
}

void Elem::CalcTransfMatrixTriangle(Matriu& T, Matriu& Tbig, const Material* m) const
{
  const ReaVec n =
      Normalized(VectorProd(Difference(*nodes[0], *nodes[1]), Difference(*nodes[0], *nodes[2])));
  const Axes axes = m && m->eulerGiven ? TriangleAxesFromEuler(m->Euler, n, number) : AxesGivenZ(n);
  FillFrame(axes, 3, T);
  FillFrame(axes, 6, Tbig);
}

void Elem::GiveEulerAnglesBeam(double a[3], const Material* m, PROBLEMTYPE type) const
{
  Matriu T;
  CalcTransfMatrixBeam(T, m, type);
  GiveAnglesFromMatriu(T, a);
}

void Elem::GiveEulerAnglesTriangle(double a[3], const Material* m) const
{
  Matriu T, Tbig;
  CalcTransfMatrixTriangle(T, Tbig, m);
  GiveAnglesFromMatriu(T, a);
}

}  // namespace morlen
