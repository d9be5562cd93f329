#include "numeric/qsort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "numeric/reavec.h"

namespace morlen {

namespace {

// Keys in orders that are slow or wrong in a careless quicksort.
std::vector<std::vector<int>> Patterns(int n)
{
  std::mt19937 random(static_cast<unsigned>(n));
  std::vector<int> up(static_cast<std::size_t>(n));
  std::iota(up.begin(), up.end(), 1);
  std::vector<int> down(up.rbegin(), up.rend());
  std::vector<int> equal(up.size(), 7);
  std::vector<int> organ, few, any, shuffled(up);
  for (int i = 0; i < n; ++i) {
    organ.push_back(std::min(i, n - i));
    few.push_back(static_cast<int>(random() % 3));
    any.push_back(static_cast<int>(random()) / 2);
  }
  std::shuffle(shuffled.begin(), shuffled.end(), random);
  return {up, down, equal, organ, few, any, shuffled};
}

// Keys made to give medians of three that split badly (D. R. Musser, "Introspective sorting and
// selection algorithms", Software: Practice and Experience 27, 1997).
std::vector<int> MedianOfThreeKiller(int n)
{
  std::vector<int> keys;
  const int half = n / 2;
  for (int i = 1; i <= half; ++i)
    keys.push_back(i % 2 ? i : half + i - 1);
  for (int i = 1; i <= half; ++i)
    keys.push_back(2 * i);
  return keys;
}

TEST(QSort, CompanionsFollowTheirKeys)
{
  int a[] = {3, 1, 2};
  double b[] = {30, 10, 20};
  QSort(a, b, 0, 3);
  EXPECT_EQ((std::vector<int>(a, a + 3)), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ((std::vector<double>(b, b + 3)), (std::vector<double>{10, 20, 30}));
}

TEST(QSort, SortsEveryOrderOfUpToSevenKeys)
{
  for (int n = 0; n <= 7; ++n) {
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    do {
      std::vector<int> a(order);
      QSort(a.data(), 0, n);
      ASSERT_TRUE(std::is_sorted(a.begin(), a.end()));
    } while (std::next_permutation(order.begin(), order.end()));
  }
}

TEST(QSort, AllOverloadsSortAllPatterns)
{
  for (int n : {5, 8, 30, 1000, 5001}) {
    for (const std::vector<int>& keys : Patterns(n)) {
      std::vector<int> sorted(keys);
      std::sort(sorted.begin(), sorted.end());
      std::vector<int> a(keys), withInt(keys), withDouble(keys), ints(keys);
      std::vector<double> doubles(keys.begin(), keys.end()), values(doubles);
      QSort(a.data(), 0, n);
      QSort(withInt.data(), ints.data(), 0, n);
      QSort(withDouble.data(), values.data(), 0, n);
      QSort(doubles.data(), 0, n);
      EXPECT_EQ(a, sorted);
      EXPECT_EQ(withInt, sorted);
      EXPECT_EQ(ints, sorted);
      EXPECT_EQ(withDouble, sorted);
      EXPECT_TRUE(std::equal(values.begin(), values.end(), sorted.begin()));
      EXPECT_TRUE(std::equal(doubles.begin(), doubles.end(), sorted.begin()));
    }
  }
}

TEST(QSort, SlowestInputIsSortedToo)
{
  std::vector<int> a = MedianOfThreeKiller(40000);
  QSort(a.data(), 0, static_cast<int>(a.size()));
  EXPECT_TRUE(std::is_sorted(a.begin(), a.end()));
}

TEST(QSort, LeavesTheRestOfTheArray)
{
  double a[] = {9, 8, 3, 2, 1, 0};
  QSort(a, 2, 3);
  EXPECT_EQ((std::vector<double>(a, a + 6)), (std::vector<double>{9, 8, 1, 2, 3, 0}));
  int keys[] = {9, 5, 4, 1};
  int moved[] = {90, 50, 40, 10};
  QSort(keys, moved, 1, 2);
  EXPECT_EQ((std::vector<int>(keys, keys + 4)), (std::vector<int>{9, 4, 5, 1}));
  EXPECT_EQ((std::vector<int>(moved, moved + 4)), (std::vector<int>{90, 40, 50, 10}));
  QSort(a, 0, 0);
  QSort(a, 0, -1);
  EXPECT_EQ(a[0], 9);
}

TEST(QSort, VectorPositionsCountFromOne)
{
  ReaVec v(3.0, 2.0, 1.0);
  QSort(v, 2, 2);
  EXPECT_EQ(v, ReaVec(3.0, 1.0, 2.0));
  QSort(v, 1, 3);
  EXPECT_EQ(v, ReaVec(1.0, 2.0, 3.0));
}

TEST(QSort, NoNumbersComeLast)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::mt19937 random(3);
  std::vector<double> a;
  for (int i = 0; i < 1000; ++i)
    a.push_back(random() % 3 ? static_cast<double>(random() % 100) : nan);
  const auto numbers = std::count_if(a.begin(), a.end(), [](double x) { return !std::isnan(x); });
  QSort(a.data(), 0, 1000);
  EXPECT_TRUE(std::is_sorted(a.begin(), a.begin() + numbers));
  EXPECT_TRUE(std::all_of(a.begin() + numbers, a.end(), [](double x) { return std::isnan(x); }));
}

}  // namespace

}  // namespace morlen
