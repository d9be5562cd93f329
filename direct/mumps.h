#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "direct/factor_files.h"
#include "direct/mumps_sizes.h"
#include "direct/upper_matrix.h"

namespace morlen::direct {

struct MumpsRecord;

/// One matrix in the library MUMPS: analysed once, then factorised, then solved with. Errors of the
/// library are fatal, with a sentence that explains them.
///
/// Source: P. R. Amestoy,
/// I. S. Duff, J.-Y. L'Excellent, J. Koster, A fully asynchronous multifrontal solver using
/// distributed dynamic scheduling, SIAM Journal on Matrix Analysis and Applications 23 (2001)
/// 15-41.
class Mumps
{
public:
  /// busy: the library serves one caller at a time; borrowed.
  explicit Mumps(std::mutex& busy);
  ~Mumps();
  Mumps(const Mumps&) = delete;
  Mumps& operator=(const Mumps&) = delete;

  /// The matrix of n equations, and for each its place in the order of elimination, from 1.
  /// Both are borrowed until the object ends.
  MumpsSizes Analyse(int n, Coordinates& entries, std::vector<int>& places);

  /// Computes the factors, in files when there are some; see MumpsRecord. Returns false when a
  /// pivot is 0. Changes values of the matrix.
  bool Factorise(FactorFiles* files);

  /// Solves in place: `count` right-hand sides, which lie one after the other.
  void Solve(double* sides, int count);

private:
  /// Returns the result of step(record), while no other caller uses the library.
  template <class Step>
  int Call(Step step);
  /// Fatal for a status that is an error.
  void Require(int status);

  std::mutex& busy;
  std::unique_ptr<MumpsRecord> record;
  Coordinates* matrix = nullptr;
  FactorFiles* files = nullptr;
};

}  // namespace morlen::direct
