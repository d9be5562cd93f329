#pragma once

#include <fstream>

namespace morlen {

class ElementFamilies;
class ReaVecV;
class TextOut;
struct Problem;
struct Solution;

/// Writes the post-process results; before them the mesh file when it has a name.
void WriteKivResults(const Problem& problem, const ElementFamilies& families,
                     const Solution& solution, std::ofstream& res, const char* meshFileName);

/// The block of nodal displacements of shells and solids.
void WriteKivDisplacements(const Problem& problem, const ReaVecV& displacements, TextOut& res);

}  // namespace morlen
