#pragma once

namespace morlen {

class Elem;
class ElementFamilies;
struct Problem;
struct Solution;

/// Adds the forces of the elements to the reactions, which hold minus the loads. Mid-side nodes
/// that the conversion to six nodes made hand theirs to the corners of their edge: they are in no
/// result file. Fatal when a force is not finite.
void CalcReactions(const Problem& problem, const ElementFamilies& families, Solution& solution);

/// Reaction `dof` (from 1) of the node at the end t = 0 or 1 of a beam; 0 elsewhere.
double GiveReaction(const Problem& problem, const Solution& solution, const Elem& beam, int dof,
                    double t);

}  // namespace morlen
