#pragma once

#include <cstdio>

namespace morlen {

class ElementFamilies;
struct Problem;
struct Solution;

// Strengths, reactions and smoothing of a solution whose displacements are known.

/// Computes the strengths of all meshes.
void CalcStrengths(const Problem& problem, const ElementFamilies& families, Solution& solution);

/// Averages the results of elements that meet at a node, where the problem asks for it. info:
/// progress; may be null.
void Smooth(const Problem& problem, const ElementFamilies& families, Solution& solution,
            std::FILE* info);

/// Computes strengths and reactions, and smooths. Fatal when a result is not finite.
void CalcStrengthsAndReactions(const Problem& problem, const ElementFamilies& families,
                               Solution& solution, std::FILE* info);

}  // namespace morlen
