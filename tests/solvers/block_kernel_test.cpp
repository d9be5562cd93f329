#include "solvers/block_kernel.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "support/sparse.h"

namespace morlen {

namespace {

/// Lines of random blocks, followed by the padding that the loops may read: zeros for a triangle,
/// otherwise NaN, which must not reach a result.
struct RandomLines
{
  int size;
  std::vector<double> values;
  std::vector<int> columns;
  std::vector<int> starts = {0};

  RandomLines(int size_, int lines, unsigned seed) : size(size_), random(seed), nodes(lines) {}

  void AddBlock(int column)
  {
    std::uniform_real_distribution<double> number(-0.3, 0.3);
    columns.push_back(column);
    for (int k = 0; k < size * size; ++k)
      values.push_back(number(random));
  }

  /// Up to 12 different columns from `first` to `last` - 1, in random order.
  void AddSome(int first, int last)
  {
    std::vector<int> all;
    for (int column = first; column < last; ++column)
      all.push_back(column);
    std::shuffle(all.begin(), all.end(), random);
    const int count = std::uniform_int_distribution<int>(0, 12)(random);
    for (int k = 0; k < std::min(count, last - first); ++k)
      AddBlock(all[k]);
  }

  void EndLine() { starts.push_back(static_cast<int>(columns.size())); }

  BlockLines View(double padding = std::numeric_limits<double>::quiet_NaN())
  {
    values.resize(columns.size() * size * size);
    values.resize(values.size() + kBlockPadding, padding);
    return {nodes, values.data(), columns.data(), starts.data()};
  }

  /// y += line times x.
  void AddLine(int line, const double* x, double* y) const
  {
    for (int s = starts[line]; s < starts[line + 1]; ++s)
      for (int b = 0; b < size; ++b)
        for (int a = 0; a < size; ++a)
          y[a] += values[(s * size + b) * size + a] * x[columns[s] * size + b];
  }

  std::mt19937 random;
  int nodes;
};

using Case = std::tuple<Processor, int>;

class BlockKernelTest : public testing::TestWithParam<Case>
{
protected:
  void SetUp() override
  {
    if (std::get<0>(GetParam()) > ThisProcessor())
      GTEST_SKIP() << "not on this processor";
  }

  int Size() const { return std::get<1>(GetParam()); }
  const BlockKernels& Kernels() const { return *GiveBlockKernels(Size(), std::get<0>(GetParam())); }
};

constexpr int kLines[] = {1, 2, 3, 5, 8, 17, 40};
constexpr double kTolerance = 1e-13;

/// A vector for some nodes, followed by a number that must not change.
std::vector<double> Guarded(int n, unsigned seed)
{
  std::vector<double> x = RandomVector(n, seed);
  x.push_back(77.0);
  return x;
}

TEST_P(BlockKernelTest, ProductAgreesWithPlainLoops)
{
  for (const int n : kLines) {
    RandomLines A(Size(), n, 1);
    for (int i = 0; i < n; ++i) {
      A.AddSome(0, n);
      A.EndLine();
    }
    const std::vector<double> x = Guarded(n * Size(), 2);
    std::vector<double> y = Guarded(n * Size(), 3);
    Kernels().product(A.View(), x.data(), y.data());
    std::vector<double> expected(n * Size(), 0.0);
    for (int i = 0; i < n; ++i)
      A.AddLine(i, x.data(), &expected[i * Size()]);
    EXPECT_EQ(y.back(), 77.0);
    y.pop_back();
    EXPECT_LE(LargestDifference(y, expected), kTolerance);
  }
}

/// −U, blocks row by row; each line has up to 12 later nodes.
RandomLines RandomTriangle(int size, int n)
{
  RandomLines U(size, n, 4);
  for (int i = 0; i < n; ++i) {
    U.AddSome(i + 1, n);
    U.EndLine();
  }
  return U;
}

// The loops of the test gather where the kernels scatter, and the reverse.
TEST_P(BlockKernelTest, ForwardSolvesWithTheTransposedTriangle)
{
  const int size = Size();
  for (const int n : kLines) {
    RandomLines U = RandomTriangle(size, n);
    std::vector<double> y = Guarded(n * size, 5);
    std::vector<double> expected(y.begin(), y.end() - 1);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < j; ++i)
        for (int s = U.starts[i]; s < U.starts[i + 1]; ++s)
          for (int a = 0; a < size && U.columns[s] == j; ++a)
            for (int b = 0; b < size; ++b)
              expected[j * size + b] +=
                  U.values[(s * size + a) * size + b] * expected[i * size + a];
    Kernels().forward(U.View(0.0), y.data());
    EXPECT_EQ(y.back(), 77.0);
    y.pop_back();
    EXPECT_LE(LargestDifference(y, expected), kTolerance);
  }
}

TEST_P(BlockKernelTest, BackwardScalesAndSolvesWithTheTriangle)
{
  const int size = Size();
  for (const int n : kLines) {
    RandomLines U = RandomTriangle(size, n);
    RandomLines inverse(size, n, 7);
    for (int i = 0; i < n; ++i) {
      inverse.AddBlock(i);
      inverse.EndLine();
    }
    std::vector<double> y = Guarded(n * size, 8);
    std::vector<double> expected(n * size, 0.0);
    for (int i = n - 1; i >= 0; --i) {
      inverse.AddLine(i, y.data(), &expected[i * size]);
      for (int s = U.starts[i]; s < U.starts[i + 1]; ++s)
        for (int a = 0; a < size; ++a)
          for (int b = 0; b < size; ++b)
            expected[i * size + a] +=
                U.values[(s * size + a) * size + b] * expected[U.columns[s] * size + b];
    }
    const BlockLines divisors = inverse.View();
    Kernels().backward(U.View(0.0), divisors.values, y.data());
    EXPECT_EQ(y.back(), 77.0);
    y.pop_back();
    EXPECT_LE(LargestDifference(y, expected), kTolerance);
  }
}

/// Two vectors for some nodes, each followed by a number that must not change.
struct TwoVectors
{
  TwoVectors(int n, unsigned seed) : first(Guarded(n, seed)), second(Guarded(n, seed + 1)) {}

