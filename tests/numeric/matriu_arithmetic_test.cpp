#include "numeric/matriu_arithmetic.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "numeric/reavec.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

/// A is 2×3, B is 3×2; with the shapes of their views.
class MatriuArithmetic : public testing::Test
{
protected:
  const Matriu a = MatriuOf(2, 3, {1, 2, 3, 4, 5, 6});
  const Matriu b = MatriuOf(3, 2, {7, 8, 9, 10, 11, 12});
  const Matriu square = MatriuOf(2, 2, {1, 2, 3, 4});
  const Matriu empty{};
  const Matriu emptyRows = Matriu(0, 3);

  static void Expect(const Matriu& m, int rows, int cols, const Doubles& entries)
  {
    EXPECT_EQ(m.Rows(), rows);
    EXPECT_EQ(m.Cols(), cols);
    EXPECT_EQ(Entries(m), entries);
  }
  static std::string Shapes(int r1, int c1, int r2, int c2)
  {
    return "\tMatriu 1 : nrows=" + std::to_string(r1) + ", ncols=" + std::to_string(c1) +
           "\n\tMatriu 2 : nrows=" + std::to_string(r2) + ", ncols=" + std::to_string(c2);
  }
};

TEST_F(MatriuArithmetic, TransposeShowsTheTransposed)
{
  const Transpose view = a.t();
  EXPECT_EQ(view.Rows(), 3);
  EXPECT_EQ(view.Cols(), 2);
  EXPECT_EQ(view.Size(), 6);
  EXPECT_EQ(view(3, 1), 3.0);
  EXPECT_EQ(view(1, 2), 4.0);
  EXPECT_FALSE(view.Owns());
  const MatriuT made = view;
  Expect(made, 3, 2, {1, 4, 2, 5, 3, 6});
}

TEST_F(MatriuArithmetic, TransposeOfATemporaryOwnsTheArray)
{
  MatriuT temporary = a + 0.0;
  const double* array = temporary.Data();
  Transpose view = temporary.t();
  EXPECT_TRUE(view.Owns());
  EXPECT_EQ(temporary.Size(), 0);
  const Matriu back = view.t();
  EXPECT_EQ(back.Data(), array);
  Expect(back, 2, 3, Entries(a));
  EXPECT_EQ(view.Size(), 0);
  EXPECT_TRUE((a + 0.0).t().Owns());
  EXPECT_TRUE(MatriuOf(1, 1, {1}).t().Owns());
}

TEST_F(MatriuArithmetic, TransposeOfAMatrixCopiesWhenTurnedBack)
{
  Transpose view = a.t();
  const Matriu back = view.t();
  EXPECT_NE(back.Data(), a.Data());
  Expect(back, 2, 3, Entries(a));
}

TEST_F(MatriuArithmetic, TransposeCopiesStayValid)
{
  Transpose original = (a + 1.0).t();
  const Transpose copy = original;
  const Transpose moved = std::move(original);
  Expect(copy, 3, 2, {2, 5, 3, 6, 4, 7});
  Expect(moved, 3, 2, {2, 5, 3, 6, 4, 7});
}

TEST_F(MatriuArithmetic, InverseOfTransposeIsSeenTransposed)
{
  const Transpose inverse = square.t().i();
  EXPECT_TRUE(inverse.Owns());
  // inverse of (1 2; 3 4) is (-2 1; 1.5 -0.5)
  Expect(inverse, 2, 2, {-2, 1.5, 1, -0.5});
}

TEST_F(MatriuArithmetic, ChangeOfSign)
{
  Expect(-square, 2, 2, {-1, -2, -3, -4});
  Expect(-a.t(), 3, 2, {-1, -4, -2, -5, -3, -6});
  MatriuT temporary = square + 0.0;
  const double* array = temporary.Data();
  const Matriu m = -temporary;
  EXPECT_EQ(m.Data(), array);
  Expect(m, 2, 2, {-1, -2, -3, -4});
  EXPECT_EQ(temporary.Size(), 0);
  Expect(-(square + 1.0), 2, 2, {-2, -3, -4, -5});
}

TEST_F(MatriuArithmetic, ChangeOfSignRefusesSizeZero)
{
  const char* message = "Can't change sign a zero size Matriu";
  MatriuT temporary;
  ExpectFatal([&] { static_cast<void>(-empty); }, message);
  ExpectFatal([&] { static_cast<void>(-empty.t()); }, message);
  ExpectFatal([&] { static_cast<void>(-temporary); }, message);
  ExpectFatal([&] { static_cast<void>(-MatriuT()); }, message);
}

