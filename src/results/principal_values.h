#pragma once

#include "model/euler.h"

class ReaVecV;

/// Principal values of the symmetric tensor with a and b on its diagonal and c off it, and
/// the angle of their axes (radians). The first value need not be the larger one.
void CalcMainValuesAndAngle(double a, double b, double c, double& first, double& second,
                            double& angle);

/// Euler angles of the axes turned by the angle about their own z.
void CalcNewEulerAngles(const Axes& axes, double angle, double euler[3]);

/// Turns the eight local forces of `points` consecutive points into N11, N22, 0, M11, M22, 0,
/// Qm1, Qm2, in `values` itself or in `out` when that is given (at the same places); writes the
/// Euler angles of the axes of forces and of moments, six a point. Offsets as in values(offset
/// + 1).
void ConvertResultsToMainValues(ReaVecV& values, int offset, int points, ReaVecV& angles,
                                int angleOffset, const Axes& axes, ReaVecV* out);
