#include "solvers/ldlt_factorisation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "solvers/ldlt_kernels.h"
#include "solvers/ldlt_tiles.h"

namespace morlen {

namespace {

/// Tiles of wide vectors, which any processor can emulate, and of uneven shape.
constexpr LdltKernel kWide = LdltTiles<8, 3, 8>::Kernel("wide");
constexpr LdltKernel kUneven = LdltTiles<2, 4, 6>::Kernel("uneven");
constexpr LdltKernel kSmall = LdltTiles<2, 1, 2>::Kernel("small");

std::vector<const LdltKernel*> AllKernels()
{
  std::vector<const LdltKernel*> kernels(LdltKernels().begin(), LdltKernels().end());
  kernels.insert(kernels.end(), {&kWide, &kUneven, &kSmall});
  return kernels;
}

/// Pseudo-random numbers in -1..1.
double Noise(int k)
{
  return std::sin(12.9898 * k + 78.233);
}

/// A diagonally dominant matrix whose row i has heightOf(i) entries, at most i + 1.
class Profile
{
public:
  Profile(int n, const std::function<int(int)>& heightOf) : storage(n)
  {
    for (int i = 0; i < n; ++i) {
      heights.push_back(std::clamp(heightOf(i), 1, i + 1));
      for (int d = 0; d < heights[i]; ++d)
        storage[i].push_back(d == 0 ? (i % 3 == 1 ? -1.0 : 1.0) * (n + 20.0) : Noise(100 * i + d));
    }
    for (std::vector<double>& row : storage)
      rows.push_back(row.data());
  }
  Profile(const Profile& p) : heights(p.heights), storage(p.storage)
  {
    for (std::vector<double>& row : storage)
      rows.push_back(row.data());
  }
  Profile& operator=(const Profile&) = delete;

