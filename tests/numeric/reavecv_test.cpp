#include "numeric/reavecv.h"

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "numeric/matriu.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

ReaVecV Heap(std::initializer_list<double> values)
{
  return VectorOf<ReaVecV>(values);
}

TEST(ReaVecV, StartsEmpty)
{
  EXPECT_EQ(ReaVecV().Size(), 0);
  EXPECT_EQ(ReaVecV().Data(), nullptr);
  EXPECT_EQ(ReaVecV(0).Data(), nullptr);
  EXPECT_EQ(ReaVecV(5).Size(), 5);
}

TEST(ReaVecV, NegativeLengthIsFatal)
{
  ExpectFatal([] { ReaVecV(-1); }, "Can't create a vector of size -1");
  ReaVecV v = Heap({1, 2});
  ExpectFatal([&] { v.resize(-2, 0.0); }, "Can't create a vector of size -2");
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
}

TEST(ReaVecV, CopiesHaveTheirOwnArray)
{
  const ReaVecV a = Heap({1, 2});
  ReaVecV b = a;
  b(1) = 9.0;
  EXPECT_EQ(Values(a), (Doubles{1, 2}));
  EXPECT_EQ(Values(b), (Doubles{9, 2}));
  EXPECT_EQ(Values(ReaVecV(ReaVec(3, 4))), (Doubles{3, 4}));
}

TEST(ReaVecV, AssignmentKeepsTheArrayWhenLengthsAgree)
{
  ReaVecV v = Heap({1, 2});
  const double* array = v.Data();
  const ReaVecV other = Heap({5, 6});
  v = other;
  EXPECT_EQ(v.Data(), array);
  v = ReaVec(7, 8);
  EXPECT_EQ(v.Data(), array);
  v = MatriuOf(2, 1, {9, 10});
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(Values(v), (Doubles{9, 10}));
}

TEST(ReaVecV, AssignmentOfAnotherLengthReallocates)
{
  ReaVecV v = Heap({1, 2});
  const ReaVecV longer = Heap({5, 6, 7});
  v = longer;
  EXPECT_EQ(Values(v), (Doubles{5, 6, 7}));
  v = ReaVec(8, 9);
  EXPECT_EQ(Values(v), (Doubles{8, 9}));
  const ReaVecV empty;
  v = empty;
  EXPECT_EQ(v.Data(), nullptr);
}

TEST(ReaVecV, SelfAssignmentKeepsTheValues)
{
  ReaVecV v = Heap({1, 2});
  ReaVecV& same = v;
  v = same;
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
  v = std::move(same);
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
}

TEST(ReaVecV, ResizeToZeroFreesTheArray)
{
  ReaVecV v = Heap({1, 2});
  v.resize(0, 1.0);
  EXPECT_EQ(v.Size(), 0);
  EXPECT_EQ(v.Data(), nullptr);
  v.resize(2, 4.0);
  EXPECT_EQ(Values(v), (Doubles{4, 4}));
}

TEST(ReaVecV, SubVecOfLengthZeroIsTheTail)
{
  const ReaVecV v = Heap({1, 2, 3, 4});
  EXPECT_EQ(Values(v.subVec(3, 0)), (Doubles{3, 4}));
  EXPECT_EQ(Values(v.subVec(1, 0)), (Doubles{1, 2, 3, 4}));
  EXPECT_EQ(Values(v.subVec(-1, 0)), (Doubles{4}));
  ExpectFatal([&] { static_cast<void>(v.subVec(5, 0)); }, "Index 4 out of range.");
  ExpectFatal([] { static_cast<void>(ReaVecV().subVec(1, 0)); }, "Index -1 out of range.");
}

TEST(ReaVecV, EmptyVectorCannotBeFilledOrRead)
{
  const char* message = "Can't fill with 2.5 a zero lenght vector.";
  ReaVecV v;
  ExpectFatal([&] { v = 2.5; }, message);
  ReaVecVT temporary;
  ExpectFatal([&] { temporary = 2.5; }, message);
  std::istringstream in("1");
  ExpectFatal([&] { in >> v; }, "\t(Zero size vector)\n");
}

TEST(ReaVecV, DivisionInPlaceByZeroIsFatal)
{
  ReaVecV v = Heap({1, 2});
  ExpectFatal([&] { v /= 0.0; }, "Division by zero.");
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
  ReaVecVT temporary(v);
  ExpectFatal([&] { temporary /= 0.0; }, "Division by zero.");
}

