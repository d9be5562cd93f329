#include "numeric/block_rotation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/matriu_arithmetic.h"
#include "numeric/reavecv.h"
#include "support/dense.h"

namespace morlen {

namespace {

constexpr double kTol = 1e-14;  // rounding of sums of three products of numbers up to 10

// A rotation without an entry 0, its rows of length 7 before the division.
Matriu Turned()
{
  Matriu T = MatriuOf(3, 3, {6, 2, 3, -3, 6, 2, -2, -3, 6});
  T /= 7.0;
  return T;
}

// The frame that turns n components: T, or T twice on the diagonal.
Matriu Frame(const Matriu& T, int n)
{
  Matriu frame(n, n);
  frame = 0.0;
  for (int at = 1; at <= n; at += 3)
    frame.AddSubmatriu(at, at, T);
  return frame;
}

Matriu Block(int rows, int cols)
{
  Matriu K(rows, cols);
  for (int i = 1; i <= rows; ++i) {
    for (int j = 1; j <= cols; ++j)
      K(i, j) = std::sin(10.0 * i + j) * 5.0;
  }
  return K;
}

}  // namespace

TEST(BlockRotation, TurnsRowsAndColumnsOfEveryTriple)
{
  const Matriu T = Turned();
  ASSERT_TRUE(AreVeryEqual(T * T.t(), Matriu::I(3), kTol));
  for (const int rows : {3, 6}) {
    for (const int cols : {3, 6}) {
      const Matriu K = Block(rows, cols);
      const Matriu left = Frame(T, rows);
      const Matriu right = Frame(T, cols);
      // Both 3×3 and 6×6 frames are accepted: only the leading 3×3 block is read.
      for (const Matriu& given : {T, Frame(T, 6)}) {
        Matriu turned = K;
        TurnRows(given, Turn::ToGlobal, turned);
        EXPECT_TRUE(AreVeryEqual(turned, left * K, kTol)) << rows << cols;
        turned = K;
        TurnRows(given, Turn::ToLocal, turned);
        EXPECT_TRUE(AreVeryEqual(turned, left.t() * K, kTol)) << rows << cols;
        turned = K;
        TurnColumns(given, Turn::ToGlobal, turned);
        EXPECT_TRUE(AreVeryEqual(turned, K * right.t(), kTol)) << rows << cols;
        turned = K;
        TurnColumns(given, Turn::ToLocal, turned);
        EXPECT_TRUE(AreVeryEqual(turned, K * right, kTol)) << rows << cols;
      }
    }
  }
}

TEST(BlockRotation, TurnsTheGivenComponentsOfAVector)
{
  const Matriu T = Turned();
  const std::vector<double> all = {1, -2, 3, 0.5, 4, -6, 7};
  for (const int n : {3, 6}) {
    ReaVecV start(n);
    std::copy_n(all.begin(), n, start.begin());
    for (const Turn turn : {Turn::ToGlobal, Turn::ToLocal}) {
      std::vector<double> v = all;
      TurnVector(T, turn, n, v.data());
      const Matriu frame = Frame(T, n);
      const ReaVecV expected = turn == Turn::ToGlobal ? frame * start : frame.t() * start;
      for (int i = 0; i < n; ++i)
        EXPECT_NEAR(v[i], expected(i + 1), kTol) << n << i;
      for (int i = n; i < 7; ++i)
        EXPECT_EQ(v[i], all[i]) << n << i;
    }
  }
}

}  // namespace morlen
