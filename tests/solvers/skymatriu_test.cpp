#include "solvers/skymatriu.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "support/fatal.h"
#include "support/messages.h"
#include "support/processor.h"

namespace morlen {

namespace {

using Dense = std::vector<std::vector<double>>;  // indices from 0

/// The heights of the rows of a test matrix, from row 1.
struct Profile
{
  const char* name;
  int n;
  std::function<int(int)> height;
};

std::vector<Profile> Profiles()
{
  return {
      {"one equation", 1, [](int) { return 1; }},
      {"diagonal", 12, [](int) { return 1; }},
      {"two equations", 2, [](int i) { return i; }},
      {"full", 37, [](int i) { return i; }},
      {"band of 5", 60, [](int i) { return std::min(i, 5); }},
      {"ragged", 83, [](int i) { return 1 + 7919 % i; }},
      {"comb", 50, [](int i) { return i % 7 == 0 ? i : 1; }},
      {"arrow", 41, [](int i) { return i == 41 ? i : 1; }},
      {"nodes of 3 in a band", 90, [](int i) { return i - std::max(0, (i - 1) / 3 - 6) * 3; }},
      {"nodes of 6 in a band", 120, [](int i) { return i - std::max(0, (i - 1) / 6 - 5) * 6; }},
      {"nodes of 8, ragged", 96, [](int i) { return i - (i - 1) / 8 / 2 * 8; }},
  };
}

void CreateWith(SkyMatriu& matrix, const Profile& profile)
{
  for (int i = 1; i <= profile.n; ++i)
    matrix.EnterMaxDiff(i, i - profile.height(i) + 1);
  matrix.Create(1);
}

/// A positive definite matrix whose nonzero entries fill the profile.
Dense RandomMatrix(const Profile& profile, unsigned seed)
{
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> entry(-1.0, 1.0);
  Dense a(profile.n, std::vector<double>(profile.n, 0.0));
  for (int i = 0; i < profile.n; ++i)
    for (int j = i - profile.height(i + 1) + 1; j < i; ++j)
      a[i][j] = a[j][i] = entry(random);
  for (int i = 0; i < profile.n; ++i) {
    double sum = 0.5;
    for (const double value : a[i])
      sum += std::fabs(value);
    a[i][i] = sum;
  }
  return a;
}

void Fill(SkyMatriu& matrix, const Dense& a)
{
  for (int i = 1; i <= matrix.GiveSize(); ++i)
    for (int j = i - matrix.GiveHeight(i) + 1; j <= i; ++j)
      matrix(i, j) = a[i - 1][j - 1];
}

ReaVecV RandomVector(int n, unsigned seed)
{
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> entry(-1.0, 1.0);
  ReaVecV v(n);
  for (int i = 1; i <= n; ++i)
    v(i) = entry(random);
  return v;
}

std::vector<double> ToStd(const ReaVecV& v)
{
  std::vector<double> values;
  for (int i = 1; i <= v.Size(); ++i)
    values.push_back(v(i));
  return values;
}

/// Gaussian elimination with row exchanges.
std::vector<double> DenseSolve(Dense a, std::vector<double> b)
{
  const int n = static_cast<int>(b.size());
  for (int k = 0; k < n; ++k) {
    int pivot = k;
    for (int i = k + 1; i < n; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k]))
        pivot = i;
    std::swap(a[k], a[pivot]);
    std::swap(b[k], b[pivot]);
    for (int i = k + 1; i < n; ++i) {
      const double factor = a[i][k] / a[k][k];
      for (int j = k; j < n; ++j)
        a[i][j] -= factor * a[k][j];
      b[i] -= factor * b[k];
    }
  }
  for (int i = n - 1; i >= 0; --i) {
    for (int j = i + 1; j < n; ++j)
      b[i] -= a[i][j] * b[j];
    b[i] /= a[i][i];
  }
  return b;
}

void ExpectMatrix(SkyMatriu& matrix, const Dense& expected, const char* label = "")
{
  const int n = matrix.GiveSize();
  ASSERT_EQ(n, static_cast<int>(expected.size()));
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      EXPECT_EQ(matrix(i, j), expected[i - 1][j - 1]) << label << " (" << i << "," << j << ")";
}

void ExpectNear(const ReaVecV& v, const std::vector<double>& expected, double tolerance,
                const char* label = "")
{
  ASSERT_EQ(v.Size(), static_cast<int>(expected.size())) << label;
  for (int i = 1; i <= v.Size(); ++i)
    EXPECT_NEAR(v(i), expected[i - 1], tolerance) << label << " (" << i << ")";
}

/// A file that an action writes; removed afterwards.
class OutputFile
{
public:
  explicit OutputFile(const char* suffix)
      : name(testing::TempDir() + "skymatriu_" +
             testing::UnitTest::GetInstance()->current_test_info()->name() + suffix),
        stream(name)
  {
  }
  ~OutputFile() { std::remove(name.c_str()); }

  std::string Text()
  {
    stream.flush();
    std::ostringstream text;
    text << std::ifstream(name).rdbuf();
    return text.str();
  }

private:
  std::string name;

public:
  std::ofstream stream;
};

/// Removes the text from the error writer's stream and returns it.
std::string RemoveWarnings()
{
  return FatalCaught([] { Fatal(); });
}

