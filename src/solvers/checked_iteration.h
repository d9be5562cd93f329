#pragma once

#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "solvers/conjugate_gradients.h"

namespace morlen {

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
  /// A limit of the error with which the displacements of most models are right to 1e-4.
  static constexpr double kGoodError = 1e-6;
  /// A limit of the change for those that are not: the error is one of energy, of which soft parts
  /// of a structure have little however much they move.
  static constexpr double kGoodChange = 1e-5;
  /// A limit of the quotient: structures that can move came to 2e-13 at most, stable ones to 1e-6
  /// at least.
  static constexpr double kLeastQuotient = 1e-11;

  /// The iteration goes on until the estimate of its error is as small,
  double error = std::numeric_limits<double>::infinity();
  /// and until the largest translation and the largest rotation have changed by no more than this
  /// part over the latest iterations: ten and a twentieth of all.
  double change = std::numeric_limits<double>::infinity();
  int components = 1;    ///< of a node
  int translations = 1;  ///< the first of them
  /// It is given up as soon as its smallest quotient is less, but not negative: that tells of the
  /// preconditioner, not of the structure.
  double quotient = -std::numeric_limits<double>::infinity();

  bool AreMade() const { return std::isfinite(error) || std::isfinite(change); }
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
  void Finish(const Preconditioner& M, int limit);
  /// Compares x with that of some iterations before.
  void MeasureChange();

  CgSystem system;
  const double* x;
  int n;
  IterationGoal goal;
  IterationReport report;
  int restarts = 0;
  bool ended = false;
  std::vector<double> before;  ///< x when the change was measured last
  int measuredAt = 0;          ///< the iteration of that
  double change = std::numeric_limits<double>::infinity();
};

}  // namespace morlen
