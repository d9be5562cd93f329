#pragma once

#include <cstdint>
#include <string>

#include "problem/settings.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The automatic choice compares the work of the solvers from this number of equations on.
constexpr long long kChoiceFrom = 15000;

/// The estimated work of both equation solvers for a model. Times are those of the processor on
/// which the constants in solver_choice.cpp were measured: only their ratio counts.
struct SolverWork
{
  double equations = 0.0;
  double profileEntries = 0.0;  ///< of the skyline matrix
  double operations = 0.0;      ///< multiplications and additions of its factorisation
  double sparseEntries = 0.0;   ///< of the sparse matrix
  double iterations = 0.0;      ///< estimate, until the sparse solver has converged
  bool canIterate = true;       ///< false when a node has too many neighbours for a sparse matrix

  double DirectSeconds() const;
  /// The time of one iteration for two right-hand sides.
  double IterationSeconds() const;
  double SparseSeconds() const;
  /// The bytes of the skyline matrix and of the copies that its factorisation keeps.
  std::uint64_t DirectBytes() const;
  /// The number of iterations after which the direct solver would have been faster.
  int IterationsWorthTrying() const;
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
  bool fitsDirectly = true;  ///< the memory has room for the skyline matrix
};

/// The part of a memory limit that the matrix may use; the rest is for the model.
std::uint64_t UsableMemory(std::uint64_t limit);

/// The faster of the solvers for which the memory has room.
SolverChoice FasterSolver(const SolverWork& work, std::uint64_t usableMemory);

}  // namespace morlen
