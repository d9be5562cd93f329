#pragma once

namespace morlen {

class Project;

/// Whether every number that the result files will hold is finite: displacements, strengths,
/// their axes and smoothed values, reactions, and what the writers compute along beams.
///
/// Values that are combined further must leave room for that: they are bounded, not only
/// finite.
bool AreResultsFinite(const Project& project);

}  // namespace morlen
