#include "report/page_parts.h"

#include "common/command_line.h"
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

Json Head(const std::string& file, const std::vector<std::string>& description,
          const model::Model& model)
{
  return {{"file", file},
          {"description", description},
          {"plane", model.plane},
          {"solids", model.solids},
          {"components", model.components},
          {"translations", model.Translations()},
          {"meshes", model.meshes},
          {"beamDivisions", model.beamDivisions}};
}

Json SixValues(const Wrench& wrench)
{
  Json values = wrench.force;
  for (const double component : wrench.moment)
    values.push_back(component);
  return values;
}

Json MotionPart(const check::Motion& motion)
{
  std::vector<double> vectors;
  for (const Vec3& vector : motion.vectors) {
    for (const double component : vector)
      vectors.push_back(static_cast<float>(component));
  }
  return {{"turns", motion.turns}, {"nodes", Packed(motion.nodes)}, {"vectors", Packed(vectors)}};
}

Json Check(const std::optional<std::vector<Finding>>& check)
{
  if (!check)
    return nullptr;
  Json findings = Json::array();
  for (const Finding& finding : *check) {
    Json one = {{"error", finding.error}, {"place", finding.place}, {"text", finding.text}};
    if (finding.motion)
      one["motion"] = MotionPart(*finding.motion);
    findings.push_back(std::move(one));
  }
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

Json ModelParts(const std::string& file, const std::vector<std::string>& description,
                const model::Model& model, const std::optional<std::vector<Finding>>& check,
                const KnownRun& run)
{
  return {{"format", kFormatVersion},
          {"program", std::string("morlen-report ") + ProgramVersion()},
          {"model", Head(file, description, model)},
          {"units", UnitTable(model.units)},
          {"check", Check(check)},
          {"run", Json::parse(JsonOf(run))},
          {"axes", Axes(model)}};
}

Json BalancePart(const Equilibrium& equilibrium, const std::string& advice)
{
  return {{"center", equilibrium.center},
          {"loads", SixValues(equilibrium.loads)},
          {"reactions", SixValues(equilibrium.reactions)},
          {"residual", equilibrium.residual},
          {"limit", Equilibrium::kLimit},
          {"balanced", equilibrium.IsBalanced()},
          {"advice", advice}};
}

Json LoadsPart(const AppliedLoads& loads)
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

tables::Table TableOfPage(const tables::Table& table, int translations)
{
  if (table.name != "beam_diagrams")
    return table;
  constexpr std::size_t kFirst = 2;
  const std::size_t end = kFirst + static_cast<std::size_t>(translations);
  tables::Table kept{table.name, {}, {}};
  for (std::size_t i = 0; i < table.cells.size(); ++i) {
    const std::size_t column = i % table.columns.size();
    if (column >= kFirst && column < end)
      continue;
    kept.Put(table.cells[i]);
    if (i == column)
      kept.columns.push_back(table.columns[column]);
  }
  return kept;
}

std::string PageText(const Json& data)
{
  return WithoutMarkup(data.dump(-1, ' ', true, Json::error_handler_t::replace));
}

}  // namespace morlen
