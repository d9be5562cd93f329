#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/matriu_arithmetic.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

/// A regular matrix of order n without zeros: 1/(i + j - 1), with n added on the diagonal.
Matriu Regular(int n)
{
  Matriu m(n, n);
  for (int i = 1; i <= n; i++)
    for (int j = 1; j <= n; j++)
      m(i, j) = 1.0 / (i + j - 1) + (i == j ? n : 0) + 0.25 * (i > j);
  return m;
}

void ExpectSingular(const Matriu& m, int n)
{
  const std::string order = std::to_string(n);
  ExpectFatal([&] { static_cast<void>(m.i()); },
              "Inverse of a singular Matriu. Size = (" + order + " X " + order + ")");
}

TEST(Matriu, InverseTimesMatrixIsIdentity)
{
  for (int n = 1; n <= 9; n++) {
    const Matriu m = Regular(n);
    const Matriu copy = m;
    EXPECT_TRUE(AreVeryEqual(m.i() * m, Matriu::I(n), 1e-14)) << n;
    EXPECT_TRUE(AreVeryEqual(m * m.i(), Matriu::I(n), 1e-14)) << n;
    EXPECT_TRUE(m == copy) << n;
  }
}

TEST(Matriu, InverseInClosedForm)
{
  EXPECT_EQ(Entries(MatriuOf(1, 1, {4}).i()), (Doubles{0.25}));
  EXPECT_EQ(Entries(MatriuOf(2, 2, {1, 2, 3, 4}).i()), (Doubles{-2, 1, 1.5, -0.5}));
  // det 8, integer adjugate
  EXPECT_EQ(Entries(MatriuOf(3, 3, {2, 0, 0, 1, 2, 0, 0, 1, 2}).i()),
            (Doubles{0.5, 0, 0, -0.25, 0.5, 0, 0.125, -0.25, 0.5}));
}

TEST(Matriu, InverseUpTo4x4NeedsNoDiagonal)
{
  const Matriu exchange = MatriuOf(4, 4, {0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0});
  EXPECT_TRUE(exchange.i() == exchange);
}

TEST(Matriu, InverseOf5x5DoesNotPivot)
{
  Matriu regular = Matriu::I(5);
  regular(1, 1) = 0.0;
  regular(1, 2) = regular(2, 1) = 1.0;
  regular(2, 2) = 0.0;
  ExpectSingular(regular, 5);
}

TEST(Matriu, InverseOfSingularIsFatal)
{
  ExpectSingular(MatriuOf(1, 1, {0}), 1);
  ExpectSingular(MatriuOf(2, 2, {1, 2, 2, 4}), 2);
  ExpectSingular(MatriuOf(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}), 3);
  ExpectSingular(MatriuOf(4, 4, {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 1, 0, 2, 4, 6, 8}), 4);
  Matriu last = Matriu::I(6);
  last(6, 6) = 0.0;
  ExpectSingular(last, 6);
}

TEST(Matriu, InverseTestsForExactZeroOnly)
{
  EXPECT_DOUBLE_EQ(MatriuOf(1, 1, {1e-300}).i()(1, 1), 1e300);
}

TEST(Matriu, SquareResultsRefuseOtherShapes)
{
  static const struct
  {
    void (*action)(const Matriu&);
    const char* name;
  } cases[] = {
      {[](const Matriu& m) { static_cast<void>(m.i()); }, "inverse"},
      {[](const Matriu& m) { static_cast<void>(m.det()); }, "determinant"},
      {[](const Matriu& m) { static_cast<void>(m.LU()); }, "crout decomposition"},
  };
  for (const auto& c : cases) {
    const std::string start = std::string("Can't compute the ") + c.name;
    ExpectFatal([&] { c.action(Matriu()); }, start + " of a zero size Matriu");
    ExpectFatal([&] { c.action(Matriu(0, 3)); }, start + " of a zero size Matriu");
    ExpectFatal([&] { c.action(Matriu(2, 3)); },
                start + " of a rectangular Matriu\n\tnrows =2, ncols =3");
  }
}

