#pragma once

#include <functional>
#include <vector>

#include "assembly/internal_forces.h"
#include "assembly/probe_load.h"
#include "numeric/split_vector.h"

class SkyMatriu;
class VoidPlex;

/// One load case that a factorisation has solved, in the axes of the supports.
struct RefinedCase
{
  RefinedCase() = default;
  /// The displacements u hold the prescribed values where there are some.
  RefinedCase(ReaVecV loads_, ReaVecV u_) : loads(std::move(loads_)), u(std::move(u_)) {}

  double LastCorrection() const { return corrections.back(); }
  /// Whether the corrections stay larger than those of a structure that can move: the factors
  /// have lost its softest motion.
  bool Diverges() const;

  ReaVecV loads;  ///< all of them, by equation
  SplitVector u;
  /// The size of each correction relative to that of u, in order. Sizes are the largest of the
  /// nodes' translations and rotations times length; without displacements a correction is 0.
  std::vector<double> corrections;
};

/// The loads of the model, and loads that drive every motion.
struct RefinedCases
{
  RefinedCase model;
  RefinedCase probe;
};

/// Iterative refinement of a direct solution, and the test by it for structures that can move.
///
/// Each step computes the residual r = f − K·u element by element from relative displacements,
/// solves for the correction by the factors and adds it. The assembled matrix is rounded, and in
/// a long or stiff structure that changes its softest motions; the elements' forces are not, so
/// that the corrections remove that error too. See J. H. Wilkinson, Rounding Errors in Algebraic
/// Processes, HMSO, London 1963, section 3.4, and N. J. Higham, Accuracy and Stability of
/// Numerical Algorithms, 2nd ed., SIAM, Philadelphia 2002, chapter 12.
///
/// A motion without strain has a pivot that is a rounding error, so that the factors give it a
/// displacement. But no residual changes by it: each step adds the same displacement again, and
/// the corrections are 1/2, 1/3, 1/4 ... of u. Corrections of a structure that stands become
/// small, at once or step by step.
class Refinement
{
public:
  enum class Verdict
  {
    Accepted,
    Moves,    ///< the structure can move
    TooRough  ///< it may stand, but the arithmetic cannot tell its displacements
  };

  /// Adds K·u of the elements for every displacement of the argument.
  using AddForces = std::function<void(InternalForces&)>;

  /// Borrows the factors and the nodes with their supports.
  Refinement(const SkyMatriu& factors, const VoidPlex& nodes, const ComponentScale& scale,
             AddForces addForces);

  /// Corrects both cases until the model's correction has become negligible and that of the
  /// probe shows that the structure stands, or eight times.
  Verdict Run(RefinedCases& cases);

  /// The elements' forces K·u of the model in global axes, by equation, for its refined u.
  ReaVecV& ElementForces() { return elementForces; }
  /// Its residual f − K·u on the free equations in the axes of the supports.
  const ReaVecV& Residual() const { return residual; }

  /// The free equation in which u moves most, a rotation by its length.
  int LargestMotion(const RefinedCase& probe) const;

private:
  void Correct(const std::vector<RefinedCase*>& cases);
  std::vector<ReaVecV> Residuals(const std::vector<RefinedCase*>& cases);
  void TakeOutForces(const RefinedCase& one, ReaVecV forces, ReaVecV& residual) const;
  double Size(const ReaVecV& u) const;

  const SkyMatriu& factors;
  const VoidPlex& nodes;
  ComponentScale scale;
  AddForces addForces;
  ReaVecV elementForces;
  ReaVecV residual;
};
