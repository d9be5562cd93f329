// Stress-strain matrices of shells and solids.
//
// Shell: plane stress of an orthotropic sheet, multiplied by the thickness (membrane) and by
// t³/12 (bending), and transverse shear with the correction factor 5/6. Source: E. Reissner, The
// effect of transverse shear deformation on the bending of elastic plates, Journal of Applied
// Mechanics 12, 1945. Solid: Hooke's law of an isotropic body. Source: S. Timoshenko and J. N.
// Goodier, Theory of Elasticity, 1951.
//
// Poisson's ratios are limited so that every strain stores energy. Source of the limits: for an
// isotropic body the book above; for an orthotropic sheet B. M. Lempriere, Poisson's ratio in
// orthotropic materials, AIAA Journal 6, 1968.
//
// The checks are negated comparisons, so that NaN fails them.

#include <algorithm>
#include <cmath>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "model/material.h"
#include "model/material_symmetry.h"
#include "model/negative_value.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

// Returns in a check of the file, which hears the message and goes on.
void Refuse(int elemNumber, const char* text)
{
  AttemptOn(ReadItem::Element, elemNumber, [&] { Fatal("error in element ", elemNumber, text); });
}

// key: of the value in problem files.
void RequirePositive(double value, int elemNumber, const char* key, const char* text)
{
  if (value > 0.0)
    return;
  ExplainNegative(value, key);
  Refuse(elemNumber, text);
}

void RefuseRatio(int elemNumber, const char* text)
{
  Note(ReadEvent::PoissonRatio, {});
  Refuse(elemNumber, text);
}

// For Poisson's ratios and their product. True when the value is not refused.
bool RequireDifferent(double value, double excluded, int elemNumber, const char* text)
{
  const bool different = std::fabs(value - excluded) > EPSILON;
  if (!different)
    RefuseRatio(elemNumber, text);
  return different;
}

void RequireRatios(bool fit, const Material& m, int elemNumber, const char* text)
{
  if (fit)
    return;
  Explain("the material of the element has nuXY=", m.nuXY, " and nuYX=", m.nuYX,
          " (the key nu gives both)");
  RefuseRatio(elemNumber, text);
}

// Refuses a sheet, isotropic or orthotropic, in which a strain would release energy.
void RequireStableSheet(const Material& m, int elemNumber)
{
  const double product = m.nuXY * m.nuYX;
  if (!RequireDifferent(product, 1.0, elemNumber, " nuXY*nuYX is 1\n"))
    return;
  if (m.E1 == m.E2 && m.nuXY == m.nuYX)
    RequireRatios(m.nuXY > -1.0 && m.nuXY <= 0.5, m, elemNumber,
                  " nu must be above -1 and at most 0.5\n");
  else
    RequireRatios(product < 1.0, m, elemNumber, " nuXY*nuYX must be below 1\n");
}

void RequireShellValues(const Material& m, int elemNumber)
{
  RequirePositive(m.t, elemNumber, "t", " Shell thickness is 0\n");
  RequirePositive(m.E1, elemNumber, "Ex", " Ex is 0\n");
  RequirePositive(m.E2, elemNumber, "Ey", " Ey is 0\n");
  RequirePositive(m.Gxy, elemNumber, "Gxy", " Gxy is 0\n");
  RequirePositive(m.Gxz, elemNumber, "Gxz", " Gxz is 0\n");
  RequirePositive(m.Gyz, elemNumber, "Gyz", " Gyz is 0\n");
  const bool isXFit = RequireDifferent(m.nuXY, 1.0, elemNumber, " nuXY is 1\n");
  const bool isYFit = RequireDifferent(m.nuYX, 1.0, elemNumber, " nuYX is 1\n");
  if (!IsSymmetric(m)) {
    Note(ReadEvent::AsymmetricMaterial, {});
    Refuse(elemNumber, " Ex*nuXY must be equal to Ey*nuYX\n");
  } else if (isXFit && isYFit) {
    RequireStableSheet(m, elemNumber);
  }
}

void RequireSolidValues(const Material& m, int elemNumber)
{
  RequirePositive(m.E1, elemNumber, "E", " E is 0\n");
  if (RequireDifferent(m.nuXY, 1.0, elemNumber, " nu is 1\n") &&
      RequireDifferent(m.nuXY, 0.5, elemNumber, " nu is 0.5\n") &&
      RequireDifferent(m.nuXY, -1.0, elemNumber, " nu is -1\n"))
    RequireRatios(m.nuXY > -1.0 && m.nuXY < 0.5, m, elemNumber,
                  " nu must be above -1 and below 0.5\n");
}

}  // namespace

bool IsSymmetric(const Material& material)
{
  constexpr double kLastDigits = 1e-12;
  const double x = material.nuXY * material.E1;
  const double y = material.nuYX * material.E2;
  return std::fabs(x - y) <= kLastDigits * std::max(std::fabs(x), std::fabs(y));
}

void Material::GiveDMatrix(int elemNumber, Matriu& Dm, Matriu& Db, Matriu& Ds) const
{
  constexpr double kShearCorrection = 5.0 / 6.0;
  RequireShellValues(*this, elemNumber);
  const double f = t / (1.0 - nuXY * nuYX);
  Dm = 0.0;
  Dm(1, 1) = f * E1;
  Dm(1, 2) = f * nuXY * E1;
  Dm(2, 1) = f * nuYX * E2;
  Dm(2, 2) = f * E2;
  Dm(3, 3) = (1.0 - nuXY * nuYX) * f * Gxy;
  Db = Dm;
  Db *= t * t / 12.0;
  Ds = 0.0;
  Ds(1, 1) = kShearCorrection * t * Gxz;
  Ds(2, 2) = kShearCorrection * t * Gyz;
}

void Material::GiveDMatrixTetra(int elemNumber, Matriu& D) const
{
  RequireSolidValues(*this, elemNumber);
  const double nu = nuXY;
  const double c = (1.0 - nu) * E1 / ((1.0 + nu) * (1.0 - 2.0 * nu));
  D = 0.0;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j)
      D(i, j) = i == j ? c : c * nu / (1.0 - nu);
    D(i + 3, i + 3) = c * (1.0 - 2.0 * nu) / (2.0 - 2.0 * nu);
  }
}

}  // namespace morlen
