#pragma once

#include "common/model_data.h"
#include "common/result_data.h"
#include "export/shell_corners.h"
#include "export/vtu_grid.h"

namespace morlen {

// Groups of arrays of a grid, which keeps no reference to their values.

/// Displacements, reactions, forces and stresses.
void AddResults(VtuGrid& grid, const model::Model& model, const results::Results& results,
                const ShellCorners& corners);

/// Numbers of nodes, elements, meshes and materials, local axes, values of materials, supports.
void AddModel(VtuGrid& grid, const model::Model& model);

/// Loads on nodes and elements, prescribed displacements.
void AddLoads(VtuGrid& grid, const model::Model& model);

}  // namespace morlen
