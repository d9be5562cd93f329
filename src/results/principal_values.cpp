// Principal forces and moments of shells.
//
// Mohr's circle: with the angle t of tan 2t = 2c / (b - a), the tensor [a c; c b] has the principal
// values m ± (r - s), m = (a + b) / 2, r = (a - b) / 2 · cos 2t, s = c · sin 2t.
// Source: S. Timoshenko, J. N. Goodier, Theory of Elasticity, 3rd ed. 1970, § 9.

#include "results/principal_values.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/constants.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

// The largest absolute value of the three components.
double MaxAbs(const double* tensor)
{
  return std::max({std::fabs(tensor[0]), std::fabs(tensor[1]), std::fabs(tensor[2])});
}

}  // namespace

void CalcMainValuesAndAngle(double a, double b, double c, double& first, double& second,
                            double& angle, double sizeOfOthers)
{
  const double size = std::max({std::fabs(a), std::fabs(b), std::fabs(c), sizeOfOthers});
  const double rounding = EPSILON * size;
  if (std::fabs(c) <= rounding)
    angle = 0.0;
  else if (std::fabs(a - b) <= rounding)
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
                                int angleOffset, const Axes& axes, ReaVecV* out, double length)
{
  for (int point = 0; point < points; ++point, offset += 8, angleOffset += 6) {
    const double* v = &values(offset + 1);
    double main[8] = {};
    double angle = 0.0;
    const double sizeOfMoments = length > 0.0 ? MaxAbs(v + 3) / length : 0.0;
    CalcMainValuesAndAngle(v[0], v[1], v[2], main[0], main[1], angle, sizeOfMoments);
    CalcNewEulerAngles(axes, angle, &angles(angleOffset + 1));
    CalcMainValuesAndAngle(v[3], v[4], v[5], main[3], main[4], angle, MaxAbs(v) * length);
    CalcNewEulerAngles(axes, angle, &angles(angleOffset + 4));
    main[6] = std::cos(angle) * v[6] + std::sin(angle) * v[7];
    main[7] = -std::sin(angle) * v[6] + std::cos(angle) * v[7];
    std::copy_n(main, 8, &(out ? *out : values)(offset + 1));
  }
}

// The stresses are divided by the largest of them first, so that no square overflows.
double VonMises(const double* stresses)
{
  double largest = 0.0;
  for (int i = 0; i < 6; ++i)
    largest = std::max(largest, std::fabs(stresses[i]));
  if (largest == 0.0)
    return 0.0;
  double s[6];
  for (int i = 0; i < 6; ++i)
    s[i] = stresses[i] / largest;
  const double a = s[0] - s[1];
  const double b = s[1] - s[2];
  const double c = s[2] - s[0];
  return largest *
         std::sqrt(0.5 * (a * a + b * b + c * c + 6.0 * (s[3] * s[3] + s[4] * s[4] + s[5] * s[5])));
}

}  // namespace morlen
