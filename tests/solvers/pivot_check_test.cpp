#include "solvers/pivot_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

/// The factors of a free chain of springs, given by its pivots: L(i, i-1) = -1, so that the
/// motion of every row is a shift of all before it, and the diagonal of row i was
/// D(i-1) + D(i).
class Chain
{
public:
  explicit Chain(const std::vector<double>& pivots)
  {
    for (const double pivot : pivots) {
      heights.push_back(heights.empty() ? 1 : 2);
      storage.push_back({pivot, -1.0});
    }
    for (std::vector<double>& row : storage)
      rows.push_back(row.data());
  }

  /// The first row that is refused; -1 when there is none.
  int FirstRefused() const
  {
    const int n = static_cast<int>(rows.size());
    PivotCheck check({rows.data(), heights.data()}, n);
    for (int row = 0; row < n; ++row)
      if (!check.Accepts(row, rows[row][0] + (row > 0 ? rows[row - 1][0] : 0.0)))
        return row;
    return -1;
  }

private:
  std::vector<int> heights;
  std::vector<std::vector<double>> storage;
  std::vector<double*> rows;
};

}  // namespace

TEST(PivotCheck, SinglePivots)
{
  static const struct
  {
    double pivot, diagonal;
    bool accepted;
  } cases[] = {
      {1.0, 1.0, true},
      {-1.0, -1.0, true},
      {0.0, 1.0, false},
      {9.9e-16, 9.9e-16, false},
      {1.1e-15, 1.1e-15, true},
      {9e-9, 1e6, false},  // 1e-14 of the diagonal is 1e-8
      {11e-9, 1e6, true},
      {-9e-9, 1e6, false},
      {9e-9, -1e6, false},
      {std::numeric_limits<double>::quiet_NaN(), 1.0, false},
      {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(), false},
  };
  for (const auto& c : cases) {
    double entry = c.pivot;
    double* const row = &entry;
    const int height = 1;
    PivotCheck check({&row, &height}, 1);
    EXPECT_EQ(check.Accepts(0, c.diagonal), c.accepted) << c.pivot << " " << c.diagonal;
  }
}

TEST(PivotCheck, PivotIsComparedWithTheEnergyOfItsMotion)
{
  // The shift of a chain with the springs 1e6 and 1 meets the diagonal entries 1e6, 1e6 + 1
  // and 1: the last pivot is lost below 1e-15 times their sum, 2e-9, though its own diagonal
  // entry is 1.
  EXPECT_EQ(Chain({1e6, 1.0, 1.9e-9}).FirstRefused(), 2);
  EXPECT_EQ(Chain({1e6, 1.0, 2.1e-9}).FirstRefused(), -1);
  EXPECT_EQ(Chain({1.0, 1e6, 1.0, -1.9e-9}).FirstRefused(), 3);
}

TEST(PivotCheck, EstimateMissesNoFreeChain)
{
  for (int n = 2; n <= 400; ++n) {
    std::vector<double> pivots(n, 1.0);
    pivots[0] = 1e3;
    pivots[n - 1] = 5e-16 * (2e3 + 2.0 * n);
    EXPECT_EQ(Chain(pivots).FirstRefused(), n - 1) << n;
  }
}
