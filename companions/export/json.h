#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "common/atomic_file.h"
#include "common/model_data.h"
#include "common/tables.h"

namespace morlen {

/// Version of the layout below; it rises when readers must change.
constexpr int kJsonFormatVersion = 1;

/// One object, written row by row: "format" ("morlen-results" and the like), "formatVersion",
/// "program", "model" (file, problem, counts), "units" (null without names), further members, and
/// "tables", each with its "columns" (name, unit) and its "rows". Numbers have the fewest digits
/// that give the same number again.
class JsonTables
{
public:
  struct Head
  {
    const char* format;
    const char* program;
    std::string more = {};  ///< members of the object as JSON, without braces; may be empty
  };

  JsonTables(const std::filesystem::path& name, const Head& head, const model::Model& model,
             const std::filesystem::path& modelFile,
             AtomicFile::By writer = AtomicFile::By::Program);

  void Begin(const std::string& table, std::span<const tables::Column> columns);
  void Row(std::span<const tables::Cell> cells);
  void End();
  void Commit();

private:
  AtomicFile file;
  std::string line;
  const char* tableSeparator = "\n";
  const char* rowSeparator = "";
};

/// Writes the tables that have rows as such an object.
void WriteJson(const JsonTables::Head& head, const model::Model& model,
               const std::filesystem::path& modelFile, std::span<const tables::Table> tables,
               const std::filesystem::path& name, AtomicFile::By writer = AtomicFile::By::Program);

}  // namespace morlen
