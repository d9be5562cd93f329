#pragma once

#include <array>
#include <cstdio>
#include <limits>
#include <span>

#include "solvers/vector_loops.h"

namespace morlen {

class Preconditioner;
class SystemMatrix;

/// A system A·x = b that is solved by preconditioned conjugate gradients, one iteration at a time.
///
/// x has one number for each row of A; it is the initial guess and becomes the result. x, b and A
/// are borrowed. Residuals are relative, ‖b − A·x‖/‖b‖, where ‖b‖ = 0 counts as 1. The residual of
/// the iterations follows a recurrence; by rounding it drifts away from the true one.
class CgSystem
{
public:
  CgSystem(const SystemMatrix& A, double* x, const double* b);

  /// Does one iteration of every system. There are one or two, with the same A and M, and none is
  /// broken. Two share the passes over A and M; the result of each is bit for bit that of a
  /// separate call.
  static void Advance(const SystemMatrix& A, const Preconditioner& M,
                      std::span<CgSystem* const> systems);

  /// Computes the residual from x and restarts the iteration there.
  void Renew();

  double Residual() const { return resid; }
  /// Whether a quantity was not finite, a divisor was 0, or p·A·p was not positive. The residual
  /// is meaningless then.
  bool IsBroken() const { return broken; }
  int Iterations() const { return iterations; }

  /// Estimate of the error in the energy norm, relative to the part of x that the iterations have
  /// added. It is the error before the latest d iterations: the energy that these have added is a
  /// lower bound of its square, and a good one if the error has dropped well since. d is half of
  /// all iterations, but at most ten plus a twentieth of all. 1 before the first iteration, 0 when
  /// the residual is 0.
  double Error() const;

  /// Another estimate, exact if M were A: √(r·M⁻¹·r), relative like Error.
  double RemainingError(const Preconditioner& M);

  /// The smallest p·A·p / p·M·p of the search directions p, an upper bound of the smallest
  /// eigenvalue of M⁻¹·A. Infinite before the first iteration; negative when M is indefinite.
  double SmallestQuotient() const { return smallestQuotient; }

private:
  static constexpr int kTerms = 256;

  /// The next direction, from M⁻¹·r in z.
  void Turn();
  /// The step along the direction, from A·p in z.
  void Move();
  void Measure(double norm);

  const SystemMatrix& A;
  int n;
  double* x;
  const double* b;
  double normb;
  WorkArray r;
  WorkArray p;
  WorkArray z;  ///< M⁻¹·r in Turn, A·p in Move
  double resid = 0.0;
  double rho = 1.0;  ///< r·z of the latest direction; p is 0 before the first one
  double pMp = 0.0;
  int iterations = 0;
  bool broken = false;
  double smallestQuotient = std::numeric_limits<double>::infinity();
  double energy = 0.0;                 ///< added by all iterations
  std::array<double, kTerms> added{};  ///< energy added by iteration i, at i % kTerms
};

/// Writes the residual before every tenth iteration.
void AnnounceIteration(int next, double residual, double tolerance, std::FILE* info);

}  // namespace morlen
