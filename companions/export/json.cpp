#include "export/json.h"

#include <nlohmann/json.hpp>
#include <string>

#include "common/atomic_file.h"
#include "common/command_line.h"
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

Json Head(const model::Model& model, const std::filesystem::path& modelFile)
{
  return {{"format", "morlen-results"},
          {"formatVersion", kJsonFormatVersion},
          {"program", {{"name", "morlen-export"}, {"version", ProgramVersion()}}},
          {"model",
           {{"file", ToUtf8(modelFile.filename().string())},
            {"problem", model.plane ? "2d" : "3d"},
            {"nodes", model.nodes.size()},
            {"elements", model.elements.size()},
            {"meshes", model.meshes}}},
          {"units", Units(model.units)}};
}

struct CellToJson
{
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(int number) const { return number; }
  Json operator()(double number) const { return number; }
  Json operator()(const char* text) const { return text; }
};

Json Columns(const tables::Table& table)
{
  Json columns = Json::array();
  for (const tables::Column& column : table.columns)
    columns.push_back({{"name", column.name}, {"unit", column.unit}});
  return columns;
}

// One row on a line, written row by row: the text of all rows of a large model takes much memory.
void WriteTable(const tables::Table& table, AtomicFile& file)
{
  file.Write(Json(table.name).dump() + ":{\"columns\":" + Columns(table).dump() + ",\"rows\":[");
  for (std::size_t row = 0; row < table.Rows(); ++row) {
    Json cells = Json::array();
    for (std::size_t k = 0; k < table.columns.size(); ++k)
      cells.push_back(std::visit(CellToJson{}, table.cells[row * table.columns.size() + k]));
    file.Write((row > 0 ? ",\n" : "\n") + cells.dump());
  }
  file.Write("]}");
}

}  // namespace

void WriteJson(const model::Model& model, const std::filesystem::path& modelFile,
               std::span<const tables::Table> tables, const std::filesystem::path& name)
{
  AtomicFile file(name);
  std::string head = Head(model, modelFile).dump();
  head.pop_back();
  file.Write(head + ",\"tables\":{");
  const char* separator = "\n";
  for (const tables::Table& table : tables) {
    file.Write(separator);
    WriteTable(table, file);
    separator = ",\n";
  }
  file.Write("}}\n");
  file.Commit();
}

}  // namespace morlen
