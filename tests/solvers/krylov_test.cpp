#include "solvers/krylov.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "solvers/ilu_preconditioner.h"
#include "support/messages.h"
#include "support/sparse.h"

namespace morlen {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// M = factor·I.
class ScaledIdentity : public Preconditioner
{
public:
  ScaledIdentity(int n_, double factor_) : Preconditioner("Scaled"), n(n_), factor(factor_) {}
  void solve(const double* x, double* y) const override
  {
    for (int i = 0; i < n; ++i)
      y[i] = x[i] / factor;
  }
  void trans_solve(const double* x, double* y) const override { solve(x, y); }
  void New_Matrix(const SparseMatrix&) override {}

private:
  int n;
  double factor;
};

int WithoutInfo(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M,
                int& max_iter, double& tol, std::FILE*)
{
  return CGS(A, x, b, M, max_iter, tol);
}

struct Method
{
  const char* name;
  decltype(&CG) run;
};

const Method kMethods[] = {
    {"CG", CG}, {"BiCG", BiCG}, {"CGS", WithoutInfo}, {"BiCGSTAB", BiCGSTAB}};

struct Maker
{
  const char* name;
  std::function<std::unique_ptr<Preconditioner>(const SparseMatrix&)> make;
};

template <class P>
std::unique_ptr<Preconditioner> Make(const SparseMatrix& A)
{
  return std::make_unique<P>(A);
}

const Maker kMakers[] = {{"diagonal", Make<DiagPreconditioner>},
                         {"Cholesky", Make<ICPreconditioner>},
                         {"ILU", Make<ILUPreconditioner>}};

/// A run, from x = 0 by default, and its results.
struct Outcome
{
  Outcome(const Method& method, const SparseMatrix& A, const std::vector<double>& b,
          const Preconditioner& M, int limit, double tolerance, std::vector<double> start = {})
      : max_iter(limit), tol(tolerance), x(std::move(start))
  {
    x.resize(b.size(), 0.0);
    messages = MessagesOf([&](std::FILE* info) {
      result = method.run(A, x.data(), b.data(), M, max_iter, tol, info);
    });
  }

  int result = -99;
  int max_iter;
  double tol;
  std::vector<double> x;
  std::string messages;
};

std::string Formatted(const char* format, int i, double resid, double tol)
{
  char text[200];
  std::snprintf(text, sizeof text, format, i, resid, tol);
  return text;
}

double RelativeResidual(const DenseRows& a, const std::vector<double>& x,
                        const std::vector<double>& b)
{
  std::vector<double> r = DenseProduct(a, x);
  for (std::size_t i = 0; i < b.size(); ++i)
    r[i] = b[i] - r[i];
  const int n = static_cast<int>(b.size());
  return norm(r.data(), n) / norm(b.data(), n);
}

void ExpectSolved(const Method& method, const Maker& maker, const DenseRows& a)
{
  const SparseMatrix A = SparseOf(a);
  const std::vector<double> expected = RandomVector(A.GiveSize(), 12);
  const std::vector<double> b = DenseProduct(a, expected);
  const std::unique_ptr<Preconditioner> M = maker.make(A);
  for (const unsigned seed : {0u, 13u}) {
    const Outcome run(method, A, b, *M, 200, 1e-10,
                      seed ? RandomVector(A.GiveSize(), seed) : std::vector<double>());
    SCOPED_TRACE(std::string(method.name) + " " + maker.name);
    EXPECT_EQ(run.result, 0);
    EXPECT_GT(run.max_iter, 0);
    EXPECT_LT(run.max_iter, 200);
    EXPECT_LE(run.tol, 1e-10);
    EXPECT_LE(RelativeResidual(a, run.x, b), 2e-10);
    EXPECT_LE(LargestDifference(run.x, expected), 1e-8);
  }
}

TEST(VectorRoutines, NormAndDotOfAllLengths)
{
  for (int n = 0; n < 12; ++n) {
    const std::vector<double> x = RandomVector(n, 1);
    const std::vector<double> y = RandomVector(n, 2);
    double xy = 0.0, xx = 0.0;
    for (int i = 0; i < n; ++i) {
      xy += x[i] * y[i];
      xx += x[i] * x[i];
    }
    EXPECT_NEAR(dot(x.data(), y.data(), n), xy, 1e-15);
    EXPECT_NEAR(norm(x.data(), n), std::sqrt(xx), 1e-15);
  }
}

TEST(VectorRoutines, NormWhoseSquareIsOutOfRange)
{
  static const struct
  {
    std::vector<double> x;
    double expected;
  } cases[] = {
      {{3e200, -4e200}, 5e200}, {{3e-200, 4e-200}, 5e-200}, {{0.0, 0.0}, 0.0},
      {{1e308, 0.0}, 1e308},    {{0.0, -5e-324}, 5e-324},
  };
  for (const auto& c : cases)
    EXPECT_DOUBLE_EQ(norm(c.x.data(), 2), c.expected);
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    const double first[] = {bad, 1.0}, last[] = {1.0, bad};
    EXPECT_FALSE(std::isfinite(norm(first, 2)));
    EXPECT_FALSE(std::isfinite(norm(last, 2)));
  }
}