  int Size() const { return static_cast<int>(rows.size()); }
  ProfileRows View() const { return {rows.data(), heights.data()}; }
  std::vector<double>& Row(int i) { return storage[i]; }

private:
  std::vector<int> heights;
  std::vector<std::vector<double>> storage;
  std::vector<double*> rows;
};

/// Computes the factors by their definition, entry by entry. Returns the first row with a pivot of
/// 0, or -1.
int FactorisePlainly(const Profile& profile)
{
  const ProfileRows a = profile.View();
  for (int j = 0; j < profile.Size(); ++j) {
    for (int i = a.FirstColumn(j); i <= j; ++i) {
      double sum = 0.0;
      for (int k = std::max(a.FirstColumn(i), a.FirstColumn(j)); k < i; ++k)
        sum += a.rows[i][i - k] * a.rows[j][j - k] * a.rows[k][0];
      a.rows[j][j - i] -= sum;
      if (i < j)
        a.rows[j][j - i] /= a.rows[i][0];
    }
    if (a.rows[j][0] == 0.0)
      return j;
  }
  return -1;
}

int Factorise(const Profile& profile, const LdltKernel& kernel, std::size_t keptBytes = 0)
{
  return FactoriseLdlt(profile.View(), profile.Size(),
                       {.kernel = &kernel, .onRow = [](int) {}, .keptBytes = keptBytes});
}

void ExpectSameRows(const Profile& found, const Profile& expected, int count,
                    const std::string& label)
{
  double largest = 0.0;
  for (int row = 0; row < count; ++row)
    for (int d = 0; d < expected.View().heights[row]; ++d) {
      const double value = expected.View().rows[row][d];
      largest = std::max(largest,
                         std::fabs(found.View().rows[row][d] - value) / (1.0 + std::fabs(value)));
    }
  EXPECT_LT(largest, 1e-14) << label;
}

const struct
{
  const char* name;
  int (*height)(int row);
} kShapes[] = {
    {"diagonal", [](int) { return 1; }},
    {"tridiagonal", [](int) { return 2; }},
    {"full", [](int row) { return row + 1; }},
    {"band", [](int) { return 31; }},
    {"ragged", [](int row) { return 1 + row * 61 % 47; }},
    {"wild", [](int row) { return 1 + row * 7919 % 211; }},
    {"nodes of six", [](int row) { return 6 * (1 + row / 6 * 5 % 9) + row % 6 + 1; }},
    {"jumping", [](int row) { return row % 50 == 49 ? row + 1 : 3; }},
    {"arrow", [](int row) { return row % 97 == 96 ? row + 1 : 1; }},
    {"steps", [](int row) { return row % 40 + 1; }},
};

}  // namespace

TEST(LdltFactorisation, EveryKernelAgreesWithTheDefinition)
{
  for (const auto& shape : kShapes)
    for (int n = 1; n <= 205; n += n < 30 ? 1 : 7) {
      const Profile matrix(n, shape.height);
      const Profile expected = matrix;
      ASSERT_EQ(FactorisePlainly(expected), -1);
      for (const LdltKernel* kernel : AllKernels()) {
        const Profile found = matrix;
        const std::string label =
            std::string(shape.name) + ", " + std::to_string(n) + " rows, " + kernel->name;
        EXPECT_EQ(Factorise(found, *kernel), -1) << label;
        ExpectSameRows(found, expected, n, label);
      }
    }
}

TEST(LdltFactorisation, FinishedRowsThatAreNotKeptGiveTheSame)
{
  for (const auto& shape : kShapes) {
    const Profile matrix(613, shape.height);
    for (const LdltKernel* kernel : AllKernels()) {
      const Profile none = matrix;
      const Profile all = matrix;
      EXPECT_EQ(Factorise(none, *kernel, 0), -1);
      EXPECT_EQ(Factorise(all, *kernel, std::size_t{1} << 24), -1);
      for (int row = 0; row < 613; ++row)
        for (int d = 0; d < all.View().heights[row]; ++d)
          ASSERT_EQ(none.View().rows[row][d], all.View().rows[row][d])
              << shape.name << " " << kernel->name << " " << row;
    }
  }
}

TEST(LdltFactorisation, ZeroPivotInEveryPlaceIsTheRowReturned)
{
  constexpr int kSize = 61;
  for (const auto& shape : kShapes)
    for (int zero = 0; zero < kSize; ++zero) {
      Profile matrix(kSize, shape.height);
      std::fill(matrix.Row(zero).begin(), matrix.Row(zero).end(), 0.0);
      const Profile expected = matrix;
      ASSERT_EQ(FactorisePlainly(expected), zero);
      for (const LdltKernel* kernel : AllKernels()) {
        const Profile found = matrix;
        EXPECT_EQ(Factorise(found, *kernel), zero) << shape.name << " " << kernel->name;
        ExpectSameRows(found, expected, zero + 1, shape.name);
      }
    }
}

TEST(LdltFactorisation, NumbersThatAreNoneStayInTheirRow)
{
  for (const LdltKernel* kernel : AllKernels())
    for (const double value : {std::nan(""), HUGE_VAL}) {
      Profile matrix(60, [](int) { return 9; });
      matrix.Row(37)[4] = value;
      EXPECT_EQ(Factorise(matrix, *kernel), 37) << kernel->name;
    }
}

TEST(LdltFactorisation, ReportsEveryRowUpToTheRefusedOne)
{
  Profile matrix(100, [](int) { return 12; });
  std::fill(matrix.Row(70).begin(), matrix.Row(70).end(), 0.0);
  std::vector<int> reported;
  FactoriseLdlt(matrix.View(), 100, {.kernel = LdltKernels().front(), .onRow = [&](int row) {
                                       reported.push_back(row);
                                     }});
  ASSERT_EQ(reported.size(), 71u);
  for (int row = 0; row <= 70; ++row)
    EXPECT_EQ(reported[row], row);
}

TEST(LdltFactorisation, LostPivotsAreRefusedUnlessAllAreAccepted)
{
  // A chain of springs over several panels, held only by a spring of 1e-8 at its end: the last
  // pivot is 1e-14 of its diagonal entry, which is about the size of rounding.
  for (const LdltKernel* kernel : AllKernels()) {
    for (const double lostPart : {kLostPart, 0.0}) {
      Profile chain(500, [](int) { return 2; });
      for (int i = 0; i < 500; ++i) {
        chain.Row(i)[0] = i == 0 || i == 499 ? 1048576.0 : 2097152.0;
        if (i > 0)
          chain.Row(i)[1] = -1048576.0;
      }
      chain.Row(499)[0] += 0x1p-27;
      const LdltOptions options = {.kernel = kernel, .onRow = [](int) {}, .lostPart = lostPart};
      EXPECT_EQ(FactoriseLdlt(chain.View(), 500, options), lostPart > 0.0 ? 499 : -1)
          << kernel->name;
    }
  }
}

}  // namespace morlen
