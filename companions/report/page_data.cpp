#include "report/page_data.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "common/command_line.h"
#include "common/tables.h"
#include "report/packed.h"

namespace morlen {

using Json = nlohmann::ordered_json;

namespace {

constexpr int kFormatVersion = 1;

Json UnitTable(const model::Units& units)
{
  const tables::UnitTexts texts(units);
  return {{"named", !units.force.empty()},
          {"length", texts.Length()},
          {"force", texts.Force()},
          {"moment", texts.Moment()},
          {"forcePerLength", texts.ForcePer(1)},
          {"pressure", texts.Pressure()}};
}

Json Head(const ReportContent& content)
{
  const model::Model& model = content.model;
  return {{"file", content.file},           {"description", content.description},
          {"plane", model.plane},           {"solids", model.solids},
          {"components", model.components}, {"translations", model.Translations()},
          {"meshes", model.meshes},         {"beamDivisions", model.beamDivisions}};
}

Json SixValues(const Wrench& wrench)
{
  Json values = wrench.force;
  for (const double component : wrench.moment)
    values.push_back(component);
  return values;
}

Json Balance(const ReportContent& content)
{
  const Equilibrium& equilibrium = content.equilibrium;
  return {{"center", equilibrium.center},
          {"loads", SixValues(equilibrium.loads)},
          {"reactions", SixValues(equilibrium.reactions)},
          {"residual", equilibrium.residual},
          {"limit", Equilibrium::kLimit},
          {"balanced", equilibrium.IsBalanced()},
          {"advice", content.advice}};
}

Json Check(const ReportContent& content)
{
  if (!content.check)
    return nullptr;
  Json findings = Json::array();
  for (const Finding& finding : *content.check)
    findings.push_back(
        {{"error", finding.error}, {"place", finding.place}, {"text", finding.text}});
  return findings;
}

// One local axis of every element: y' of a beam, x' of a shell, 0 of a solid. The page computes the
// others from it and from the nodes.
Json Axes(const model::Model& model)
{
  std::vector<double> axes;
  for (const model::Element& element : model.elements) {
    const Vec3 axis = element.kind == model::Kind::Beam    ? element.axes[1]
                      : element.kind == model::Kind::Shell ? element.axes[0]
                                                           : Vec3{};
    for (const double component : axis)
      axes.push_back(static_cast<float>(component));
  }
  return Packed(axes);
}

Json Loads(const AppliedLoads& loads)
{
  std::vector<double> surfaces;
  for (const Vec3& force : loads.onSurfaces)
    surfaces.insert(surfaces.end(), force.begin(), force.end());
  std::vector<int> beams;
  std::vector<double> q;
  for (const LineLoad& load : loads.onBeams) {
    beams.push_back(load.element);
    q.insert(q.end(), load.q.begin(), load.q.end());
  }
  return {{"surfaces", Packed(surfaces)}, {"beams", Packed(beams)}, {"q", Packed(q)}};
}

// The page computes the places of the division points from the nodes.
tables::Table WithoutPlaces(const tables::Table& diagrams, int translations)
{
  constexpr std::size_t kFirst = 2;
  const std::size_t end = kFirst + static_cast<std::size_t>(translations);
  tables::Table kept{diagrams.name, {}, {}};
  for (std::size_t i = 0; i < diagrams.cells.size(); ++i) {
    const std::size_t column = i % diagrams.columns.size();
    if (column >= kFirst && column < end)
      continue;
    kept.Put(diagrams.cells[i]);
    if (i == column)
      kept.columns.push_back(diagrams.columns[column]);
  }
  return kept;
}

Json Tables(const ReportContent& content)
{
  Json packed = Json::array();
  for (const tables::Table& table : tables::AllTables(content.model, content.results)) {
    const bool diagrams = table.name == "beam_diagrams";
    packed.push_back(Packed(diagrams ? WithoutPlaces(table, content.model.Translations()) : table));
  }
  return packed;
}

// Writes the three characters that begin markup in a script by their numbers, as JSON allows.
std::string WithoutMarkup(const std::string& json)
{
  std::string text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<')
      text += "\\u003c";
    else if (c == '>')
      text += "\\u003e";
    else if (c == '&')
      text += "\\u0026";
    else
      text += c;
  }
  return text;
}

}  // namespace

std::vector<std::string> DescriptionOf(const std::filesystem::path& file)
{
  constexpr std::size_t kMostLines = 40;
  constexpr std::size_t kMostCharacters = 200;
  std::vector<std::string> lines;
  std::ifstream in(file);
  bool first = true;  // the first line may be the type of the problem
  for (std::string line; lines.size() < kMostLines && std::getline(in, line); first = false) {
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string::npos || line[begin] != '#') {
      if (first)
        continue;
      break;
    }
    line.erase(0, begin + 1);
    line.erase(line.find_last_not_of(" \t\r") + 1);
    lines.push_back(line.substr(line.starts_with(' ') ? 1 : 0, kMostCharacters));
  }
  return lines;
}

std::string PageData(const ReportContent& content)
{
  const Json data = {{"format", kFormatVersion},
                     {"program", std::string("morlen-report ") + ProgramVersion()},
                     {"model", Head(content)},
                     {"units", UnitTable(content.model.units)},
                     {"equilibrium", Balance(content)},
                     {"check", Check(content)},
                     {"axes", Axes(content.model)},
                     {"loads", Loads(content.loads)},
                     {"tables", Tables(content)}};
  return WithoutMarkup(data.dump(-1, ' ', true, Json::error_handler_t::replace));
}

}  // namespace morlen
