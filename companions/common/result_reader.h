#pragma once

#include <filesystem>
#include <unordered_map>

#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen::results {

/// Positions in the lists of a model by the numbers in its files.
struct Positions
{
  explicit Positions(const model::Model& model);

  std::unordered_map<int, int> nodes;
  std::unordered_map<int, int> elements;
};

/// The part of the text results that the post-process results have too.
struct TextDisplacements
{
  std::vector<Vec3> displacements;  ///< of the nodes
  std::vector<Vec3> forces;         ///< reactions
};

/// Reads the results for the post-processor; true when they have displacements of nodes.
bool ReadPostResults(const model::Model& model, const Positions& positions,
                     const std::filesystem::path& file, Results& results);

/// Reads the text results: rotations and end forces of beams into the results.
TextDisplacements ReadTextResults(const model::Model& model, const Positions& positions,
                                  const std::filesystem::path& file, Results& results);

}  // namespace morlen::results
