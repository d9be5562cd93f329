#include "cases/derived_values.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace morlen {

namespace {

// The moments for one side, on which positive values give tension.
std::pair<double, double> MomentsOfSide(double Mx, double My, double Mxy)
{
  const double twist = std::fabs(Mxy);
  double x = Mx + twist;
  double y = My + twist;
  // A negative moment needs no reinforcement: its direction then carries the twist alone.
  if (x < 0.0) {
    x = 0.0;
    y = My + twist * (twist / std::fabs(Mx));
  } else if (y < 0.0) {
    y = 0.0;
    x = Mx + twist * (twist / std::fabs(My));
  }
  return {std::max(x, 0.0), std::max(y, 0.0)};
}

}  // namespace

DesignMoments WoodArmer(double Mx, double My, double Mxy)
{
  const auto [xPlus, yPlus] = MomentsOfSide(Mx, My, Mxy);
  const auto [xMinus, yMinus] = MomentsOfSide(-Mx, -My, Mxy);
  return {xPlus, yPlus, 0.0 - xMinus, 0.0 - yMinus};
}

PrincipalPair PrincipalValues(double a, double b, double c)
{
  const double mean = (a + b) / 2.0;
  const double radius = std::hypot((a - b) / 2.0, c);
  return {mean + radius, mean - radius};
}

// Rotations in the planes of two axes until the shears are gone. Source: C. G. J. Jacobi, Über ein
// leichtes Verfahren, die in der Theorie der Säcularstörungen vorkommenden Gleichungen numerisch
// aufzulösen, J. reine angew. Math. 30, 1846.
void PrincipalStresses(const double* s, double* principal)
{
  double a[3][3] = {{s[0], s[3], s[4]}, {s[3], s[1], s[5]}, {s[4], s[5], s[2]}};
  constexpr int kPlanes[3][2] = {{0, 1}, {0, 2}, {1, 2}};
  constexpr int kMostSweeps = 30;
  for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
    bool changed = false;
    for (const auto& [p, q] : kPlanes) {
      const double size = std::fabs(a[p][p]) + std::fabs(a[q][q]);
      if (a[p][q] == 0.0 || size + std::fabs(a[p][q]) == size)
        continue;
      changed = true;
      const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
      const double t = std::copysign(1.0, theta) / (std::fabs(theta) + std::hypot(theta, 1.0));
      const double cosine = 1.0 / std::hypot(t, 1.0);
      const double sine = t * cosine;
      a[p][p] -= t * a[p][q];
      a[q][q] += t * a[p][q];
      a[p][q] = a[q][p] = 0.0;
      const int r = 3 - p - q;
      const double rp = a[r][p];
      const double rq = a[r][q];
      a[r][p] = a[p][r] = cosine * rp - sine * rq;
      a[r][q] = a[q][r] = sine * rp + cosine * rq;
    }
    if (!changed)
      break;
  }
  for (int k = 0; k < 3; ++k)
    principal[k] = a[k][k];
  std::sort(principal, principal + 3, std::greater<>());
}

double LengthOf(const double* components, int count)
{
  double length = 0.0;
  for (int k = 0; k < count; ++k)
    length = std::hypot(length, components[k]);
  return length;
}

}  // namespace morlen
