#include "solvers/ldlt_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

/// Numbers without a pattern in -1..1.
double Noise(int k)
{
  return std::sin(12.9898 * k + 78.233);
}

/// A diagonally dominant matrix whose rows from `first` on all begin in the same column.
class Profile
{
public:
  Profile(int first, int count, int start) : heights(first + count), storage(first + count)
  {
    for (int i = 0; i < first + count; ++i) {
      heights[i] = i < first ? 1 + 7919 % (i + 1) : i - start + 1;
      for (int d = 0; d < heights[i]; ++d)
        storage[i].push_back(d == 0 ? 20.0 : Noise(100 * i + d));
      rows.push_back(storage[i].data());
    }
  }
  ProfileRows View() const { return {rows.data(), heights.data()}; }

private:
  std::vector<int> heights;
  std::vector<std::vector<double>> storage;
  std::vector<double*> rows;
};

void Factorise(const ProfileRows& matrix, int first, int count)
{
  ReduceRows(matrix, first, count);
  for (int row = first; row < first + count; ++row)
    FinishRow(matrix, row, first);
}

}  // namespace

TEST(LdltKernel, DotProductOfEveryLength)
{
  double a[40], b[40];
  for (int k = 0; k < 40; ++k) {
    a[k] = Noise(k);
    b[k] = Noise(1000 + k);
  }
  double expected = 0.0;
  for (int count = 0; count < 39; ++count) {
    EXPECT_NEAR(DotProduct(a + 1, b, count), expected, 1e-14) << count;
    expected += a[count + 1] * b[count];
  }
}

TEST(LdltKernel, SubtractMultipleTouchesOnlyItsRange)
{
  for (int count = 0; count < 19; ++count) {
    double x[20], y[20];
    for (int k = 0; k < 20; ++k) {
      x[k] = Noise(k);
      y[k] = k;
    }
    SubtractMultiple(y, x, 0.5, count);
    for (int k = 0; k < 20; ++k)
      EXPECT_NEAR(y[k], k < count ? k - 0.5 * x[k] : k, 1e-15) << count << " " << k;
  }
}

TEST(LdltKernel, GroupsGiveWhatSingleRowsGive)
{
  constexpr int kFirst = 23;
  for (int count = 1; count <= kMaxRowsPerGroup; ++count)
    for (const int start : {0, 4, kFirst - 1, kFirst}) {
      const Profile grouped(kFirst, count, start);
      const Profile single(kFirst, count, start);
      for (int row = 0; row < kFirst; ++row) {
        Factorise(grouped.View(), row, 1);
        Factorise(single.View(), row, 1);
      }
      Factorise(grouped.View(), kFirst, count);
      for (int row = kFirst; row < kFirst + count; ++row)
        Factorise(single.View(), row, 1);
      for (int row = 0; row < kFirst + count; ++row)
        for (int d = 0; d < grouped.View().heights[row]; ++d)
          EXPECT_NEAR(grouped.View().rows[row][d], single.View().rows[row][d], 1e-14)
              << count << " rows from column " << start << ": (" << row << "," << row - d << ")";
    }
}