TEST_F(MatriuArithmetic, WithAScalar)
{
  Expect(square + 1.0, 2, 2, {2, 3, 4, 5});
  Expect(square - 1.0, 2, 2, {0, 1, 2, 3});
  Expect(square * 2.0, 2, 2, {2, 4, 6, 8});
  Expect(square / 2.0, 2, 2, {0.5, 1, 1.5, 2});
  Expect(a.t() + 1.0, 3, 2, {2, 5, 3, 6, 4, 7});
  Expect(a.t() - 1.0, 3, 2, {0, 3, 1, 4, 2, 5});
  Expect(a.t() * 2.0, 3, 2, {2, 8, 4, 10, 6, 12});
  Expect(a.t() / 2.0, 3, 2, {0.5, 2, 1, 2.5, 1.5, 3});
}

TEST_F(MatriuArithmetic, ScalarMessagesForSizeZero)
{
  const char* add = "Can't add 2.5 to a zero size Matriu";
  const char* subtract = "Can't subtract 2.5 from a zero size Matriu";
  const char* multiply = "Can't multiply by 2.5 a zero size Matriu";
  const char* divide = "Can't divide by 2.5 a zero size Matriu";
  Matriu m;
  MatriuT t;
  ExpectFatal([&] { static_cast<void>(m + 2.5); }, add);
  ExpectFatal([&] { static_cast<void>(m.t() + 2.5); }, add);
  ExpectFatal([&] { m += 2.5; }, add);
  ExpectFatal([&] { t += 2.5; }, add);
  ExpectFatal([&] { static_cast<void>(m - 2.5); }, subtract);
  ExpectFatal([&] { static_cast<void>(m.t() - 2.5); }, "Can't substract 2.5 to a zero size Matriu");
  ExpectFatal([&] { m -= 2.5; }, subtract);
  ExpectFatal([&] { t -= 2.5; }, subtract);
  ExpectFatal([&] { static_cast<void>(m * 2.5); }, multiply);
  ExpectFatal([&] { static_cast<void>(m.t() * 2.5); }, multiply);
  ExpectFatal([&] { m *= 2.5; }, multiply);
  ExpectFatal([&] { t *= 2.5; }, multiply);
  ExpectFatal([&] { static_cast<void>(m / 2.5); }, divide);
  ExpectFatal([&] { static_cast<void>(m.t() / 2.5); }, divide);
  ExpectFatal([&] { m /= 2.5; }, divide);
  ExpectFatal([&] { t /= 2.5; }, divide);
}

TEST_F(MatriuArithmetic, DivisionByZeroIsFatalAfterSizeZero)
{
  const char* message = "Matriu division by zero scalar error";
  Matriu m = square;
  MatriuT t(square);
  ExpectFatal([&] { static_cast<void>(m / 0.0); }, message);
  ExpectFatal([&] { static_cast<void>(m.t() / 0.0); }, message);
  ExpectFatal([&] { m /= 0.0; }, message);
  ExpectFatal([&] { t /= 0.0; }, message);
  ExpectFatal([&] { static_cast<void>(empty / 0.0); }, "Can't divide by 0 a zero size Matriu");
  Expect(m, 2, 2, {1, 2, 3, 4});
}

TEST_F(MatriuArithmetic, SumsOfAllKinds)
{
  const MatriuT temporary(b);
  Expect(b + b, 3, 2, {14, 16, 18, 20, 22, 24});
  Expect(b + a.t(), 3, 2, {8, 12, 11, 15, 14, 18});
  Expect(a.t() + b, 3, 2, {8, 12, 11, 15, 14, 18});
  Expect(a.t() + a.t(), 3, 2, {2, 8, 4, 10, 6, 12});
  Expect(temporary + a.t(), 3, 2, {8, 12, 11, 15, 14, 18});
}

TEST_F(MatriuArithmetic, DifferencesOfAllKinds)
{
  const MatriuT temporary(b);
  const Doubles forward = {6, 4, 7, 5, 8, 6};
  const Doubles backward = {-6, -4, -7, -5, -8, -6};
  Expect(b - MatriuOf(3, 2, {1, 4, 2, 5, 3, 6}), 3, 2, forward);
  Expect(b - a.t(), 3, 2, forward);
  Expect(a.t() - b, 3, 2, backward);
  Expect(a.t() - temporary, 3, 2, backward);
  Expect(a.t() - a.t(), 3, 2, {0, 0, 0, 0, 0, 0});
  Expect(b - temporary, 3, 2, {0, 0, 0, 0, 0, 0});
}

