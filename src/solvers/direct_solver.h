#pragma once

#include <cstdio>
#include <vector>

#include "numeric/reavecv.h"
#include "solvers/bsolver.h"

namespace morlen {

/// A matrix that is factorised once and then solves any number of right-hand sides.
///
/// Order of use: as BSolver, with Factorise and Substitute for Solver. SetToZero prepares another
/// assembly with the same couplings; what AcceptLostPivots has set remains.
///
/// The factors of a structure that can move may exist: rounding hides the motion. See Refinement,
/// which finds it. A solver need not test its pivots itself, but must go on with one that is only a
/// rounding error as if it were none: then the motion appears in the solutions.
class DirectSolver : public BSolver
{
public:
  /// Right-hand sides, each of GiveSize() components.
  using RightHandSides = std::vector<ReaVecV*>;

  /// The value of the keyword `Solver` that asks for it.
  virtual const char* Name() const = 0;

  /// Factorises the assembled matrix, which ends the assembly. Returns 0; or an equation that
  /// cannot be eliminated, because its row is 0 or its pivot has lost all digits; or -1 when the
  /// matrix cannot be factorised for another reason, such as an entry that is not a number.
  virtual int Factorise(std::FILE* info) = 0;

  /// True while there are factors.
  virtual bool IsFactorised() const = 0;

  /// Solves with the factors: the right-hand sides become solutions.
  virtual void Substitute(const RightHandSides& sides, std::FILE* info) const = 0;

  /// From now on, pivots are accepted whatever digits they have lost, as long as they are not 0.
  /// Has no effect on a solver that does not test its pivots.
  virtual void AcceptLostPivots() {}

  /// After Factorise has refused this equation: the motion u with u = 1 there for which K·u is 0
  /// elsewhere. By default 0 elsewhere, for solvers that refuse only rows of zeros.
  virtual ReaVecV MotionOfRefused(int equation) const
  {
    ReaVecV motion;
    motion.resize(GiveSize(), 0.0);
    motion(equation) = 1.0;
    return motion;
  }

  /// Factorise, then Substitute. The result is that of Factorise; when it is not 0, the sides are
  /// as they were. Call it once for each assembled matrix.
  int Solver(const RightHandSides& sides, std::FILE* info)
  {
    const int refused = Factorise(info);
    if (refused == 0)
      Substitute(sides, info);
    return refused;
  }
  int Solver(ReaVecV& b, std::FILE* info) override { return Solver(RightHandSides{&b}, info); }

protected:
  DirectSolver() = default;
};

}  // namespace morlen
