#pragma once

#include <iosfwd>

namespace morlen {

class ElementFamilies;
class TextOut;
struct MeshOutput;
struct Problem;
struct Solution;

/// Writes the text results: displacements, end forces of beams, reactions.
void WriteResults(const Problem& problem, const ElementFamilies& families, const Solution& solution,
                  std::ostream& out);

/// Writes the end forces of a mesh of beams, the fixed-end forces of the loads on their spans
/// included.
void WriteBeamForces(const MeshOutput& output, TextOut& out);

}  // namespace morlen
