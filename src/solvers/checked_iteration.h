#pragma once

#include <cstdio>
#include <limits>

#include "solvers/conjugate_gradients.h"

/// How the iteration of a right-hand side has ended.
struct IterationReport
{
  int iterations = 0;  ///< of all starts together
  /// Relative, and true: ‖b − A·x‖/‖b‖, formed afresh at the end.
  double residual = 0.0;
  double error = 0.0;  ///< estimated, relative, in the energy norm: CgSystem::Error
  /// CgSystem::SmallestQuotient: about the size of rounding, or negative, for a structure that can
  /// move.
  double smallestQuotient = std::numeric_limits<double>::infinity();
  bool reached = false;  ///< the tolerance, and what was demanded besides
  bool broken = false;   ///< CgSystem::IsBroken
  /// Given up before it had ended: for its quotient, or since the other right-hand side failed.
  bool left = false;
};

/// What an iteration has to show besides its tolerance; nothing unless told.
struct IterationDemands
{
  /// A limit of the error with which displacements, rotations and the forces of elements are right
  /// to 1e-4 of the largest and better: the largest seen were 25 times the error in the energy
  /// norm, but 280 times for the rotations of a wide and flat frame.
  static constexpr double kGoodError = 1e-7;
  /// A limit of the quotient: structures that can move came to 2e-13 at most, stable ones to 1e-6
  /// at least.
  static constexpr double kLeastQuotient = 1e-11;

  /// The iteration goes on until the estimate of its error is as small.
  double error = std::numeric_limits<double>::infinity();
  /// It is given up as soon as its smallest quotient is less.
  double quotient = -std::numeric_limits<double>::infinity();
};

struct IterationGoal
{
  double tolerance;  ///< of the residual
  IterationDemands demands;
  /// All loads, in ‖b‖: with those of prescribed values, which b has no part of, and whose
  /// rounding is all that may be left.
  double loads = 1.0;
};

/// Conjugate gradients for a system A·x = b whose end is believed only when the true residual
/// bears it out.
///
/// Where the recurrence claims that the tolerance is reached, the residual is formed afresh. When
/// that is more than ten times the tolerance of all loads (where an error is demanded: ten times
/// the residual of the recurrence), the iteration starts again with it, at most three times; then
/// it has failed.
class CheckedIteration
{
public:
  /// Arrays as CgSystem. A matrix of finite numbers and a start that reaches the tolerance end it
  /// at once.
  CheckedIteration(const SparseMatrix& A, double* x, const double* b, const IterationGoal& goal);

  /// Iterates the system of a model and, where there is one, of a probe, side by side: until both
  /// have ended, one of them has failed, or `limit` iterations are done. Progress of the model
  /// every ten iterations, and how each has ended; of what has failed, the probe's only.
  static void Run(const SparseMatrix& A, const Preconditioner& M, CheckedIteration& model,
                  CheckedIteration* probe, int limit, std::FILE* info);

  /// After Run.
  const IterationReport& Report() const { return report; }

private:
  bool HasFailed() const { return ended && !report.reached; }
  bool Claims() const;
  /// The residual that is claimed: the tolerance, or, where an error is demanded, that of the
  /// recurrence.
  double Claimed() const;
  /// Looks, after an iteration, whether this one was the last. name: begins the messages.
  void Check(const char* name, std::FILE* info);
  void Finish(int limit);

  CgSystem system;
  IterationGoal goal;
  IterationReport report;
  int restarts = 0;
  bool ended = false;
};
