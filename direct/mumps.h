#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "direct/factor_files.h"
#include "direct/upper_matrix.h"

namespace morlen::direct {

/// One matrix in the library MUMPS: analysed once, then factorised, then solved with. Errors of the
/// library are fatal, with a sentence that explains them.
///
/// The matrix counts as positive definite: there is no search for pivots. Source: P. R. Amestoy,
/// I. S. Duff, J.-Y. L'Excellent, J. Koster, A fully asynchronous multifrontal solver using
/// distributed dynamic scheduling, SIAM Journal on Matrix Analysis and Applications 23 (2001)
/// 15-41.
class Mumps
{
public:
  /// The sizes that the analysis foretells.
  struct Sizes
  {
    double entries = 0.0;          ///< of the factors
    double operations = 0.0;       ///< of the factorisation
    std::uint64_t bytes = 0;       ///< memory with the factors in it
    std::uint64_t bytesLeast = 0;  ///< memory with the factors in files
  };

  /// busy: the library serves one caller at a time; borrowed.
  explicit Mumps(std::mutex& busy);
  ~Mumps();
  Mumps(const Mumps&) = delete;
  Mumps& operator=(const Mumps&) = delete;

  /// The matrix of n equations, and for each its place in the order of elimination, from 1.
  /// Both are borrowed until the object ends.
  Sizes Analyse(int n, Coordinates& matrix, std::vector<int>& places);

  /// Computes the factors, in files when there are some. Returns false when a pivot is 0. May be
  /// called again, also when values of the matrix have changed.
  bool Factorise(FactorFiles* files);

  /// Solves in place: `count` right-hand sides, one after the other.
  void Solve(double* sides, int count);

private:
  struct Instance;
  /// Calls the library. Returns its result, INFOG(1).
  int Call(int job);
  [[noreturn]] void Fail(int result);

  std::mutex& busy;
  std::unique_ptr<Instance> instance;
  FactorFiles* files = nullptr;
};

}  // namespace morlen::direct
