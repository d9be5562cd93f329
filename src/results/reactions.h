#pragma once

namespace morlen {

class Elem;
class ElementFamilies;
class ReaVecV;
struct NodeComponents;
struct Problem;
struct Solution;

/// Computes the reactions: the forces of the elements at the supports less the loads there. Fatal
/// when a force is not finite.
///
/// The mid-side nodes that the conversion to six nodes adds are in no result file. Half of the
/// reaction of such a node goes to each corner of its edge.
void CalcReactions(const Problem& problem, const ElementFamilies& families, Solution& solution);

/// Reaction `dof` (from 1) of the node at the end t = 0 or 1 of a beam; 0 elsewhere. Not used by
/// the analysis itself.
double GiveReaction(const NodeComponents& components, const ReaVecV& reactions, const Elem& beam,
                    int dof, double t);

}  // namespace morlen
