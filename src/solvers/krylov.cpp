#include "solvers/krylov.h"

#include <algorithm>
#include <cmath>

#include "base/interruption.h"
#include "base/stprintf.h"
#include "solvers/conjugate_gradients.h"
#include "solvers/preconditioner.h"
#include "solvers/system_matrix.h"
#include "solvers/vector_loops.h"

namespace morlen {

// Iterative methods for A·x = b that need only products with A and solutions with M.
//
// CG requires symmetric positive definite A and M. BiCG works with A and its transpose side by side
// and needs no symmetry; CGS squares its polynomials instead of using the transpose; BiCGSTAB
// smooths the convergence of CGS by a step that minimises the residual. Run holds the parts that
// all of them share: the first residual, the test after each step, and the report.
//
// Source: R. Barrett et al., Templates for the Solution of Linear Systems: Building Blocks for
// Iterative Methods, SIAM, Philadelphia 1994.

namespace {

WorkArray CopyOf(const double* x, int n)
{
  WorkArray copy = Work(n);
  std::copy_n(x, n, copy.get());
  return copy;
}

struct Limits
{
  int& max_iter;
  double& tol;
};

// The residual of a run of one of the methods, its stopping rule and its messages.
class Run
{
public:
  Run(const SystemMatrix& A, const double* x, const double* b, Limits limits_, std::FILE* info_)
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

  void Reduce(double factor, const double* q)
  {
    SetResidual(morlen::Reduce(r.get(), factor, q, n));
  }

  // Calls step(i) for i = 1, 2, ... until the residual is small enough, a step breaks down
  // (returns false), or the limit is reached. Returns the result of the method.
  template <class Step>
  int Iterate(Step step)
  {
    if (Reached()) {
      Progress(info, "iteration number 0 OK resid=%g tol=%g\n", resid, limits.tol);
      return Converged(0);
    }
    const int limit = limits.max_iter;
    for (int done = 0; done < limit;) {
      CheckInterruption();
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

int CG(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
       double& tol, std::FILE* info)
{
  CgSystem system(A, x, b);
  CgSystem* const systems[] = {&system};
  const auto reached = [&] { return system.Residual() <= tol; };
  while (!system.IsBroken() && !reached() && system.Iterations() < max_iter) {
    AnnounceIteration(system.Iterations() + 1, system.Residual(), tol, info);
    CgSystem::Advance(A, M, systems);
  }
  if (system.IsBroken()) {
    tol = -1.0;
    return 1;
  }
  const bool converged = reached();
  if (converged) {
    Progress(info,
             system.Iterations() == 0 ? "iteration number %i OK resid=%g tol=%g\n"
                                      : "Converged it number. %i resid=%g tol=%g\n",
             system.Iterations(), system.Residual(), tol);
    max_iter = system.Iterations();
  }
  tol = system.Residual();
  return converged ? 0 : 1;
}

int BiCG(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
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

int CGS(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M, int& max_iter,
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

int BiCGSTAB(const SystemMatrix& A, double* x, const double* b, const Preconditioner& M,
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

}  // namespace morlen
