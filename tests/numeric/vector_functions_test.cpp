#include "numeric/vector_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <sstream>
#include <vector>

#include "numeric/reavec.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

/// Tests for both kinds of vectors.
template <class V>
class BothVectors : public testing::Test
{
protected:
  static V Of(std::initializer_list<double> values) { return VectorOf<V>(values); }
};

using VectorClasses = testing::Types<ReaVec, ReaVecV, ReaVecVT>;
TYPED_TEST_SUITE(BothVectors, VectorClasses);

TYPED_TEST(BothVectors, IndexOutsideIsFatal)
{
  TypeParam v = this->Of({4, 5});
  const TypeParam constant = this->Of({4, 5});
  EXPECT_EQ(v(1), 4.0);
  EXPECT_EQ(constant(2), 5.0);
  for (const int i : {-1, 0, 3, 1000}) {
    ExpectFatal([&] { v(i) = 1.0; }, "Out of Dimension in Vector");
    ExpectFatal([&] { static_cast<void>(constant(i)); }, "Out of Dimension in Vector");
  }
}

TYPED_TEST(BothVectors, AssignmentOfDoubleFills)
{
  TypeParam v = this->Of({1, 2, 3});
  v = 7.0;
  EXPECT_EQ(Values(v), (Doubles{7, 7, 7}));
}

TYPED_TEST(BothVectors, ResizeFillsOnlyTheNewTail)
{
  TypeParam v = this->Of({1});
  v.resize(3, 9.0);
  EXPECT_EQ(Values(v), (Doubles{1, 9, 9}));
}

TYPED_TEST(BothVectors, ResizeToShorterKeepsTheHead)
{
  TypeParam v = this->Of({1, 2, 3});
  v.resize(2, 9.0);
  EXPECT_EQ(Values(v), (Doubles{1, 2}));
  v.resize(3, 5.0);
  EXPECT_EQ(Values(v), (Doubles{1, 2, 5}));
  v.resize(0, 5.0);
  EXPECT_EQ(v.Size(), 0);
}

TYPED_TEST(BothVectors, SubVecCopiesARange)
{
  const TypeParam v = this->Of({1, 2, 3});
  EXPECT_EQ(Values(v.subVec(2, 2)), (Doubles{2, 3}));
  EXPECT_EQ(Values(v.subVec(1, 3)), (Doubles{1, 2, 3}));
  EXPECT_EQ(Values(v.subVec(-1, 1)), (Doubles{3}));
  EXPECT_EQ(Values(v.subVec(-3, 2)), (Doubles{1, 2}));
}

TYPED_TEST(BothVectors, RangeOutsideIsFatal)
{
  TypeParam v = this->Of({1, 2, 3});
  static const struct
  {
    int start;
    int length;
    const char* message;
  } cases[] = {
      {3, 2, "Index 3 out of range."},
      {4, 1, "Index 3 out of range."},
      {-1, 2, "Index 3 out of range."},
      {1, 10, "Index 9 out of range."},
      {0, 1, "Index -1 out of range."},
      {-4, 1, "Index -1 out of range."},
      {-4, 2, "Index -1 out of range."},  // ends inside, begins outside
      {2, 2147483647, "Index 2147483647 out of range."},
  };
  for (const auto& c : cases) {
    ExpectFatal([&] { static_cast<void>(v.subVec(c.start, c.length)); }, c.message);
    ExpectFatal([&] { v.fill(0.0, c.start, c.length); }, c.message);
  }
  EXPECT_EQ(Values(v), (Doubles{1, 2, 3}));
}

