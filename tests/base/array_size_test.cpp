#include "base/array_size.h"

#include <gtest/gtest.h>

#include "support/fatal.h"
#include "support/hints.h"

namespace morlen {

TEST(ArrayLength, IsTheProduct)
{
  EXPECT_EQ(ArrayLength(0, 6), 0);
  EXPECT_EQ(ArrayLength(7, 0), 0);
  EXPECT_EQ(ArrayLength(7, 6), 42);
  EXPECT_EQ(ArrayLength(2147483647, 1), 2147483647);
  EXPECT_EQ(ArrayLength(357913941, 6), 2147483646);
}

TEST(ArrayLength, IsRefusedWhereAnIntEnds)
{
  const struct
  {
    long long count;
    int each;
  } refused[] = {{357913942, 6}, {2147483648, 1},          {-1, 6},       {1, -6},
                 {-1, -1},       {9223372036854775807, 2}, {65536, 65536}};
  for (const auto& r : refused)
    ExpectFatal([&] { ArrayLength(r.count, r.each); }, "Not space available on heap");
}

TEST(ArrayLength, ExplainsThatTheModelIsTooLarge)
{
  EXPECT_EQ(HintCaught([] { ArrayLength(357913942, 6); }),
            "the model is too large: it has more than 2147483647 values of an array");
  EXPECT_EQ(HintCaught([] { ArrayLength(-1, 6); }), "");
}

}  // namespace morlen