TEST(VectorRoutines, Fill)
{
  double reals[3] = {1.0, 2.0, 3.0};
  int ints[3] = {1, 2, 3};
  fill_Real_array(reals, 2, 7.5);
  fill_int_array(ints, 2, -1);
  EXPECT_EQ(std::vector<double>(reals, reals + 3), (std::vector<double>{7.5, 7.5, 3.0}));
  EXPECT_EQ(std::vector<int>(ints, ints + 3), (std::vector<int>{-1, -1, 3}));
}

TEST(Krylov, EveryMethodWithEveryPreconditionerSolves)
{
  for (const Method& method : kMethods)
    for (const Maker& maker : kMakers)
      ExpectSolved(method, maker, GridMatrix(9, 8));
}

TEST(Krylov, UnsymmetricSystems)
{
  for (const Method& method : kMethods) {
    if (method.run == CG)
      continue;
    for (const Maker& maker : kMakers)
      ExpectSolved(method, maker, GridMatrix(9, 8, 0.3));
  }
}

TEST(Krylov, ExactPreconditionerNeedsOneIteration)
{
  const DenseRows a = TridiagonalMatrix(30);
  const SparseMatrix A = SparseOf(a);
  const std::vector<double> b = RandomVector(30, 4);
  for (const Method& method : kMethods) {
    const Outcome run(method, A, b, ILUPreconditioner(A), 50, 1e-12);
    EXPECT_EQ(run.result, 0) << method.name;
    EXPECT_EQ(run.max_iter, 1) << method.name;
  }
}

TEST(Krylov, ZeroRightHandSideIsSolvedAtOnce)
{
  const SparseMatrix A = SparseOf(GridMatrix(3, 3));
  for (const Method& method : kMethods) {
    const Outcome run(method, A, std::vector<double>(9, 0.0), ILUPreconditioner(A), 50, 1e-5);
    EXPECT_EQ(run.result, 0) << method.name;
    EXPECT_EQ(run.max_iter, 0) << method.name;
    EXPECT_EQ(run.tol, 0.0) << method.name;
    EXPECT_EQ(run.x, std::vector<double>(9, 0.0)) << method.name;
    EXPECT_EQ(run.messages,
              method.run == WithoutInfo ? "" : "iteration number 0 OK resid=0 tol=1e-05\n");
  }
}

TEST(Krylov, ZeroRightHandSideCountsAsOne)
{
  const SparseMatrix A = SparseOf({{2.0}});
  const Outcome run(kMethods[0], A, {0.0}, ScaledIdentity(1, 1.0), 0, 1e-5, {3.0});
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.tol, 6.0);
}

