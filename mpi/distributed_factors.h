#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "direct/factor_files.h"
#include "direct/mumps_sizes.h"
#include "direct/upper_matrix.h"

namespace morlen::direct {
struct MumpsRecord;
}

namespace morlen::mpi {

/// The share of one rank in the factors, for the information stream.
struct FactorSize
{
  double megabytes = 0.0;  ///< of the solver's memory in use at most
  double seconds = 0.0;    ///< processor time of the rank in the factorisation
};

/// The outcome of a step, the same on all ranks.
struct FactorOutcome
{
  int status = 0;  ///< of the library: 0 or a warning above 0, an error below
  int detail = 0;  ///< of the status

  /// True when a pivot is 0, and remains so after a small part of the diagonal is added to it.
  bool IsSingular() const;
};

/// Bytes of memory or of files, on the machine where the least is left after them.
struct Demand
{
  double needed = 0.0;
  double left = 0.0;

  bool Fits() const { return needed <= left; }
};

/// The outcome of an analysis, the same on all ranks.
struct FactorAnalysis
{
  FactorOutcome outcome;
  direct::MumpsSizes sizes;
  Demand memory;       ///< with the factors in it
  Demand memoryLeast;  ///< with the factors in files
  Demand files;        ///< in the folder for temporary files
};

/// The multifrontal factorisation of a symmetric matrix whose entries are distributed over all
/// ranks, by MUMPS. P. R. Amestoy, I. S. Duff, J. Koster, J.-Y. L'Excellent, A fully asynchronous
/// multifrontal solver using distributed dynamic scheduling, SIAM Journal on Matrix Analysis and
/// Applications 23, 2001.
///
/// All ranks call each function at the same time, but for the destructor, which removes the files
/// only: a rank may end without the others.
class DistributedFactors
{
public:
  DistributedFactors();
  DistributedFactors(const DistributedFactors&) = delete;
  DistributedFactors& operator=(const DistributedFactors&) = delete;
  ~DistributedFactors();

  /// Chooses the steps of the factorisation. entries: of this rank; their values are borrowed until
  /// Factorise has returned. order: the place of each equation, from 1, on the first rank; empty on
  /// the others.
  FactorAnalysis Analyse(int equations, direct::Coordinates entries, std::vector<int> order);

  /// Factorises the entries of Analyse; with outOfCore the factors are written to files in the
  /// folder for temporary files.
  FactorOutcome Factorise(bool outOfCore);

  /// Solves for right-hand sides one after another in one array, which become solutions; on the
  /// first rank, others pass an empty span. count: of right-hand sides, on the first rank.
  FactorOutcome Solve(std::span<double> sides, int count);

  /// Frees the memory of the library. Last.
  void End();

  FactorSize Size() const { return size; }

private:
  FactorOutcome Outcome(int status) const;

  std::unique_ptr<direct::MumpsRecord> mumps;
  direct::Coordinates matrix;
  direct::FactorFiles files;
  FactorSize size;
};

/// Fatal when a step has failed.
void RequireSuccess(const FactorOutcome& outcome);

}  // namespace morlen::mpi
