#pragma once

namespace morlen {

class ElementFamilies;
struct MeshOutput;
struct Problem;
struct Solution;

/// Whether every number that the result files will hold is finite: displacements, strengths,
/// their axes and smoothed values, reactions, and the values that the writers compute along beams.
///
/// Values that are combined further must leave room for that: they are bounded, not only
/// finite.
bool AreResultsFinite(const Problem& problem, const ElementFamilies& families,
                      const Solution& solution);

/// Whether the forces and displacements along the beams of a mesh are bounded.
bool AreBeamSpansBounded(const MeshOutput& output);

}  // namespace morlen
