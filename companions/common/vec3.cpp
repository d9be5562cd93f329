#include "common/vec3.h"

#include <algorithm>
#include <cmath>

namespace morlen {

Vec3 Minus(const Vec3& a, const Vec3& b)
{
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vec3 Cross(const Vec3& a, const Vec3& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const Vec3& a, const Vec3& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double Length(const Vec3& a)
{
  return std::sqrt(Dot(a, a));
}

void Box::Add(const Vec3& place)
{
  for (std::size_t k = 0; k < place.size(); ++k) {
    low[k] = empty ? place[k] : std::min(low[k], place[k]);
    high[k] = empty ? place[k] : std::max(high[k], place[k]);
  }
  empty = false;
}

Vec3 Box::Middle() const
{
  return {(low[0] + high[0]) / 2.0, (low[1] + high[1]) / 2.0, (low[2] + high[2]) / 2.0};
}

}  // namespace morlen