TEST(Matriu, Determinant)
{
  EXPECT_EQ(MatriuOf(1, 1, {-3}).det(), -3.0);
  EXPECT_EQ(MatriuOf(2, 2, {1, 2, 3, 4}).det(), -2.0);
  EXPECT_EQ(MatriuOf(3, 3, {2, -1, 0, -1, 2, -1, 0, -1, 2}).det(), 4.0);
  EXPECT_EQ(MatriuOf(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}).det(), 0.0);
  EXPECT_EQ(MatriuOf(4, 4, {2, -1, 0, 0, -1, 2, -1, 0, 0, -1, 2, -1, 0, 0, -1, 2}).det(), 5.0);
  // Vandermonde of 1, 2, 3, 5: the product of the differences 1·2·4·1·3·2
  EXPECT_EQ(MatriuOf(4, 4, {1, 1, 1, 1, 1, 2, 4, 8, 1, 3, 9, 27, 1, 5, 25, 125}).det(), 48.0);
}

TEST(Matriu, DeterminantOf5x5IsFatal)
{
  ExpectFatal([] { static_cast<void>(Matriu::I(5).det()); },
              "Not implemented yet determinant for a Matriu greater than 4");
}

/// LinSolve on both vector classes.
template <class V>
class LinSolve : public testing::Test
{
};
using VectorClasses = testing::Types<ReaVec, ReaVecV>;
TYPED_TEST_SUITE(LinSolve, VectorClasses);

TYPED_TEST(LinSolve, SolvesSmallSystems)
{
  for (int n = 1; n <= 3; n++) {
    TypeParam expected(n);
    for (int i = 1; i <= n; i++)
      expected(i) = i - 0.5;
    Matriu a = Regular(n);
    TypeParam b(a * expected);
    TypeParam x;
    EXPECT_EQ(a.LinSolve(b, x), 0);
    ASSERT_EQ(x.Size(), n);
    EXPECT_LT((x - expected).modul(), 1e-14);
  }
}

TYPED_TEST(LinSolve, OverwritesMatrixAndRightSide)
{
  Matriu a = MatriuOf(2, 2, {2, 1, 4, 5});
  TypeParam b = VectorOf<TypeParam>({4, 14});
  TypeParam x(2);
  EXPECT_EQ(a.LinSolve(b, x), 0);
  EXPECT_EQ(Values(x), (Doubles{1, 2}));
  EXPECT_EQ(a(2, 2), 3.0);
  EXPECT_EQ(Values(b), (Doubles{4, 6}));
}

TYPED_TEST(LinSolve, ExchangesWithTheFirstAcceptableRow)
{
  Matriu a = MatriuOf(3, 3, {0, 1, 1, 1, 0, 1, 100, 1, 0});
  TypeParam b = VectorOf<TypeParam>({5, 4, 102});
  TypeParam x(3);
  EXPECT_EQ(a.LinSolve(b, x), 0);
  EXPECT_EQ(a(1, 1), 1.0);  // row 2, not the larger row 3
  EXPECT_NEAR(x(1), 1.0, 1e-14);
  EXPECT_NEAR(x(2), 2.0, 1e-13);
  EXPECT_NEAR(x(3), 3.0, 1e-13);
}

TYPED_TEST(LinSolve, SkipsNegligibleRowsBelow)
{
  Matriu a = MatriuOf(3, 3, {0, 1, 0, 1e-31, 0, 1, 2, 0, 0});
  TypeParam b = VectorOf<TypeParam>({3, 4, 10});
  TypeParam x(3);
  EXPECT_EQ(a.LinSolve(b, x), 0);
  EXPECT_EQ(a(1, 1), 2.0);
  EXPECT_EQ(Values(x), (Doubles{5, 3, 4}));
}

