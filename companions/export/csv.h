#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "common/atomic_file.h"
#include "common/tables.h"

namespace morlen {

/// A CSV file (RFC 4180) that is written row by row. Its first line has the names of the columns as
/// "column [unit]"; numbers have the fewest digits that give the same number again.
class CsvFile
{
public:
  CsvFile(const std::filesystem::path& name, std::span<const tables::Column> columns);

  /// A cell for each column.
  void Row(std::span<const tables::Cell> cells);
  void Commit();

private:
  AtomicFile file;
  std::string line;
};

/// Makes a folder that does not exist. Fatal when that fails.
void MakeFolder(const std::filesystem::path& folder);

/// Writes every table into a separate file, "name.csv" after the prefix, in the folder, which is
/// made when it does not exist. Fatal when that fails.
void WriteCsv(std::span<const tables::Table> tables, const std::filesystem::path& folder,
              const std::string& prefix = "");

}  // namespace morlen
