// Euler angles of the sequence z, x, z and the axes that they give.
//
// The matrix T, whose columns are the local axes in global coordinates, is the product of three
// single turns: T = Z(a2) X(a1) Z(a0), where Z(a) has the rows (cos a, sin a, 0), (-sin a, cos a,
// 0), (0, 0, 1) and X is the same about x. The inverse reads a1 from its cosine T33, and a0 and
// a2 from the third row and the third column of T, which hold their sines and cosines multiplied
// by sin a1. When local z is vertical, sin a1 is 0 and only one turn about z remains: a0 is then
// 0 and a2 is that turn. Source: H. Goldstein, Classical Mechanics, 2nd ed., Addison-Wesley,
// 1980, section 4-4.

#include "model/euler.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "base/constants.h"
#include "numeric/matriu.h"

namespace morlen {

ReaVec Normalized(const ReaVec& v)
{
  return v / v.modul();
}

namespace {

constexpr double kFullTurn = 2.0 * std::numbers::pi;

double SafeAcos(double cosine)
{
  return std::acos(std::clamp(cosine, -1.0, 1.0));
}

// The angle in [0, 2π] with this cosine and a sine of the given sign.
double FullAngle(double cosine, double sine)
{
  const double angle = SafeAcos(cosine);
  return sine < 0.0 ? kFullTurn - angle : angle;
}

// A direction that is not parallel to the unit vector v: global Z, or global Y when v is nearly
// vertical.
ReaVec Auxiliary(const ReaVec& v)
{
  constexpr double kNearlyZ = 1.0 / 64.0;
  const bool vertical = std::fabs(v(1)) < kNearlyZ && std::fabs(v(2)) < kNearlyZ;
  return vertical ? ReaVec(0.0, 1.0, 0.0) : ReaVec(0.0, 0.0, 1.0);
}

bool AreAnglesEqual(double a, double b, double tol)
{
  return std::fabs(a - b) <= tol;
}

bool AreTurnsEqual(double a, double b, double tol)
{
  const auto aroundZero = [tol](double angle) {
    return angle > kFullTurn - tol ? angle - kFullTurn : angle;
  };
  return AreAnglesEqual(a, b, tol) || AreAnglesEqual(aroundZero(a), aroundZero(b), tol);
}

void CalcMean(std::initializer_list<const double*> triples, double mean[3])
{
  const double* first = *triples.begin();
  ReaVec x(0.0, 0.0, 0.0);
  ReaVec z(0.0, 0.0, 0.0);
  for (const double* a : triples) {
    const Axes axes = AxesFromEuler(a);
    x += axes.x;
    z += axes.z;
  }
  const ReaVec y = VectorProd(z, x);
  if (!(z.modul() > EPSILONB && y.modul() > EPSILONB)) {
    std::copy(first, first + 3, mean);
    return;
  }
  const Axes axes = AxesGivenXY(Normalized(z), Normalized(x));  // z, x, y in this order
  AnglesFromAxes({axes.y, axes.z, axes.x}, mean);
}

}  // namespace

Axes AxesFromEuler(const double a[3])
{
  const double c1 = std::cos(a[0]), s1 = std::sin(a[0]);
  const double c2 = std::cos(a[1]), s2 = std::sin(a[1]);
  const double c3 = std::cos(a[2]), s3 = std::sin(a[2]);
  return {ReaVec(c3 * c1 - c2 * s1 * s3, -s3 * c1 - c2 * s1 * c3, s2 * s1),
          ReaVec(c3 * s1 + c2 * c1 * s3, -s3 * s1 + c2 * c1 * c3, -s2 * c1),
          ReaVec(s3 * s2, c3 * s2, c2)};
}

void AnglesFromAxes(const Axes& axes, double a[3])
{
  constexpr double kVertical = 0.999999999999999;
  const auto& [x, y, z] = axes;
  a[1] = SafeAcos(z(3));
  if (-kVertical < z(3) && z(3) < kVertical) {
    const double s = std::sqrt(1.0 - z(3) * z(3));
    a[2] = FullAngle(z(2) / s, z(1) / s);
    a[0] = FullAngle(-y(3) / s, x(3) / s);
  } else {
    a[0] = 0.0;
    a[2] = FullAngle(x(1), -x(2));
  }
}

Axes AxesGivenX(const ReaVec& x)
{
  const ReaVec y = Normalized(VectorProd(Auxiliary(x), x));
  return {x, y, VectorProd(x, y)};
}

Axes AxesGivenZ(const ReaVec& z)
{
  const ReaVec x = Normalized(VectorProd(Auxiliary(z), z));
  return {x, VectorProd(z, x), z};
}

Axes AxesGivenXY(const ReaVec& x, const ReaVec& y0)
{
  const ReaVec z = Normalized(VectorProd(x, y0));
  return {x, VectorProd(z, x), z};
}

Axes AxesFromMatriu(const Matriu& T)
{
  const auto column = [&T](int j) { return ReaVec(T(1, j), T(2, j), T(3, j)); };
  return {column(1), column(2), column(3)};
}

void FillFrame(const Axes& axes, int n, Matriu& T)
{
  T.redimension(n, n);
  T = 0.0;
  for (int block = 0; block < n; block += 3) {
    for (int i = 1; i <= 3; ++i) {
      T(block + i, block + 1) = axes.x(i);
      T(block + i, block + 2) = axes.y(i);
      T(block + i, block + 3) = axes.z(i);
    }
  }
}

void GiveMatriuFromEuler(const double a[3], Matriu& T)
{
  FillFrame(AxesFromEuler(a), 3, T);
}

void GiveAnglesFromMatriu(const Matriu& T, double a[3])
{
  AnglesFromAxes(AxesFromMatriu(T), a);
}

void GiveAnglesFromAxes(const ReaVec& x, const ReaVec& y, const ReaVec& z, double a[3])
{
  AnglesFromAxes({x, y, z}, a);
}

void CalcMatGivenAxeX(const ReaVec& x, Matriu& T)
{
  FillFrame(AxesGivenX(x), 3, T);
}

void CalcMatGivenOneAxe(const ReaVec& n, Matriu& T)
{
  FillFrame(AxesGivenZ(n), 3, T);
}

void CalcMatGivenXYAxes(const ReaVec& x, const ReaVec& y, Matriu& T)
{
  FillFrame(AxesGivenXY(x, y), 3, T);
}

int AreEulerAnglesEqual(const double a[3], const double b[3], double tol)
{
  return AreTurnsEqual(a[0], b[0], tol) && AreAnglesEqual(a[1], b[1], tol) &&
         AreTurnsEqual(a[2], b[2], tol);
}

void MeanEulerAngles(const double a[3], const double b[3], double mean[3])
{
  CalcMean({a, b}, mean);
}

void MeanEulerAngles(const double a[3], const double b[3], const double c[3], double mean[3])
{
  CalcMean({a, b, c}, mean);
}

}  // namespace morlen
