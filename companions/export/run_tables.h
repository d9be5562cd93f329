#pragma once

#include <filesystem>
#include <optional>

#include "common/atomic_file.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "common/run_record.h"

namespace morlen {

/// Where the tables of a run go.
struct TableTargets
{
  const char* program;              ///< that writes them
  std::filesystem::path modelFile;  ///< named in JSON
  std::optional<std::filesystem::path> csv, json;
};

/// Writes all tables of a model and its results. CSV has the run as a table, JSON as the member
/// "run". Fatal when a file cannot be written.
void WriteTables(const model::Model& model, const results::Results& results, const KnownRun& run,
                 const TableTargets& targets, AtomicFile::By writer = AtomicFile::By::Program);

}  // namespace morlen