/// Nodes 1..n on a line joined by springs of the given stiffnesses; nothing supported.
void CreateChain(SkyMatriu& matrix, const std::vector<double>& springs)
{
  const int n = static_cast<int>(springs.size()) + 1;
  for (int i = 1; i < n; ++i)
    matrix.EnterMaxDiff(i, i + 1);
  matrix.Create(1);
  for (int i = 1; i < n; ++i) {
    const double k = springs[i - 1];
    matrix(i, i) += k;
    matrix(i + 1, i + 1) += k;
    matrix(i, i + 1) -= k;
  }
}

constexpr double kBendingStiffness = 6.3e6;

/// Beam elements of the given length in a row, deflection and rotation at every node; nothing
/// supported. E I as above.
void CreateBeam(SkyMatriu& matrix, int elements, double length)
{
  const double l = length;
  const double block[4][4] = {{12, 6 * l, -12, 6 * l},
                              {6 * l, 4 * l * l, -6 * l, 2 * l * l},
                              {-12, -6 * l, 12, -6 * l},
                              {6 * l, 2 * l * l, -6 * l, 4 * l * l}};
  for (int e = 1; e <= elements; ++e)
    matrix.EnterMaxDiff(e, e + 1, 2);
  matrix.Create(2);
  for (int e = 0; e < elements; ++e)
    for (int i = 0; i < 4; ++i)
      for (int j = i; j < 4; ++j)
        matrix(2 * e + i + 1, 2 * e + j + 1) += kBendingStiffness / (l * l * l) * block[i][j];
}

void CreateDiagonal(SkyMatriu& matrix, double value)
{
  matrix.Create(1);
  for (int i = 1; i <= matrix.GiveSize(); ++i)
    matrix(i, i) = value;
}

/// 3×3 with the entry (3, 1) outside the profile.
void CreateSmall(SkyMatriu& matrix)
{
  matrix.EnterMaxDiff(1, 2);
  matrix.EnterMaxDiff(3, 2);
  matrix.Create(1);
  matrix(1, 1) = 4;
  matrix(2, 1) = -1.5;
  matrix(2, 2) = 5;
  matrix(3, 2) = 0.25;
  matrix(3, 3) = 6;
}

}  // namespace

TEST(SkyMatriu, NodesOneAndThreeReachAcross)
{
  SkyMatriu matrix(9, TestedProcessor());
  matrix.EnterMaxDiff(1, 3, 3);
  matrix.Create(3);
  const int expected[] = {1, 2, 3, 1, 2, 3, 7, 8, 9};
  for (int i = 1; i <= 9; ++i)
    EXPECT_EQ(matrix.GiveHeight(i), expected[i - 1]) << i;
}

TEST(SkyMatriu, HeightsFollowFromEveryPairOfEquations)
{
  static const struct
  {
    int node1, node2, ndof;
  } cases[] = {{1, 3, 3}, {3, 1, 3}, {2, 2, 6}, {4, 2, 6}, {1, 4, 1}, {3, 4, 2}};
  for (const auto& c : cases) {
    SkyMatriu byNodes(24, TestedProcessor());
    SkyMatriu byEquations(24, TestedProcessor());
    byNodes.EnterMaxDiff(c.node1, c.node2, c.ndof);
    for (int a = 1; a <= c.ndof; ++a)
      for (int b = 1; b <= c.ndof; ++b)
        byEquations.EnterMaxDiff((c.node1 - 1) * c.ndof + a, (c.node2 - 1) * c.ndof + b);
    for (int i = 1; i <= 24; ++i)
      EXPECT_EQ(byNodes.GiveHeight(i), byEquations.GiveHeight(i))
          << c.node1 << "-" << c.node2 << " row " << i;
  }
}

TEST(SkyMatriu, ASmallerCouplingKeepsTheHeight)
{
  SkyMatriu matrix(6, TestedProcessor());
  matrix.EnterMaxDiff(6, 2);
  matrix.EnterMaxDiff(5, 6);
  EXPECT_EQ(matrix.GiveHeight(6), 5);
}

TEST(SkyMatriu, CreateStoresTheBlockOfEveryNode)
{
  SkyMatriu matrix(8, TestedProcessor());  // the last node is not complete
  matrix.EnterMaxDiff(4, 1);
  matrix.Create(3);
  const int expected[] = {1, 2, 3, 4, 2, 3, 1, 2};
  for (int i = 1; i <= 8; ++i)
    EXPECT_EQ(matrix.GiveHeight(i), expected[i - 1]) << i;
  ExpectMatrix(matrix, Dense(8, std::vector<double>(8, 0.0)));
}

TEST(SkyMatriu, StorageBytesTellWhatCreateTakes)
{
  SkyMatriu matrix(9, TestedProcessor());
  matrix.EnterMaxDiff(1, 3, 3);
  EXPECT_EQ(matrix.StorageBytes(3), (1 + 2 + 3 + 1 + 2 + 3 + 7 + 8 + 9) * sizeof(double));
  EXPECT_EQ(matrix.StorageBytes(), (6 + 7 + 8 + 9) * sizeof(double));
  matrix.Create(3);
  EXPECT_EQ(matrix.StorageBytes(), 36 * sizeof(double));
}

TEST(SkyMatriu, StorageBytesAreComputedIn64Bits)
{
  SkyMatriu matrix(100000, TestedProcessor());
  for (int i = 1; i <= 100000; ++i)
    matrix.EnterMaxDiff(1, i);
  EXPECT_EQ(matrix.StorageBytes(), 40000400000u);
}

