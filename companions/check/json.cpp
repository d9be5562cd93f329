#include <nlohmann/json.hpp>

#include "check/check.h"
#include "common/command_line.h"
#include "common/utf8.h"

namespace morlen::check {
namespace {

using Json = nlohmann::ordered_json;

// The name of a unit; null when the file does not name it.
Json UnitOf(const std::string& name)
{
  return name.empty() ? Json(nullptr) : Json(name);
}

Json JsonOf(const Summary& s)
{
  return {{"problem", s.plane ? "2d" : "3d"},
          {"nodes", s.nodes},
          {"parts", s.parts},
          {"beams", s.beams},
          {"shells", s.shells},
          {"solids", s.solids},
          {"box", {s.box.Low(), s.box.High()}},
          {"materials", s.materials},
          {"unusedMaterials", s.unusedMaterials},
          {"force", UnitOf(s.units.force)},
          {"length", UnitOf(s.units.length)},
          {"load", s.load},
          {"weight", s.weight},
          {"equations", s.equations},
          {"solver", s.solver},
          {"entries", s.entries}};
}

}  // namespace

std::string JsonOf(const Report& report, const std::string& file)
{
  Json problems = Json::array();
  for (const Located& p : report.problems)
    problems.push_back({{"severity", SeverityName(p.severity)},
                        {"line", p.line},
                        {"column", p.column},
                        {"message", ToUtf8(p.message)}});
  const Json whole = {{"format", "morlen-check"},
                      {"formatVersion", 1},
                      {"program", {{"name", "morlen-check"}, {"version", ProgramVersion()}}},
                      {"file", ToUtf8(file)},
                      {"errors", report.errors},
                      {"warnings", report.warnings},
                      {"problems", problems},
                      {"summary", report.summary ? JsonOf(*report.summary) : Json(nullptr)}};
  return whole.dump(1) + "\n";
}

}  // namespace morlen::check
