#include "check/check.h"

#include <algorithm>

#include "assembly/coplanarity.h"
#include "assembly/model_checks.h"
#include "check/recorder.h"
#include "model/mesh.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "run/element_families.h"

namespace morlen::check {
namespace {

// A check is left out when the lists that it relies on have errors: it would report their missing
// records a second time.
void CheckModelAsRead(const Subject& subject, Recorder& recorder)
{
  CheckGeometry(subject, recorder);
  CheckBeamAxes(subject, recorder);
  CheckSections(subject, recorder);
  if (!subject.complete || !recorder.IsWhole(ReadTopic::Mesh))
    return;
  CheckConnectivity(subject, recorder);
  CheckUse(subject, recorder);
  if (recorder.IsWhole(ReadTopic::Supports) && recorder.KnowsAll())
    CheckSupports(subject, recorder);
}

std::optional<Summary> CheckProblem(Problem& problem, Recorder& recorder)
{
  if (problem.meshes.empty() || problem.meshes.back()->GiveFvType() == 0)
    return std::nullopt;  // the header or the head of a mesh could not be read
  CheckReferences(problem.meshes, problem.materials, AllFamilies());
  const Subject subject = SubjectOf(problem);
  CheckModelAsRead(subject, recorder);
  if (recorder.HasErrors())
    return std::nullopt;
  CheckModel(problem.meshes, problem.problemType, problem.components, AllFamilies());
  if (problem.solverSettings.type == SolverType::Double)
    recorder.AttemptAt(recorder.PlaceOf(ReadTopic::Solver),
                       [&] { CheckDoubleSolver(problem.meshes); });
  if (std::any_of(subject.elements.begin(), subject.elements.end(),
                  [](const Elem* elem) { return elem->ElemType() == Triangle; }))
    recorder.AttemptAt(kWholeFile, [&] { MarkCoplanarNodes(problem); });
  if (recorder.HasErrors())
    return std::nullopt;
  Summary summary = Summarise(problem, subject);
  return recorder.HasErrors() ? std::nullopt : std::optional(std::move(summary));
}

}  // namespace

Report CheckText(std::string_view text)
{
  TextScan scan(text);
  Recorder recorder(text, scan);
  Problem problem(100);
  Report report;
  recorder.AttemptAt(kWholeFile, [&] {
    ReadProblem(scan, problem);
    report.summary = CheckProblem(problem, recorder);
  });
  report.problems = Locate(recorder.Findings(), text);
  report.errors = static_cast<int>(
      std::count_if(report.problems.begin(), report.problems.end(),
                    [](const Located& p) { return p.severity == Severity::Error; }));
  report.warnings = static_cast<int>(report.problems.size()) - report.errors;
  return report;
}

}  // namespace morlen::check
