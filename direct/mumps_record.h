#pragma once

#include <dmumps_c.h>

#include <cstdint>

#include "direct/mumps_sizes.h"
#include "direct/upper_matrix.h"

namespace morlen::direct {

/// The record with which MUMPS is called, in one process or in several; the controls and the second
/// tries are the same in both. The matrix counts as positive definite: there is no search for
/// pivots.
///
/// The indices k count from 1, as in the Users' Guide of MUMPS. Functions return INFOG(1): 0 or a
/// warning above 0, an error below. With several processes all of them call each function at the
/// same time.
struct MumpsRecord : DMUMPS_STRUC_C
{
  static constexpr int kAnalyse = 1, kSolve = 3;  ///< jobs
  /// INFOG(1) of a matrix with a pivot that is 0.
  static constexpr int kSingular = -10;

  MumpsRecord() : DMUMPS_STRUC_C{} {}

  MUMPS_INT& Control(int k) { return icntl[k - 1]; }          ///< ICNTL
  MUMPS_INT Info(int k) const { return info[k - 1]; }         ///< of this process
  MUMPS_INT GlobalInfo(int k) const { return infog[k - 1]; }  ///< INFOG

  /// Starts the library, for all processes of the program, and sets the controls. First.
  int Begin();
  /// Frees the memory of the library. Last.
  int End();

  int Run(int jobToDo);
  /// The same; with more memory, as often as the estimate was too small.
  int RunWithRoom(int jobToDo);

  /// Factorises the matrix that has been analysed, or the share of this process. The factorisation
  /// takes every pivot except 0. When it meets a 0, each diagonal entry gets a small part of itself
  /// more, and the factorisation is repeated. Returns kSingular when that has not helped.
  int Factorise(Coordinates& matrix);

  /// After the analysis.
  MumpsSizes Sizes() const;
  /// The same: the bytes of this process in MumpsSizes::fileBytes.
  std::uint64_t OwnFileBytes() const;
};

/// Ends the run after an error, with a sentence that explains it. detail: INFOG(2).
[[noreturn]] void FailOfMumps(int status, int detail);

}  // namespace morlen::direct
