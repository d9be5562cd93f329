#include "solvers/conjugate_gradients.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"
#include "support/sparse.h"

namespace morlen {

namespace {

using Vector = std::vector<double>;

SparseMatrix Diagonal(const Vector& values)
{
  DenseRows a = DenseZero(static_cast<int>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i)
    a[i][i] = values[i];
  return SparseOf(a);
}

/// M = I.
class Identity : public Preconditioner
{
public:
  explicit Identity(int n_) : Preconditioner("Identity"), n(n_) {}
  void solve(const double* x, double* y) const override { std::copy_n(x, n, y); }
  void trans_solve(const double* x, double* y) const override { solve(x, y); }
  void New_Matrix(const SparseMatrix&) override {}

private:
  int n;
};

void Iterate(const SparseMatrix& A, const Preconditioner& M, CgSystem& system, int iterations)
{
  CgSystem* const systems[] = {&system};
  for (int i = 0; i < iterations; ++i)
    CgSystem::Advance(A, M, systems);
}

TEST(CgSystem, TwoGetTheBitsOfEachByItself)
{
  const SparseMatrix A = SparseOf(GridMatrix(9, 8));
  const ILUPreconditioner M(A);
  const Vector b = RandomVector(72, 1), c = RandomVector(72, 2);
  Vector x(72, 0.0), y = RandomVector(72, 3);
  Vector aloneX = x, aloneY = y;
  CgSystem first(A, x.data(), b.data()), second(A, y.data(), c.data());
  CgSystem* const systems[] = {&first, &second};
  for (int i = 0; i < 6; ++i)
    CgSystem::Advance(A, M, systems);
  Iterate(A, M, second, 3);  // alone, after the end of the first
  CgSystem firstAlone(A, aloneX.data(), b.data()), secondAlone(A, aloneY.data(), c.data());
  Iterate(A, M, firstAlone, 6);
  Iterate(A, M, secondAlone, 9);
  EXPECT_EQ(x, aloneX);
  EXPECT_EQ(y, aloneY);
  EXPECT_EQ(first.Iterations(), 6);
  EXPECT_EQ(second.Iterations(), 9);
  EXPECT_EQ(first.Residual(), firstAlone.Residual());
  EXPECT_EQ(second.Residual(), secondAlone.Residual());
  EXPECT_EQ(second.Error(), secondAlone.Error());
  EXPECT_EQ(second.SmallestQuotient(), secondAlone.SmallestQuotient());
}

TEST(CgSystem, RenewedItKnowsTheTrueResidual)
{
  const DenseRows a = GridMatrix(6, 5);
  const SparseMatrix A = SparseOf(a);
  const Vector b = RandomVector(30, 4);
  Vector x(30, 0.0);
  CgSystem system(A, x.data(), b.data());
  Iterate(A, ILUPreconditioner(A), system, 4);
  x[7] += 0.5;  // does not change the residual of the recurrence
  Vector r = DenseProduct(a, x);
  for (int i = 0; i < 30; ++i)
    r[i] = b[i] - r[i];
  const double truth = norm(r.data(), 30) / norm(b.data(), 30);
  EXPECT_GT(truth, 2.0 * system.Residual());
  system.Renew();
  EXPECT_NEAR(system.Residual(), truth, 1e-14);  // of two sums of 30 terms of about 1
  Iterate(A, ILUPreconditioner(A), system, 30);
  EXPECT_EQ(system.Iterations(), 34);
  EXPECT_LE(LargestDifference(DenseProduct(a, x), b), 1e-12);  // rounding, times a few tens
}

// The matrix is diagonal, so that the true error is known.
TEST(CgSystem, ErrorIsThatBeforeTheLatestIterations)
{
  constexpr int n = 400;
  Vector values(n), b(n), x(n, 0.0);
  for (int i = 0; i < n; ++i) {
    values[i] = 1.0 + 5000.0 * i / n;
    b[i] = 1.0 + i % 3;
  }
  const SparseMatrix A = Diagonal(values);
  CgSystem system(A, x.data(), b.data());
  EXPECT_EQ(system.Error(), 1.0);
  const auto error = [&] {
    double missing = 0.0, whole = 0.0;
    for (int i = 0; i < n; ++i) {
      const double u = b[i] / values[i];
      missing += values[i] * (x[i] - u) * (x[i] - u);
      whole += values[i] * u * u;
    }
    return std::sqrt(missing / whole);
  };
  Vector errors = {1.0};
  double estimate = 1.0;
  while (estimate > 1e-9 && system.Iterations() < 1000) {
    Iterate(A, Identity(n), system, 1);
    errors.push_back(error());
    const int k = system.Iterations();
    const double before = errors[k - std::min(10 + k / 20, std::max(k / 2, 1))];
    estimate = system.Error();
    // The estimate leaves out the error that remains, and is relative to the energy reached.
    const double now = errors[k];
    const double expected = std::sqrt((before * before - now * now) / (1.0 - now * now));
    EXPECT_NEAR(estimate, expected, 1e-4 * expected + 1e-11) << k;  // rounding of the errors
  }
  EXPECT_GT(system.Iterations(), 100);
  EXPECT_LE(errors.back(), 1e-9);
}

TEST(CgSystem, NothingLeftIsNoError)
{
  const SparseMatrix A = Diagonal({2.0});
  const double b[] = {4.0};
  double x[] = {0.0};
  CgSystem system(A, x, b);
  Iterate(A, Identity(1), system, 1);
  EXPECT_EQ(x[0], 2.0);
  EXPECT_EQ(system.Residual(), 0.0);
  EXPECT_EQ(system.Error(), 0.0);
}

TEST(CgSystem, SmallestQuotientComesNearTheSmallestEigenvalue)
{
  // M⁻¹·A has the eigenvalues values[i] / 4.
  class Quarter : public Identity
  {
  public:
    using Identity::Identity;
    void solve(const double* x, double* y) const override
    {
      for (int i = 0; i < 50; ++i)
        y[i] = 0.25 * x[i];
    }
  };
  for (const double smallest : {1.0, 1e-3, 1e-9}) {
    Vector values(50), b(50, 1.0), x(50, 0.0);
    for (int i = 0; i < 50; ++i)
      values[i] = i == 0 ? smallest : 2.0 + i % 5;
    const SparseMatrix A = Diagonal(values);
    CgSystem system(A, x.data(), b.data());
    EXPECT_EQ(system.SmallestQuotient(), std::numeric_limits<double>::infinity());
    Iterate(A, Quarter(50), system, 6);  // six different eigenvalues
    EXPECT_GE(system.SmallestQuotient(), 0.25 * smallest * (1.0 - 1e-6));
    EXPECT_LE(system.SmallestQuotient(), 0.75 * smallest);
  }
}

TEST(CgSystem, ItsQuotientTellsAnIndefinitePreconditioner)
{
  class Opposite : public Identity
  {
  public:
    using Identity::Identity;
    void solve(const double* x, double* y) const override
    {
      y[0] = -x[0];
      y[1] = x[1];
    }
  };
  const SparseMatrix A = Diagonal({1.0, 2.0});
  const double b[] = {2.0, 1.0};
  double x[] = {0.0, 0.0};
  CgSystem system(A, x, b);
  Iterate(A, Opposite(2), system, 1);
  EXPECT_LT(system.SmallestQuotient(), 0.0);  // pᵀAp = 6, pᵀMp = −4 + 1
  EXPECT_FALSE(system.IsBroken());
}

}  // namespace

}  // namespace morlen