TEST(ReaVecV, CrossProductOfLengthFourIsFatal)
{
  const char* message = "VectorProd can only be made in 2D or 3D\n";
  ExpectFatal([] { static_cast<void>(VectorProd(Heap({1, 2, 3, 4}), Heap({1, 2}))); }, message);
  ExpectFatal([] { static_cast<void>(VectorProd(Heap({1, 2}), Heap({1, 2, 3, 4}))); }, message);
}

TEST(ReaVecV, ConcatenationAndMergeHaveAnyLength)
{
  const auto compare = [](double x, double y) { return x < y ? -1 : (x > y ? 1 : 0); };
  EXPECT_EQ(Values(Heap({1, 2}) & Heap({3, 4, 5})), (Doubles{1, 2, 3, 4, 5}));
  EXPECT_EQ(Values(merge(Heap({1, 4, 6}), Heap({2, 3, 7, 8}), compare)),
            (Doubles{1, 2, 3, 4, 6, 7, 8}));
}

TEST(ReaVecV, IsMadeFromAColumn)
{
  const Matriu column = MatriuOf(4, 1, {1, 2, 3, 4});
  EXPECT_EQ(Values(ReaVecV(column)), (Doubles{1, 2, 3, 4}));
  EXPECT_EQ(Values(ReaVecVT(column)), (Doubles{1, 2, 3, 4}));
  const char* message = "error: Assigning Vector=Matrix where M(num cols)=2\n";
  ReaVecV v;
  ExpectFatal([&] { v = MatriuOf(1, 2, {1, 2}); }, message);
  ExpectFatal([&] { v = MatriuT(MatriuOf(1, 2, {1, 2})); }, message);
  ExpectFatal([] { ReaVecV(MatriuOf(1, 2, {1, 2})); }, message);
}

TEST(ReaVecV, TakesTheArrayOfAMatrixTemporary)
{
  MatriuT column(MatriuOf(2, 1, {1, 2}));
  const double* array = column.Data();
  ReaVecV v(column);
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(column.Data(), nullptr);
  EXPECT_EQ(column.Size(), 0);
  MatriuT other(MatriuOf(3, 1, {4, 5, 6}));
  array = other.Data();
  v = std::move(other);
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(Values(v), (Doubles{4, 5, 6}));
}

TEST(ReaVecVT, GivesItsArrayAway)
{
  ReaVecVT temporary = Heap({1, 2}) + Heap({3, 4});
  const double* array = temporary.Data();
  ReaVecV v = Heap({7});
  v = temporary;
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(Values(v), (Doubles{4, 6}));
  EXPECT_EQ(temporary.Size(), 0);
  EXPECT_EQ(temporary.Data(), nullptr);
}

TEST(ReaVecVT, GivesItsArrayToANewVector)
{
  ReaVecVT named = VectorOf<ReaVecVT>({1, 2});
  const double* array = named.Data();
  const ReaVecV fromNamed(named);
  EXPECT_EQ(fromNamed.Data(), array);
  EXPECT_EQ(named.Size(), 0);
  ReaVecVT expiring = VectorOf<ReaVecVT>({3, 4});
  array = expiring.Data();
  const ReaVecV fromExpiring(std::move(expiring));
  EXPECT_EQ(fromExpiring.Data(), array);
}

TEST(ReaVecVT, AssignmentForms)
{
  ReaVecVT v;
  const ReaVecV source = Heap({1, 2});
  v = source;
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
  EXPECT_EQ(source.Size(), 2);
  v = 5.0;
  EXPECT_EQ(Values(v), (Doubles{5, 5}));
  v = MatriuOf(1, 1, {6});
  EXPECT_EQ(Values(v), (Doubles{6}));
  MatriuT column(MatriuOf(2, 1, {7, 8}));
  const double* array = column.Data();
  v = column;
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(column.Size(), 0);
  ReaVecVT other = VectorOf<ReaVecVT>({9});
  array = other.Data();
  v = other;
  EXPECT_EQ(v.Data(), array);
  EXPECT_EQ(other.Size(), 0);
  v = v;
  EXPECT_EQ(Values(v), (Doubles{9}));
}

TEST(ReaVecVT, OperatorsReturnTemporaries)
{
  const ReaVecV v = Heap({1, 2});
  EXPECT_TRUE((std::is_same_v<decltype(v + v), ReaVecVT>));
  EXPECT_TRUE((std::is_same_v<decltype(v * 2.0), ReaVecVT>));
  EXPECT_TRUE((std::is_same_v<decltype(-(v - v)), ReaVecVT>));
  EXPECT_EQ(Values((v + v) * 2.0 - v), (Doubles{3, 6}));
}

}  // namespace

}  // namespace morlen
