#include "numeric/reavec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "numeric/matriu.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

TEST(ReaVec, Constructors)
{
  EXPECT_EQ(ReaVec().Size(), 0);
  EXPECT_EQ(Values(ReaVec(2)), (Doubles{0, 0}));
  EXPECT_EQ(Values(ReaVec(1, 2)), (Doubles{1, 2}));
  EXPECT_EQ(Values(ReaVec(1, 2, 3)), (Doubles{1, 2, 3}));
}

TEST(ReaVec, LengthOutsideZeroToThreeIsFatal)
{
  ExpectFatal([] { ReaVec(4); }, "Can't create a vector of size 4");
  ExpectFatal([] { ReaVec(-1); }, "Can't create a vector of size -1");
  ReaVec v(2);
  ExpectFatal([&] { v.resize(4, 0.0); }, "Can't create a vector of size 4");
  ExpectFatal([&] { static_cast<void>(v & v); }, "Can't create a vector of size 4");
}

TEST(ReaVec, CopyTakesLengthAndComponents)
{
  const ReaVec a(1, 2);
  ReaVec b(7, 8, 9);
  b = a;
  EXPECT_EQ(Values(b), (Doubles{1, 2}));
  const ReaVec c = b;
  EXPECT_EQ(Values(c), (Doubles{1, 2}));
}

TEST(ReaVec, SubVecOfLengthZeroIsEmpty)
{
  const ReaVec v(1, 2, 3);
  EXPECT_EQ(v.subVec(1, 0).Size(), 0);
  EXPECT_EQ(v.subVec(3, 0).Size(), 0);
  EXPECT_EQ(v.subVec(-1, 0).Size(), 0);
}

TEST(ReaVec, TakesAColumn)
{
  const Matriu column = MatriuOf(2, 1, {4, 5});
  EXPECT_EQ(Values(ReaVec(column)), (Doubles{4, 5}));
  ReaVec v(1, 2, 3);
  v = column;
  EXPECT_EQ(Values(v), (Doubles{4, 5}));
  EXPECT_EQ(Entries(column), (Doubles{4, 5}));
}

TEST(ReaVec, TakingATemporaryLeavesItEmpty)
{
  MatriuT first(MatriuOf(2, 1, {4, 5}));
  const ReaVec v(first);
  EXPECT_EQ(Values(v), (Doubles{4, 5}));
  EXPECT_EQ(first.Data(), nullptr);
  MatriuT second(MatriuOf(1, 1, {6}));
  ReaVec w;
  w = second;
  EXPECT_EQ(Values(w), (Doubles{6}));
  EXPECT_EQ(second.Size(), 0);
  w = MatriuT(MatriuOf(1, 1, {7}));
  EXPECT_EQ(Values(w), (Doubles{7}));
}

TEST(ReaVec, RefusesWhatIsNotAColumnOfThreeRows)
{
  ReaVec v;
  const char* message = "error: Assigning Vector=Matrix where M(num cols)=2\n";
  ExpectFatal([&] { v = MatriuOf(1, 2, {1, 2}); }, message);
  ExpectFatal([&] { v = MatriuT(MatriuOf(1, 2, {1, 2})); }, message);
  ExpectFatal([] { ReaVec(MatriuOf(1, 2, {1, 2})); }, message);
  ExpectFatal([&] { v = Matriu(); }, "error: Assigning Vector=Matrix where M(num cols)=0\n");
  ExpectFatal([&] { v = MatriuOf(4, 1, {1, 2, 3, 4}); }, "Can't create a vector of size 4");
}

TEST(ReaVec, AssignmentOfDoubleToAnEmptyVectorDoesNothing)
{
  ReaVec v;
  v = 3.0;
  EXPECT_EQ(v.Size(), 0);
}

TEST(ReaVec, ReadingIntoAnEmptyVectorReadsNothing)
{
  std::istringstream in("5");
  ReaVec v;
  in >> v;
  double next = 0.0;
  in >> next;
  EXPECT_EQ(next, 5.0);
}

TEST(ReaVec, DivisionByZeroIsNotFatal)
{
  ReaVec v(1, -1);
  v /= 0.0;
  EXPECT_EQ(v(1), HUGE_VAL);
  EXPECT_EQ(v(2), -HUGE_VAL);
}

TEST(ReaVec, SquaredDistance)
{
  EXPECT_EQ(distance2(ReaVec(1, 2, 3), ReaVec(4, 6, 3)), 25.0);
  ExpectFatal([] { static_cast<void>(distance2(ReaVec(1, 2), ReaVec(1, 2, 3))); },
              "Different lenght vectors 2 != 3");
}

}  // namespace

}  // namespace morlen
