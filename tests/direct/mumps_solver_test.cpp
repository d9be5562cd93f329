#include "direct/mumps_solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <vector>

#include "direct/blas_kernels.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/skymatriu.h"
#include "support/messages.h"

namespace morlen::direct {

namespace {

constexpr int kNdof = 3;

/// Elements of three nodes each; the third node of an element may have a lower number than the
/// first.
const std::vector<std::vector<int>> kElements = {{1, 2, 3}, {3, 2, 4}, {4, 5, 3}, {7, 6, 5}};
constexpr int kNodes = 8;  // the last one has no element

template <class Matrix>
void Create(Matrix& matrix)
{
  for (const std::vector<int>& nodes : kElements) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      for (std::size_t j = i + 1; j < nodes.size(); ++j)
        matrix.EnterMaxDiff(nodes[i], nodes[j], kNdof);
    }
  }
  matrix.Create(kNdof);
}

/// The blocks of a matrix of so many nodes, those on and above the diagonal.
std::vector<double> BlocksOf(const Matriu& k, int nodes)
{
  std::vector<double> blocks;
  for (int row = 0; row < nodes * kNdof; row += kNdof) {
    for (int column = row; column < nodes * kNdof; column += kNdof) {
      for (int entry = 0; entry < kNdof * kNdof; ++entry)
        blocks.push_back(k(row + entry / kNdof + 1, column + entry % kNdof + 1));
    }
  }
  return blocks;
}

/// Adds random positive definite elements, and springs at the last node.
void Fill(BSolver& matrix)
{
  std::mt19937 random(5);
  std::uniform_real_distribution<double> entry(-1.0, 1.0);
  for (const std::vector<int>& nodes : kElements) {
    const int n = static_cast<int>(nodes.size()) * kNdof;
    Matriu k(n, n);
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= i; ++j)
        k(i, j) = k(j, i) = i == j ? 1.0 + n : entry(random);
    }
    const std::vector<double> blocks = BlocksOf(k, static_cast<int>(nodes.size()));
    matrix.AddElement({nodes, kNdof, blocks.data()});
  }
  Matriu spring(1, 1);
  for (int k = 1; k <= kNdof; ++k) {
    spring = 2.0 + k;
    matrix.AddSubMatriu((kNodes - 1) * kNdof + k, (kNodes - 1) * kNdof + k, spring);
  }
}

ReaVecV Loads(int n, double first)
{
  ReaVecV loads(n);
  for (int i = 1; i <= n; ++i)
    loads(i) = std::sin(first * i);
  return loads;
}

/// A chain of unit springs with one equation for each node; free at both ends.
std::unique_ptr<MumpsSolver> FreeChain(int nodes, std::mutex& busy)
{
  auto chain = std::make_unique<MumpsSolver>(nodes, 1, busy);
  for (int p = 1; p < nodes; ++p)
    chain->EnterMaxDiff(p, p + 1, 1);
  chain->Create(1);
  for (int p = 1; p < nodes; ++p) {
    (*chain)(p, p) += 1.0;
    (*chain)(p + 1, p + 1) += 1.0;
    (*chain)(p, p + 1) -= 1.0;
  }
  return chain;
}

class MumpsAndSkyline : public testing::Test
{
protected:
  MumpsAndSkyline()
  {
    Create(direct);
    Create(skyline);
    Fill(direct);
    Fill(skyline);
  }

  std::mutex busy;
  MumpsSolver direct{kNodes, kNdof, busy};
  SkyMatriu skyline{kNodes * kNdof};
};

}  // namespace

TEST_F(MumpsAndSkyline, HoldTheSameMatrix)
{
  EXPECT_EQ(direct.GiveSize(), skyline.GiveSize());
  EXPECT_TRUE(AreEqual(direct, skyline, 1e-300));  // the same sums in the same order
  const ReaVecV v = Loads(kNodes * kNdof, 0.3);
  for (int i = 1; i <= direct.GiveSize(); ++i)
    EXPECT_NEAR(direct.ReturnRowPerVector(i, v), skyline.ReturnRowPerVector(i, v),
                1e-13);  // digits
}

