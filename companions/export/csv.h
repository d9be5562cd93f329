#pragma once

#include <filesystem>
#include <span>

#include "common/tables.h"

namespace morlen {

/// Writes every table into a separate file "name.csv" in the folder, which is made when it does not
/// exist. The first line has the names of the columns as "column [unit]". Fatal when that fails.
void WriteCsv(std::span<const tables::Table> tables, const std::filesystem::path& folder);

}  // namespace morlen
