#pragma once

#include <vector>

#include "support/solved.h"
#include "support/structure.h"

namespace morlen {

/// Displacements, reactions and element forces of a structure, computed with 113 bits and rounded
/// to doubles at the end. Their order is that of the numbers of the file.
struct PreciseResults
{
  std::vector<double> displacements;  ///< node after node, global axes
  std::vector<double> reactions;      ///< node after node, global axes; 0 without a support
  std::vector<double> beams;          ///< end forces, beam after beam
  std::vector<double> triangles;      ///< eight forces at each Gauss point
  std::vector<double> tetrahedra;     ///< six stresses at each Gauss point
};

/// Solves the discrete model of the program (docs/theory.md) with elements, assembly and solver
/// that share no code with it. The solution of profile factors with 64 bits, or with 113 bits where
/// 64 do not suffice, is refined with residuals of 113 bits until the correction is below 1e-20 of
/// the displacements. Fails the test when that is not reached. The nodes keep their numbers or are
/// sorted along the longest side, whichever profile is smaller. Sections have no angles.
PreciseResults SolvePrecisely(const Structure& structure);

/// The same for a profile that is too large: the direct solver of the program replaces the factors.
/// The residuals are those of the reference, so that they show the errors of the program. The last
/// correction is below 1e-6 of the displacements, and each run reduces the error by that factor.
PreciseResults RefinePrecisely(const Structure& structure);

/// Sets the loads and the prescribed values of the structure so that its displacements are the
/// given ones, and returns its results. Computed with 64 bits; the loads are rounded to 53 bits.
PreciseResults LoadFor(Structure& structure, const std::vector<double>& displacements);

/// A curvature of the lines along one axis (from 0) that turns them away from another.
struct Bend
{
  int along = 0;
  int towards = 2;
  double curvature = 1e-3;
};

/// Displacements and rotations (half the curl) of a body that is bent without shear, node after
/// node. They are quadratic, and 0 at the origin.
std::vector<double> BentDisplacements(const Structure& structure, const std::vector<Bend>& bends,
                                      const Vector3& origin = {});

/// The largest differences, each relative to the largest value of its kind. When a kind is very
/// small, its differences are relative to the other kind: moments to forces times the mean length
/// of the elements, forces to moments divided by the size of the structure.
struct Errors
{
  double displacement = 0.0;
  double rotation = 0.0;
  double force = 0.0;  ///< of elements; stresses of solids
  double moment = 0.0;
  double reaction = 0.0;
  double reactionMoment = 0.0;

  double Largest() const;
};

Errors ErrorsOf(const Solved& solved, const Structure& structure, const PreciseResults& exact);

}  // namespace morlen
