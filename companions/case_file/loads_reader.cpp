#include "case_file/loads_reader.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "assembly/element_family.h"
#include "assembly/model_checks.h"
#include "base/read_observer.h"
#include "check/joined.h"
#include "check/recorder.h"
#include "common/file_text.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/reavecv.h"
#include "problem/elem_loads.h"
#include "problem/load_blocks.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "run/element_families.h"

namespace morlen::cases {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> TextOf(const NamedPlace& name, const std::string& path,
                                  Problems& problems)
{
  std::optional<std::string> text = FileText(path);
  std::error_code fault;
  if (!text)
    problems.Error(name.place,
                   check::Joined("can't read file ", path,
                                 fs::is_directory(path, fault) ? ": it is a folder" : ""));
  return text;
}

// True without errors that stop the reading; lost data do not.
bool IsSound(const check::Recorder& recorder)
{
  const std::vector<check::Finding>& findings = recorder.Findings();
  return std::none_of(findings.begin(), findings.end(), [](const check::Finding& f) {
    return f.severity == check::Severity::Error && !check::IsDataLost(f.code);
  });
}

/// Reads one text with loads.
class LoadsOfText
{
public:
  LoadsOfText(const std::string& text_, Problem& problem_) : text(text_), problem(problem_) {}

  /// The problems of the text, with places in it.
  std::vector<check::Located> Read()
  {
    TextScan scan(text);
    check::Recorder recorder(text, scan, problem);
    recorder.AttemptAt(check::Code::Refused, check::kWholeFile,
                       [&] { ReadLoadBlocks(scan, problem); });
    if (IsSound(recorder) && NeedsTrial())
      recorder.AttemptAt(check::Code::ModelRefused, check::kWholeFile, [&] { TryLoads(); });
    return check::Locate(recorder.Findings(), text);
  }

private:
  // True when the load vector may be refused: shells and solids do not take all loads. A beam takes
  // all but weight in a plane problem along Z.
  bool NeedsTrial() const
  {
    const bool beams = std::all_of(problem.meshes.begin(), problem.meshes.end(),
                                   [](const auto& mesh) { return mesh->GiveElemType() == Linear; });
    return (problem.selfWeight && problem.problemType == kPlane) ||
           (!beams && problem.elemLoads.Count() > 0);
  }

  // Makes a load vector. That of refined shells needs a prepared problem; standard ones refuse the
  // same loads.
  void TryLoads()
  {
    const ShellFormulation formulation =
        std::exchange(problem.shellFormulation, ShellFormulation::Standard);
    for (const auto& mesh : problem.meshes)
      Attempt(nullptr, [&] {
        ReaVecV loads;
        loads.resize(problem.Equations(), 0.0);
        FamiliesOf(problem).Of(*mesh).addLoads(problem, *mesh, loads);
      });
    problem.shellFormulation = formulation;
  }

  const std::string& text;
  Problem& problem;
};

void ReadFile(const NamedPlace& name, const std::string& file, Problem& problem, Problems& problems)
{
  const std::string path = PathOf(name.name, file);
  const std::optional<std::string> text = TextOf(name, path, problems);
  if (!text)
    return;
  for (check::Located& found : LoadsOfText(*text, problem).Read()) {
    if (found.line == 0)
      found.message += check::Joined(" (", path, ")");
    found.file = path;
    problems.Add(std::move(found));
  }
}

// The place in the case file of a place in a text that has other lines than the file.
check::Located Moved(check::Located found, const LoadText& text)
{
  if (found.line > 0)
    found.message += check::Joined(" (line ", found.line, " of the text)");
  found.line = text.place.line;
  found.column = text.place.column;
  return found;
}

// A text with the lines of the file is read after as many blanks as are before it: all places,
// those inside messages too, are then those of the file.
void ReadText(const LoadText& text, Problem& problem, Problems& problems)
{
  if (text.exact) {
    const std::string before =
        std::string(text.begin.line - 1, '\n') + std::string(text.begin.column - 1, ' ');
    for (check::Located& found : LoadsOfText(before + text.text, problem).Read())
      problems.Add(found.line > 0 ? std::move(found) : Moved(std::move(found), text));
    return;
  }
  for (check::Located& found : LoadsOfText(text.text, problem).Read())
    problems.Add(Moved(std::move(found), text));
}

}  // namespace

std::string PathOf(const std::string& name, const std::string& file)
{
  return (fs::path(file).parent_path() / name).string();
}

bool ReadModel(const CaseFile& cases, const std::string& file, Problem& problem, Problems& problems)
{
  const std::string path = PathOf(cases.model.name, file);
  const std::optional<std::string> text = TextOf(cases.model, path, problems);
  if (!text)
    return false;
  TextScan scan(*text);
  check::Recorder recorder(*text, scan, problem);
  recorder.AttemptAt(check::Code::Refused, check::kWholeFile, [&] {
    ReadProblem(scan, problem);
    CheckReferences(problem.meshes, problem.materials, FamiliesOf(problem));
  });
  for (check::Located& found : check::Locate(recorder.Findings(), *text)) {
    // Doubts about the model belong to the check of the model.
    if (found.severity != check::Severity::Error)
      continue;
    found.file = path;
    problems.Add(std::move(found));
  }
  return IsSound(recorder);
}

void FindMissingLoads(const CaseFile& cases, const std::string& file, Problems& problems)
{
  for (const CaseEntry& one : cases.cases) {
    if (one.loads)
      TextOf(*one.loads, PathOf(one.loads->name, file), problems);
  }
}

std::vector<LoadSet> ReadLoads(const CaseFile& cases, const std::string& file, const LoadSet& own,
                               Problem& problem, Problems& problems)
{
  std::vector<LoadSet> sets;
  for (const CaseEntry& one : cases.cases) {
    LoadSet set = one.fromModel ? own.Copy() : LoadSet();
    set.selfWeight = set.selfWeight || one.gravity;
    InstallLoads(std::move(set), problem);
    if (one.loads)
      ReadFile(*one.loads, file, problem, problems);
    if (one.text)
      ReadText(*one.text, problem, problems);
    if ((one.gravity || one.fromModel) && !one.text && !one.loads)
      ReadText({"", one.name.place, false, {}}, problem, problems);
    sets.push_back(ExtractLoads(problem));
  }
  return sets;
}

}  // namespace morlen::cases
