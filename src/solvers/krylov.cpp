#include "solvers/krylov.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/stprintf.h"
#include "solvers/preconditioner.h"
#include "solvers/sparse_matrix.h"

// The methods as they stand in R. Barrett et al., Templates for the Solution of Linear
// Systems: Building Blocks for Iterative Methods, SIAM, Philadelphia 1994. What works on the
// same vectors is done in one pass over them, since memory is what limits the speed.

namespace {

constexpr int kIterationsPerMessage = 10;

using WorkArray = std::unique_ptr<double[]>;

WorkArray Work(int n)
{
  return std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(n));
}

WorkArray CopyOf(const double* x, int n)
{
  WorkArray copy = Work(n);
  std::copy_n(x, n, copy.get());
  return copy;
}

// The sum of the terms of 0, 1, ..., n - 1, in four sums so that no addition waits.
template <class Term>
double Sum(int n, Term term)
{
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0, sum3 = 0.0;
  int i = 0;
  for (; i + 4 <= n; i += 4) {
    sum0 += term(i);
    sum1 += term(i + 1);
    sum2 += term(i + 2);
    sum3 += term(i + 3);
  }
  for (; i < n; ++i)
    sum0 += term(i);
  return (sum0 + sum1) + (sum2 + sum3);
}

// The root of a sum of squares of x; scaled when the sum has left the range in which it is
// accurate.
double NormFromSquares(double sum, const double* x, int n)
{
  constexpr double kSmallest = 1e-280;
  constexpr double kLargest = 1e300;
  if (sum >= kSmallest && sum <= kLargest)
    return std::sqrt(sum);
  double largest = 0.0;
  for (int i = 0; i < n; ++i)
    largest = std::fabs(x[i]) <= largest ? largest : std::fabs(x[i]);
  if (largest == 0.0 || !std::isfinite(largest))
    return largest;
  return largest * std::sqrt(Sum(n, [&](int i) { return (x[i] / largest) * (x[i] / largest); }));
}

// y = x + factor·y.
void ScaleAndAdd(double* y, double factor, const double* x, int n)
{
  for (int i = 0; i < n; ++i)
    y[i] = x[i] + factor * y[i];
}

// x += factor·p.
void AddMultiple(double* x, double factor, const double* p, int n)
{
  for (int i = 0; i < n; ++i)
    x[i] += factor * p[i];
}

bool CanDivideBy(double value)
{
  return value != 0.0 && std::isfinite(value);
}

struct Limits
{
  int& max_iter;
  double& tol;
};

// A run of one of the methods: the residual, the rule by which it stops, and what it tells.
class Run
{
public:
  Run(const SparseMatrix& A, const double* x, const double* b, Limits limits_, std::FILE* info_)
      : n(A.GiveSize()), limits(limits_), info(info_), r(Work(n)), normb(norm(b, n))
  {
    A.mult(x, r.get());
    for (int i = 0; i < n; ++i)
      r[i] = b[i] - r[i];
    if (normb == 0.0)
      normb = 1.0;
    SetResidual(norm(r.get(), n));
  }

  int Size() const { return n; }
  double* Residual() { return r.get(); }
  double Relative() const { return resid; }
  double Tolerance() const { return limits.tol; }
  bool Reached() const { return resid <= limits.tol; }

  void SetResidual(double norm) { resid = norm / normb; }
  void MeasureResidual() { SetResidual(norm(r.get(), n)); }

  // r -= factor·q, with its norm.
  void Reduce(double factor, const double* q)
  {
    const double squares = Sum(n, [&, r = r.get()](int i) {
      r[i] -= factor * q[i];
      return r[i] * r[i];
    });
    SetResidual(NormFromSquares(squares, r.get(), n));
  }

  // Calls step(i) for i = 1, 2, ... until the residual is small enough, a step breaks down
  // (returns false), or the limit is reached. Returns what the method returns.
  template <class Step>
  int Iterate(Step step)
  {
    if (Reached()) {
      Progress(info, "iteration number 0 OK resid=%g tol=%g\n", resid, limits.tol);
      return Converged(0);
    }
    const int limit = limits.max_iter;
    for (int done = 0; done < limit;) {
      if (!std::isfinite(resid) || !step(++done))
        return Breakdown();
      if (Reached())
        return Converged(done);
    }
    if (!std::isfinite(resid))
      return Breakdown();
    limits.tol = resid;
    return 1;
  }

private:
  int Converged(int iterations)
  {
    limits.tol = resid;
    limits.max_iter = iterations;
    return 0;
  }

  int Breakdown()
  {
    limits.tol = -1.0;
    return 1;
  }

  int n;
  Limits limits;
  std::FILE* info;
  WorkArray r;
  double normb;
  double resid;  ///< of r, relative to b
};

}  // namespace

double norm(const double* x, int n)
{
  return NormFromSquares(dot(x, x, n), x, n);
}

double dot(const double* x, const double* y, int n)
{
  return Sum(n, [&](int i) { return x[i] * y[i]; });
}

void fill_Real_array(double* a, int n, double value)
{
  std::fill_n(a, n, value);
}

void fill_int_array(int* a, int n, int value)
{
  std::fill_n(a, n, value);
}

