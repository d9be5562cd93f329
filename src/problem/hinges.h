#pragma once

namespace morlen {

class TextScan;
struct Problem;

// Hinges at nodes, where every beam end is hinged, and at the ends of single beams.

/// The blocks `rotules` (nodes) and `elem_rotules` (beams), from after the keyword to their end.
/// Fatal on unknown nodes and elements, and on a code other than 11, 10, 01 and 00.
void ReadNodeHinges(TextScan& text, Problem& problem);
void ReadElementHinges(TextScan& text, Problem& problem);

/// Merges the hinges of nodes into the codes of the beams, and fixes the rotations of nodes that no
/// connection holds.
void MergeHinges(Problem& problem);

}  // namespace morlen
