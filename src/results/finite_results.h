#pragma once

namespace morlen {

class ElementFamilies;
struct MeshOutput;
struct Problem;
struct Solution;

/// True when every number of the result files is finite: displacements, strengths, their axes and
/// smoothed values, reactions, and the values that the writers compute along beams.
///
/// Values from which the writers compute others must be at most 1e300.
bool AreResultsFinite(const Problem& problem, const ElementFamilies& families,
                      const Solution& solution);

/// True when the forces and displacements along the beams of a mesh are at most 1e300.
bool AreBeamSpansBounded(const MeshOutput& output);

}  // namespace morlen
