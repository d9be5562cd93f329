// Local axes of beams and flat triangles.
//
// Geometry fixes one axis: x of a beam runs from its first node to its second, z of a triangle
// is its normal by the right-hand rule. The material may give Euler angles for the other two;
// their axes need not fit the element exactly:
//
// - Beam: the Euler axes are reversed in pairs when their x runs against the beam. Within 1e-5 of
//   the beam's direction (cosine) they are used as they are; else their y gives the plane of x
//   and y, and y and z are made normal to x. An x at right angles to the beam is refused.
// - Triangle: when z of the Euler axes is the normal they are used as they are; else their x is
//   projected into the plane of the triangle.
//
// Without angles, y of a beam in space is horizontal and z points upwards; y of a vertical beam
// has the angle `alpha` from global X. In plane problems z is global Z. A triangle takes its x
// from AxesGivenZ.

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

// Half a turn for Euler axes whose x runs against the beam: about z when z points upwards, else
// about y.
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

Axes BeamAxesFromEuler(const double angles[3], const ReaVec& x, int number, PROBLEMTYPE type)
{
  constexpr double kAlong = 0.99999;
  Axes axes = AxesFromEuler(angles);
  if (type == kPlane)
    RequirePlaneAxes(axes, number);
  TurnTowards(x, axes);
  const double d = Normalized(axes.x) * x;
  if (!(d >= EPSILONB))
    Fatal("error: Local x axe is orthogonal to the direction of the beam. Element:", number, "\n");
  if (d >= kAlong)
    return axes;
  const ReaVec z = Normalized(VectorProd(x, Normalized(axes.y)));
  return {x, Normalized(VectorProd(z, x)), z};
}

Axes PlaneBeamAxes(const ReaVec& x)
{
  return {x, ReaVec(-x(2), x(1), 0.0), ReaVec(0.0, 0.0, 1.0)};
}

// y is horizontal and z points upwards; y of a vertical beam has the angle alpha from global X.
Axes SpaceBeamAxes(const ReaVec& x, double alpha)
{
  const bool vertical = std::fabs(x(1)) < EPSILON && std::fabs(x(2)) < EPSILON;
  if (vertical) {
    const ReaVec y(std::cos(alpha), std::sin(alpha), 0.0);
    return {x, y, VectorProd(x, y)};
  }
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