TEST_F(MatriuArithmetic, InPlace)
{
  Matriu m = square;
  m += square;
  Expect(m, 2, 2, {2, 4, 6, 8});
  m -= square;
  m += 1.0;
  Expect(m, 2, 2, {2, 3, 4, 5});
  m -= 1.0;
  m *= 3.0;
  Expect(m, 2, 2, {3, 6, 9, 12});
  m /= 3.0;
  Expect(m, 2, 2, {1, 2, 3, 4});
  m += m;
  Expect(m, 2, 2, {2, 4, 6, 8});
  m += m.t();
  Expect(m, 2, 2, {4, 10, 10, 16});
}

TEST_F(MatriuArithmetic, ChainsOnATemporaryKeepItsArray)
{
  MatriuT t(square);
  const double* array = t.Data();
  const Matriu m = ((((((t += 1.0) -= 2.0) += square) -= square) += square.t()) *= 4.0) /= 2.0;
  EXPECT_EQ(m.Data(), array);
  // 2 (square - 1 + square^T)
  Expect(m, 2, 2, {2, 8, 8, 14});
  EXPECT_EQ(t.Size(), 0);
  const Matriu fromExpiring = (square + square) -= square.t();
  Expect(fromExpiring, 2, 2, {1, 1, 4, 4});
}

TEST_F(MatriuArithmetic, SumsRefuseSizeZeroAndShapes)
{
  const std::string shape = "Can't add two Matriu with diferent sizes\n";
  const char* zero = "Can't add zero sized matrices";
  Matriu m = a;
  MatriuT t(a);
  ExpectFatal([&] { static_cast<void>(a + empty); }, zero);
  ExpectFatal([&] { static_cast<void>(emptyRows + a); }, zero);
  ExpectFatal([&] { static_cast<void>(a + empty.t()); }, zero);
  ExpectFatal([&] { static_cast<void>(empty.t() + a.t()); }, zero);
  ExpectFatal([&] { m += empty; }, zero);
  ExpectFatal([&] { t += empty; }, zero);
  ExpectFatal([&] { t += empty.t(); }, zero);
  ExpectFatal([&] { static_cast<void>(a + b); }, shape + Shapes(2, 3, 3, 2));
  ExpectFatal([&] { static_cast<void>(a + square.t()); }, shape + Shapes(2, 3, 2, 2));
  ExpectFatal([&] { static_cast<void>(a.t() + b.t()); }, shape + Shapes(3, 2, 2, 3));
  ExpectFatal([&] { m += b; }, shape + Shapes(2, 3, 3, 2));
  ExpectFatal([&] { t += a.t(); }, shape + Shapes(2, 3, 3, 2));
}

TEST_F(MatriuArithmetic, DifferencesRefuseSizeZeroAndShapes)
{
  const std::string shape = "Can't subtract two Matriu with diferent sizes\n";
  const char* zero = "Can't subtract zero sized matrices";
  Matriu m = a;
  MatriuT t(a);
  ExpectFatal([&] { static_cast<void>(a - empty); }, zero);
  ExpectFatal([&] { static_cast<void>(empty - a.t()); }, zero);
  ExpectFatal([&] { static_cast<void>(a.t() - empty); }, zero);
  ExpectFatal([&] { static_cast<void>(a.t() - empty.t()); }, zero);
  ExpectFatal([&] { m -= empty; }, zero);
  ExpectFatal([&] { t -= empty.t(); }, zero);
  ExpectFatal([&] { static_cast<void>(a - b); }, shape + Shapes(2, 3, 3, 2));
  ExpectFatal([&] { static_cast<void>(a.t() - a); }, shape + Shapes(3, 2, 2, 3));
  ExpectFatal([&] { static_cast<void>(a - t.subMatriu(1, 1, 2, 2)); }, shape + Shapes(2, 3, 2, 2));
  ExpectFatal([&] { m -= b; }, shape + Shapes(2, 3, 3, 2));
  ExpectFatal([&] { t -= a.t(); }, shape + Shapes(2, 3, 3, 2));
}

TEST_F(MatriuArithmetic, ProductsOfAllKinds)
{
  const Doubles ab = {58, 64, 139, 154};
  Expect(a * b, 2, 2, ab);
  const Matriu at = a.t();
  const Matriu bt = b.t();
  Expect(at.t() * b, 2, 2, ab);
  Expect(a * bt.t(), 2, 2, ab);
  Expect(at.t() * bt.t(), 2, 2, ab);
  Expect(MatriuT(a) * MatriuT(b), 2, 2, ab);
  Expect(MatriuOf(1, 1, {2}) * MatriuOf(1, 3, {1, 2, 3}), 1, 3, {2, 4, 6});
}