TEST(SkyMatriu, NegativeSizeIsRefused)
{
  ExpectFatal([] { SkyMatriu matrix(-1, TestedProcessor()); }, "Not space available on heap");
}

TEST(SkyMatriu, AccessIsSymmetric)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  ExpectMatrix(matrix, {{4, -1.5, 0}, {-1.5, 5, 0.25}, {0, 0.25, 6}});
  EXPECT_EQ(&matrix(2, 3), &matrix(3, 2));
  EXPECT_EQ(&matrix.val(2, 3), &matrix(3, 2));
  EXPECT_EQ(&matrix.val(1, 1), &matrix(1, 1));
}

TEST(SkyMatriu, WritingOutsideTheProfileChangesNothing)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  matrix(1, 3) = 77;
  matrix(3, 1) += 5;
  ExpectMatrix(matrix, {{4, -1.5, 0}, {-1.5, 5, 0.25}, {0, 0.25, 6}});
}

TEST(SkyMatriu, BlocksAddTheirUpperPart)
{
  Matriu block(2, 2);
  block(1, 1) = 1;
  block(1, 2) = 2;
  block(2, 1) = 3;
  block(2, 2) = 4;
  static const struct
  {
    const char* label;
    int row, col;
    Dense expected;
  } cases[] = {
      {"on the diagonal", 1, 1, {{1, 2, 0, 0}, {2, 4, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}},
      {"above it", 1, 3, {{0, 0, 1, 2}, {0, 0, 3, 4}, {1, 3, 0, 0}, {2, 4, 0, 0}}},
      {"below it", 3, 1, Dense(4, std::vector<double>(4, 0.0))},
      {"across it", 2, 1, {{0, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}},
  };
  for (const auto& c : cases) {
    SkyMatriu matrix(4, TestedProcessor());
    matrix.EnterMaxDiff(1, 2, 2);
    matrix.Create(2);
    matrix.AddSubMatriu(c.row, c.col, block);
    ExpectMatrix(matrix, c.expected, c.label);
    matrix.AddSubMatriu(c.row, c.col, block);
    EXPECT_EQ(matrix(2, 2), 2 * c.expected[1][1]) << c.label;
  }
}

TEST(SkyMatriu, FactorsMultiplyBackToTheMatrix)
{
  for (const Profile& profile : Profiles()) {
    SkyMatriu matrix(profile.n, TestedProcessor());
    CreateWith(matrix, profile);
    const Dense a = RandomMatrix(profile, 1);
    Fill(matrix, a);
    EXPECT_FALSE(matrix.IsFactorised());
    ASSERT_EQ(matrix.Txolesky(nullptr), 0) << profile.name;
    EXPECT_TRUE(matrix.IsFactorised());
    for (int i = 1; i <= profile.n; ++i)
      for (int j = 1; j <= i; ++j) {
        double sum = 0.0;
        for (int k = 1; k <= j; ++k)
          sum += (k == i ? 1.0 : matrix(i, k)) * (k == j ? 1.0 : matrix(j, k)) * matrix(k, k);
        EXPECT_NEAR(sum, a[i - 1][j - 1], 1e-12) << profile.name << " (" << i << "," << j << ")";
      }
  }
}

TEST(SkyMatriu, IndefiniteMatrixIsFactorisedToo)
{
  SkyMatriu matrix(2, TestedProcessor());
  matrix.EnterMaxDiff(1, 2);
  matrix.Create(1);
  matrix(1, 1) = -2;
  matrix(1, 2) = 4;
  matrix(2, 2) = 3;
  ASSERT_EQ(matrix.Txolesky(nullptr), 0);
  EXPECT_EQ(matrix(1, 1), -2);
  EXPECT_EQ(matrix(2, 1), -2);
  EXPECT_EQ(matrix(2, 2), 11);
}

TEST(SkyMatriu, SolvesLikeDenseElimination)
{
  for (const Profile& profile : Profiles())
    for (unsigned seed = 1; seed <= 3; ++seed) {
      SkyMatriu matrix(profile.n, TestedProcessor());
      CreateWith(matrix, profile);
      const Dense a = RandomMatrix(profile, seed);
      Fill(matrix, a);
      ReaVecV b = RandomVector(profile.n, 100 + seed);
      const std::vector<double> expected = DenseSolve(a, ToStd(b));
      ASSERT_EQ(matrix.Solver(b, nullptr), 0) << profile.name;
      ExpectNear(b, expected, 1e-12, profile.name);
    }
}

TEST(SkyMatriu, OneEquation)
{
  SkyMatriu matrix(1, TestedProcessor());
  matrix.Create(1);
  matrix(1, 1) = 8;
  ReaVecV b(1);
  b(1) = 2;
  EXPECT_EQ(matrix.Solver(b, nullptr), 0);
  EXPECT_EQ(b(1), 0.25);
}

TEST(SkyMatriu, NoEquationsAreSolved)
{
  SkyMatriu matrix(0, TestedProcessor());
  matrix.Create(3);
  EXPECT_EQ(matrix.Txolesky(nullptr), 0);
  EXPECT_EQ(matrix.HasVoidRows(), 0);
}

TEST(SkyMatriu, SetToZeroPreparesAnotherAssembly)
{
  const Profile profile = Profiles()[5];
  SkyMatriu matrix(profile.n, TestedProcessor());
  CreateWith(matrix, profile);
  Fill(matrix, RandomMatrix(profile, 1));
  ReaVecV b = RandomVector(profile.n, 1);
  ASSERT_EQ(matrix.Solver(b, nullptr), 0);
  matrix.SetToZero();
  EXPECT_FALSE(matrix.IsFactorised());
  ExpectMatrix(matrix, Dense(profile.n, std::vector<double>(profile.n, 0.0)));

  const Dense a = RandomMatrix(profile, 2);
  Fill(matrix, a);
  b = RandomVector(profile.n, 2);
  const std::vector<double> expected = DenseSolve(a, ToStd(b));
  ASSERT_EQ(matrix.Solver(b, nullptr), 0);
  ExpectNear(b, expected, 1e-12);
}

/// A filled matrix and two right-hand sides with their solutions.
class SkyMatriuSides : public testing::Test
{
protected:
  SkyMatriuSides()
  {
    CreateWith(matrix, profile);
    const Dense a = RandomMatrix(profile, 1);
    Fill(matrix, a);
    for (const unsigned seed : {1u, 2u}) {
      sides.push_back(RandomVector(profile.n, seed));
      expected.push_back(DenseSolve(a, ToStd(sides.back())));
    }
  }

  void ExpectSolved() const
  {
    for (std::size_t k = 0; k < sides.size(); ++k)
      ExpectNear(sides[k], expected[k], 1e-12);
  }

  const Profile profile = Profiles()[8];
  SkyMatriu matrix{profile.n, TestedProcessor()};
  std::vector<ReaVecV> sides;
  std::vector<std::vector<double>> expected;
};

TEST_F(SkyMatriuSides, AreServedByTheSameFactors)
{
  ASSERT_EQ(matrix.Txolesky(nullptr), 0);
  for (ReaVecV& b : sides)
    matrix.Substitute({&b}, nullptr);
  ExpectSolved();
}

TEST_F(SkyMatriuSides, AreSolvedAtOnce)
{
  ASSERT_EQ(matrix.Solver({&sides[0], &sides[1]}, nullptr), 0);
  ExpectSolved();
}

TEST(SkyMatriu, SolverReportsItsSteps)
{
  static const struct
  {
    int n;
    const char* progress;
  } cases[] = {
      {1, ""},
      {499, ""},
      {500, "Solving degree 500 of 500\n"},
      {1001, "Solving degree 500 of 1001\nSolving degree 1000 of 1001\n"},
  };
  for (const auto& c : cases) {
    SkyMatriu matrix(c.n, TestedProcessor());
    CreateDiagonal(matrix, 2.0);
    ReaVecV b(c.n);
    b = 1.0;
    EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(matrix.Solver(b, info), 0); }),
              std::string(c.progress) +
                  "Txolesky finished\nBeginning 1st substitution in LU system\n"
                  "Beginning 2nd substitution in LU system\n");
  }
}

