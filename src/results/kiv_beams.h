#pragma once

namespace morlen {

class TextOut;
struct MeshOutput;
struct Problem;

// Beams in the post-process results, for the row of an ElementFamily.

void WriteBeamPointSet(const Problem& problem, int points, TextOut& res);
void WriteBeamBlocks(const MeshOutput& output, TextOut& res);

}  // namespace morlen
