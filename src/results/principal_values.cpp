#include "results/principal_values.h"

#include <cmath>
#include <numbers>

#include "base/constants.h"
#include "numeric/reavecv.h"

void CalcMainValuesAndAngle(double a, double b, double c, double& first, double& second,
                            double& angle)
{
  if (std::fabs(c) < EPSILON)
    angle = 0.0;
  else if (std::fabs(a - b) < EPSILON)
    angle = std::numbers::pi / 4.0;
  else
    angle = 0.5 * std::atan2(2.0 * c / (b - a), 1.0);
  const double m = (a + b) / 2.0;
  const double r = (a - b) / 2.0 * std::cos(2.0 * angle);
  const double s = c * std::sin(2.0 * angle);
  first = m + r - s;
  second = m - r + s;
}

void CalcNewEulerAngles(const Axes& axes, double angle, double euler[3])
{
  const ReaVec x = axes.x * std::cos(angle) + axes.y * std::sin(angle);
  AnglesFromAxes({x, VectorProd(axes.z, x), axes.z}, euler);
}

void ConvertResultsToMainValues(ReaVecV& values, int offset, int points, ReaVecV& angles,
                                int angleOffset, const Axes& axes, ReaVecV* out)
{
  for (int point = 0; point < points; ++point, offset += 8, angleOffset += 6) {
    const double* v = &values(offset + 1);
    double main[8] = {};
    double angle = 0.0;
    CalcMainValuesAndAngle(v[0], v[1], v[2], main[0], main[1], angle);
    CalcNewEulerAngles(axes, angle, &angles(angleOffset + 1));
    CalcMainValuesAndAngle(v[3], v[4], v[5], main[3], main[4], angle);
    CalcNewEulerAngles(axes, angle, &angles(angleOffset + 4));
    main[6] = std::cos(angle) * v[6] + std::sin(angle) * v[7];
    main[7] = -std::sin(angle) * v[6] + std::cos(angle) * v[7];
    std::copy_n(main, 8, &(out ? *out : values)(offset + 1));
  }
}
