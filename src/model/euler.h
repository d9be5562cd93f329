#pragma once

#include "numeric/reavec.h"

namespace morlen {

class Matriu;

// Local axes and their Euler angles. The global axes are the local ones turned by a[0]
// about z, then by a[1] about the new x, then by a[2] about the new z, in radians.
// Matrices have the local axes, written in global coordinates, as columns.

/// The unit vector along v; not finite when v is 0.
ReaVec Normalized(const ReaVec& v);

/// Local axes in global coordinates; unit vectors of three components.
struct Axes
{
  ReaVec x, y, z;
};

Axes AxesFromEuler(const double a[3]);
/// a[0] and a[2] are found in [0, 2π], a[1] in [0, π]; a[0] is 0 for a vertical z.
void AnglesFromAxes(const Axes& axes, double a[3]);

/// Axes with the given x; y is normal to global Z, for a nearly vertical x to global Y.
Axes AxesGivenX(const ReaVec& x);
/// Axes with the given z; x is normal to global Z, for a nearly vertical z to global Y.
Axes AxesGivenZ(const ReaVec& z);
/// Axes with the given x, and y in the plane of x and y0.
Axes AxesGivenXY(const ReaVec& x, const ReaVec& y0);
/// The first three columns of T, down to the third row.
Axes AxesFromMatriu(const Matriu& T);

/// Makes T the n×n matrix (n = 3 or 6) with the axes in every diagonal 3×3 block and zeros
/// around them. The array of T is kept when it has this size.
void FillFrame(const Axes& axes, int n, Matriu& T);

// The same with 3×3 matrices.

void GiveMatriuFromEuler(const double a[3], Matriu& T);
void GiveAnglesFromMatriu(const Matriu& T, double a[3]);
void GiveAnglesFromAxes(const ReaVec& x, const ReaVec& y, const ReaVec& z, double a[3]);
void CalcMatGivenAxeX(const ReaVec& x, Matriu& T);
void CalcMatGivenOneAxe(const ReaVec& n, Matriu& T);
void CalcMatGivenXYAxes(const ReaVec& x, const ReaVec& y, Matriu& T);

/// 1 when each angle of a differs by at most tol from that of b, else 0. For the first
/// and the third angle, what lies less than tol below the full turn counts from there.
int AreEulerAnglesEqual(const double a[3], const double b[3], double tol);

/// Angles of the mean of the axes of two or three triples, made orthogonal again with z
/// as it is and y last; the angles of a when the axes cancel each other.
void MeanEulerAngles(const double a[3], const double b[3], double mean[3]);
void MeanEulerAngles(const double a[3], const double b[3], const double c[3], double mean[3]);

}  // namespace morlen
