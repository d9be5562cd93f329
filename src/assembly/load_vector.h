#pragma once

#include <optional>
#include <string>
#include <vector>

#include "numeric/reavecv.h"

namespace morlen {

class ElementFamilies;
class VoidPlex;
struct NodeComponents;
struct Problem;

// Load vectors are by equation, in global axes, with Problem::Equations() entries.

/// Adds the loads at nodes.
void AddNodalLoads(const VoidPlex& nodes, const NodeComponents& components, ReaVecV& loads);

/// A prescribed displacement other than 0, in the axes of its support.
struct PrescribedValue
{
  int equation;
  double value;
};

/// The prescribed displacements of a load vector, by ascending equation; others are 0.
using Settlements = std::vector<PrescribedValue>;

/// The prescribed displacements of the problem.
Settlements SettlementsOf(const VoidPlex& nodes, const NodeComponents& components);

/// A load vector of an analysis.
struct LoadVector
{
  ReaVecV values;
  /// The part of the problem's self-weight and element loads that `values` contains: results
  /// between the nodes of beams add its effect there.
  double elementLoads = 1.0;
  /// The values of the prescribed displacements; none: those of the problem.
  std::optional<Settlements> settlements = {};
  std::string name = {};  ///< for messages; may be empty
};

/// All loads of the problem: at nodes, self-weight and loads on elements.
ReaVecV AppliedLoads(const Problem& problem, const ElementFamilies& families);

}  // namespace morlen
