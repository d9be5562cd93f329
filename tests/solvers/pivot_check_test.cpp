#include "solvers/pivot_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

bool Accepts(PivotCheck& check, int row, double pivot, const double* w)
{
  const PivotCheck::Verdict verdict = check.Judge(row, pivot, w, 1);
  return verdict == PivotCheck::Verdict::kAccepted ||
         (verdict == PivotCheck::Verdict::kDoubtful && check.AcceptsMotion(row, pivot));
}

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
    double w[kProbes] = {};
    for (int row = 0; row < n; ++row) {
      double sides[kProbes];
      check.Begin(row, rows[row][0] + (row > 0 ? rows[row - 1][0] : 0.0), sides, 1);
      for (int probe = 0; probe < kProbes; ++probe)
        w[probe] += sides[probe];
      if (!Accepts(check, row, rows[row][0], w))
        return row;
    }
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
    double w[kProbes];
    check.Begin(0, c.diagonal, w, 1);
    EXPECT_EQ(Accepts(check, 0, c.pivot, w), c.accepted) << c.pivot << " " << c.diagonal;
  }
}

TEST(PivotCheck, PivotIsComparedWithTheEnergyOfItsMotion)
{
  // The shift of a chain with the springs 1e6 and 1 meets the diagonal entries 1e6, 1e6 + 1
  // and 1: the last pivot is lost below 2e-16 times their sum, 4e-10, though its own diagonal
  // entry is 1.
  EXPECT_EQ(Chain({1e6, 1.0, 3.9e-10}).FirstRefused(), 2);
  EXPECT_EQ(Chain({1e6, 1.0, 4.1e-10}).FirstRefused(), -1);
  EXPECT_EQ(Chain({1.0, 1e6, 1.0, -3.9e-10}).FirstRefused(), 3);
}

TEST(PivotCheck, EstimateMissesNoFreeChain)
{
  for (int n = 2; n <= 400; ++n) {
    std::vector<double> pivots(n, 1.0);
    pivots[0] = 1e3;
    pivots[n - 1] = 1e-16 * (2e3 + 2.0 * n);
    EXPECT_EQ(Chain(pivots).FirstRefused(), n - 1) << n;
  }
}

TEST(PivotCheck, SidesLieAtTheStrideAndAreTheSameInEveryRun)
{
  const ProfileRows none{nullptr, nullptr};
  PivotCheck first(none, 3);
  PivotCheck second(none, 3);
  double near[kProbes];
  double far[7 * kProbes] = {};
  for (int row = 0; row < 3; ++row) {
    first.Begin(row, -4.0, near, 1);
    second.Begin(row, 4.0, far, 7);
    for (int probe = 0; probe < kProbes; ++probe) {
      EXPECT_EQ(near[probe], far[7 * probe]);
      EXPECT_LE(std::fabs(near[probe]), 2.0 * std::sqrt(3.0));
    }
  }
}
