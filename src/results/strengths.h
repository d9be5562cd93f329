#pragma once

#include <cstdio>

#include "assembly/solver_kit.h"

namespace morlen {

class ElementFamilies;
struct Problem;
struct Solution;

// Strengths, reactions and smoothing of a solution whose displacements are known.

/// Computes the strengths of a mesh (from 0), from the displacements of the solution.
void CalcStrengths(const Problem& problem, const ElementFamilies& families, int mesh,
                   Solution& solution, const SolverKit& kit = kPlainKit);

/// Averages the results of the elements that meet at a node when smoothing is on, for the families
/// that have one. info: progress; may be null.
void Smooth(const Problem& problem, const ElementFamilies& families, Solution& solution,
            std::FILE* info);

/// Computes strengths and reactions, and smooths. Fatal when a result is not finite.
void CalcStrengthsAndReactions(const Problem& problem, const ElementFamilies& families,
                               Solution& solution, std::FILE* info,
                               const SolverKit& kit = kPlainKit);

}  // namespace morlen
