// Stiffness of the two-node beam in its local axes, without shear deformation.
//
// The beam is a bar along x (EA/L), in space also a torsion bar (GJ/L), and a bending beam in
// each plane. Bending in the x-y plane is a 4×4 matrix over (v1, θ1, v2, θ2), θ about z:
//
//   EI/L³  [  12    6L   -12    6L  ]
//          [  6L    4L²  -6L    2L² ]
//          [ -12   -6L    12   -6L  ]
//          [  6L    2L²  -6L    4L² ]
//
// A hinge releases the moment at its end; its rotation is condensed out of the matrix, which
// changes the coefficients and leaves zeros for that rotation. Bending in the x-z plane has the
// same form with w and θy; a positive θy lowers w along the beam, so that the terms that couple
// w and θy change sign. Source: J. S. Przemieniecki, Theory of Matrix Structural Analysis,
// McGraw-Hill, 1968, chapter 5.

#include <cmath>
#include <string>
#include <utility>

#include "base/constants.h"
#include "base/errorwriter.h"
#include "base/node_components.h"
#include "base/read_observer.h"
#include "model/hinge_code.h"
#include "model/material.h"
#include "model/negative_value.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

// Coefficients of one plane of bending: `shear` times EI/L³, `first` and `second` times EI/L²,
// the others times EI/L.
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

const BendingCoefficients& CoefficientsOf(HingeCode hinges)
{
  if (hinges.FirstHinged())
    return hinges.SecondHinged() ? kHingedBoth : kHingedFirst;
  return hinges.SecondHinged() ? kHingedSecond : kContinuous;
}

struct LocalBlocks
{
  Matriu& K11;
  Matriu& K12;
  Matriu& K22;
};

// Names the values of a beam that are above 0.
void ExplainValues(const Material& m)
{
  const std::pair<const char*, double> values[] = {{"E", m.E1},  {"G", m.Gxy}, {"A", m.A},
                                                   {"Iy", m.Iy}, {"Iz", m.Iz}, {"J", m.J}};
  std::string names;
  for (const auto& [name, value] : values) {
    if (value > 0.0)
      names += (names.empty() ? "" : ", ") + std::string(name);
  }
  if (names.empty())
    Explain("its material gives no value of a beam: the record of an element is its number, its ",
            "nodes and the number of a material");
  else
    Explain("of the section and the material only these are above 0: ", names);
}

void Require(const Material& m, double Material::*field, const char* kind, const char* name,
             int elemNumber)
{
  if (m.*field > 0.0)
    return;
  AttemptOn(ReadItem::Element, elemNumber, [&] {
    ExplainValues(m);
    ExplainNegative(m.*field, name);
    Fatal("error: ", kind, " parameter ", name, " is 0 for element ", elemNumber, "\n");
  });
}

void CheckValues(const Material& m, int elemNumber, PROBLEMTYPE type)
{
  if (type != kPlane && type != kSpace)
    Fatal("error in Material::ConstructLocalK. Unknown problem type\n");
  Require(m, &Material::E1, "material", "E", elemNumber);
  Require(m, &Material::A, "section", "A", elemNumber);
  Require(m, &Material::Iz, "section", "Iz", elemNumber);
  if (type == kPlane)
    return;
  Require(m, &Material::Iy, "section", "Iy", elemNumber);
  Require(m, &Material::Gxy, "material", "G", elemNumber);
  Require(m, &Material::J, "section", "J", elemNumber);
}

void Clear(Matriu& K, int n)
{
  K.redimension(n, n);
  K = 0.0;
}

// A bar between component k of both ends: axial force or torque.
void AddBar(const LocalBlocks& blocks, int k, double stiffness)
{
  blocks.K11(k, k) = stiffness;
  blocks.K12(k, k) = -stiffness;
  blocks.K22(k, k) = stiffness;
}

// Bending with deflection v and rotation r (components from 1); `sign` is -1 in the plane where
// a positive rotation lowers the deflection along the beam.
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
  const int n = ComponentsOf(type).count;
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
  if (HingeCode::IsValid(hingeCode))
    Construct(*this, elemNumber, {K11, K12, K22}, L2, type, CoefficientsOf(HingeCode(hingeCode)));
}

void Material::ConstructLocalK11(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                 PROBLEMTYPE type) const
{
  ConstructLocalK(elemNumber, K11, K12, K22, L2, type, 11);
}

void Material::ConstructLocalK10(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                 PROBLEMTYPE type) const
{
  ConstructLocalK(elemNumber, K11, K12, K22, L2, type, 10);
}

void Material::ConstructLocalK1(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                PROBLEMTYPE type) const
{
  ConstructLocalK(elemNumber, K11, K12, K22, L2, type, 1);
}

void Material::ConstructLocalK0(int elemNumber, Matriu& K11, Matriu& K12, Matriu& K22, double L2,
                                PROBLEMTYPE type) const
{
  ConstructLocalK(elemNumber, K11, K12, K22, L2, type, 0);
}

}  // namespace morlen
