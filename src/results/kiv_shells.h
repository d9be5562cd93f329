#pragma once

namespace morlen {

class TextOut;
struct MeshOutput;
struct Problem;

// Shells in the post-process results, for the rows of an ElementFamily.

void WriteShellPointSet(const Problem& problem, int points, TextOut& res);
void WriteShellBlocks(const MeshOutput& output, TextOut& res);

}  // namespace morlen
