#pragma once

#include <functional>
#include <vector>

#include "assembly/free_equations.h"
#include "assembly/internal_forces.h"
#include "numeric/split_vector.h"

namespace morlen {

class DirectSolver;
class VoidPlex;

/// A load case that has been solved with the factors of the matrix, in the axes of the supports.
struct RefinedCase
{
  /// The norm of a residual. Moments are divided by the mean length of the elements.
  enum class Norm
  {
    Euclidean,
    Largest
  };

  RefinedCase() = default;
  /// loads: by equation. size: the norm of the right-hand side of the factors on the free
  /// equations. u: the solution, with the prescribed values in the other equations.
  RefinedCase(ReaVecV loads_, Norm norm_, double size, ReaVecV u_);

  double LastCorrection() const { return corrections.back(); }
  double LastResidual() const { return residuals.back(); }
  /// True when the corrections stay larger than those of a structure that can move. The factors
  /// have then lost the softest motion of the structure.
  bool Diverges() const;

  ReaVecV loads;
  Norm norm = Norm::Euclidean;
  double loadSize = 0.0;
  SplitVector u;
  ReaVecV elementForces;  ///< K·u of the elements in global axes, by equation
  ReaVecV residual;       ///< f − K·u on the free equations, else 0
  /// The size of each correction relative to that of u, in order. A size is the largest translation
  /// of a node, or rotation times length, whichever is larger. Without displacements it is 0.
  std::vector<double> corrections;
  /// The size of the residual relative to that of the loads, before each correction and, where it
  /// was needed, after the last.
  std::vector<double> residuals;
};

/// The size of loads by a norm, on the free equations.
double SizeOnFree(RefinedCase::Norm norm, const VoidPlex& nodes, const ComponentScale& scale,
                  const ReaVecV& loads);

/// The load cases of the model, and the probe, whose loads do work on every motion.
struct RefinedCases
{
  std::vector<RefinedCase> models;
  RefinedCase probe;
};

/// Iterative refinement of a direct solution, and the test by it for structures that can move.
///
/// Each step computes the residual r = f − K·u element by element from relative displacements,
/// solves for the correction with the factors and adds it. Rounding of the assembled matrix changes
/// the softest motions of a long or stiff structure. The forces of the elements do not have this
/// error, so that the corrections remove it. See J. H. Wilkinson, Rounding Errors in Algebraic
/// Processes, HMSO, London 1963, section 3.4, and N. J. Higham, Accuracy and Stability of
/// Numerical Algorithms, 2nd ed., SIAM, Philadelphia 2002, chapter 12.
///
/// The pivot of a motion without strain is a rounding error, so that the factors give the motion a
/// displacement. The displacement does not change the residual. Each step therefore adds it again,
/// and the corrections are 1/2, 1/3, 1/4 ... of u. In a stable structure the corrections fall.
///
/// If a much softer part moves far more, the corrections of the motion are too small to show. Then
/// the residual shows it: no element resists the probe's loads along it.
class Refinement
{
public:
  enum class Verdict
  {
    Accepted,
    Moves,    ///< the structure can move
    TooRough  ///< it may be stable, but a double has too few digits for its displacements or forces
  };

  /// Adds K·u of all elements for every displacement vector of the argument.
  using AddForces = std::function<void(InternalForces&)>;

  /// Borrows the factors and the nodes with their supports.
  Refinement(const DirectSolver& factors, const VoidPlex& nodes, const ComponentScale& scale,
             AddForces addForces);

  /// Corrects each model until its correction and its residual are negligible or fall no more.
  /// Corrects the probe until both are small enough to accept the structure. There are at most
  /// eight steps. A probe that an earlier run has accepted stays as it is.
  Verdict Run(RefinedCases& cases) const;

  /// The free equation with the largest displacement of u; rotations count times the length.
  int LargestMotion(const ReaVecV& u) const;

  /// The motion of a structure for which Run has found Moves, in the axes of the supports. If there
  /// are several, it is a mixture. It is one more correction, which has only traces of the elastic
  /// displacements of the probe.
  ReaVecV Motion(const RefinedCase& probe) const;

private:
  void Correct(const std::vector<RefinedCase*>& cases) const;
  void FindResiduals(const std::vector<RefinedCase*>& cases) const;
  void FindResidual(RefinedCase& one) const;
  double Size(const ReaVecV& u) const;

  const DirectSolver& factors;
  const VoidPlex& nodes;
  ComponentScale scale;
  AddForces addForces;
};

}  // namespace morlen