TEST(SkyMatriu, RefusedPivotNamesItsEquation)
{
  static const struct
  {
    const char* label;
    double diagonal;
    bool refused;
  } cases[] = {
      {"zero", 0.0, true},
      {"tiny", 9.9e-16, true},
      {"tiny, negative", -9.9e-16, true},
      {"small", 1.1e-15, false},
      {"not a number", std::numeric_limits<double>::quiet_NaN(), true},
      {"infinite", std::numeric_limits<double>::infinity(), true},
  };
  for (const auto& c : cases) {
    SkyMatriu matrix(7, TestedProcessor());
    CreateDiagonal(matrix, 1.0);
    matrix(5, 5) = c.diagonal;
    EXPECT_EQ(matrix.Txolesky(nullptr), c.refused ? 5 : 0) << c.label;
    EXPECT_EQ(matrix.IsFactorised(), !c.refused) << c.label;
  }
}

TEST(SkyMatriu, PivotIsComparedWithItsDiagonalEntry)
{
  static const struct
  {
    double scale, part;
    int expected;
  } cases[] = {
      // D(2) = scale·part by exact arithmetic, to about 1e-16·scale
      {1.0, 0.0, 2}, {1e8, 5e-15, 2}, {1e8, 2e-14, 0}, {1e-3, 5e-15, 2}, {1e12, 1e-10, 0},
  };
  for (const auto& c : cases) {
    SkyMatriu matrix(2, TestedProcessor());
    CreateChain(matrix, {c.scale});
    matrix(2, 2) += c.scale * c.part;
    EXPECT_EQ(matrix.Txolesky(nullptr), c.expected) << c.scale << " " << c.part;
  }
}

TEST(SkyMatriu, FailureLeavesTheRightHandSideAndSaysNothing)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateDiagonal(matrix, 1.0);
  matrix(2, 2) = 0.0;
  ReaVecV b = RandomVector(3, 1);
  const std::vector<double> before = ToStd(b);
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(matrix.Solver(b, info), 2); }), "");
  EXPECT_EQ(ToStd(b), before);
}

TEST(SkyMatriu, ProgressComesBeforeTheTestOfThePivot)
{
  SkyMatriu matrix(600, TestedProcessor());
  CreateDiagonal(matrix, 1.0);
  matrix(500, 500) = 0.0;
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { EXPECT_EQ(matrix.Txolesky(info), 500); }),
            "Solving degree 500 of 600\n");
}

