#pragma once

#include <filesystem>
#include <span>

#include "common/model_data.h"
#include "common/tables.h"

namespace morlen {

/// Version of the layout below; it rises when readers must change.
constexpr int kJsonFormatVersion = 1;

/// Writes one object: "format" ("morlen-results"), "formatVersion", "program", "model" (file,
/// problem, counts), "units" (null without names), and "tables", each with its "columns"
/// (name, unit) and its "rows".
void WriteJson(const model::Model& model, const std::filesystem::path& modelFile,
               std::span<const tables::Table> tables, const std::filesystem::path& name);

}  // namespace morlen
