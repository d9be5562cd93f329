#pragma once

#include "numeric/reavec.h"

namespace morlen {

class Matriu;

// Local axes and their Euler angles, in radians. The global axes are the local axes turned by
// a[0] about z, then by a[1] about the new x, then by a[2] about the new z. The columns of a
// matrix are the local axes in global coordinates.

/// The unit vector along v; not finite when v is 0.
ReaVec Normalized(const ReaVec& v);

/// Local axes in global coordinates; unit vectors of three components.
struct Axes
{
  ReaVec x, y, z;
};

Axes AxesFromEuler(const double a[3]);
/// Gives a[0] and a[2] in [0, 2π] and a[1] in [0, π]; a[0] is 0 when local z is vertical.
void AnglesFromAxes(const Axes& axes, double a[3]);

/// Axes with the given unit vector x; y is normal to global Z, or to global Y when x is nearly
/// vertical. Not used by the analysis itself.
Axes AxesGivenX(const ReaVec& x);
/// Axes with the given unit vector z; x is normal to global Z, or to global Y when z is nearly
/// vertical.
Axes AxesGivenZ(const ReaVec& z);
/// Axes with the given unit vector x; y lies in the plane of x and y0, on the side of y0.
Axes AxesGivenXY(const ReaVec& x, const ReaVec& y0);
/// The first three columns of T; rows 1 to 3.
Axes AxesFromMatriu(const Matriu& T);

/// Makes T the n×n matrix (n = 3 or 6) with the axes in every 3×3 block of the diagonal and zeros
/// elsewhere. Keeps the array of T when it has this size.
void FillFrame(const Axes& axes, int n, Matriu& T);

/// AnglesFromAxes of the columns of T.
void GiveAnglesFromMatriu(const Matriu& T, double a[3]);

// The functions above with 3×3 matrices. Not used by the analysis itself.

void GiveMatriuFromEuler(const double a[3], Matriu& T);
void GiveAnglesFromAxes(const ReaVec& x, const ReaVec& y, const ReaVec& z, double a[3]);
void CalcMatGivenAxeX(const ReaVec& x, Matriu& T);
void CalcMatGivenOneAxe(const ReaVec& n, Matriu& T);  ///< n is local z
void CalcMatGivenXYAxes(const ReaVec& x, const ReaVec& y, Matriu& T);

/// 1 when each angle of a differs by at most tol from that of b, else 0. A first or third angle
/// less than tol below a full turn is also compared as the negative rest of the turn.
int AreEulerAnglesEqual(const double a[3], const double b[3], double tol);

/// Angles of the mean of the axes that two or three triples give. The sum of the z axes gives
/// the direction of z, the sum of the x axes that of x in the plane normal to z. Gives the angles
/// of a when the axes cancel each other.
void MeanEulerAngles(const double a[3], const double b[3], double mean[3]);
void MeanEulerAngles(const double a[3], const double b[3], const double c[3], double mean[3]);

}  // namespace morlen
