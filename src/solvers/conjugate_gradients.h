#pragma once

#include <array>
#include <cstdio>
#include <limits>
#include <span>

#include "solvers/vector_loops.h"

namespace morlen {

class Preconditioner;
class SparseMatrix;

/// A system A·x = b on its way through preconditioned conjugate gradients (M. R. Hestenes,
/// E. Stiefel, Methods of conjugate gradients for solving linear systems, Journal of Research of
/// the National Bureau of Standards 49, 1952), one iteration at a time.
///
/// x, as long as A has rows, is the initial guess and becomes the result; x, b and A are
/// borrowed. Residuals are relative, ‖b − A·x‖/‖b‖, where ‖b‖ = 0 counts as 1. That of the
/// iterations follows a recurrence, which rounding separates from the true one.
class CgSystem
{
public:
  CgSystem(const SparseMatrix& A, double* x, const double* b);

  /// Does an iteration of every system; there are one or two, with the same A and M, none of
  /// them broken. Two share the passes over A and M, and get the same bits as one by one.
  static void Advance(const SparseMatrix& A, const Preconditioner& M,
                      std::span<CgSystem* const> systems);

  /// Forms the residual afresh, and starts again with it from x.
  void Renew();

  double Residual() const { return resid; }
  /// Whether a quantity was not finite, or one to divide by 0 or, p·A·p, not positive. The
  /// residual is of no use then.
  bool IsBroken() const { return broken; }
  int Iterations() const { return iterations; }

  /// The error in the energy norm before the latest iterations, relative to what the iteration
  /// has added to x: from the energy that they have added, which is what was missing before but
  /// for what is missing still (Z. Strakoš, P. Tichý, On error estimation in the conjugate
  /// gradient method and why it works in finite precision computations, Electronic Transactions
  /// on Numerical Analysis 13, 2002). The latest are half of all, or ten and a twentieth of
  /// all where that is less. 1 before the first iteration, 0 when nothing is left.
  double Error() const;

  /// The error in the energy norm, relative as before, if M were A: r·M⁻¹·r is what is missing.
  double RemainingError(const Preconditioner& M);

  /// The smallest p·A·p / p·M·p of the search directions p, no less than the smallest
  /// eigenvalue of M⁻¹·A; infinite before the first iteration. Negative when M is indefinite.
  double SmallestQuotient() const { return smallestQuotient; }

private:
  static constexpr int kTerms = 256;

  /// The next direction, from M⁻¹·r in z.
  void Turn();
  /// The step along the direction, from A·p in z.
  void Move();
  void Measure(double norm);

  const SparseMatrix& A;
  int n;
  double* x;
  const double* b;
  double normb;
  WorkArray r;
  WorkArray p;
  WorkArray z;  ///< M⁻¹·r, and A·p once p has taken that up
  double resid = 0.0;
  double rho = 1.0;  ///< r·z of the latest direction; p is 0 before the first one
  double pMp = 0.0;
  int iterations = 0;
  bool broken = false;
  double smallestQuotient = std::numeric_limits<double>::infinity();
  double energy = 0.0;                 ///< of all iterations
  std::array<double, kTerms> added{};  ///< by the latest iterations; that of i at i % kTerms
};

/// Tells every tenth time what iteration `next` begins with.
void AnnounceIteration(int next, double residual, double tolerance, std::FILE* info);

}  // namespace morlen
