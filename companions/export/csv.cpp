#include "export/csv.h"

#include <string>
#include <string_view>

#include "base/errorwriter.h"
#include "common/atomic_file.h"
#include "common/shortest.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// In quotes where the text has characters that separate cells (RFC 4180).
void AppendText(std::string& line, std::string_view text)
{
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char c : text)
    line.append(c == '"' ? 2 : 1, c);
  line += '"';
}

struct CellWriter
{
  std::string& line;

  void operator()(std::monostate) const {}
  void operator()(int number) const { AppendNumber(line, number); }
  void operator()(double number) const { AppendNumber(line, number); }
  void operator()(const char* text) const { AppendText(line, text); }
};

std::string Heading(const tables::Table& table)
{
  std::string line;
  for (const tables::Column& column : table.columns) {
    if (!line.empty())
      line += ',';
    AppendText(line, column.unit.empty() ? column.name : column.name + " [" + column.unit + "]");
  }
  return line + '\n';
}

void WriteTable(const tables::Table& table, const fs::path& name)
{
  AtomicFile file(name);
  file.Write(Heading(table));
  std::string line;
  std::size_t column = 0;
  for (const tables::Cell& cell : table.cells) {
    std::visit(CellWriter{line}, cell);
    const bool last = ++column == table.columns.size();
    line += last ? '\n' : ',';
    if (!last)
      continue;
    file.Write(line);
    line.clear();
    column = 0;
  }
  file.Commit();
}

}  // namespace

void WriteCsv(std::span<const tables::Table> tables, const fs::path& folder)
{
  std::error_code error;
  fs::create_directories(folder, error);
  if (!fs::is_directory(folder, error))
    Fatal("can't make folder ", folder.string(), "\n");
  for (const tables::Table& table : tables)
    WriteTable(table, folder / (table.name + ".csv"));
}

}  // namespace morlen
