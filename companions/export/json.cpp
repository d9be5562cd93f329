#include "export/json.h"

#include <nlohmann/json.hpp>

#include "common/command_line.h"
#include "common/shortest.h"
#include "common/utf8.h"

namespace morlen {

using Json = nlohmann::ordered_json;

namespace {

Json Units(const model::Units& units)
{
  if (units.force.empty())
    return nullptr;
  return {{"force", units.force},
          {"length", units.length},
          {"pressure", units.pressure},
          {"angle", "rad"}};
}

Json HeadOf(const JsonTables::Head& head, const model::Model& model,
            const std::filesystem::path& modelFile)
{
  return {{"format", head.format},
          {"formatVersion", kJsonFormatVersion},
          {"program", {{"name", head.program}, {"version", ProgramVersion()}}},
          {"model",
           {{"file", ToUtf8(modelFile.filename().string())},
            {"problem", model.plane ? "2d" : "3d"},
            {"nodes", model.nodes.size()},
            {"elements", model.elements.size()},
            {"meshes", model.meshes}}},
          {"units", Units(model.units)}};
}

struct CellWriter
{
  std::string& line;

  void operator()(std::monostate) const { line += "null"; }
  void operator()(int number) const { AppendNumber(line, number); }
  void operator()(double number) const { AppendNumber(line, number); }
  void operator()(const char* text) const { line += Json(ToUtf8(text)).dump(); }
};

Json Columns(std::span<const tables::Column> columns)
{
  Json list = Json::array();
  for (const tables::Column& column : columns)
    list.push_back({{"name", column.name}, {"unit", column.unit}});
  return list;
}

}  // namespace

JsonTables::JsonTables(const std::filesystem::path& name, const Head& head,
                       const model::Model& model, const std::filesystem::path& modelFile,
                       AtomicFile::By writer)
    : file(name, writer)
{
  std::string text = HeadOf(head, model, modelFile).dump();
  text.pop_back();
  file.Write(text + (head.more.empty() ? "" : ",") + head.more + ",\"tables\":{");
}

void JsonTables::Begin(const std::string& table, std::span<const tables::Column> columns)
{
  file.Write(tableSeparator + Json(table).dump() + ":{\"columns\":" + Columns(columns).dump() +
             ",\"rows\":[");
  tableSeparator = ",\n";
  rowSeparator = "\n";
}

void JsonTables::Row(std::span<const tables::Cell> cells)
{
  line = rowSeparator;
  rowSeparator = ",\n";
  line += '[';
  for (const tables::Cell& cell : cells) {
    std::visit(CellWriter{line}, cell);
    line += ',';
  }
  line.back() = ']';
  file.Write(line);
}

void JsonTables::End()
{
  file.Write("]}");
}

void JsonTables::Commit()
{
  file.Write("}}\n");
  file.Commit();
}

void WriteJson(const JsonTables::Head& head, const model::Model& model,
               const std::filesystem::path& modelFile, std::span<const tables::Table> tables,
               const std::filesystem::path& name, AtomicFile::By writer)
{
  JsonTables json(name, head, model, modelFile, writer);
  for (const tables::Table& table : tables) {
    if (table.Rows() == 0)
      continue;
    json.Begin(table.name, table.columns);
    const std::size_t width = table.columns.size();
    for (std::size_t row = 0; row < table.Rows(); ++row)
      json.Row(std::span(table.cells).subspan(row * width, width));
    json.End();
  }
  json.Commit();
}

}  // namespace morlen
