#include "common/vec3.h"

#include <gtest/gtest.h>

namespace morlen {

TEST(Vec3, ProductsOfTheAxesAreRightHanded)
{
  const Vec3 x = {1.0, 0.0, 0.0};
  const Vec3 y = {0.0, 1.0, 0.0};
  const Vec3 z = {0.0, 0.0, 1.0};
  EXPECT_EQ(Cross(x, y), z);
  EXPECT_EQ(Cross(y, z), x);
  EXPECT_EQ(Cross(z, x), y);
  EXPECT_EQ(Dot({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), 32.0);
  EXPECT_EQ(Minus({1.0, 2.0, 3.0}, {4.0, 6.0, 8.0}), (Vec3{-3.0, -4.0, -5.0}));
  EXPECT_EQ(Length({2.0, 3.0, 6.0}), 7.0);
}

TEST(Box, HoldsItsPlaces)
{
  Box box;
  EXPECT_EQ(box.Diagonal(), 0.0);
  box.Add({5.0, -1.0, 8.0});  // the first place, not 0, is the first corner
  EXPECT_EQ(box.Low(), box.High());
  box.Add({7.0, 2.0, 2.0});
  EXPECT_EQ(box.Low(), (Vec3{5.0, -1.0, 2.0}));
  EXPECT_EQ(box.High(), (Vec3{7.0, 2.0, 8.0}));
  EXPECT_EQ(box.Middle(), (Vec3{6.0, 0.5, 5.0}));
  EXPECT_EQ(box.Diagonal(), 7.0);
}

}  // namespace morlen
