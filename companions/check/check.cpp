#include "check/check.h"

#include <algorithm>

#include "check/recorder.h"
#include "model/mesh.h"
#include "problem/project.h"
#include "problem/references.h"

namespace morlen::check {
namespace {

// Each check waits for what it stands on: where a list could not be read, all that is missing
// from it would be reported again.
void CheckModelAsRead(const Subject& subject, Recorder& recorder)
{
  CheckGeometry(subject, recorder);
  CheckSections(subject, recorder);
  if (!subject.complete || !recorder.IsWhole("mesh"))
    return;
  CheckConnectivity(subject, recorder);
  CheckUse(subject, recorder);
  if (recorder.IsWhole("constraints") && recorder.KnowsAll())
    CheckSupports(subject, recorder);
}

std::optional<Summary> CheckProject(Project& project, Recorder& recorder)
{
  if (project.meshes.empty() || project.meshes.back()->GiveFvType() == 0)
    return std::nullopt;  // the header or the head of a mesh could not be read
  CheckReferences(project);
  const Subject subject = SubjectOf(project);
  CheckModelAsRead(subject, recorder);
  if (recorder.HasErrors())
    return std::nullopt;
  project.CheckModel();
  if (project.solverSettings.type == SolverType::Double)
    recorder.AttemptAt(recorder.PlaceOfKeyword("Solver"), [&] { project.CheckDoubleSolver(); });
  if (std::any_of(subject.elements.begin(), subject.elements.end(),
                  [](const Elem* elem) { return elem->ElemType() == Triangle; }))
    recorder.AttemptAt(kWholeFile, [&] { project.CalcCoplanarityVector(); });
  if (recorder.HasErrors())
    return std::nullopt;
  Summary summary = Summarise(project, subject);
  return recorder.HasErrors() ? std::nullopt : std::optional(std::move(summary));
}

}  // namespace

Report CheckText(std::string_view text)
{
  TextScan scan(text);
  Recorder recorder(text, scan);
  Project project(100);
  Report report;
  recorder.AttemptAt(kWholeFile, [&] {
    project.ReadFromAscii(scan);
    report.summary = CheckProject(project, recorder);
  });
  report.problems = Locate(recorder.Problems(), text);
  report.errors = static_cast<int>(
      std::count_if(report.problems.begin(), report.problems.end(),
                    [](const Located& p) { return p.severity == Severity::Error; }));
  report.warnings = static_cast<int>(report.problems.size()) - report.errors;
  return report;
}

}  // namespace morlen::check
