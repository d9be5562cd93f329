#pragma once

#include "problem/project.h"

/// Tells the solution of a structure from what a direct solver leaves of one that can move.
///
/// A motion without strain has a pivot that is a rounding error instead of 0, and often not
/// small enough to be refused. But no displacement resists the loads along such a motion: the
/// forces K·u then miss the loads f by about as much as there is of them, whatever the factors
/// say, while a stable structure misses them by rounding errors. So the largest entry of
/// K·u - f is compared with the right-hand side, forces and moments apart: with the sum of the
/// sizes of its entries, for what many small loads do together far away may be large beside
/// each of them. A second solution, whose loads stand in every equation, does the same for
/// motions that the loads of the model do not drive; the sum of its loads is kept small, and
/// it is compared with one of them.
///
/// The stiffness of the elements is calculated again for the reactions only, so the load cases
/// are kept until then.
class ResidualCheck
{
public:
  /// Borrows the nodes, with their supports.
  ResidualCheck(const VoidPlex& nodes, const ComponentScale& scale);

  /// A load case with loads in every free equation, the same in every run. The displacements
  /// are the right-hand side, to be solved in place.
  LoadCase Probe(int equations) const;

  /// Finds the sums of the sizes of the entries of the right-hand side that the solver gets.
  void FindScales(const ReaVecV& rightHandSide, LoadCase& loadCase) const;

  /// Whether the displacements hold the loads. forces: what the elements, in global axes without
  /// supports, make of them (K·u by equation); becomes what is missing of the loads.
  bool Holds(const LoadCase& loadCase, ReaVecV& forces) const;

  /// The same for the probe; also whether the work of what is missing is small beside that of
  /// the loads: in a long motion it is spread over many nodes.
  bool HoldsProbe(const LoadCase& probe, ReaVecV& forces) const;

  /// The displacements in global axes.
  ReaVecV InGlobalAxes(const LoadCase& loadCase) const;

private:
  void FindMissing(const LoadCase& loadCase, ReaVecV& forces) const;

  const VoidPlex& nodes;
  ComponentScale scale;
};
