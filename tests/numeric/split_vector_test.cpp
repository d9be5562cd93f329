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
  // Half of the last place is kept in the rest; with a quarter more the sum is rounded up.
  SplitVector v(Single(1.0));
  v.Add(Single(0x1p-53));
  v.Add(Single(0x1p-54));
  EXPECT_EQ(v.value(1), 1.0 + 0x1p-52);
  EXPECT_EQ(v.rest(1), -0x1p-54);
  // The correction may be larger than the vector; the rest then loses its last digits.
  v.Add(Single(0x1p60));
  EXPECT_EQ(v.value(1), 0x1p60);
  EXPECT_EQ(v.rest(1), 1.0 + 0x1p-52);
}

}  // namespace morlen