TEST(Krylov, GoodInitialGuessIsKept)
{
  const DenseRows a = GridMatrix(4, 3);
  const SparseMatrix A = SparseOf(a);
  std::vector<double> start = RandomVector(12, 4);
  const std::vector<double> b = DenseProduct(a, start);
  start[0] += 1e-4;
  for (const Method& method : kMethods) {
    const Outcome run(method, A, b, ILUPreconditioner(A), 50, 1e-2, start);
    EXPECT_EQ(run.result, 0) << method.name;
    EXPECT_EQ(run.max_iter, 0) << method.name;
    EXPECT_EQ(run.x, start) << method.name;
    EXPECT_NEAR(run.tol, RelativeResidual(a, start, b), 1e-12) << method.name;
    EXPECT_EQ(run.messages,
              method.run == WithoutInfo
                  ? ""
                  : Formatted("iteration number %i OK resid=%lg tol=%lg\n", 0, run.tol, 1e-2));
  }
}

/// A diagonal matrix with n different eigenvalues: n iterations, if b has a part of each
/// eigenvector.
struct Distinct
{
  explicit Distinct(int n) : a(DenseZero(n)), b(n, 1.0)
  {
    for (int i = 0; i < n; ++i)
      a[i][i] = 1.0 + i;
  }
  DenseRows a;
  std::vector<double> b;
};

TEST(CG, ReportsEveryTenthIterationAndTheEnd)
{
  const Distinct system(25);
  const SparseMatrix A = SparseOf(system.a);
  const ScaledIdentity M(25, 1.0);
  std::string expected;
  for (const int i : {10, 20}) {
    const Outcome before(kMethods[0], A, system.b, M, i - 1, 1e-9);
    EXPECT_EQ(before.result, 1);
    expected += Formatted("iteration number %i resid=%lg tol=%lg\n", i, before.tol, 1e-9);
  }
  const Outcome run(kMethods[0], A, system.b, M, 100, 1e-9);
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.max_iter, 25);
  expected += Formatted("Converged it number. %i resid=%lg tol=%lg\n", 25, run.tol, 1e-9);
  EXPECT_EQ(run.messages, expected);
}

TEST(CG, WritesNothingWithoutAStream)
{
  const Distinct system(25);
  const SparseMatrix A = SparseOf(system.a);
  std::vector<double> x(25, 0.0);
  int max_iter = 100;
  double tol = 1e-9;
  EXPECT_EQ(CG(A, x.data(), system.b.data(), ScaledIdentity(25, 1.0), max_iter, tol, nullptr), 0);
  EXPECT_EQ(max_iter, 25);
}

TEST(Krylov, OtherMethodsReportNoProgress)
{
  const Distinct system(25);
  const SparseMatrix A = SparseOf(system.a);
  for (const Method& method : kMethods) {
    if (method.run == CG)
      continue;
    const Outcome run(method, A, system.b, ScaledIdentity(25, 1.0), 200, 1e-9);
    EXPECT_EQ(run.result, 0) << method.name;
    EXPECT_GE(run.max_iter, 10) << method.name;
    EXPECT_EQ(run.messages, "") << method.name;
  }
}

TEST(Krylov, LimitIsKeptAndReported)
{
  const Distinct system(25);
  const SparseMatrix A = SparseOf(system.a);
  for (const Method& method : kMethods)
    for (const int limit : {0, 1, 5, -3}) {
      const Outcome run(method, A, system.b, ScaledIdentity(25, 1.0), limit, 1e-9);
      EXPECT_EQ(run.result, 1) << method.name;
      EXPECT_EQ(run.max_iter, limit) << method.name;
      EXPECT_NEAR(run.tol, RelativeResidual(system.a, run.x, system.b), 1e-12) << method.name;
    }
}

TEST(Krylov, SmallAndLargeSystemsConvergeAlike)
{
  const DenseRows a = GridMatrix(6, 5);
  const SparseMatrix A = SparseOf(a);
  const std::vector<double> expected = RandomVector(30, 12);
  for (const double scale : {1e-140, 1e140}) {
    std::vector<double> b = DenseProduct(a, expected);
    for (double& component : b)
      component *= scale;
    const Outcome run(kMethods[0], A, b, ILUPreconditioner(A), 100, 1e-10);
    EXPECT_EQ(run.result, 0);
    EXPECT_GT(run.max_iter, 3);
    for (int i = 0; i < 30; ++i)
      EXPECT_NEAR(run.x[i] / scale, expected[i], 1e-8);
  }
}

