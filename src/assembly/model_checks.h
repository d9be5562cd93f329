#pragma once

namespace morlen {

class ElementFamilies;
struct Problem;

/// Refuses, by its name, an unknown node or material of an element. To be called once the whole
/// file is read, before anything follows a reference. Materials are needed by the kinds of elements
/// that are analysed. Readers refuse the unknown references of supports, loads and hinges.
void CheckReferences(const Problem& problem, const ElementFamilies& families);

/// Refuses elements that cannot be analysed, beams without length and tilted axes of supports in
/// plane problems. The nodes must still have the numbers of the file.
void CheckModel(const Problem& problem, const ElementFamilies& families);

/// Refuses meshes that `Solver Double` does not take.
void CheckDoubleSolver(const Problem& problem);

}  // namespace morlen
