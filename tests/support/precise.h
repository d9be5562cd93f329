#pragma once

#include <vector>

#include "support/solved.h"
#include "support/structure.h"

namespace morlen {

/// Displacements, reactions and element forces of a structure, computed with 113 bits and rounded
/// at the end; by the numbers of the file.
struct PreciseResults
{
  std::vector<double> displacements;  ///< node after node, global axes
  std::vector<double> reactions;      ///< node after node, global axes; 0 where nothing holds
  std::vector<double> beams;          ///< end forces, beam after beam
  std::vector<double> triangles;      ///< eight forces a point
  std::vector<double> tetrahedra;     ///< six stresses a point
};

/// Solves the discrete model of the program (docs/theory.md) with elements, assembly and solver
/// that share nothing with it. Factors by profile of 64 bits, and where these do not suffice of
/// 113, are improved by residuals of 113 bits until the correction is below 1e-20 of the
/// displacements. Fails the test when that is not reached. The profile is that of the nodes as
/// they are numbered or sorted along the longest side. Sections have no angles.
PreciseResults SolvePrecisely(const Structure& structure);

/// The same where the profile is too large: the program's direct solver takes the place of the
/// factors. Its errors show in the residuals, which are the reference's own; the last correction
/// is below 1e-6 of the displacements, and one run takes away as much of an error.
PreciseResults RefinePrecisely(const Structure& structure);

/// Gives the structure the loads and the prescribed values under which these are its
/// displacements, and its results. Computed with 64 bits; the loads are rounded to 53.
PreciseResults LoadFor(Structure& structure, const std::vector<double>& displacements);

/// A curvature of the lines along one axis (from 0) that turns them away from another.
struct Bend
{
  int along = 0;
  int towards = 2;
  double curvature = 1e-3;
};

/// Displacements and rotations (half the curl) of a body that is bent without shear: quadratic,
/// 0 at the origin. Node after node.
std::vector<double> BentDisplacements(const Structure& structure, const std::vector<Bend>& bends,
                                      const Vector3& origin = {});

/// Largest differences, each relative to the largest value of its kind. A kind that is next to
/// nothing is compared with the other one: moments with forces times the mean length of the
/// elements, forces with moments over the size of the structure.
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
