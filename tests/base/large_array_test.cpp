#include "base/large_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace morlen {

namespace {

TEST(LargeArray, KeepsItsNumbersWhateverItsSize)
{
  const std::size_t large = 2 * kLargePage / sizeof(double);
  for (const std::size_t count : {std::size_t{0}, std::size_t{3}, large - 1, large, large + 5}) {
    LargeArray<double> a(count, 1.5);
    EXPECT_EQ(std::count(a.begin(), a.end(), 1.5), static_cast<std::ptrdiff_t>(count));
    const LargeArray<double> copy = a;
    EXPECT_EQ(copy, a);
    a.resize(count + large, 2.5);
    EXPECT_EQ(a.back(), 2.5);
    EXPECT_TRUE(std::equal(copy.begin(), copy.end(), a.begin()));
  }
}

TEST(LargeArray, BeginsOnALargePage)
{
  const LargeArray<double> a(kLargePage, 0.0);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.data()) % kLargePage, 0u);
}

}  // namespace

}  // namespace morlen
