#pragma once

#include "model/euler.h"

namespace morlen {

class ReaVecV;

/// Principal values of the symmetric tensor [a c; c b], and the angle of their axes (radians). The
/// first value need not be the larger one.
///
/// |c| and |a - b| count as 0 up to 1e-15 · max(|a|, |b|, |c|, sizeOfOthers). sizeOfOthers: the
/// size of values whose rounding errors are in the tensor.
void CalcMainValuesAndAngle(double a, double b, double c, double& first, double& second,
                            double& angle, double sizeOfOthers = 0.0);

/// Euler angles of the axes after a turn by the angle (radians) about z.
void CalcNewEulerAngles(const Axes& axes, double angle, double euler[3]);

/// Replaces the eight local forces of `points` consecutive points, Nx, Ny, Nxy, Mx, My, Mxy, Qx,
/// Qy, by N11, N22, 0, M11, M22, 0, Qm1, Qm2. The shears are those along the axes of the moments.
///
/// values: the first value of the first point is values(offset + 1). angles: receives the Euler
/// angles of the axes of forces and of moments, six a point, from angles(angleOffset + 1). axes:
/// the local ones. out: receives the result at the same places; null to overwrite `values`. length:
/// the size of the element; when it is given, forces that are rounding errors of the moments, and
/// moments that are rounding errors of the forces, keep the local axes.
void ConvertResultsToMainValues(ReaVecV& values, int offset, int points, ReaVecV& angles,
                                int angleOffset, const Axes& axes, ReaVecV* out,
                                double length = 0.0);

/// The equivalent stress sqrt(((sx - sy)² + (sy - sz)² + (sz - sx)²) / 2 + 3 (txy² + txz² + tyz²))
/// of six stresses; the order of the shears does not matter. Source: R. von Mises, Mechanik der
/// festen Körper im plastisch-deformablen Zustand, 1913.
double VonMises(const double* stresses);

}  // namespace morlen