TYPED_TEST(BothVectors, FillSetsARange)
{
  static const struct
  {
    int start;
    int length;
    Doubles expected;
  } cases[] = {
      {1, 1, {9, 2, 3}}, {2, 0, {1, 9, 9}},  {1, 0, {9, 9, 9}},
      {3, 1, {1, 2, 9}}, {-2, 1, {1, 9, 3}}, {-2, 0, {1, 9, 9}},
  };
  for (const auto& c : cases) {
    TypeParam v = this->Of({1, 2, 3});
    v.fill(9.0, c.start, c.length);
    EXPECT_EQ(Values(v), c.expected) << c.start << ' ' << c.length;
  }
  TypeParam v = this->Of({1, 2, 3});
  ExpectFatal([&] { v.fill(0.0, 4, 0); }, "Index 3 out of range.");
}

TYPED_TEST(BothVectors, IndexGivesTheFirstEqualComponent)
{
  EXPECT_EQ(this->Of({4, 5, 5}).index(5.0), 2);
  EXPECT_EQ(this->Of({4, 5, 5}).index(6.0), 0);
  EXPECT_EQ(TypeParam().index(0.0), 0);
}

TYPED_TEST(BothVectors, ReverseInPlaceAndAsACopy)
{
  TypeParam v = this->Of({1, 2, 3});
  EXPECT_EQ(Values(reverse(v)), (Doubles{3, 2, 1}));
  EXPECT_EQ(Values(v), (Doubles{1, 2, 3}));
  v.reverse();
  EXPECT_EQ(Values(v), (Doubles{3, 2, 1}));
}

TYPED_TEST(BothVectors, Reductions)
{
  const TypeParam v = this->Of({2, -3, 6});
  EXPECT_EQ(v.sumsq(), 49.0);
  EXPECT_EQ(v.modul(), 7.0);
  EXPECT_EQ(v.sum(), 5.0);
  EXPECT_EQ(v.min(), -3.0);
  EXPECT_EQ(v.max(), 6.0);
  EXPECT_EQ(TypeParam().sum(), 0.0);
  EXPECT_EQ(TypeParam().modul(), 0.0);
}

