#pragma once

namespace morlen {

class TextScan;
struct Problem;

// A hinge at a node hinges every beam end there. A hinge code hinges the ends of one beam.

/// The blocks `rotules` (nodes) and `elem_rotules` (beams), from after the keyword to their end.
/// Fatal on unknown nodes and elements, and on a code other than 11, 10, 01 and 00.
void ReadNodeHinges(TextScan& text, Problem& problem);
void ReadElementHinges(TextScan& text, Problem& problem);

/// Merges the hinges of nodes into the codes of the beams. Fixes the rotations of nodes that no
/// element holds: their equations would be empty.
void MergeHinges(Problem& problem);

}  // namespace morlen