TEST(SkyMatriu, FreeChainOfSpringsIsRefusedAtItsEnd)
{
  // The stiffnesses are powers of two: the elimination is exact, and the last pivot is 0.
  std::mt19937 random(3);
  std::uniform_int_distribution<int> exponent(3, 30);
  for (const int n : {2, 3, 10, 200, 3000}) {
    std::vector<double> springs;
    for (int i = 1; i < n; ++i)
      springs.push_back(std::ldexp(1.0, exponent(random)));
    SkyMatriu matrix(n, TestedProcessor());
    CreateChain(matrix, springs);
    ReaVecV b(n);
    b = 1.0;
    EXPECT_EQ(matrix.Solver(b, nullptr), n);
  }
}

TEST(SkyMatriu, BeamThatCanTurnIsRefusedAtItsEnd)
{
  // In longer beams rounding leaves more of the last pivot than the limit.
  for (const int elements : {1, 2, 7}) {
    SkyMatriu matrix(2 * elements + 2, TestedProcessor());
    CreateBeam(matrix, elements, 0.7);
    ReaVecV b(2 * elements + 2);
    b = 1.0;
    matrix.ApplyConstraint(1, 0.0, b);
    EXPECT_EQ(matrix.Solver(b, nullptr), 2 * elements + 2) << elements;
  }
}

TEST(SkyMatriu, LongCantileverIsSolved)
{
  static const struct
  {
    int elements;
    double tolerance;  // relative; the condition of the matrix grows with elements^4
  } cases[] = {{1, 1e-14}, {10, 1e-11}, {100, 1e-7}, {600, 1e-4}};
  for (const auto& c : cases) {
    SkyMatriu matrix(2 * c.elements + 2, TestedProcessor());
    CreateBeam(matrix, c.elements, 1.0);
    ReaVecV b(2 * c.elements + 2);
    b = 0.0;
    b(2 * c.elements + 1) = 1.0;
    matrix.ApplyConstraint(1, 0.0, b);
    matrix.ApplyConstraint(2, 0.0, b);
    ASSERT_EQ(matrix.Solver(b, nullptr), 0) << c.elements;
    const double expected = std::pow(c.elements, 3) / (3.0 * kBendingStiffness);  // P L³ / 3 EI
    EXPECT_NEAR(b(2 * c.elements + 1) / expected, 1.0, c.tolerance) << c.elements;
  }
}

TEST(SkyMatriu, TheFirstOfTwoFreePartsIsNamed)
{
  SkyMatriu matrix(6, TestedProcessor());
  CreateChain(matrix, {1.0, 1.0, 0.0, 1.0, 1.0});
  EXPECT_EQ(matrix.Txolesky(nullptr), 3);
}

TEST(SkyMatriu, SupportedChainOfSpringsStretches)
{
  SkyMatriu matrix(4, TestedProcessor());
  CreateChain(matrix, {2.0, 4.0, 8.0});
  ReaVecV b(4);
  b = 0.0;
  b(4) = 16.0;
  matrix.ApplyConstraint(1, 0.0, b);
  ASSERT_EQ(matrix.Solver(b, nullptr), 0);
  ExpectNear(b, {0.0, 8.0, 12.0, 14.0}, 1e-14);
}

TEST(SkyMatriu, ConstraintOfZeroLeavesTheRightHandSide)
{
  for (const double value : {0.0, -0.0}) {
    SkyMatriu matrix(3, TestedProcessor());
    CreateSmall(matrix);
    matrix(2, 1) = -1e20;  // any multiple of it would be visible in b
    ReaVecV b(3);
    b(1) = 1;
    b(2) = 2;
    b(3) = 3;
    EXPECT_EQ(matrix.ApplyConstraint(2, value, b), 2);
    EXPECT_EQ(ToStd(b), (std::vector<double>{1, value, 3}));
    ExpectMatrix(matrix, {{4, 0, 0}, {0, 1, 0}, {0, 0, 6}});
  }
}

TEST(SkyMatriu, ConstraintMovesItsColumn)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  ReaVecV b(3);
  b = 10.0;
  EXPECT_EQ(matrix.ApplyConstraint(2, 2.0, b), 2);
  EXPECT_EQ(ToStd(b), (std::vector<double>{13.0, 2.0, 9.5}));
  ExpectMatrix(matrix, {{4, 0, 0}, {0, 1, 0}, {0, 0, 6}});
}

TEST(SkyMatriu, ASmallConstraintMovesItsColumn)
{
  SkyMatriu matrix(3);
  CreateSmall(matrix);
  ReaVecV b(3);
  b = 0.0;
  constexpr double kSmall = 0x1p-51;  // 4.4e-16
  matrix.ApplyConstraint(2, kSmall, b);
  // The entries (1,2) and (3,2) of the matrix are -1.5 and 0.25.
  EXPECT_EQ(ToStd(b), (std::vector<double>{1.5 * kSmall, kSmall, -0.25 * kSmall}));
}

// Each side goes through the same operations in both cases: every bit must agree.
TEST(SkyMatriu, SeveralRightHandSidesShareOneFactorisation)
{
  for (const Profile& profile : Profiles()) {
    const Dense a = RandomMatrix(profile, 4);
    SkyMatriu together(profile.n, TestedProcessor());
    CreateWith(together, profile);
    Fill(together, a);
    std::vector<ReaVecV> sides = {RandomVector(profile.n, 5), RandomVector(profile.n, 6)};
    const std::vector<ReaVecV> loads = sides;
    const std::vector<ReaVecV*> both = {&sides[0], &sides[1]};
    const auto value = [](int eq, std::size_t k) { return k == 0 ? 0.125 * eq : (eq % 2) / 3.0; };
    for (int eq = 1; eq <= profile.n; eq += 5) {
      const double values[] = {value(eq, 0), value(eq, 1)};
      EXPECT_EQ(together.ApplyConstraint(eq, values, both), eq);
    }
    ASSERT_EQ(together.Solver(both, nullptr), 0) << profile.name;

    for (std::size_t k = 0; k < loads.size(); ++k) {
      SkyMatriu alone(profile.n, TestedProcessor());
      CreateWith(alone, profile);
      Fill(alone, a);
      ReaVecV b = loads[k];
      for (int eq = 1; eq <= profile.n; eq += 5)
        alone.ApplyConstraint(eq, value(eq, k), b);
      ASSERT_EQ(alone.Solver(b, nullptr), 0) << profile.name;
      EXPECT_EQ(ToStd(sides[k]), ToStd(b)) << profile.name;
    }
  }
}

