#include "numeric/matriu.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "numeric/matriu_arithmetic.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

/// A temporary file to write and then read.
class ScratchFile
{
public:
  std::FILE* Get() const { return file.get(); }
  std::string Contents() const
  {
    std::rewind(file.get());
    std::string text;
    for (int c; (c = std::fgetc(file.get())) != EOF;)
      text += static_cast<char>(c);
    return text;
  }

private:
  struct Close
  {
    void operator()(std::FILE* f) const { std::fclose(f); }
  };
  std::unique_ptr<std::FILE, Close> file{std::tmpfile()};
};

void ExpectMatriu(const Matriu& m, int rows, int cols, const Doubles& entries)
{
  EXPECT_EQ(m.Rows(), rows);
  EXPECT_EQ(m.Cols(), cols);
  EXPECT_EQ(Entries(m), entries);
}

TEST(Matriu, IsStoredRowByRowFromOne)
{
  Matriu m(2, 3);
  for (int i = 1; i <= 2; i++)
    for (int j = 1; j <= 3; j++)
      m(i, j) = 10 * i + j;
  EXPECT_EQ(m.Size(), 6);
  EXPECT_EQ(Entries(m), (Doubles{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(std::as_const(m)(2, 1), 21.0);
}

TEST(Matriu, StartsEmpty)
{
  const Matriu m;
  EXPECT_EQ(m.Rows(), 0);
  EXPECT_EQ(m.Cols(), 0);
  EXPECT_EQ(m.Size(), 0);
  EXPECT_EQ(m.Data(), nullptr);
}

TEST(Matriu, IsMadeFromAVectorAsAColumn)
{
  ExpectMatriu(Matriu(ReaVec(1, 2, 3)), 3, 1, {1, 2, 3});
  ExpectMatriu(Matriu(VectorOf<ReaVecV>({4, 5})), 2, 1, {4, 5});
  ExpectMatriu(MatriuT(ReaVec(1, 2)), 2, 1, {1, 2});
}

TEST(Matriu, CopiesHaveTheirOwnArray)
{
  const Matriu a = MatriuOf(1, 2, {1, 2});
  Matriu b = a;
  b(1, 1) = 9.0;
  EXPECT_EQ(Entries(a), (Doubles{1, 2}));
  Matriu& same = b;
  b = same;
  ExpectMatriu(b, 1, 2, {9, 2});
  const Matriu empty;
  b = empty;
  EXPECT_EQ(b.Data(), nullptr);
}

TEST(Matriu, TakesTheArrayOfATemporary)
{
  MatriuT named = MatriuOf(1, 2, {1, 2}) + 1.0;
  const double* array = named.Data();
  Matriu constructed(named);
  EXPECT_EQ(constructed.Data(), array);
  ExpectMatriu(named, 0, 0, {});
  EXPECT_EQ(named.Data(), nullptr);
  named = constructed;
  EXPECT_NE(named.Data(), array);
  array = named.Data();
  Matriu assigned(3, 3);
  assigned = named;
  EXPECT_EQ(assigned.Data(), array);
  EXPECT_EQ(named.Data(), nullptr);
  ExpectMatriu(assigned, 1, 2, {2, 3});
}

TEST(Matriu, TakesTheArrayOfAnExpiringTemporary)
{
  MatriuT temporary = MatriuOf(1, 2, {1, 2}) + 1.0;
  const double* array = temporary.Data();
  Matriu m;
  m = std::move(temporary);
  EXPECT_EQ(m.Data(), array);
  ExpectMatriu(m, 1, 2, {2, 3});
}

TEST(Matriu, TemporaryTakesFromATemporary)
{
  MatriuT a = MatriuOf(1, 2, {1, 2}) + 0.0;
  const double* array = a.Data();
  MatriuT b;
  b = a;
  EXPECT_EQ(b.Data(), array);
  EXPECT_EQ(a.Size(), 0);
  MatriuT c(b);
  EXPECT_EQ(c.Data(), array);
  EXPECT_EQ(b.Size(), 0);
}

TEST(Matriu, RedimensionKeepsTheArrayWhenTheSizeStays)
{
  Matriu m(2, 3);
  const double* array = m.Data();
  m.redimension(3, 2);
  EXPECT_EQ(m.Data(), array);
  EXPECT_EQ(m.Rows(), 3);
  EXPECT_EQ(m.Cols(), 2);
  m.redimension(6, 1);
  EXPECT_EQ(m.Data(), array);
  m.redimension(4, 4);
  EXPECT_EQ(m.Size(), 16);
  m.redimension(0, 4);
  EXPECT_EQ(m.Size(), 0);
  EXPECT_EQ(m.Data(), nullptr);
}

TEST(Matriu, RefusedShapes)
{
  Matriu m(2, 2);
  ExpectFatal([&] { m.redimension(-1, 2); }, "Can't redimension to a negative values");
  ExpectFatal([&] { m.redimension(2, -1); }, "Can't redimension to a negative values");
  ExpectFatal([] { Matriu(-1, 2); }, "Can't create a Matriu of size -1 X 2");
  ExpectFatal([] { MatriuT(2, -3); }, "Can't create a Matriu of size 2 X -3");
  ExpectFatal([&] { m.redimension(65536, 65536); }, "Can't create a Matriu of size 65536 X 65536");
  ExpectFatal([&] { m.redimension(46341, 46341); }, "Can't create a Matriu of size 46341 X 46341");
  ExpectFatal([] { Matriu(2147483648, 0); }, "Can't create a Matriu of size 2147483648 X 0");
  EXPECT_EQ(m.Size(), 4);
}

TEST(Matriu, AssignmentOfDoubleFills)
{
  Matriu m(2, 2);
  m = 3.0;
  EXPECT_EQ(Entries(m), (Doubles{3, 3, 3, 3}));
  Matriu empty;
  ExpectFatal([&] { empty = 1.5; }, "Can't fill with 1.5 a zero size Matriu");
}

TEST(Matriu, SubMatriuIncludesBothEnds)
{
  const Matriu m = MatriuOf(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  ExpectMatriu(m.subMatriu(2, 1, 3, 2), 2, 2, {4, 5, 7, 8});
  ExpectMatriu(m.subMatriu(1, 3, 1, 3), 1, 1, {3});
  ExpectMatriu(m.subMatriu(1, 1, 3, 3), 3, 3, Entries(m));
}

TEST(Matriu, SubMatriuOutsideIsFatal)
{
  const Matriu m(2, 3);
  static constexpr std::array<int, 4> cases[] = {{0, 1, 1, 1}, {1, 0, 1, 1}, {2, 1, 1, 1},
                                                 {1, 2, 1, 1}, {1, 1, 3, 1}, {1, 1, 1, 4}};
  for (const auto& [row0, col0, row1, col1] : cases) {
    const std::string message =
        "subMatriu incorrect size :\n\tMatriu size nrows=2, ncols=3"
        "\tsubMatriu start: row=" +
        std::to_string(row0) + ", col=" + std::to_string(col0) +
        ", end: row=" + std::to_string(row1) + ", col=" + std::to_string(col1);
    ExpectFatal([&, r0 = row0, c0 = col0, r1 = row1,
                 c1 = col1] { static_cast<void>(m.subMatriu(r0, c0, r1, c1)); },
                message);
  }
}

TEST(Matriu, AddSubmatriuReplacesEntries)
{
  Matriu m = MatriuOf(2, 3, {1, 2, 3, 4, 5, 6});
  m.AddSubmatriu(1, 2, MatriuOf(2, 2, {7, 8, 9, 10}));
  ExpectMatriu(m, 2, 3, {1, 7, 8, 4, 9, 10});
}

TEST(Matriu, AddSubmatriuEnlargesWithZeros)
{
  Matriu m = MatriuOf(2, 2, {1, 2, 3, 4});
  Matriu block = MatriuOf(2, 2, {5, 6, 7, 8});
  m.AddSubmatriu(3, 3, block);
  ExpectMatriu(m, 4, 4, {1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 5, 6, 0, 0, 7, 8});
}

TEST(Matriu, AddSubmatriuEnlargesOneDirectionOnly)
{
  Matriu m = MatriuOf(2, 2, {1, 2, 3, 4});
  m.AddSubmatriu(2, 2, MatriuOf(1, 2, {5, 6}));
  ExpectMatriu(m, 2, 3, {1, 2, 0, 3, 5, 6});
}

TEST(Matriu, AddSubmatriuOnAnEmptyMatrix)
{
  Matriu m;
  m.AddSubmatriu(1, 2, MatriuOf(1, 1, {5}));
  ExpectMatriu(m, 1, 2, {0, 5});
  m.AddSubmatriu(4, 4, Matriu());
  ExpectMatriu(m, 1, 2, {0, 5});
}

TEST(Matriu, AddSubmatriuOfItself)
{
  Matriu m = MatriuOf(2, 2, {1, 2, 3, 4});
  m.AddSubmatriu(2, 2, m);
  ExpectMatriu(m, 3, 3, {1, 2, 0, 3, 1, 2, 0, 3, 4});
}

TEST(Matriu, AddSubmatriuBeyondTheLargestSizeIsFatal)
{
  Matriu m(1, 1);
  ExpectFatal([&] { m.AddSubmatriu(2147483647, 1, Matriu(Matriu::I(2))); },
              "Can't create a Matriu of size 2147483648 X 2");
}

TEST(Matriu, GiveColumn)
{
  const Matriu m = MatriuOf(3, 2, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(Values(m.GiveColumn(2)), (Doubles{2, 4, 6}));
  ExpectFatal([] { static_cast<void>(Matriu(4, 1).GiveColumn(1)); },
              "Can't create a vector of size 4");
}

TEST(Matriu, Identity)
{
  ExpectMatriu(Matriu::I(2), 2, 2, {1, 0, 0, 1});
  ExpectFatal([] { static_cast<void>(Matriu::I(0)); },
              "Can't construct an identity Matriu of size 0");
  ExpectFatal([] { static_cast<void>(Matriu::I(-2)); },
              "Can't construct an identity Matriu of size -2");
}

TEST(Matriu, Reductions)
{
  const Matriu m = MatriuOf(2, 2, {1, -7, 2, 3});
  EXPECT_EQ(m.maxAbsVal(), 7.0);
  EXPECT_EQ(m.sumAbsVal(), 13.0);
  EXPECT_EQ(m.sumSquare(), 63.0);
  EXPECT_EQ(m.colNorm(), 3.0);  // column sums 3 and -4
  EXPECT_EQ(m.rowNorm(), 5.0);  // row sums -6 and 5
  EXPECT_EQ(m.trace(), 4.0);
}

TEST(Matriu, NormsOfNegativeSumsAreZero)
{
  const Matriu m = MatriuOf(2, 3, {-1, -2, -3, -4, -5, -6});
  EXPECT_EQ(m.colNorm(), 0.0);
  EXPECT_EQ(m.rowNorm(), 0.0);
}

TEST(Matriu, NormsOfARectangularMatrix)
{
  const Matriu m = MatriuOf(2, 3, {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(m.colNorm(), 9.0);
  EXPECT_EQ(m.rowNorm(), 15.0);
}

TEST(Matriu, ReductionsRefuseSizeZero)
{
  static constexpr std::pair<double (Matriu::*)() const, const char*> cases[] = {
      {&Matriu::maxAbsVal, "maxAbsVal"}, {&Matriu::sumAbsVal, "sumAbsVal"},
      {&Matriu::sumSquare, "sumSquare"}, {&Matriu::colNorm, "colNorm"},
      {&Matriu::rowNorm, "rowNorm"},     {&Matriu::trace, "trace"},
  };
  const Matriu empty;
  for (const auto& [reduction, name] : cases)
    ExpectFatal([&, r = reduction] { static_cast<void>((empty.*r)()); },
                std::string("Can't compute the ") + name + " of a zero size Matriu");
  ExpectFatal([] { static_cast<void>(Matriu(2, 3).trace()); },
              "Can't compute the trace of a non square Matriu");
}

TEST(Matriu, IsZeroTestsExactly)
{
  Matriu m = MatriuOf(1, 2, {0.0, -0.0});
  EXPECT_TRUE(m.isZero());
  m(1, 2) = 1e-300;
  EXPECT_FALSE(m.isZero());
  EXPECT_FALSE(Matriu().isZero());
}

TEST(Matriu, ScornDropsSmallEntries)
{
  Matriu m = MatriuOf(1, 4, {0.5, -0.5, 0.51, -0.51});
  m.scorn(0.5);
  EXPECT_EQ(Entries(m), (Doubles{0, 0, 0.51, -0.51}));
  Matriu empty;
  ExpectFatal([&] { empty.scorn(1.0); }, "Can't scorn a zero size Matriu");
}

TEST(Matriu, AreVeryEqualComparesShapeAndEntries)
{
  const Matriu a = MatriuOf(1, 2, {1, 2});
  EXPECT_TRUE(AreVeryEqual(a, MatriuOf(1, 2, {1.5, 1.5}), 0.5));
  EXPECT_FALSE(AreVeryEqual(a, MatriuOf(1, 2, {1.5, 1.5}), 0.49));
  EXPECT_FALSE(AreVeryEqual(a, MatriuOf(2, 1, {1, 2}), 0.5));
  EXPECT_TRUE(AreVeryEqual(Matriu(), Matriu(), 0.0));
}

TEST(Matriu, WritesAscii)
{
  const ScratchFile file;
  MatriuOf(2, 2, {1, -2.5, 1e6, 1e-7}).WriteAscii(file.Get());
  EXPECT_EQ(file.Contents(), "1.000000  -2.500000  \n1000000.000000  0.000000  \n");
}

TEST(Matriu, ReadsAsciiIntoTheExistingShape)
{
  const ScratchFile file;
  std::fputs("1 2.5\n-3e2\t4 5", file.Get());
  std::rewind(file.Get());
  Matriu m(2, 2);
  m.ReadAscii(file.Get());
  ExpectMatriu(m, 2, 2, {1, 2.5, -300, 4});
  ExpectFatal([&] { m.ReadAscii(file.Get()); }, "error: can't ascii read matrix\n");
}

TEST(Matriu, WritesRawDoubles)
{
  const ScratchFile file;
  const Matriu m = MatriuOf(2, 2, {1, 2, 3, 4});
  m.WriteBinary(file.Get());
  const char* bytes = reinterpret_cast<const char*>(m.Data());
  EXPECT_EQ(file.Contents(), std::string(bytes, 4 * sizeof(double)));
}

TEST(Matriu, FilesOfAnEmptyMatrixAreFatal)
{
  const ScratchFile file;
  Matriu m;
  ExpectFatal([&] { m.ReadAscii(file.Get()); }, "error: can't ascii read 0x0 matrix\n");
  ExpectFatal([&] { m.WriteAscii(file.Get()); }, "error: can't ascii write 0x0 matrix\n");
  ExpectFatal([&] { m.WriteBinary(file.Get()); }, "error: can't write 0x0 matrix\n");
  EXPECT_EQ(file.Contents(), "");
}

TEST(Matriu, ReadBinaryIsFatal)
{
  const ScratchFile file;
  Matriu m(1, 1);
  ExpectFatal([&] { m.ReadBinary(file.Get()); },
              "error: Function 'ReadBinary' should not be used\n");
}

TEST(Matriu, WritesATable)
{
  EXPECT_EQ(Text(MatriuOf(2, 2, {1, -2.5, 1e20, 0.1})),
            "\n            1          2 "
            "\n 1          1       -2.5 "
            "\n 2      1e+20        0.1 ");
  EXPECT_EQ(Text(Matriu()), "\n\t(Zero size Matriu)\n");
}

}  // namespace

}  // namespace morlen
