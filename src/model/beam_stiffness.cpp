// The stiffness of the two-node beam in its own axes, by hinge code.
//
// Each plane of bending is one 4×4 stiffness over (v1, θ1, v2, θ2) in which the released
// rotations are condensed; its coefficients differ by the code only. Bending in the x-y
// plane couples v with θz; in the x-z plane w with θy, where a positive θy makes the beam
// fall, so that the coupling entries change sign.

#include <cmath>

#include "base/constants.h"
#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "model/material.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

// Multiples of EI/L³, EI/L² and EI/L, in that order, for a plane of bending.
struct BendingCoefficients
{
  double shear;            ///< v with v
  double first, second;    ///< v1 with θ1 and with θ2
  double first2, second2;  ///< θ1 with θ1, θ2 with θ2
  double cross;            ///< θ1 with θ2
};

constexpr BendingCoefficients kContinuous = {12, 6, 6, 4, 4, 2};
constexpr BendingCoefficients kHingedSecond = {3, 3, 0, 3, 0, 0};
constexpr BendingCoefficients kHingedFirst = {3, 0, 3, 0, 3, 0};
constexpr BendingCoefficients kHingedBoth = {0, 0, 0, 0, 0, 0};

struct LocalBlocks
{
  Matriu& K11;
  Matriu& K12;
  Matriu& K22;
};

void Require(double value, const char* what, int elemNumber)
{
  if (!(value > 0.0))
    AttemptOn(ReadItem::Element, elemNumber,
              [&] { Fatal("error: ", what, " is 0 for element ", elemNumber, "\n"); });
}

void CheckValues(const Material& m, int elemNumber, PROBLEMTYPE type)
{
  if (type != kPlane && type != kSpace)
    Fatal("error in Material::ConstructLocalK. Unknown problem type\n");
  Require(m.E1, "material parameter E", elemNumber);
  Require(m.A, "section parameter A", elemNumber);
  Require(m.Iz, "section parameter Iz", elemNumber);
  if (type == kPlane)
    return;
  Require(m.Iy, "section parameter Iy", elemNumber);
  Require(m.Gxy, "material parameter G", elemNumber);
  Require(m.J, "section parameter J", elemNumber);
}

void Clear(Matriu& K, int n)
{
  K.redimension(n, n);
  K = 0.0;
}

// A bar: axial force or torque, between component k of both ends.
void AddBar(const LocalBlocks& blocks, int k, double stiffness)
{
  blocks.K11(k, k) = stiffness;
  blocks.K12(k, k) = -stiffness;
  blocks.K22(k, k) = stiffness;
}

// Bending with deflection v and rotation r (components from 1); sign is -1 where a
// positive rotation lowers the deflection.
void AddBending(const LocalBlocks& blocks, const BendingCoefficients& c, int v, int r, double EI,
                double L, double sign)
{
  const double k2 = EI / L;
  const double k1 = sign * (EI / (L * L));
  const double k0 = EI / (L * L * L);
  blocks.K11(v, v) = c.shear * k0;
  blocks.K11(v, r) = blocks.K11(r, v) = c.first * k1;
  blocks.K11(r, r) = c.first2 * k2;
  blocks.K12(v, v) = -c.shear * k0;
  blocks.K12(v, r) = c.second * k1;
  blocks.K12(r, v) = -c.first * k1;
  blocks.K12(r, r) = c.cross * k2;
  blocks.K22(v, v) = c.shear * k0;
  blocks.K22(v, r) = blocks.K22(r, v) = -c.second * k1;
  blocks.K22(r, r) = c.second2 * k2;
}

void Construct(const Material& m, int elemNumber, const LocalBlocks& blocks, double L2,
               PROBLEMTYPE type, const BendingCoefficients& bending)
{
  CheckValues(m, elemNumber, type);
  const double L = std::sqrt(L2);
  const int n = type == kPlane ? 3 : 6;
  Clear(blocks.K11, n);
  Clear(blocks.K12, n);
  Clear(blocks.K22, n);
  AddBar(blocks, 1, m.E1 * m.A / L);
  if (type == kPlane) {
    AddBending(blocks, bending, 2, 3, m.E1 * m.Iz, L, 1.0);
    return;
  }
  AddBar(blocks, 4, m.Gxy * m.J / L);
  AddBending(blocks, bending, 2, 6, m.E1 * m.Iz, L, 1.0);
  AddBending(blocks, bending, 3, 5, m.E1 * m.Iy, L, -1.0);
}

}  // namespace

void Material::ConstructLocalK(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                               PROBLEMTYPE type, int hingeCode) const
{
  switch (hingeCode) {
    case 11:
      return ConstructLocalK11(elemNumber, K11, K12, K22, L2, type);
    case 10:
      return ConstructLocalK10(elemNumber, K11, K12, K22, L2, type);
    case 1:
      return ConstructLocalK1(elemNumber, K11, K12, K22, L2, type);
    case 0:
      return ConstructLocalK0(elemNumber, K11, K12, K22, L2, type);
    default:
      return;
  }
}

void Material::ConstructLocalK11(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                 PROBLEMTYPE type) const
{
  Construct(*this, elemNumber, {K11, K12, K22}, L2, type, kContinuous);
}

void Material::ConstructLocalK10(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                 PROBLEMTYPE type) const
{
  Construct(*this, elemNumber, {K11, K12, K22}, L2, type, kHingedSecond);
}

void Material::ConstructLocalK1(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                PROBLEMTYPE type) const
{
  Construct(*this, elemNumber, {K11, K12, K22}, L2, type, kHingedFirst);
}

void Material::ConstructLocalK0(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                PROBLEMTYPE type) const
{
  Construct(*this, elemNumber, {K11, K12, K22}, L2, type, kHingedBoth);
}

}  // namespace morlen
