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
  CsvFile(const std::filesystem::path& name, std::span<const tables::Column> columns,
          AtomicFile::By writer = AtomicFile::By::Program);

  /// A cell for each column.
  void Row(std::span<const tables::Cell> cells);
  void Commit();

private:
  AtomicFile file;
  std::string line;
};

/// Fatal when the name is that of the standard output.
void RequireFolderName(const std::filesystem::path& folder);

/// Makes a folder that does not exist. Fatal when that fails, and for the standard output.
void MakeFolder(const std::filesystem::path& folder);

/// Removes the file of a table that an earlier run has written and this one does not have; nothing
/// when there is none. Fatal when that fails.
void RemoveStale(const std::filesystem::path& name,
                 AtomicFile::By writer = AtomicFile::By::Program);

/// Writes every table that has rows into a separate file, "name.csv" after the prefix, in the
/// folder, which is made when it does not exist. Removes the files of the tables without rows.
/// Fatal when that fails.
void WriteCsv(std::span<const tables::Table> tables, const std::filesystem::path& folder,
              const std::string& prefix = "", AtomicFile::By writer = AtomicFile::By::Program);

}  // namespace morlen
