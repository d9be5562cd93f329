// Internal forces and deflections of a beam with fixed or hinged ends under a uniform load, in
// closed form. The loads of a beam are summed first (SpanLoad); load vector, end forces, diagrams
// and deflections all follow from the sum by these formulas, so that they agree.
//
// Source of the closed forms: W. C. Young, R. G. Budynas, Roark's Formulas for Stress and
// Strain, McGraw-Hill, New York, 7th ed. 2002, table 8.1.

#include "problem/beam_span.h"

#include <algorithm>
#include <iterator>

#include "base/errorwriter.h"
#include "numeric/block_rotation.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

// The rule by which a component of the internal forces follows from the load.
struct SpanForce
{
  SpanPart part;
  int q;           // index in SpanLoad::q
  double sign;     // of the printed diagram
  double endSign;  // of the equivalent load on the first node; opposite on the second
};

// Torsion is printed as the action of the first node on the element, the opposite of the
// torque in the section.
constexpr SpanForce kPlaneForces[] = {{SpanPart::Axial, 0, 1.0, 1.0},
                                      {SpanPart::Shear, 1, 1.0, -1.0},
                                      {SpanPart::Bending, 1, 1.0, 1.0}};
constexpr SpanForce kSpaceForces[] = {
    {SpanPart::Axial, 0, 1.0, 1.0},    {SpanPart::Shear, 1, 1.0, -1.0},
    {SpanPart::Shear, 2, 1.0, -1.0},   {SpanPart::Torsion, 3, -1.0, -1.0},
    {SpanPart::Bending, 2, 1.0, -1.0}, {SpanPart::Bending, 1, 1.0, 1.0}};

const SpanForce& ForceOf(const BeamSpan& beam, int component)
{
  return beam.type == kPlane ? kPlaneForces[component - 1] : kSpaceForces[component - 1];
}

// The share of the load q·L that the first end carries, and the moment there divided by q·L².
struct EndShares
{
  double force;
  double moment;
};

EndShares SharesOf(HingeCode hinges)
{
  if (hinges.IsContinuous())
    return {0.5, 1.0 / 12.0};
  if (hinges.FirstHinged() && hinges.SecondHinged())
    return {0.5, 0.0};
  return hinges.SecondHinged() ? EndShares{0.625, 0.125} : EndShares{0.375, 0.0};
}

// The deflection at x under the load q across the beam.
double Deflection(HingeCode hinges, double x, double L, double q, double EI)
{
  const double rest = L - x;
  if (hinges.IsContinuous())
    return q * x * x * rest * rest / (24.0 * EI);
  if (hinges.FirstHinged() && hinges.SecondHinged())
    return q * x * (L * L * L - 2.0 * L * x * x + x * x * x) / (24.0 * EI);
  if (hinges.SecondHinged())
    return q * x * x * rest * (3.0 * L - 2.0 * x) / (48.0 * EI);
  return q * rest * rest * x * (L + 2.0 * x) / (48.0 * EI);
}

HingeCode RequireHingeCode(int hingeCode, const char* message)
{
  if (!HingeCode::IsValid(hingeCode))
    Fatal(message);
  return HingeCode(hingeCode);
}

}  // namespace

double GiveLocalStrength(SpanPart part, double t, double L, double q, int hingeCode)
{
  constexpr const char* kMessage = "error in GiveLocalStrength\n";
  const EndShares shares = SharesOf(RequireHingeCode(hingeCode, kMessage));
  const double x = t * L;
  switch (part) {
    case SpanPart::Axial:
      return q * (shares.force * L - x);
    case SpanPart::Shear:
      return -q * (shares.force * L - x);
    case SpanPart::Bending:
      return q * (shares.moment * L * L - shares.force * L * x + x * x / 2.0);
    case SpanPart::Torsion:
      return q * (L / 2.0 - x);
  }
  Fatal(kMessage);
}

double GiveLocalDisplacement(SpanPart part, double t, double L, double q, double stiffness,
                             int hingeCode)
{
  constexpr const char* kMessage = "error in GiveLocalDisplacement\n";
  const HingeCode hinges = RequireHingeCode(hingeCode, kMessage);
  const double x = t * L;
  if (part == SpanPart::Axial)
    return q * x * (L - x) / (2.0 * stiffness);
  if (part != SpanPart::Shear)
    Fatal(kMessage);
  return Deflection(hinges, x, L, q, stiffness);
}

bool SpanLoad::IsZero() const
{
  return strain == 0.0 &&
         std::all_of(std::begin(q), std::end(q), [](double x) { return x == 0.0; });
}

SpanLoad SpanLoad::operator*(double factor) const
{
  SpanLoad product = *this;
  for (double& component : product.q)
    component *= factor;
  product.strain *= factor;
  return product;
}

double SpanLoad::Strength(const BeamSpan& beam, int component, double t) const
{
  const SpanForce& force = ForceOf(beam, component);
  const double value =
      force.sign * GiveLocalStrength(force.part, t, beam.L, q[force.q], beam.hingeCode.Value());
  return force.part == SpanPart::Axial ? value - beam.EA * strain : value;
}

void SpanLoad::AddToReactionsVecs(const BeamSpan& beam, double* R1, double* R2) const
{
  for (int k = 1; k <= beam.Components().count; ++k) {
    const double sign = ForceOf(beam, k).endSign;
    R1[k - 1] -= sign * Strength(beam, k, 0.0);
    R2[k - 1] += sign * Strength(beam, k, 1.0);
  }
}

void SpanLoad::AddToLoadVectorBeam(const BeamSpan& beam, int first, int second,
                                   ReaVecV& loads) const
{
  double R1[6] = {};
  double R2[6] = {};
  const int n = beam.Components().count;
  AddToReactionsVecs(beam, R1, R2);
  TurnVector(beam.T, Turn::ToGlobal, n, R1);
  TurnVector(beam.T, Turn::ToGlobal, n, R2);
  for (int k = 0; k < n; ++k) {
    loads(first + k) -= R1[k];
    loads(second + k) -= R2[k];
  }
}

void SpanLoad::AddToStrengthVectors(const BeamSpan& beam, int component, double t,
                                    double& strength) const
{
  strength += Strength(beam, component, t);
}

void SpanLoad::AddToDisplacementVectors(const BeamSpan& beam, double t, double* displacement) const
{
  const double stiffness[] = {beam.EA, beam.EIz, beam.EIy};
  const int translations = beam.Components().translations;
  double local[3] = {};
  for (int axis = 0; axis < translations; ++axis) {
    const SpanPart part = axis == 0 ? SpanPart::Axial : SpanPart::Shear;
    local[axis] =
        GiveLocalDisplacement(part, t, beam.L, q[axis], stiffness[axis], beam.hingeCode.Value());
  }
  TurnVector(beam.T, Turn::ToGlobal, 3, local);
  for (int k = 0; k < translations; ++k)
    displacement[k] += local[k];
}

}  // namespace morlen
