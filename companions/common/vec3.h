#pragma once

#include <array>

namespace morlen {

/// A place or a direction in global axes; plane models leave the components that they lack at 0.
using Vec3 = std::array<double, 3>;

Vec3 Minus(const Vec3& a, const Vec3& b);
Vec3 Cross(const Vec3& a, const Vec3& b);
double Dot(const Vec3& a, const Vec3& b);
double Length(const Vec3& a);

/// The smallest box along the axes that holds all places added; from 0 to 0 without any.
class Box
{
public:
  void Add(const Vec3& place);

  const Vec3& Low() const { return low; }
  const Vec3& High() const { return high; }
  Vec3 Middle() const;
  double Diagonal() const { return Length(Minus(high, low)); }

private:
  bool empty = true;
  Vec3 low{}, high{};
};

}  // namespace morlen
