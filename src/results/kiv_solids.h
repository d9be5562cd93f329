#pragma once

namespace morlen {

class TextOut;
struct MeshOutput;

// Solids in the post-process results, for the rows of an ElementFamily.

void WriteSolidBlocks(const MeshOutput& output, TextOut& res);

}  // namespace morlen
