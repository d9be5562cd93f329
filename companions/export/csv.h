#pragma once

#include <filesystem>
#include <span>

#include "common/tables.h"

namespace morlen {

/// Writes every table into a file of its own in the folder, which is made when it does not
/// exist: "name.csv", with "column [unit]" in the first line. Fatal when that fails.
void WriteCsv(std::span<const tables::Table> tables, const std::filesystem::path& folder);

}  // namespace morlen
