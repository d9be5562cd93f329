#pragma once

namespace morlen {

// Values that are not linear in the loads. They are computed from the combined values of a point.

/// Design moments of a slab, per length, about the axes of the element.
struct DesignMoments
{
  double xPlus, yPlus;    ///< for the reinforcement on the side of +z'; not negative
  double xMinus, yMinus;  ///< on the side of -z'; not positive
};

/// The moments that orthogonal reinforcement along x' and y' must carry. Mx, My, Mxy: moments of a
/// shell, with tension on the side of +z' where they are positive.
///
/// Sources: R. H. Wood, The reinforcement of slabs in accordance with a pre-determined field of
/// moments, Concrete 2, 1968, pages 69-76; G. S. T. Armer, discussion of it, pages 319-320.
DesignMoments WoodArmer(double Mx, double My, double Mxy);

/// The principal values of a symmetric tensor of the plane, the larger one first.
struct PrincipalPair
{
  double larger, smaller;
};
PrincipalPair PrincipalValues(double a, double b, double c);

/// The principal values, descending, of six stresses x, y, z, xy, xz, yz.
void PrincipalStresses(const double* stresses, double* principal);

/// The length of a vector of `count` components.
double LengthOf(const double* components, int count);

}  // namespace morlen
