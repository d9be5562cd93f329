#pragma once

#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "base/node_components.h"
#include "solvers/conjugate_gradients.h"

namespace morlen {

/// The outcome of the iteration of a right-hand side.
struct IterationReport
{
  int iterations = 0;  ///< of all starts together
  /// The true relative residual ‖b − A·x‖/‖b‖, computed from x at the end.
  double residual = 0.0;
  double error = 0.0;  ///< estimated, relative, in the energy norm: CgSystem::Error
  /// CgSystem::SmallestQuotient. For a structure that can move it is about the size of rounding, or
  /// negative.
  double smallestQuotient = std::numeric_limits<double>::infinity();
  bool reached = false;  ///< the tolerance, and all demands
  bool broken = false;   ///< CgSystem::IsBroken
  /// Stopped early: because of its quotient, or because the other right-hand side failed.
  bool left = false;
};

/// Demands on an iteration besides its tolerance; none by default.
struct IterationDemands
{
  /// A limit of the error at which the displacements of most models are right to 1e-4.
  static constexpr double kGoodError = 1e-6;
  /// A limit of the change, for the other models: the error is measured as energy, and soft parts
  /// of a structure have little energy however much they move.
  static constexpr double kGoodChange = 1e-5;
  /// A limit of the quotient: in tests, structures that can move had 2e-13 at most, stable ones
  /// 1e-6 at least.
  static constexpr double kLeastQuotient = 1e-11;

  /// The iteration goes on until the estimate of its error is at most this,
  double error = std::numeric_limits<double>::infinity();
  /// and until the changes of translations and rotations over the latest iterations (ten plus a
  /// twentieth of all) are at most this part of the largest ones.
  double change = std::numeric_limits<double>::infinity();
  NodeComponents components = {.count = 1, .translations = 1};
  /// It stops as soon as its smallest quotient is less than this and not negative; a negative one
  /// is caused by the preconditioner, not by the structure.
  double quotient = -std::numeric_limits<double>::infinity();

  bool AreMade() const { return std::isfinite(error) || std::isfinite(change); }
};

/// When the iteration of a right-hand side may end.
struct IterationGoal
{
  double tolerance;  ///< of the residual
  IterationDemands demands;
  /// ‖all loads‖ / ‖b‖. All loads include those from prescribed values, which are not in b; their
  /// rounding limits the residual that can be reached.
  double loads = 1.0;
};

/// Conjugate gradients for a system A·x = b, with a check of the true residual before the end.
///
/// When the residual of the recurrence reaches the tolerance, the true residual is computed. If it
/// is more than ten times the tolerance of all loads (where an error is demanded: ten times the
/// residual of the recurrence), the iteration restarts from there, at most three times; after that
/// it has failed.
class CheckedIteration
{
public:
  /// Arrays as for CgSystem. The iteration has already ended when the start reaches the tolerance,
  /// or when a number is not finite.
  CheckedIteration(const SystemMatrix& A, double* x, const double* b, const IterationGoal& goal);

  /// Iterates the system of a model and that of a probe, unless null, side by side, until both have
  /// ended, one has failed, or `limit` iterations are done. Writes the progress of the model every
  /// ten iterations, its end when it has converged, and the end of the probe in any case.
  static void Run(const SystemMatrix& A, const Preconditioner& M, CheckedIteration& model,
                  CheckedIteration* probe, int limit, std::FILE* info);

  /// After Run.
  const IterationReport& Report() const { return report; }

private:
  bool HasFailed() const { return ended && !report.reached; }
  /// Whether the tolerance and the demands are reached according to the recurrence.
  bool Claims() const;
  /// The residual to be confirmed: the tolerance, or, with demands, that of the recurrence.
  double Claimed() const;
  /// Decides after an iteration whether it was the last. `name` begins the messages.
  void Check(const char* name, std::FILE* info);
  /// Fills in the report.
  void Finish(const Preconditioner& M, int limit);
  /// Compares x with its values some iterations ago.
  void MeasureChange();

  CgSystem system;
  const double* x;
  int n;
  IterationGoal goal;
  IterationReport report;
  int restarts = 0;
  bool ended = false;
  std::vector<double> before;  ///< x at the last measurement of the change
  int measuredAt = 0;          ///< iteration of that measurement
  double change = std::numeric_limits<double>::infinity();
};

}  // namespace morlen