void ExpectBreakdown(const Method& method, const SparseMatrix& A, const std::vector<double>& b,
                     const Preconditioner& M, const std::string& what)
{
  const Outcome run(method, A, b, M, 1000, 1e-5);
  EXPECT_EQ(run.result, 1) << method.name << " " << what;
  EXPECT_LT(run.tol, 0.0) << method.name << " " << what;
  EXPECT_EQ(run.max_iter, 1000) << method.name << " " << what;
  EXPECT_EQ(run.messages, "") << method.name << " " << what;
}

TEST(Krylov, QuantitiesThatAreNotFiniteAreABreakdown)
{
  const SparseMatrix A = SparseOf(GridMatrix(3, 3));
  const std::vector<double> b(9, 1.0);
  for (const Method& method : kMethods)
    for (const double bad : {kNaN, kInfinity}) {
      SparseMatrix broken = A;
      broken.set(4, 5) = bad;
      const ScaledIdentity M(9, 1.0);
      ExpectBreakdown(method, broken, b, M, "matrix");
      ExpectBreakdown(method, broken, b, ILUPreconditioner(broken), "matrix and factors");
      std::vector<double> load = b;
      load[8] = bad;
      ExpectBreakdown(method, A, load, M, "right-hand side");
      ExpectBreakdown(method, A, b, ScaledIdentity(9, kNaN), "preconditioner");
      ExpectBreakdown(method, A, b, ScaledIdentity(9, 0.0), "infinite preconditioner");
    }
}

TEST(Krylov, FactorsWithoutPivotAreABreakdown)
{
  SparseMatrix A = SparseOf(GridMatrix(3, 3));
  A.set(0, 0) = 0.0;
  for (const Method& method : kMethods)
    ExpectBreakdown(method, A, std::vector<double>(9, 1.0), ILUPreconditioner(A), "zero pivot");
}

TEST(Krylov, ZeroToDivideByIsABreakdown)
{
  const ScaledIdentity identity(2, 1.0);
  const SparseMatrix zero = SparseOf({{0.0, 0.0}, {0.0, 0.0}}, 1);
  const SparseMatrix turn = SparseOf({{0.0, 1.0}, {-1.0, 0.0}});  // p·Ap = 0
  for (const Method& method : kMethods) {
    ExpectBreakdown(method, zero, {1.0, 2.0}, identity, "zero matrix");
    ExpectBreakdown(method, turn, {1.0, 0.0}, identity, "quarter turn");
    ExpectBreakdown(method, turn, {1.0, 0.0}, ScaledIdentity(2, kInfinity), "zero preconditioner");
  }
}

TEST(CG, NegativeDefiniteMatrixIsABreakdown)
{
  const SparseMatrix A = SparseOf({{-1.0, 0.0}, {0.0, -2.0}});
  ExpectBreakdown(kMethods[0], A, {1.0, 2.0}, ScaledIdentity(2, 1.0), "negative definite");
}

TEST(CG, RhoZeroIsABreakdown)
{
  // z = (r2, r1) is orthogonal to r = (1, 0).
  class Exchange : public Preconditioner
  {
  public:
    Exchange() : Preconditioner("Exchange") {}
    void solve(const double* x, double* y) const override { y[0] = x[1], y[1] = x[0]; }
    void trans_solve(const double* x, double* y) const override { solve(x, y); }
    void New_Matrix(const SparseMatrix&) override {}
  };
  const SparseMatrix A = SparseOf({{2.0, 0.0}, {0.0, 1.0}});
  ExpectBreakdown(kMethods[0], A, {1.0, 0.0}, Exchange(), "rho = 0");
}

}  // namespace

}  // namespace morlen
