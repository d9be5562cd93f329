#pragma once

#include <memory>
#include <span>
#include <vector>

#include "direct/upper_matrix.h"
#include "mpi/part.h"

namespace morlen::mpi {

/// The equations of a part that are not prescribed, in an order in which the ranks' own equations
/// follow each other.
struct FreeEquations
{
  std::vector<int> numbers;  ///< by equation of the part: from 0; -1 for a prescribed one
  int own = 0;               ///< equations of the nodes that the part owns
  int blockSize = 1;         ///< 3 when every node of the part has three or none
};

/// Numbers the free equations. first: of each node of the part, the number of its first one.
FreeEquations NumberFreeEquations(const Part& part, const std::vector<int>& first);

/// Conjugate gradients with algebraic multigrid by smoothed aggregation, for the stiffness of
/// solids: the rigid motions of the model are represented exactly on all grids. By PETSc, where the
/// program has been built with it.
///
/// Source: P. Vanek, J. Mandel, M. Brezina, Algebraic multigrid by smoothed aggregation for second
/// and fourth order elliptic problems, Computing 56 (1996) 179-196.
///
/// All ranks call each function at the same time, but for the destructor. A failure of the library
/// is fatal.
class Multigrid
{
public:
  static bool IsAvailable();

  Multigrid();
  Multigrid(const Multigrid&) = delete;
  Multigrid& operator=(const Multigrid&) = delete;
  ~Multigrid();

  /// Copies the matrix. entries: of this rank, by equation of the part.
  void EnterMatrix(const Part& part, const FreeEquations& equations,
                   const direct::Coordinates& entries);

  void MakeGrids(const Part& part);

  /// Solves for one right-hand side, by equation of the part; the result is by equation of the
  /// part too, 0 in equations that the part does not own. Returns the number of iterations; -1 when
  /// they do not converge.
  int Solve(std::span<double> side);

  /// Frees the grids. Last.
  void End();

private:
  struct Grids;

  std::unique_ptr<Grids> grids;
};

}  // namespace morlen::mpi