TEST(SkyMatriu, PrescribedValuesGiveTheDenseSolution)
{
  for (const Profile& profile : Profiles()) {
    SkyMatriu matrix(profile.n, TestedProcessor());
    CreateWith(matrix, profile);
    Dense a = RandomMatrix(profile, 4);
    Fill(matrix, a);
    ReaVecV b = RandomVector(profile.n, 5);
    std::vector<double> denseB = ToStd(b);
    for (int eq = 1; eq <= profile.n; eq += 5) {
      const double value = eq % 2 ? 0.125 * eq : 0.0;
      EXPECT_EQ(matrix.ApplyConstraint(eq, value, b), eq);
      a[eq - 1].assign(profile.n, 0.0);
      a[eq - 1][eq - 1] = 1.0;
      denseB[eq - 1] = value;
    }
    const std::vector<double> expected = DenseSolve(a, denseB);
    ASSERT_EQ(matrix.Solver(b, nullptr), 0) << profile.name;
    ExpectNear(b, expected, 1e-11, profile.name);
  }
}

TEST(SkyMatriu, EraseRowColumnKeepsTheDiagonal)
{
  for (const Profile& profile : Profiles())
    for (int eq = 1; eq <= profile.n; eq += 3) {
      SkyMatriu matrix(profile.n, TestedProcessor());
      CreateWith(matrix, profile);
      Dense a = RandomMatrix(profile, 6);
      Fill(matrix, a);
      matrix.EraseRowColumn(eq);
      for (int i = 0; i < profile.n; ++i)
        if (i != eq - 1)
          a[i][eq - 1] = a[eq - 1][i] = 0.0;
      ExpectMatrix(matrix, a, profile.name);
    }
}

TEST(SkyMatriu, RowTimesVector)
{
  for (const Profile& profile : Profiles()) {
    SkyMatriu matrix(profile.n, TestedProcessor());
    CreateWith(matrix, profile);
    const Dense a = RandomMatrix(profile, 7);
    Fill(matrix, a);
    const ReaVecV v = RandomVector(profile.n, 8);
    for (int i = 1; i <= profile.n; ++i) {
      double sum = 0.0;
      for (int j = 1; j <= profile.n; ++j)
        sum += a[i - 1][j - 1] * v(j);
      EXPECT_EQ(matrix.ReturnRowPerVector(i, v), sum) << profile.name << " row " << i;
    }
  }
}

TEST(SkyMatriu, CopiesIntoADenseMatrix)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  matrix(1, 3) = 9;  // outside
  Matriu m(1, 2);
  matrix.CopyFromYouToMat(m);
  ASSERT_EQ(m.Rows(), 3);
  ASSERT_EQ(m.Cols(), 3);
  const Dense expected = {{4, -1.5, 0}, {-1.5, 5, 0.25}, {0, 0.25, 6}};
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j)
      EXPECT_EQ(m(i, j), expected[i - 1][j - 1]) << i << "," << j;
}

// Springs of stiffness 1 connect consecutive equations but for those after `cuts`. Each group of
// equations can move: its motion is 1 in all of them. All pivots are exact.
void MakeChains(SkyMatriu& matrix, const std::vector<int>& cuts, bool full)
{
  const int n = matrix.GiveSize();
  for (int i = 2; i <= n; ++i)
    matrix.EnterMaxDiff(full ? 1 : i - 1, i);
  matrix.Create(1);
  for (int i = 1; i < n; ++i) {
    if (std::find(cuts.begin(), cuts.end(), i) != cuts.end())
      continue;
    matrix(i, i) += 1.0;
    matrix(i + 1, i + 1) += 1.0;
    matrix(i + 1, i) -= 1.0;
  }
}

TEST(SkyMatriu, FindsTheMotionOfARefusedEquation)
{
  for (const bool full : {false, true}) {
    for (const int cut : {1, 2, 23, 24, 25, 96, 97, 149}) {
      SkyMatriu matrix(150, TestedProcessor());
      MakeChains(matrix, {7, cut}, full);
      const int first = std::min(7, cut);
      matrix(1, 1) += 3.0;  // holds the first group
      const int refused = std::max(7, cut) == 7 ? 7 : cut;
      ASSERT_EQ(matrix.Txolesky(nullptr), refused) << cut;
      const ReaVecV motion = matrix.MotionOfRefused(refused);
      for (int i = 1; i <= 150; ++i)
        EXPECT_EQ(motion(i), i > first && i <= refused ? 1.0 : 0.0) << cut << " " << i;
    }
  }
}

