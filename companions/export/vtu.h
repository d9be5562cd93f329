#pragma once

#include <filesystem>
#include <iosfwd>

#include "common/atomic_file.h"
#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen {

struct VtuOptions
{
  bool withLoads = true;  ///< false for results that are not those of the model's own loads
  AtomicFile::By writer = AtomicFile::By::Program;
};

/// Writes an unstructured grid of VTK (XML) for ParaView: the grid of VtuGrid, with the results,
/// the model and, withLoads, its loads as arrays.
void WriteVtu(const model::Model& model, const results::Results& results, bool withLoads,
              std::ostream& out);
/// The same as an AtomicFile.
void WriteVtu(const model::Model& model, const results::Results& results,
              const std::filesystem::path& name, const VtuOptions& options = {});

}  // namespace morlen
