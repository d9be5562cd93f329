#pragma once

#include <array>
#include <vector>

#include "common/model_data.h"

namespace morlen {

struct Problem;

/// A force and a moment, in global axes.
struct Wrench
{
  Vec3 force{};
  Vec3 moment{};
};

/// The load on a beam between its ends, self-weight included: force per length, global axes.
struct LineLoad
{
  int element;  ///< position in the model's list
  Vec3 q;
};

/// All loads on a model as the analysis applies them: loads on elements and self-weight are
/// equivalent nodal loads.
struct AppliedLoads
{
  std::vector<Wrench> nodes;      ///< all loads, by position in the model's list
  std::vector<Vec3> onSurfaces;   ///< the part of `nodes` from shells and solids, forces only
  std::vector<LineLoad> onBeams;  ///< loads that are not 0
};

/// Checks the references of a problem that has been read, and computes the data that its loads
/// need. Fatal where the program refuses the material of an element.
void PrepareLoads(Problem& problem);

/// The loads of a problem after PrepareLoads, not prepared for an analysis. model: the data of the
/// same problem. Fatal where the program refuses the load or the material of an element.
AppliedLoads AppliedLoadsOf(const Problem& problem, const model::Model& model);

}  // namespace morlen
