#include "model/material.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "base/stprintf.h"
#include "model/euler.h"

namespace morlen {

namespace {

constexpr double Material::*kValues[] = {
    &Material::E1, &Material::E2,     &Material::nuXY, &Material::nuYX, &Material::Iy,
    &Material::Iz, &Material::Gxy,    &Material::Gxz,  &Material::Gyz,  &Material::J,
    &Material::A,  &Material::Weight, &Material::t};
constexpr double kUnset = -1.0;

// The bit of one of the values.
unsigned MarkOf(double Material::*field)
{
  return 1u << (std::find(std::begin(kValues), std::end(kValues), field) - std::begin(kValues));
}

// Coefficient β of the torsion constant J = β a b³ for ratios of the widths a/b below a limit.
// Source of the coefficients: the table of S. Timoshenko and J. N. Goodier, Theory of
// Elasticity, 1951; each limit lies midway between two of its ratios.
struct TorsionStep
{
  double below;
  double beta;
};
constexpr TorsionStep kTorsion[] = {{1.25, 0.141}, {1.75, 0.196}, {2.25, 0.229}, {2.75, 0.249},
                                    {3.5, 0.263},  {4.5, 0.281},  {5.5, 0.291},  {6.5, 0.299},
                                    {7.5, 0.303},  {8.5, 0.307},  {9.5, 0.31},   {10.0, 0.313}};
constexpr double kTorsionOfSlenderSection = 0.333;

// A ratio on a limit belongs to the larger ratios, also when the quotient of the widths is rounded
// downwards: 0.35/0.2 is a little less than 1.75, 35/20 is not.
double TorsionCoefficient(double ratio)
{
  constexpr double kBelow = 1.0 - 1e-9;
  const TorsionStep* step =
      std::find_if(std::begin(kTorsion), std::end(kTorsion),
                   [ratio](const TorsionStep& s) { return ratio < kBelow * s.below; });
  return step == std::end(kTorsion) ? kTorsionOfSlenderSection : step->beta;
}

}  // namespace

Material::Material(const Material& m)
{
  *this = m;
  number = 0;
}

void Material::SetToNegative()
{
  for (double Material::*field : kValues)
    this->*field = kUnset;
  given = 0;
  eulerGiven = 0;
}

void Material::Enter(double Material::*field, double value)
{
  this->*field = value;
  given |= MarkOf(field);
}

void Material::ComposeMaterial(const Material* base)
{
  for (double Material::*field : kValues) {
    if (this->*field == kUnset && !(given & MarkOf(field)))
      this->*field = base ? base->*field : 0.0;
  }
  if (eulerGiven || !base || !base->eulerGiven)
    return;
  eulerGiven = 1;
  eulerOfBase = true;
  std::copy(std::begin(base->Euler), std::end(base->Euler), Euler);
}

void Material::RecomposeMaterial(const Material& base)
{
  for (double Material::*field : kValues) {
    if (!(given & MarkOf(field)))
      this->*field = base.*field;
  }
  if (eulerGiven && !eulerOfBase)
    return;
  eulerGiven = base.eulerGiven;
  eulerOfBase = base.eulerGiven != 0;
  std::copy(std::begin(base.Euler), std::end(base.Euler), Euler);
}

void Material::CalcOtherParametersForRecSec(double widthY, double widthZ)
{
  Enter(&Material::A, widthY * widthZ);
  Enter(&Material::Iy, widthY * widthZ * widthZ * widthZ / 12.0);
  Enter(&Material::Iz, widthY * widthY * widthY * widthZ / 12.0);
  const double a = std::max(widthY, widthZ);
  const double b = std::min(widthY, widthZ);
  Enter(&Material::J, TorsionCoefficient(a / b) * a * b * b * b);
}

void Material::ForgetSection()
{
  for (double Material::*field : {&Material::A, &Material::Iy, &Material::Iz, &Material::J}) {
    this->*field = kUnset;
    given &= ~MarkOf(field);
  }
}

void Material::GiveEI(double& EIy, double& EIz, double& EA) const
{
  EIy = E1 * Iy;
  EIz = E1 * Iz;
  EA = E1 * A;
}

int Material::GiveEulerAngles(double angles[3]) const
{
  if (!eulerGiven)
    return 1;
  std::copy(std::begin(Euler), std::end(Euler), angles);
  return 0;
}

int Material::CalcTransfMatFromEuler(Matriu& T) const
{
  if (!eulerGiven)
    return 1;
  GiveMatriuFromEuler(Euler, T);
  return 0;
}

void Material::PrintTo(std::ostream& out) const
{
  stprintf(out,
           "%i E1=%g E2=%g nuXY=%g nuYX=%g Iy=%g Iz=%g Gxy=%g Gxz=%g Gyz=%g J=%g A=%g "
           "Weight=%g t=%g\n",
           number, E1, E2, nuXY, nuYX, Iy, Iz, Gxy, Gxz, Gyz, J, A, Weight, t);
}

}  // namespace morlen
