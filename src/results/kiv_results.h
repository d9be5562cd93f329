#pragma once

#include <iosfwd>

namespace morlen {

class ElementFamilies;
class ReaVecV;
class TextOut;
class VoidPlex;
struct NodeComponents;
struct Problem;
struct Solution;

/// Writes the post-process results. meshFileName: of the mesh file that is written before them;
/// null for none.
void WriteKivResults(const Problem& problem, const ElementFamilies& families,
                     const Solution& solution, std::ostream& res, const char* meshFileName);

/// The block of nodal displacements of shells and solids, for the nodes of ForEachNodeRead.
void WriteKivDisplacements(const VoidPlex& nodes, int initialNumNodes,
                           const NodeComponents& components, const ReaVecV& displacements,
                           TextOut& res);

}  // namespace morlen