int CG(const SparseMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
       double& tol, std::FILE* info)
{
  Run run(A, x, b, {max_iter, tol}, info);
  const int n = run.Size();
  double* const r = run.Residual();
  const WorkArray p = Work(n);
  const WorkArray z = Work(n);  // M⁻¹·r, and A·p once p has taken that up
  fill_Real_array(p.get(), n, 0.0);
  double rhoBefore = 1.0;  // p = z in the first iteration
  return run.Iterate([&](int i) {
    if (i % kIterationsPerMessage == 0)
      Progress(info, "iteration number %i resid=%g tol=%g\n", i, run.Relative(), tol);
    M.solve(r, z.get());
    const double rho = dot(r, z.get(), n);
    if (!CanDivideBy(rho))
      return false;
    ScaleAndAdd(p.get(), rho / rhoBefore, z.get(), n);
    A.mult(p.get(), z.get());
    const double pq = dot(p.get(), z.get(), n);
    if (!(pq > 0.0 && std::isfinite(pq)))
      return false;
    const double alpha = rho / pq;
    AddMultiple(x, alpha, p.get(), n);
    run.Reduce(alpha, z.get());
    if (run.Reached())
      Progress(info, "Converged it number. %i resid=%g tol=%g\n", i, run.Relative(), tol);
    rhoBefore = rho;
    return true;
  });
}

int BiCG(const SparseMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
         double& tol, std::FILE* info)
{
  Run run(A, x, b, {max_iter, tol}, info);
  const int n = run.Size();
  double* const r = run.Residual();
  const WorkArray rt = CopyOf(r, n);  // t: of the transposed system
  const WorkArray p = Work(n), pt = Work(n), z = Work(n), q = Work(n);
  fill_Real_array(p.get(), n, 0.0);
  fill_Real_array(pt.get(), n, 0.0);
  double rhoBefore = 1.0;
  return run.Iterate([&](int) {
    M.solve(r, z.get());
    const double rho = dot(z.get(), rt.get(), n);
    if (!CanDivideBy(rho))
      return false;
    ScaleAndAdd(p.get(), rho / rhoBefore, z.get(), n);
    M.trans_solve(rt.get(), z.get());
    ScaleAndAdd(pt.get(), rho / rhoBefore, z.get(), n);
    A.mult(p.get(), q.get());
    const double ptq = dot(pt.get(), q.get(), n);
    if (!CanDivideBy(ptq))
      return false;
    const double alpha = rho / ptq;
    AddMultiple(x, alpha, p.get(), n);
    run.Reduce(alpha, q.get());
    A.trans_mult(pt.get(), q.get());
    AddMultiple(rt.get(), -alpha, q.get(), n);
    rhoBefore = rho;
    return true;
  });
}

int CGS(const SparseMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
        double& tol)
{
  Run run(A, x, b, {max_iter, tol}, nullptr);
  const int n = run.Size();
  double* const r = run.Residual();
  const WorkArray rt = CopyOf(r, n);
  const WorkArray p = Work(n), q = Work(n), u = Work(n), hat = Work(n), v = Work(n);
  fill_Real_array(p.get(), n, 0.0);
  fill_Real_array(q.get(), n, 0.0);
  double rhoBefore = 1.0;
  return run.Iterate([&](int) {
    const double rho = dot(rt.get(), r, n);
    if (!CanDivideBy(rho))
      return false;
    const double beta = rho / rhoBefore;
    for (int i = 0; i < n; ++i) {
      u[i] = r[i] + beta * q[i];
      p[i] = u[i] + beta * (q[i] + beta * p[i]);
    }
    M.solve(p.get(), hat.get());
    A.mult(hat.get(), v.get());
    const double rtv = dot(rt.get(), v.get(), n);
    if (!CanDivideBy(rtv))
      return false;
    const double alpha = rho / rtv;
    for (int i = 0; i < n; ++i) {
      q[i] = u[i] - alpha * v[i];
      u[i] += q[i];
    }
    M.solve(u.get(), hat.get());
    AddMultiple(x, alpha, hat.get(), n);
    A.mult(hat.get(), v.get());
    run.Reduce(alpha, v.get());
    rhoBefore = rho;
    return true;
  });
}

int BiCGSTAB(const SparseMatrix& A, double* x, const double* b, const Preconditioner& M,
             int& max_iter, double& tol, std::FILE* info)
{
  Run run(A, x, b, {max_iter, tol}, info);
  const int n = run.Size();
  double* const r = run.Residual();
  const WorkArray rt = CopyOf(r, n);
  const WorkArray p = Work(n), v = Work(n), hat = Work(n), t = Work(n);
  fill_Real_array(p.get(), n, 0.0);
  fill_Real_array(v.get(), n, 0.0);
  double rhoBefore = 1.0, alpha = 1.0, omega = 1.0;
  return run.Iterate([&](int) {
    const double rho = dot(rt.get(), r, n);
    if (!CanDivideBy(rho) || !CanDivideBy(omega))
      return false;
    const double beta = (rho / rhoBefore) * (alpha / omega);
    for (int i = 0; i < n; ++i)
      p[i] = r[i] + beta * (p[i] - omega * v[i]);
    M.solve(p.get(), hat.get());
    A.mult(hat.get(), v.get());
    const double rtv = dot(rt.get(), v.get(), n);
    if (!CanDivideBy(rtv))
      return false;
    alpha = rho / rtv;
    AddMultiple(x, alpha, hat.get(), n);
    run.Reduce(alpha, v.get());
    if (run.Reached())
      return true;
    M.solve(r, hat.get());
    A.mult(hat.get(), t.get());
    const double tt = dot(t.get(), t.get(), n);
    if (!CanDivideBy(tt))
      return false;
    omega = dot(t.get(), r, n) / tt;
    AddMultiple(x, omega, hat.get(), n);
    run.Reduce(omega, t.get());
    rhoBefore = rho;
    return true;
  });
}