TEST(SkyMatriu, HoldsEveryMotionAtOneEquation)
{
  const std::vector<int> cuts = {1, 24, 60, 96, 130};
  for (const bool full : {false, true}) {
    SkyMatriu matrix(150, TestedProcessor());
    MakeChains(matrix, cuts, full);
    matrix.HoldRefusedPivots();
    ASSERT_EQ(matrix.Txolesky(nullptr), 0);
    std::vector<int> held;
    int before = 0;
    for (const HeldEquation& one : matrix.HeldEquations()) {
      held.push_back(one.equation);
      EXPECT_EQ(one.stiffness, 1.0) << one.equation;  // that of equation 1 is 0
      ReaVecV motion(150);
      motion = 0.0;
      motion(one.equation) = one.stiffness;
      matrix.Substitute({&motion}, nullptr);
      for (int i = 1; i <= 150; ++i)
        EXPECT_EQ(motion(i), i > before && i <= one.equation ? 1.0 : 0.0) << i;
      before = one.equation;
    }
    EXPECT_EQ(held, (std::vector<int>{1, 24, 60, 96, 130, 150}));
  }
}

TEST(SkyMatriu, HoldsNoPivotThatIsNotANumber)
{
  SkyMatriu matrix(2, TestedProcessor());
  matrix.Create(1);
  matrix(1, 1) = 1.0;
  matrix(2, 2) = std::numeric_limits<double>::quiet_NaN();
  matrix.HoldRefusedPivots();
  EXPECT_EQ(matrix.Txolesky(nullptr), 2);
  EXPECT_TRUE(matrix.HeldEquations().empty());
}

TEST(SkyMatriu, FindsTheFirstVoidRow)
{
  SkyMatriu matrix(4, TestedProcessor());
  matrix.EnterMaxDiff(4, 1);
  matrix.Create(1);
  EXPECT_EQ(matrix.HasVoidRows(), 1);
  matrix(4, 1) = -1;  // fills rows 1 and 4
  EXPECT_EQ(matrix.HasVoidRows(), 2);
  matrix(2, 2) = 2;
  EXPECT_EQ(matrix.HasVoidRows(), 3);
  matrix(3, 3) = 9e-16;
  EXPECT_EQ(matrix.HasVoidRows(), 3);
  matrix(3, 3) = 1e-15;
  EXPECT_EQ(matrix.HasVoidRows(), 0);
}

TEST(SkyMatriu, CheckDegreeWarnsOfMultiples)
{
  static const struct
  {
    const char* label;
    Dense a;
    int eq;
    const char* expected;
  } cases[] = {
      {"independent", {{2, 1}, {1, 2}}, 1, ""},
      {"twice", {{1, 2}, {2, 4}}, 1, "error: Degree of freedom 1 and 2 are dependent\n"},
      {"half", {{1, 2}, {2, 4}}, 2, "error: Degree of freedom 2 and 1 are dependent\n"},
      {"differs where the row is 0", {{1, 0}, {0, 4}}, 1, ""},
      {"void row", {{1, 0}, {0, 0}}, 1, "error: Degree of freedom 1 and 2 are dependent\n"},
      {"of a void row", {{0, 0}, {0, 3}}, 1, ""},
      {"several",
       {{1, 0, 1, -1}, {0, 5, 0, 0}, {1, 0, 1, -1}, {-1, 0, -1, 1}},
       3,
       "error: Degree of freedom 3 and 1 are dependent\n"
       "error: Degree of freedom 3 and 4 are dependent\n"},
  };
  RemoveWarnings();
  for (const auto& c : cases) {
    const int n = static_cast<int>(c.a.size());
    SkyMatriu matrix(n, TestedProcessor());
    matrix.EnterMaxDiff(1, 1, n);
    matrix.Create(n);
    Fill(matrix, c.a);
    matrix.CheckDegree(c.eq);
    EXPECT_EQ(RemoveWarnings(), c.expected) << c.label;
  }
}

TEST(SkyMatriu, CheckDegreeSeesOutsideTheProfile)
{
  SkyMatriu matrix(4, TestedProcessor());  // entries (3, 1) and (4, 1) are not stored
  matrix.EnterMaxDiff(2, 1);
  matrix.EnterMaxDiff(3, 2);
  matrix.EnterMaxDiff(4, 2);
  matrix.Create(1);
  matrix(1, 1) = 1;
  matrix(2, 1) = 1;
  matrix(2, 2) = 1;
  matrix(3, 2) = 1;
  matrix(3, 3) = 1;
  matrix(4, 4) = 1;
  RemoveWarnings();
  matrix.CheckDegree(1);  // row 2 also has (2, 3); row 3 has 0 in column 1, where row 1 has 1
  EXPECT_EQ(RemoveWarnings(), "");
  matrix(3, 2) = 0;
  matrix.CheckDegree(1);
  EXPECT_EQ(RemoveWarnings(), "error: Degree of freedom 1 and 2 are dependent\n");
}

TEST(SkyMatriu, MemoryReport)
{
  SkyMatriu matrix(9, TestedProcessor());
  matrix.EnterMaxDiff(1, 3, 3);
  matrix.Create(3);  // 36 positions
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { matrix.PrintInfoMem(info); }),
            "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
            "Sky matrix storage with Txolesky\n"
            "Degrees of freedom= 9\n"
            "Average column size= 4\n"
            "Total number of positions= 36\n"
            "Amount of memory= 0.0Mb\n\n");
  matrix.PrintInfoMem(nullptr);
}

