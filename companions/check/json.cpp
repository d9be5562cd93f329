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
  return {
      {"problem", s.plane ? "2d" : "3d"},
      {"nodes", s.nodes},
      {"parts", s.parts},
      {"beams", s.beams},
      {"shells", s.shells},
      {"solids", s.solids},
      {"shellFormulation", s.refinedShells ? "Refined" : "Standard"},
      {"box", {s.box.Low(), s.box.High()}},
      {"materials", s.materials},
      {"unusedMaterials", s.unusedMaterials},
      {"force", UnitOf(s.units.force)},
      {"length", UnitOf(s.units.length)},
      {"load", s.load},
      {"weight", s.weight},
      {"equations", s.equations},
      {"solver", s.solver},
      {"entries", s.entries},
      {"mechanismsNotTested", s.untested.empty() ? nlohmann::json() : nlohmann::json(s.untested)}};
}

Json JsonOf(const Located& p)
{
  Json problem = {{"severity", SeverityName(p.severity)},
                  {"line", p.line},
                  {"column", p.column},
                  {"message", ToUtf8(p.message)},
                  {"code", NameOf(p.code)}};
  if (!p.file.empty())
    problem["file"] = ToUtf8(p.file);
  if (IsDataLost(p.code))
    problem["class"] = "data-lost";
  if (!p.hint.empty())
    problem["hint"] = ToUtf8(p.hint);
  return problem;
}

Json JsonOf(const CasesSummary& s)
{
  return {{"model", ToUtf8(s.model)},
          {"cases", s.cases},
          {"combinations", s.combinations},
          {"envelopes", s.envelopes}};
}

// Null for a file with errors.
Json SummaryOf(const Report& report)
{
  if (report.cases)
    return JsonOf(*report.cases);
  return report.summary ? JsonOf(*report.summary) : Json(nullptr);
}

Json ObjectOf(const Report& report, const std::string& file)
{
  Json problems = Json::array();
  for (const Located& p : report.problems)
    problems.push_back(JsonOf(p));
  return {{"format", "morlen-check"},
          {"formatVersion", 1},
          {"program", {{"name", "morlen-check"}, {"version", ProgramVersion()}}},
          {"file", ToUtf8(file)},
          {"errors", report.errors},
          {"warnings", report.warnings},
          {"problems", problems},
          {"summary", SummaryOf(report)}};
}

}  // namespace

std::string JsonOf(const Report& report, const std::string& file)
{
  return ObjectOf(report, file).dump(1) + "\n";
}

std::string JsonOf(const std::vector<FileReport>& reports)
{
  Json array = Json::array();
  for (const FileReport& one : reports)
    array.push_back(ObjectOf(one.report, one.file));
  return array.dump(1) + "\n";
}

}  // namespace morlen::check
