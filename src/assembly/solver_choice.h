#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "assembly/solver_kit.h"
#include "problem/settings.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The automatic choice compares the work of the solvers from this number of equations on.
constexpr long long kChoiceFrom = 15000;

/// The estimated work of the skyline and of the iteration for a model. Times are those of the
/// processor on which the constants in solver_choice.cpp were measured: only their ratio counts.
struct SolverWork
{
  double equations = 0.0;
  double profileEntries = 0.0;  ///< of the skyline matrix
  double operations = 0.0;      ///< multiplications and additions of its factorisation
  double sparseEntries = 0.0;   ///< of the sparse matrix
  double iterations = 0.0;      ///< estimate, until the sparse solver has converged
  double loadVectors = 1.0;     ///< that are solved with the same matrix
  bool canIterate = true;       ///< false when a node has too many neighbours for a sparse matrix

  double SkylineSeconds() const;
  /// The time of one iteration for so many right-hand sides, side by side.
  double IterationSeconds(int sides) const;
  double SparseSeconds() const;
  /// The bytes of the skyline matrix and of the copies that its factorisation keeps.
  std::uint64_t SkylineBytes() const;
  /// The number of iterations for each load vector that a direct solver's time is worth.
  int IterationsWorthTrying(double directSeconds) const;

private:
  /// The time of one iteration for every load vector and the probe.
  double AllSidesSeconds() const;
};

/// The work with the current numbers of the nodes, from the elements alone. The coplanarity marks
/// of the problem must be set.
SolverWork EstimateWork(const Problem& problem, const ElementFamilies& families);

/// A solver and the reason of the choice.
struct SolverChoice
{
  SolverType type = SolverType::SkyLine;
  std::string reason;
  SolverWork work = {};      ///< of a large model
  bool fitsDirectly = true;  ///< the memory has room for a direct solver
  /// The direct solver that is faster, of those that fit; it follows an iteration that fails.
  SolverType directType = SolverType::SkyLine;
  double directSeconds = 0.0;
  std::unique_ptr<DirectPlan> plan = nullptr;  ///< with the type Direct of a large model
};

/// The part of a memory limit that the matrix may use; the rest is for the model.
std::uint64_t UsableMemory(std::uint64_t limit);

/// The time that a direct solver must not exceed to be chosen: that of the others.
double MostDirectSeconds(const SolverWork& work, std::uint64_t usableMemory);

/// The fastest of the solvers for which the memory has room. plan: of `Solver Direct`; may be null.
SolverChoice FasterSolver(const SolverWork& work, std::uint64_t usableMemory,
                          std::unique_ptr<DirectPlan> plan = nullptr);

}  // namespace morlen
