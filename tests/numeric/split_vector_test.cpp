#include "numeric/split_vector.h"

#include <gtest/gtest.h>

namespace morlen {

namespace {

ReaVecV Single(double value)
{
  ReaVecV v(1);
  v = value;
  return v;
}

}  // namespace

TEST(SplitVector, BeginsWithoutARest)
{
  const SplitVector v(Single(3.0));
  EXPECT_EQ(v.value(1), 3.0);
  EXPECT_EQ(v.rest(1), 0.0);
}

TEST(SplitVector, KeepsWhatADoubleLoses)
{
  SplitVector v(Single(1.0));
  v.Add(Single(0x1p-60));
  EXPECT_EQ(v.value(1), 1.0);
  EXPECT_EQ(v.rest(1), 0x1p-60);
  v.Add(Single(-1.0));
  EXPECT_EQ(v.value(1), 0x1p-60);
  EXPECT_EQ(v.rest(1), 0.0);
}

TEST(SplitVector, ValueIsTheSumRounded)
{
  // The rest keeps half a unit of the last place. With another quarter the value is rounded up.
  SplitVector v(Single(1.0));
  v.Add(Single(0x1p-53));
  v.Add(Single(0x1p-54));
  EXPECT_EQ(v.value(1), 1.0 + 0x1p-52);
  EXPECT_EQ(v.rest(1), -0x1p-54);
  // After a correction larger than the vector, the rest has fewer digits.
  v.Add(Single(0x1p60));
  EXPECT_EQ(v.value(1), 0x1p60);
  EXPECT_EQ(v.rest(1), 1.0 + 0x1p-52);
}

}  // namespace morlen