  std::vector<double> first, second;
};

TEST_P(BlockKernelTest, TwoVectorsGetTheBitsOfEachByItself)
{
  const int size = Size();
  for (const int n : kLines) {
    RandomLines A(size, n, 14);
    for (int i = 0; i < n; ++i) {
      A.AddSome(0, n);
      A.EndLine();
    }
    RandomLines U = RandomTriangle(size, n);
    RandomLines inverse(size, n, 15);
    for (int i = 0; i < n; ++i) {
      inverse.AddBlock(i);
      inverse.EndLine();
    }
    const double* const divisors = inverse.View().values;
    TwoVectors x(n * size, 16);
    TwoVectors y(n * size, 18);
    TwoVectors expected = y;
    double* const both[2] = {y.first.data(), y.second.data()};
    const auto expectSame = [&](const char* what) {
      EXPECT_EQ(y.first, expected.first) << what;
      EXPECT_EQ(y.second, expected.second) << what;
    };

    const double* const bothX[2] = {x.first.data(), x.second.data()};
    Kernels().productOfTwo(A.View(), bothX, both);
    Kernels().product(A.View(), x.first.data(), expected.first.data());
    Kernels().product(A.View(), x.second.data(), expected.second.data());
    expectSame("product");
    Kernels().forwardOfTwo(U.View(0.0), both);
    Kernels().forward(U.View(0.0), expected.first.data());
    Kernels().forward(U.View(0.0), expected.second.data());
    expectSame("forward");
    Kernels().backwardOfTwo(U.View(0.0), divisors, both);
    Kernels().backward(U.View(0.0), divisors, expected.first.data());
    Kernels().backward(U.View(0.0), divisors, expected.second.data());
    expectSame("backward");
    EXPECT_NE(y.first, y.second);
  }
}

/// a·b of square blocks, column by column.
std::vector<double> BlockProduct(int size, const double* a, const double* b)
{
  std::vector<double> c(size * size, 0.0);
  for (int i = 0; i < size; ++i)
    for (int j = 0; j < size; ++j)
      for (int k = 0; k < size; ++k)
        c[j * size + i] += a[k * size + i] * b[j * size + k];
  return c;
}

TEST_P(BlockKernelTest, ProductsAreAddedToTheirTargets)
{
  const int square = Size() * Size();
  for (const int count : {0, 1, 2, 5}) {
    const std::vector<double> factor = RandomVector(square + kBlockPadding, 9);
    const std::vector<double> blocks = RandomVector(square * count + kBlockPadding, 10);
    const std::vector<double> before = RandomVector(square * count + 1, 11);
    std::vector<double> after = before;
    std::vector<BlockUpdate> updates;
    for (int k = 0; k < count; ++k)
      if (k % 3 != 1)
        updates.push_back({k, &after[square * k]});
    Kernels().addProducts(factor.data(), blocks.data(), updates.data(),
                          static_cast<int>(updates.size()));
    EXPECT_EQ(after.back(), before.back());
    for (int k = 0; k < count; ++k) {
      const std::vector<double> product = BlockProduct(Size(), &blocks[square * k], factor.data());
      for (int e = 0; e < square; ++e)
        EXPECT_NEAR(after[square * k + e], before[square * k + e] + (k % 3 != 1 ? product[e] : 0.0),
                    kTolerance);
    }
  }
}

TEST_P(BlockKernelTest, BlocksAreScaledFromTheRight)
{
  const int square = Size() * Size();
  const std::vector<double> factor = RandomVector(square + kBlockPadding, 12);
  for (const int count : {0, 1, 3}) {
    const std::vector<double> before = RandomVector(square * count + 1, 13);
    std::vector<double> after = before;
    Kernels().scale(after.data(), count, factor.data());
    EXPECT_EQ(after.back(), before.back());
    for (int k = 0; k < count; ++k) {
      const std::vector<double> product = BlockProduct(Size(), &before[square * k], factor.data());
      for (int e = 0; e < square; ++e)
        EXPECT_NEAR(after[square * k + e], -product[e], kTolerance);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, BlockKernelTest,
                         testing::Combine(testing::Values(Processor::kPlain, Processor::kAvx2),
                                          testing::Values(3, 6)));

TEST(BlockKernel, OtherSizesHaveNone)
{
  for (const int size : {1, 2, 4, 5, 7, 30})
    EXPECT_EQ(GiveBlockKernels(size, ThisProcessor()), nullptr);
}

}  // namespace

}  // namespace morlen
