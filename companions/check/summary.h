#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check/checks.h"
#include "common/model_data.h"
#include "common/vec3.h"

namespace morlen {

struct Problem;

namespace check {

/// The size of a model, its loads and the cost of its run, in the units of the results.
struct Summary
{
  bool plane = false;
  int nodes = 0;
  int beams = 0, shells = 0, solids = 0;
  bool refinedShells = false;  ///< the formulation of the shells, also when there are none
  int parts = 0;
  Box box;  ///< of all nodes
  std::vector<int> materials, unusedMaterials;
  model::Units units;  ///< of the results
  Point load{};        ///< sum of all loads, weight included
  Point weight{};      ///< sum of the weight
  int equations = 0;
  std::string solver;  ///< as in the problem file; "Automatic" when the run chooses by the work
  /// Stored numbers of the matrix; 0 when triangles get more nodes or the run chooses by the work.
  std::int64_t entries = 0;
  /// The reason why the model was not tested for mechanisms; empty when it was.
  std::string untested;
};

/// The summary of a model without errors. The loads are summed by the functions of the analysis,
/// whose errors go to the observer. Renumbers the nodes of the problem: after it, only
/// CheckMechanisms may follow. subject: of this problem.
Summary Summarise(Problem& problem, const Subject& subject);

/// The summary as lines of text.
std::string TextOf(const Summary& summary);

}  // namespace check

}  // namespace morlen
