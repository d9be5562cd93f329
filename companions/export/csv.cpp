#include "export/csv.h"

#include <cstdio>
#include <string_view>
#include <system_error>

#include "base/errorwriter.h"
#include "common/output_set.h"
#include "common/shortest.h"
#include "common/standard_output.h"

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

std::string Heading(std::span<const tables::Column> columns)
{
  std::string line;
  for (const tables::Column& column : columns) {
    if (!line.empty())
      line += ',';
    AppendText(line, column.unit.empty() ? column.name : column.name + " [" + column.unit + "]");
  }
  return line + '\n';
}

}  // namespace

CsvFile::CsvFile(const fs::path& name, std::span<const tables::Column> columns,
                 AtomicFile::By writer)
    : file(name, writer)
{
  file.Write(Heading(columns));
}

void CsvFile::Row(std::span<const tables::Cell> cells)
{
  line.clear();
  for (const tables::Cell& cell : cells) {
    std::visit(CellWriter{line}, cell);
    line += ',';
  }
  line.back() = '\n';
  file.Write(line);
}

void CsvFile::Commit()
{
  file.Commit();
}

void RequireFolderName(const fs::path& folder)
{
  if (IsStandardOutput(folder)) {
    Explain("a folder named - is ./-");
    Fatal("error: ", folder.string(), " is the standard output, and a folder is needed\n");
  }
}

void MakeFolder(const fs::path& folder)
{
  RequireFolderName(folder);
  std::error_code error;
  std::error_code unknown;
  fs::create_directories(folder, error);
  if (fs::is_directory(folder, unknown))
    return;
  Explain(fs::exists(folder, unknown) ? "it is a file" : error.message());
  Fatal("can't make folder ", folder.string(), "\n");
}

void RemoveStale(const fs::path& name, AtomicFile::By writer)
{
  std::error_code error;
  if (!fs::is_regular_file(name, error))
    return;
  if (writer.Set())
    return writer.Set()->RemoveAtCommit(name);
  if (!fs::remove(name, error)) {
    Explain(error.message());
    Fatal("can't remove file ", name.string(), ", which is of an earlier run\n");
  }
  std::fprintf(writer.Notes(), "removed %s, which is of an earlier run\n", name.c_str());
}

void WriteCsv(std::span<const tables::Table> tables, const fs::path& folder,
              const std::string& prefix, AtomicFile::By writer)
{
  MakeFolder(folder);
  for (const tables::Table& table : tables) {
    const fs::path name = folder / (prefix + table.name + ".csv");
    if (table.Rows() == 0) {
      RemoveStale(name, writer);
      continue;
    }
    CsvFile file(name, table.columns, writer);
    const std::size_t width = table.columns.size();
    for (std::size_t row = 0; row < table.Rows(); ++row)
      file.Row(std::span(table.cells).subspan(row * width, width));
    file.Commit();
  }
}

}  // namespace morlen