TYPED_TEST(LinSolve, ReportsSingularSystems)
{
  static const struct
  {
    int n;
    Doubles entries;
  } cases[] = {
      {1, {0}},
      {1, {9e-31}},
      {2, {0, 1, 0, 1}},
      {2, {1, 2, 2, 4}},
      {3, {1, 0, 0, 0, 0, 1, 0, 0, 1}},
  };
  for (const auto& c : cases) {
    Matriu a = MatriuOf(c.n, c.n, c.entries);
    TypeParam b(c.n);
    b = 1.0;
    TypeParam x(c.n);
    EXPECT_EQ(a.LinSolve(b, x), 1) << a;
  }
}

TYPED_TEST(LinSolve, PivotThresholdIsAccepted)
{
  Matriu a = MatriuOf(1, 1, {1e-30});
  TypeParam b = VectorOf<TypeParam>({2e-30});
  TypeParam x(1);
  EXPECT_EQ(a.LinSolve(b, x), 0);
  EXPECT_DOUBLE_EQ(x(1), 2.0);
}

TEST(Matriu, LinSolveOfALargeSystem)
{
  const int n = 12;
  ReaVecV expected(n);
  for (int i = 1; i <= n; i++)
    expected(i) = std::sin(i);
  Matriu a = Regular(n);
  ReaVecV b = a * expected;
  ReaVecV x;
  EXPECT_EQ(a.LinSolve(b, x), 0);
  EXPECT_LT((x - expected).modul(), 1e-14);
}

TEST(Matriu, CroutFactorsOfAKnownMatrix)
{
  // L = (2 0 0; 4 1 0; -2 3 5), U = (1 3 -1; 0 1 2; 0 0 1)
  const Matriu a = MatriuOf(3, 3, {2, 6, -2, 4, 13, -2, -2, -3, 13});
  EXPECT_EQ(Entries(a.LU()), (Doubles{2, 3, -1, 4, 1, 2, -2, 3, 5}));
  EXPECT_EQ(Entries(MatriuOf(1, 1, {7}).LU()), (Doubles{7}));
}

TEST(Matriu, CroutFactorsMultiplyToTheMatrix)
{
  for (int n = 1; n <= 8; n++) {
    const Matriu a = Regular(n);
    const Matriu lu = a.LU();
    Matriu lower(n, n);
    Matriu upper = Matriu::I(n);
    lower = 0.0;
    for (int i = 1; i <= n; i++)
      for (int j = 1; j <= n; j++)
        (j <= i ? lower : upper)(i, j) = lu(i, j);
    EXPECT_TRUE(AreVeryEqual(lower * upper, a, 1e-14)) << n;
  }
}

TEST(Matriu, CroutDoesNotTestPivots)
{
  const Matriu lu = MatriuOf(2, 2, {0, 1, 1, 0}).LU();
  EXPECT_EQ(lu(1, 1), 0.0);
  EXPECT_TRUE(std::isinf(lu(1, 2)));
}

TEST(LULinSolve, SolvesWithTheFactors)
{
  for (int n = 1; n <= 8; n++) {
    ReaVecV expected(n);
    for (int i = 1; i <= n; i++)
      expected(i) = std::cos(i);
    const Matriu a = Regular(n);
    Matriu lu = a.LU();
    ReaVecV b = a * expected;
    EXPECT_EQ(LULinSolve(lu, b), 0);
    EXPECT_LT((b - expected).modul(), 1e-14) << n;
  }
}

TEST(LULinSolve, StopsAtANegligiblePivot)
{
  const Matriu lu = MatriuOf(2, 2, {2, 0, 1, 9e-31});
  ReaVecV b = VectorOf<ReaVecV>({4, 1});
  EXPECT_EQ(LULinSolve(lu, b), 1);
  EXPECT_EQ(Values(b), (Doubles{2, 1}));  // the first unknown is already solved for
  ReaVecV c = VectorOf<ReaVecV>({2e-30});
  EXPECT_EQ(LULinSolve(MatriuOf(1, 1, {-1e-30}), c), 0);
  EXPECT_DOUBLE_EQ(c(1), -2.0);
}

}  // namespace

}  // namespace morlen