TEST(SkyMatriu, MemoryReportRoundsDown)
{
  SkyMatriu matrix(600, TestedProcessor());
  for (int i = 1; i <= 600; ++i)
    matrix.EnterMaxDiff(1, i);
  matrix.Create(1);  // 180300 positions, 1.3756 Mb, 300.5 in a row
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { matrix.PrintInfoMem(info); }),
            "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
            "Sky matrix storage with Txolesky\n"
            "Degrees of freedom= 600\n"
            "Average column size= 300\n"
            "Total number of positions= 180300\n"
            "Amount of memory= 1.4Mb\n\n");
}

TEST(SkyMatriu, MemoryReportOfNoEquations)
{
  SkyMatriu matrix(0, TestedProcessor());
  EXPECT_EQ(MessagesOf([&](std::FILE* info) { matrix.PrintInfoMem(info); }),
            "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
            "Sky matrix storage with Txolesky\n"
            "Degrees of freedom= 0\n"
            "Average column size= 0\n"
            "Total number of positions= 0\n"
            "Amount of memory= 0.0Mb\n\n");
}

TEST(SkyMatriu, PrintsItsRows)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  matrix(3, 3) = 1234567.5;
  OutputFile file(".txt");
  matrix.PrintTo(file.stream);
  EXPECT_EQ(file.Text(),
            "\nprinting SkyLine Matrix size=3x3\n"
            "row=1 from 1 to 1      4 \n"
            "row=2 from 1 to 2   -1.5       5 \n"
            "row=3 from 2 to 3   0.25 1.23457e+06 \n");
}

TEST(SkyMatriu, PrintsEmptyRowsBeforeCreate)
{
  SkyMatriu matrix(2, TestedProcessor());
  OutputFile file(".txt");
  matrix.PrintTo(file.stream);
  EXPECT_EQ(file.Text(),
            "\nprinting SkyLine Matrix size=2x2\n"
            "row=1 NONE\n"
            "row=2 NONE\n");
}

TEST(SkyMatriu, PrintsTheWholeMatrix)
{
  SkyMatriu matrix(3, TestedProcessor());
  CreateSmall(matrix);
  std::ostringstream out;
  matrix.PrintToFull(out);
  EXPECT_EQ(out.str(),
            "\nprinting SkyLine Matrix\n"
            "         1       2       3 \n"
            " 1       4    -1.5       0 \n"
            " 2    -1.5       5    0.25 \n"
            " 3       0    0.25       6 \n");
}

TEST(SkyMatriu, DrawsItselfForThePostProcessor)
{
  SkyMatriu matrix(2, TestedProcessor());
  matrix.EnterMaxDiff(1, 2);
  matrix.Create(1);
  matrix(1, 1) = 3;
  matrix(1, 2) = -0.5;
  matrix(2, 2) = 1e7;
  OutputFile mesh(".bon");
  OutputFile res(".res");
  matrix.WriteForKiv(mesh.stream, res.stream);
  EXPECT_EQ(mesh.Text(),
            "NumElems NumNodes ElemType\n4 16 4\n"
            "node x y z\n"
            "1 0 0\n2 1 0\n3 1 -1\n4 0 -1\n"
            "5 0 -1\n6 1 -1\n7 1 -2\n8 0 -2\n"
            "9 1 0\n10 2 0\n11 2 -1\n12 1 -1\n"
            "13 1 -1\n14 2 -1\n15 2 -2\n16 1 -2\n"
            "element node1 node2\n"
            "1 1 2 3 4\n2 5 6 7 8\n3 9 10 11 12\n4 13 14 15 16\n");
  EXPECT_EQ(res.Text(),
            "value          4 1.0 Estatic 1 1 0\n"
            "1 3\n2 3\n3 3\n4 3\n"
            "5 -0.5\n6 -0.5\n7 -0.5\n8 -0.5\n"
            "9 -0.5\n10 -0.5\n11 -0.5\n12 -0.5\n"
            "13 1e+07\n14 1e+07\n15 1e+07\n16 1e+07\n");
}

TEST(SkyMatriu, DrawsEntriesOutsideTheProfileAsZero)
{
  SkyMatriu matrix(2, TestedProcessor());
  CreateDiagonal(matrix, 2.0);
  OutputFile mesh(".bon");
  OutputFile res(".res");
  matrix.WriteForKiv(mesh.stream, res.stream);
  EXPECT_EQ(res.Text(),
            "value          4 1.0 Estatic 1 1 0\n"
            "1 2\n2 2\n3 2\n4 2\n5 0\n6 0\n7 0\n8 0\n"
            "9 0\n10 0\n11 0\n12 0\n13 2\n14 2\n15 2\n16 2\n");
}

TEST(SkyMatriu, ServesThroughTheInterface)
{
  const std::unique_ptr<BSolver> solver = std::make_unique<SkyMatriu>(4, TestedProcessor());
  solver->EnterMaxDiff(1, 2, 2);
  solver->Create(2);
  EXPECT_EQ(solver->GiveSize(), 4);
  for (int i = 1; i <= 4; ++i)
    (*solver)(i, i) = i;
  ReaVecV b(4);
  b = 12.0;
  EXPECT_EQ(solver->ApplyConstraint(1, 5.0, b), 1);
  EXPECT_EQ(solver->ReturnRowPerVector(2, b), 24.0);
  EXPECT_EQ(solver->Solver(b, nullptr), 0);
  EXPECT_EQ(ToStd(b), (std::vector<double>{5, 6, 4, 3}));
}

}  // namespace morlen