TEST_F(MatriuArithmetic, ProductsRefuseSizeZeroAndShapes)
{
  const char* zero = "Can't multiply zero sized matrices";
  ExpectFatal([&] { static_cast<void>(a * empty); }, zero);
  ExpectFatal([&] { static_cast<void>(empty.t() * a); }, zero);
  ExpectFatal([&] { static_cast<void>(a * empty.t()); }, zero);
  ExpectFatal([&] { static_cast<void>(empty.t() * empty.t()); }, zero);
  const auto shape = [](char label) {
    return std::string("Incompatible dimensions for multiply -") + label + "-\n";
  };
  ExpectFatal([&] { static_cast<void>(a * a); }, shape('A') + Shapes(2, 3, 2, 3));
  ExpectFatal([&] { static_cast<void>(a.t() * b); }, shape('B') + Shapes(3, 2, 3, 2));
  ExpectFatal([&] { static_cast<void>(a * b.t()); }, shape('C') + Shapes(2, 3, 2, 3));
  ExpectFatal([&] { static_cast<void>(a.t() * a.t()); }, shape('D') + Shapes(3, 2, 3, 2));
  ExpectFatal([&] { static_cast<void>(MatriuT(a) * a); }, shape('A') + Shapes(2, 3, 2, 3));
}

TEST_F(MatriuArithmetic, ProductWithAVector)
{
  EXPECT_EQ(Values(a * ReaVec(1, 0, 2)), (Doubles{7, 16}));
  EXPECT_EQ(Values(a.t() * ReaVec(1, 2)), (Doubles{9, 12, 15}));
  EXPECT_EQ(Values(a * VectorOf<ReaVecV>({1, 0, 2})), (Doubles{7, 16}));
  EXPECT_EQ(Values(a.t() * VectorOf<ReaVecV>({1, 2})), (Doubles{9, 12, 15}));
  ReaVecV v = VectorOf<ReaVecV>({1, 1});
  v = square * v;
  EXPECT_EQ(Values(v), (Doubles{3, 7}));
}

TEST_F(MatriuArithmetic, ProductWithAVectorRefusesOtherLengths)
{
  ExpectFatal([&] { static_cast<void>(a * ReaVec(1, 2)); },
              "error in ReaVecT  operator *. No correct size (file Matriu A)\n");
  ExpectFatal(
      [&] {
        static_cast<void>(a * VectorOf<ReaVecV>({1, 2}));
      },
      "error in ReaVecT  operator *. No correct size(file Matriu B)\n");
}

TEST_F(MatriuArithmetic, VectorsTakeAColumnProduct)
{
  const Matriu column = MatriuOf(2, 1, {1, 1});
  const ReaVec small(square * column);
  EXPECT_EQ(Values(small), (Doubles{3, 7}));
  ReaVecV heap;
  heap = square * column;
  EXPECT_EQ(Values(heap), (Doubles{3, 7}));
}

TEST_F(MatriuArithmetic, Concatenation)
{
  Expect(square & a, 2, 5, {1, 2, 1, 2, 3, 3, 4, 4, 5, 6});
  Expect(square | b, 5, 2, {1, 2, 3, 4, 7, 8, 9, 10, 11, 12});
}

TEST_F(MatriuArithmetic, ConcatenationRefusesSizeZeroAndShapes)
{
  const char* zero = "Can't concatenate a zero size Matriu";
  ExpectFatal([&] { static_cast<void>(a & empty); }, zero);
  ExpectFatal([&] { static_cast<void>(empty | a); }, zero);
  ExpectFatal([&] { static_cast<void>(a & b); },
              "Horizontal concatenation with diferent number of rows\n" + Shapes(2, 3, 3, 2));
  ExpectFatal([&] { static_cast<void>(a | b); },
              "Vertical concatenation with diferent number of columns\n" + Shapes(2, 3, 3, 2));
}

TEST_F(MatriuArithmetic, Equality)
{
  EXPECT_TRUE(a == MatriuOf(2, 3, {1, 2, 3, 4, 5, 6}));
  EXPECT_FALSE(a == MatriuOf(3, 2, {1, 2, 3, 4, 5, 6}));
  EXPECT_FALSE(a == MatriuOf(2, 3, {1, 2, 3, 4, 5, 7}));
  EXPECT_TRUE(empty == Matriu());
  EXPECT_FALSE(empty == emptyRows);
  EXPECT_TRUE(a != b);
}

}  // namespace

}  // namespace morlen
