#pragma once

#include "assembly/refined_triangle.h"

namespace morlen {

// The membrane and the plate of the refined shell triangle of three nodes.

/// shares: of the nodes. higher: HigherMembraneCoefficient of the section.
void SetMembrane(const CornerTriangle& t, const double* shares, const ShellSection& section,
                 double higher, ThreeNodeShell::Part& part);

/// shearAtCentroid: shear strains at the centroid for the further rows.
void SetPlate(const CornerTriangle& t, const ShellSection& section, ThreeNodeShell::Part& part,
              double (&shearAtCentroid)[2][3]);

}  // namespace morlen
