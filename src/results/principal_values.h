#pragma once

#include "model/euler.h"

namespace morlen {

class ReaVecV;

/// Principal values of the symmetric tensor with a and b on its diagonal and c off it, and
/// the angle of their axes (radians). The first value need not be the larger one. A c, or a
/// difference of a and b, is 0 up to 1e-15 of the largest of the three, or of the size of other
/// values in whose rounding errors the tensor may consist.
void CalcMainValuesAndAngle(double a, double b, double c, double& first, double& second,
                            double& angle, double sizeOfOthers = 0.0);

/// Euler angles of the axes turned by the angle about their own z.
void CalcNewEulerAngles(const Axes& axes, double angle, double euler[3]);

/// Turns the eight local forces of `points` consecutive points into N11, N22, 0, M11, M22, 0,
/// Qm1, Qm2, in `values` itself or in `out` when that is given (at the same places); writes the
/// Euler angles of the axes of forces and of moments, six a point. Offsets as in values(offset
/// + 1). With a length, about the size of the element, forces and moments of a point are
/// compared: those that are rounding errors of the others keep the local axes.
void ConvertResultsToMainValues(ReaVecV& values, int offset, int points, ReaVecV& angles,
                                int angleOffset, const Axes& axes, ReaVecV* out,
                                double length = 0.0);

}  // namespace morlen