// The tolerance is the rounding of a well conditioned system.
TEST_F(MumpsAndSkyline, SolveSeveralSidesAlike)
{
  const int n = direct.GiveSize();
  std::vector<ReaVecV> ofDirect = {Loads(n, 0.7), Loads(n, 1.1), Loads(n, 2.3)};
  std::vector<ReaVecV> ofSkyline = ofDirect;
  DirectSolver::RightHandSides sides;
  DirectSolver::RightHandSides skylineSides;
  for (std::size_t k = 0; k < ofDirect.size(); ++k) {
    sides.push_back(&ofDirect[k]);
    skylineSides.push_back(&ofSkyline[k]);
  }
  const double values[] = {0.25, 0.0, -1.0};
  for (const int eq : {1, 8, 14}) {
    direct.ApplyConstraint(eq, values, sides);
    skyline.ApplyConstraint(eq, values, skylineSides);
  }
  EXPECT_TRUE(AreEqual(direct, skyline, 1e-300));
  ASSERT_EQ(direct.DirectSolver::Solver(sides, nullptr), 0);
  ASSERT_EQ(skyline.DirectSolver::Solver(skylineSides, nullptr), 0);
  for (std::size_t k = 0; k < ofDirect.size(); ++k) {
    for (int i = 1; i <= n; ++i)
      EXPECT_NEAR(ofDirect[k](i), ofSkyline[k](i), 1e-12);
    EXPECT_NEAR(ofDirect[k](8), values[k], 1e-15);
  }
}

TEST_F(MumpsAndSkyline, ServeASecondAssembly)
{
  ReaVecV first = Loads(direct.GiveSize(), 0.7);
  ReaVecV second = first;
  ASSERT_EQ(static_cast<BSolver&>(direct).Solver(first, nullptr), 0);
  EXPECT_TRUE(direct.IsFactorised());
  direct.SetToZero();
  EXPECT_FALSE(direct.IsFactorised());
  Fill(direct);
  ASSERT_EQ(static_cast<BSolver&>(direct).Solver(second, nullptr), 0);
  for (int i = 1; i <= direct.GiveSize(); ++i)
    EXPECT_EQ(first(i), second(i));
}

TEST_F(MumpsAndSkyline, SayTheSizesOfTheSteps)
{
  ReaVecV side = Loads(direct.GiveSize(), 0.7);
  const std::string info =
      MessagesOf([&](std::FILE* file) { static_cast<BSolver&>(direct).Solver(side, file); });
  for (const char* line : {"Analysis of 24 equations, ", "Analysis finished: ", "Factorisation\n",
                           "Factorisation finished\n", "Solution for 1 right-hand sides\n"})
    EXPECT_NE(info.find(line), std::string::npos) << info;
}

TEST(MumpsSolver, RefusesAnEquationWithoutStiffness)
{
  std::mutex busy;
  MumpsSolver matrix(2, 2, busy);
  matrix.Create(2);
  for (const int i : {1, 2, 4})
    matrix(i, i) = 1.0;
  EXPECT_EQ(matrix.Factorise(nullptr), 3);
}

TEST(MumpsSolver, RefusesWhatIsNotANumber)
{
  std::mutex busy;
  const auto chain = FreeChain(4, busy);
  (*chain)(2, 3) = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(chain->Factorise(nullptr), 3);
}

// The last pivot of a free chain is exactly 0. The solution is then dominated by the motion, in
// which all nodes move alike.
TEST(MumpsSolver, GoesOnWithAPivotOfZero)
{
  std::mutex busy;
  for (const int nodes : {2, 3, 50}) {
    const auto chain = FreeChain(nodes, busy);
    ReaVecV side(nodes);
    side = 0.0;
    side(1) = 1.0;
    ASSERT_EQ(static_cast<BSolver&>(*chain).Solver(side, nullptr), 0);
    for (int i = 2; i <= nodes; ++i)
      EXPECT_NEAR(side(i) / side(1), 1.0, 1e-6);
    EXPECT_GT(std::fabs(side(1)), 1e8);
  }
}

TEST(MumpsSolver, SolvesNoEquations)
{
  std::mutex busy;
  MumpsSolver matrix(0, 3, busy);
  matrix.Create(3);
  ReaVecV none;
  EXPECT_EQ(static_cast<BSolver&>(matrix).Solver(none, nullptr), 0);
}

TEST(BlasKernels, UseTheVectorsOfTheProcessor)
{
  ChooseBlasKernels();
  if (ThisProcessor() != Processor::kPlain) {
    EXPECT_STRNE(BlasKernels(), "Prescott");
  }
}

}  // namespace morlen::direct
