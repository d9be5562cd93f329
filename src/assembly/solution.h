#pragma once

#include <vector>

#include "numeric/reavecv.h"
#include "numeric/split_vector.h"

namespace morlen {

/// Results of the elements of one mesh, one block of values for each element.
struct MeshResults
{
  std::vector<int> numbers;  ///< of the elements, ascending
  int blockSize = 0;         ///< values of an element
  int points = 0;            ///< Gauss points of an element; 0 for beams
  ReaVecV strengths;
  ReaVecV mainAngles;     ///< six Euler angles for each point: axes of forces, then of moments
  ReaVecV mainStrengths;  ///< principal values, besides the local ones

  /// Position before the block of an element's values: its value k is strengths(Block + k).
  int Block(int elemNumber) const;
};

/// The accuracy of the displacements.
struct SolutionAccuracy
{
  double error = 0.0;     ///< estimated error relative to the displacements
  double residual = 0.0;  ///< ‖f − K·u‖ / ‖f‖ over the free equations
};

/// The results of an analysis for one load vector. Vectors by equation are in global axes.
struct Solution
{
  SplitView Displacements() const { return {displacements, displacementRests}; }

  double elementLoads = 1.0;  ///< see LoadVector
  ReaVecV displacements;      ///< by equation
  ReaVecV displacementRests;  ///< the further digits of the displacements, see SplitVector
  ReaVecV elementForces;      ///< K·u by equation, when known; the reactions consume it
  ReaVecV supportLoads;       ///< minus the loads that act on supports, by equation
  ReaVecV reactions;          ///< by equation; 0 where no support carries the component
  SolutionAccuracy accuracy;
  std::vector<MeshResults> results;  ///< in the order of the meshes
  ReaVecV nodalStresses;             ///< of solids, six for each node by its system number
};

}  // namespace morlen
