#include "check/check.h"

#include <algorithm>

#include "assembly/coplanarity.h"
#include "assembly/model_checks.h"
#include "assembly/solver_choice.h"
#include "check/mechanisms.h"
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
  CheckFolds(subject, recorder);
}

// The parts that their supports let move. In the others, if there is no further error, mechanisms
// can be looked for.
std::vector<std::size_t> CheckSupportsAsRead(const Subject& subject, Recorder& recorder)
{
  if (!subject.complete || !recorder.IsWhole(ReadTopic::Mesh) ||
      !recorder.IsWhole(ReadTopic::Supports) || !recorder.KnowsAll())
    return {};
  CheckMiddleNodes(subject, recorder);
  const bool sound = !recorder.HasErrors();
  std::vector<std::size_t> loose = CheckSupports(subject, recorder);
  return sound ? loose : std::vector<std::size_t>();
}

bool Searches(Motions motions, const Problem& problem)
{
  const long long equations = static_cast<long long>(problem.numNodes) * problem.components.count;
  return motions == Motions::Find || equations < kChoiceFrom;
}

std::optional<Summary> CheckProblem(Problem& problem, Recorder& recorder, Motions motions)
{
  if (problem.meshes.empty() || problem.meshes.back()->GiveFvType() == 0)
    return std::nullopt;  // the header or the head of a mesh could not be read
  recorder.SetCode(Code::UnknownReference);
  CheckReferences(problem.meshes, problem.materials, FamiliesOf(problem));
  const Subject subject = SubjectOf(problem);
  CheckModelAsRead(subject, recorder);
  const std::vector<std::size_t> loose = CheckSupportsAsRead(subject, recorder);
  const bool searches = Searches(motions, problem);
  if (searches && !loose.empty() && loose.size() < subject.parts.size())
    CheckMechanisms(problem, subject, loose, recorder);
  if (recorder.HasErrors())
    return std::nullopt;
  recorder.SetCode(Code::ModelRefused);
  CheckModel(problem.meshes, problem.problemType, problem.components, FamiliesOf(problem));
  if (problem.solverSettings.type == SolverType::Double)
    recorder.AttemptAt(Code::SolverRefused, recorder.PlaceOf(ReadTopic::Solver),
                       [&] { CheckDoubleSolver(problem.meshes); });
  if (std::any_of(subject.elements.begin(), subject.elements.end(),
                  [](const Elem* elem) { return elem->ElemType() == Triangle; }))
    recorder.AttemptAt(Code::ModelRefused, kWholeFile, [&] { MarkCoplanarNodes(problem); });
  if (recorder.HasErrors())
    return std::nullopt;
  Summary summary = Summarise(problem, subject);
  if (!recorder.HasErrors())
    summary.untested = searches ? CheckMechanisms(problem, subject, {}, recorder)
                                : "they are left to the analysis";
  return recorder.HasErrors() ? std::nullopt : std::optional(std::move(summary));
}

}  // namespace

Report CheckText(std::string_view text, Motions motions)
{
  TextScan scan(text);
  Problem problem(100);
  Recorder recorder(text, scan, problem);
  Report report;
  recorder.AttemptAt(Code::Refused, kWholeFile, [&] {
    ReadProblem(scan, problem);
    recorder.ReportUnitOrder();
    report.summary = CheckProblem(problem, recorder, motions);
  });
  report.problems = Locate(recorder.Findings(), text);
  report.errors = static_cast<int>(
      std::count_if(report.problems.begin(), report.problems.end(),
                    [](const Located& p) { return p.severity == Severity::Error; }));
  report.warnings = static_cast<int>(report.problems.size()) - report.errors;
  return report;
}

}  // namespace morlen::check
