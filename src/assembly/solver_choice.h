#pragma once

#include <cstdint>
#include <string>

#include "problem/settings.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// From this number of equations on, the automatic choice depends on the work.
constexpr long long kChoiceFrom = 15000;

/// The work that both equation solvers would have with a model. Times are those of the
/// processor on which the constants in solver_choice.cpp were measured: only their ratio counts.
struct SolverWork
{
  double equations = 0.0;
  double profileEntries = 0.0;  ///< of the skyline matrix
  double operations = 0.0;      ///< multiplications and additions of its factorisation
  double sparseEntries = 0.0;   ///< of the sparse matrix
  double iterations = 0.0;      ///< until the sparse solver has converged, about
  bool canIterate = true;       ///< no node has more neighbours than the sparse matrix takes

  double DirectSeconds() const;
  /// Of one iteration for two right-hand sides.
  double IterationSeconds() const;
  double SparseSeconds() const;
  /// Bytes of the skyline matrix and of the copies that its factorisation keeps.
  std::uint64_t DirectBytes() const;
  /// After so many iterations the direct solver would have been faster.
  int IterationsWorthTrying() const;
};

/// The work with the present numbers of the nodes, from the elements alone. The coplanarity marks
/// of the problem must be set.
SolverWork EstimateWork(const Problem& problem, const ElementFamilies& families);

/// A solver, and why, in words.
struct SolverChoice
{
  SolverType type = SolverType::SkyLine;
  std::string reason;
  SolverWork work = {};      ///< of a large model
  bool fitsDirectly = true;  ///< the skyline matrix into memory
};

/// The part of a limit of memory that the matrix may take; the rest is for the model.
std::uint64_t UsableMemory(std::uint64_t limit);

/// The faster solver of those that the memory has room for.
SolverChoice FasterSolver(const SolverWork& work, std::uint64_t usableMemory);

}  // namespace morlen
