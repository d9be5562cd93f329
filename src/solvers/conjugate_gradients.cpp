#include "solvers/conjugate_gradients.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "base/interruption.h"
#include "base/stprintf.h"
#include "solvers/krylov.h"
#include "solvers/preconditioner.h"
#include "solvers/system_matrix.h"

// Preconditioned conjugate gradients with an estimate of the error.
//
// An iteration computes (r residual, p direction, M preconditioner, all started from p = 0):
//
//   z = M⁻¹·r,  rho = r·z,  p = z + (rho / rho of the iteration before)·p
//   alpha = rho / p·A·p,  x += alpha·p,  r -= alpha·A·p
//
// Each iteration adds the energy alpha·rho to x, and the squared error in the energy norm drops by
// as much. The sum over some iterations therefore bounds the squared error before them from below.
// The Rayleigh quotients p·A·p / p·M·p show whether M⁻¹·A is almost singular; p·M·p follows a
// recurrence without a product with M.
//
// Sources: M. R. Hestenes, E. Stiefel, Methods of conjugate gradients for solving linear systems,
// Journal of Research of the National Bureau of Standards 49 (1952). Estimate: Z. Strakoš, P.
// Tichý, On error estimation in the conjugate gradient method and why it works in finite precision
// computations, Electronic Transactions on Numerical Analysis 13 (2002).

namespace morlen {

CgSystem::CgSystem(const SystemMatrix& A_, double* x_, const double* b_)
    : A(A_), n(A_.GiveSize()), x(x_), b(b_), normb(norm(b_, n)), r(Work(n)), p(Work(n)), z(Work(n))
{
  if (normb == 0.0)
    normb = 1.0;
  Renew();
}

void CgSystem::Renew()
{
  A.mult(x, r.get());
  for (int i = 0; i < n; ++i)
    r[i] = b[i] - r[i];
  Measure(norm(r.get(), n));
  std::fill_n(p.get(), n, 0.0);
  rho = 1.0;
  pMp = 0.0;
}

void CgSystem::Measure(double norm)
{
  resid = norm / normb;
  broken = broken || !std::isfinite(resid);
}

void CgSystem::Advance(const SystemMatrix& A, const Preconditioner& M,
                       std::span<CgSystem* const> systems)
{
  assert(systems.size() == 1 || systems.size() == 2);
  CgSystem& first = *systems.front();
  CgSystem& last = *systems.back();
  double* const z[2] = {first.z.get(), last.z.get()};
  const double* const r[2] = {first.r.get(), last.r.get()};
  const double* const p[2] = {first.p.get(), last.p.get()};
  if (systems.size() == 1)
    M.solve(r[0], z[0]);
  else
    M.SolveTwo(r, z);
  for (CgSystem* const system : systems)
    system->Turn();
  if (systems.size() == 1)
    A.mult(p[0], z[0]);
  else
    A.MultiplyTwo(p, z);
  for (CgSystem* const system : systems)
    system->Move();
}

// p·M·p = rho + beta²·(that of the iteration before), since r is orthogonal to the old direction.
void CgSystem::Turn()
{
  ++iterations;
  const double before = rho;
  rho = dot(r.get(), z.get(), n);
  broken = !CanDivideBy(rho);
  if (broken)
    return;
  const double beta = rho / before;
  ScaleAndAdd(p.get(), beta, z.get(), n);
  pMp = rho + beta * beta * pMp;
}

void CgSystem::Move()
{
  if (broken)
    return;
  const double pAp = dot(p.get(), z.get(), n);
  smallestQuotient = std::min(smallestQuotient, pAp / pMp);
  broken = !(pAp > 0.0 && std::isfinite(pAp));
  if (broken)
    return;
  const double alpha = rho / pAp;
  AddMultiple(x, alpha, p.get(), n);
  Measure(Reduce(r.get(), alpha, z.get(), n));
  added[iterations % kTerms] = alpha * rho;
  energy += alpha * rho;
}

double CgSystem::Error() const
{
  if (resid == 0.0)
    return 0.0;
  const int latest = std::min({10 + iterations / 20, std::max(iterations / 2, 1), kTerms});
  double sum = 0.0;
  for (int i = 0; i < latest; ++i)
    sum += added[(iterations - i) % kTerms];
  return energy > 0.0 ? std::sqrt(std::max(sum, 0.0) / energy) : 1.0;
}

double CgSystem::RemainingError(const Preconditioner& M)
{
  if (resid == 0.0 || !(energy > 0.0))
    return resid;
  M.solve(r.get(), z.get());
  return std::sqrt(std::max(dot(r.get(), z.get(), n), 0.0) / energy);
}

void AnnounceIteration(int next, double residual, double tolerance, std::FILE* info)
{
  CheckInterruption();
  constexpr int kIterationsPerMessage = 10;
  if (next % kIterationsPerMessage == 0)
    Progress(info, "iteration number %i resid=%g tol=%g\n", next, residual, tolerance);
}

}  // namespace morlen
