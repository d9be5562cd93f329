#pragma once

#include "problem/problem.h"

namespace morlen {

class ElementFamilies;

/// Fatal when an element has an unknown node, or an unknown material although its family is
/// analysed. Call it after the whole file is read and before a reference is followed. The readers
/// refuse unknown references of supports, loads and hinges. materials: of Material by number.
void CheckReferences(const Meshes& meshes, const VoidPlex& materials,
                     const ElementFamilies& families);

/// Fatal on elements that cannot be analysed in this type of problem, on beams without length, and
/// on tilted axes of supports in plane problems. The nodes must still have the numbers of the file.
void CheckModel(const Meshes& meshes, PROBLEMTYPE type, const NodeComponents& components,
                const ElementFamilies& families);

/// Fatal on meshes that `Solver Double` does not accept.
void CheckDoubleSolver(const Meshes& meshes);

}  // namespace morlen
