#pragma once

#include "support/precise.h"
#include "support/solved.h"
#include "support/structure.h"

namespace morlen {

// Refined shells of any ratio of radius to thickness.

/// A quarter of a cylindrical roof on diaphragms: radius 25, length 50, 80 degrees. n by n squares,
/// cut into triangles of three or six nodes, with a load of 1 downwards at each node.
Structure QuarterRoof(int n, double ratio, int nnode);

/// The same of six-node triangles with the middles of the edges on the cylinder.
Structure QuarterRoofOnCylinder(int n, double ratio);

/// A cylindrical tank on a clamped edge, full of water: radius 10, height 10; 3 n / 2
/// squares around and 2 n / 3 upwards. The pressure acts at the nodes.
Structure WaterTank(int n, double ratio, int nnode);

/// The largest differences between results and reference, each relative to the largest value of its
/// own kind.
struct KindErrors
{
  double displacement, rotation, normalForce, moment, shear, reaction, reactionMoment;

  double Largest() const;
};

KindErrors KindErrorsOf(const Solved& solved, const Structure& structure,
                        const PreciseResults& exact);

}  // namespace morlen