TYPED_TEST(BothVectors, FirstExtremeWinsOnTies)
{
  static const struct
  {
    std::initializer_list<double> values;
    int smallest;
    int largest;
  } cases[] = {
      {{2, 1, 1}, 2, 1}, {{1, 2, 2}, 1, 2}, {{3, 3, 3}, 1, 1}, {{1, 2, 3}, 1, 3}, {{5}, 1, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(this->Of(c.values).min_index(), c.smallest) << Text(this->Of(c.values));
    EXPECT_EQ(this->Of(c.values).max_index(), c.largest) << Text(this->Of(c.values));
  }
}

TYPED_TEST(BothVectors, EmptyVectorHasNoExtreme)
{
  const TypeParam empty;
  EXPECT_EQ(empty.min_index(), 0);
  EXPECT_EQ(empty.max_index(), 0);
  ExpectFatal([&] { static_cast<void>(empty.min()); }, "Out of Dimension in Vector");
  ExpectFatal([&] { static_cast<void>(empty.max()); }, "Out of Dimension in Vector");
}

TYPED_TEST(BothVectors, ReduceFoldsInOrder)
{
  const auto digits = [](double total, double digit) { return 10 * total + digit; };
  EXPECT_EQ(this->Of({1, 2, 3}).reduce(digits, 7.0), 7123.0);
}

TYPED_TEST(BothVectors, ApplyVisitsInOrder)
{
  Doubles seen;
  this->Of({1, 2, 3}).apply([&](double value) { seen.push_back(value); });
  EXPECT_EQ(seen, (Doubles{1, 2, 3}));
}

TYPED_TEST(BothVectors, MapAndCombine)
{
  const TypeParam a = this->Of({1, 4, 9});
  const TypeParam b = this->Of({1, 2, 3});
  EXPECT_EQ(Values(map([](double x) { return std::sqrt(x); }, a)), (Doubles{1, 2, 3}));
  const auto mixed = [](double x, double y) { return 10 * x + y; };
  EXPECT_EQ(Values(combine(mixed, a, b)), (Doubles{11, 42, 93}));
}

TYPED_TEST(BothVectors, MergeTakesTheFirstWhileCompareIsBelowOne)
{
  const auto compare = [](double x, double y) { return x < y ? -1 : (x > y ? 1 : 0); };
  EXPECT_EQ(Values(merge(this->Of({1, 3}), this->Of({2}), compare)), (Doubles{1, 2, 3}));
  EXPECT_EQ(Values(merge(this->Of({3}), this->Of({1, 2}), compare)), (Doubles{1, 2, 3}));
  EXPECT_EQ(Values(merge(TypeParam(), this->Of({1, 2}), compare)), (Doubles{1, 2}));
  EXPECT_EQ(Values(merge(this->Of({1, 2}), TypeParam(), compare)), (Doubles{1, 2}));
  const auto always = [](double, double) { return 0; };
  EXPECT_EQ(Values(merge(this->Of({5, 1}), this->Of({0}), always)), (Doubles{5, 1, 0}));
  const auto never = [](double, double) { return 1; };
  EXPECT_EQ(Values(merge(this->Of({5, 1}), this->Of({7}), never)), (Doubles{7, 5, 1}));
}

TYPED_TEST(BothVectors, Concatenation)
{
  EXPECT_EQ(Values(this->Of({1}) & this->Of({2, 3})), (Doubles{1, 2, 3}));
  EXPECT_EQ(Values(TypeParam() & this->Of({2})), (Doubles{2}));
}

TYPED_TEST(BothVectors, ArithmeticBetweenVectors)
{
  const TypeParam a = this->Of({6, 8});
  const TypeParam b = this->Of({2, 4});
  EXPECT_EQ(Values(a + b), (Doubles{8, 12}));
  EXPECT_EQ(Values(a - b), (Doubles{4, 4}));
  EXPECT_EQ(Values(product(a, b)), (Doubles{12, 32}));
  EXPECT_EQ(Values(quotient(a, b)), (Doubles{3, 2}));
  EXPECT_EQ(a * b, 44.0);
  EXPECT_EQ(Values(-a), (Doubles{-6, -8}));
}

TYPED_TEST(BothVectors, ArithmeticWithAScalar)
{
  const TypeParam a = this->Of({6, 8});
  EXPECT_EQ(Values(a + 1.0), (Doubles{7, 9}));
  EXPECT_EQ(Values(a - 1.0), (Doubles{5, 7}));
  EXPECT_EQ(Values(a * 2.0), (Doubles{12, 16}));
  EXPECT_EQ(Values(a / 2.0), (Doubles{3, 4}));
}

TYPED_TEST(BothVectors, ArithmeticInPlace)
{
  TypeParam a = this->Of({6, 8});
  const TypeParam b = this->Of({2, 4});
  EXPECT_EQ(Values(a += b), (Doubles{8, 12}));
  EXPECT_EQ(Values(a -= b), (Doubles{6, 8}));
  EXPECT_EQ(Values(a.product(b)), (Doubles{12, 32}));
  EXPECT_EQ(Values(a.quotient(b)), (Doubles{6, 8}));
  EXPECT_EQ(Values(a += 1.0), (Doubles{7, 9}));
  EXPECT_EQ(Values(a -= 1.0), (Doubles{6, 8}));
  EXPECT_EQ(Values(a *= 2.0), (Doubles{12, 16}));
  EXPECT_EQ(Values(a /= 4.0), (Doubles{3, 4}));
  EXPECT_EQ(Values(a += a), (Doubles{6, 8}));
  EXPECT_EQ(&(a += b), &a);
}

TYPED_TEST(BothVectors, DifferentLengthsAreFatal)
{
  TypeParam a = this->Of({1, 2, 3});
  const TypeParam b = this->Of({1, 2});
  const char* message = "Different lenght vectors 3 != 2";
  ExpectFatal([&] { static_cast<void>(a + b); }, message);
  ExpectFatal([&] { static_cast<void>(a - b); }, message);
  ExpectFatal([&] { static_cast<void>(a * b); }, message);
  ExpectFatal([&] { static_cast<void>(product(a, b)); }, message);
  ExpectFatal([&] { static_cast<void>(quotient(a, b)); }, message);
  ExpectFatal([&] { static_cast<void>(combine(std::plus<>(), a, b)); }, message);
  ExpectFatal([&] { a += b; }, message);
  ExpectFatal([&] { a -= b; }, message);
  ExpectFatal([&] { a.product(b); }, message);
  ExpectFatal([&] { a.quotient(b); }, message);
  EXPECT_EQ(Values(a), (Doubles{1, 2, 3}));
}

TYPED_TEST(BothVectors, Equality)
{
  const TypeParam a = this->Of({1, 2});
  EXPECT_TRUE(a == this->Of({1, 2}));
  EXPECT_FALSE(a == this->Of({1, 3}));
  EXPECT_FALSE(a == this->Of({1, 2, 0}));
  EXPECT_TRUE(a != this->Of({1}));
  EXPECT_TRUE(this->Of({4, 4}) == 4.0);
  EXPECT_FALSE(this->Of({4, 5}) == 4.0);
}

TYPED_TEST(BothVectors, CrossProduct)
{
  EXPECT_EQ(Values(VectorProd(this->Of({1, 0}), this->Of({0, 1}))), (Doubles{0, 0, 1}));
  EXPECT_EQ(Values(VectorProd(this->Of({1, 2, 3}), this->Of({4, 5, 6}))), (Doubles{-3, 6, -3}));
  EXPECT_EQ(Values(VectorProd(this->Of({1, 2}), this->Of({4, 5, 6}))), (Doubles{12, -6, -3}));
  EXPECT_EQ(Values(VectorProd(this->Of({1, 2, 3}), this->Of({4, 5}))), (Doubles{-15, 12, -3}));
}

TYPED_TEST(BothVectors, CrossProductOfOtherLengthsIsFatal)
{
  const char* message = "VectorProd can only be made in 2D or 3D\n";
  const TypeParam space = this->Of({1, 2, 3});
  ExpectFatal([&] { static_cast<void>(VectorProd(this->Of({1}), space)); }, message);
  ExpectFatal([&] { static_cast<void>(VectorProd(space, TypeParam())); }, message);
}

TYPED_TEST(BothVectors, WritesScientificInAFieldOfPrecisionPlusSeven)
{
  EXPECT_EQ(Text(this->Of({1, -2.5})), "   1.000000e+00  -2.500000e+00");
  std::ostringstream out;
  out << std::setprecision(3) << this->Of({1234.5678}) << '|' << 0.5;
  EXPECT_EQ(out.str(), "   1.235e+03|0.5");
}

TYPED_TEST(BothVectors, WritesTextForAnEmptyVector)
{
  EXPECT_EQ(Text(TypeParam()), "\n\t(Zero size vector)\n");
}

TYPED_TEST(BothVectors, WritingRestoresFlagsAndFlushes)
{
  struct CountingBuffer : std::stringbuf
  {
    int flushes = 0;
    int sync() override { return flushes++, 0; }
  } buffer;
  std::ostream out(&buffer);
  out << std::fixed << std::left;
  const std::ios_base::fmtflags flags = out.flags();
  out << this->Of({1, 2});
  EXPECT_EQ(out.flags(), flags);
  EXPECT_EQ(buffer.flushes, 1);
}

TYPED_TEST(BothVectors, ReadsIntoTheExistingComponents)
{
  std::istringstream in("1 2.5\n-3e2 4");
  TypeParam v = this->Of({0, 0, 0});
  in >> v;
  EXPECT_EQ(Values(v), (Doubles{1, 2.5, -300}));
  double next = 0.0;
  in >> next;
  EXPECT_EQ(next, 4.0);
}

}  // namespace

}  // namespace morlen
