#pragma once

#include <array>
#include <vector>

#include "common/model_data.h"

namespace morlen {

class Project;

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

/// All that acts on a model, as the analysis takes it: loads on elements and self-weight as
/// equivalent loads of the nodes.
struct AppliedLoads
{
  std::vector<Wrench> nodes;      ///< all loads, by position in the model's list
  std::vector<Vec3> onSurfaces;   ///< of these, the forces from shells and solids
  std::vector<LineLoad> onBeams;  ///< those that are not 0
};

/// The loads of a project that has been read and not analysed; model: its data. Fatal where the
/// program refuses an element's load or material. The load vector of the project is used for it.
AppliedLoads AppliedLoadsOf(Project& project, const model::Model& model);

}  // namespace morlen
