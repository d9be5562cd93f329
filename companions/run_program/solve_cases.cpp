// Load cases: what morlen-check, morlen-cases and morlen-report do with the file, with one
// solution.

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "case_file/case_results.h"
#include "case_file/check_cases.h"
#include "case_file/results_of.h"
#include "cases/solved_cases.h"
#include "common/file_text.h"
#include "common/source_files.h"
#include "kit/make_kit.h"
#include "problem/problem.h"
#include "report/case_report.h"
#include "report/findings_of.h"
#include "report/page_data.h"
#include "run/element_families.h"
#include "run_program/envelope_extremes.h"
#include "run_program/finish.h"
#include "run_program/input_check.h"
#include "run_program/scratch_folder.h"
#include "run_program/solve_model.h"

namespace morlen::run {

namespace fs = std::filesystem;

namespace {

std::vector<RecordedFile> RecordedInputs(const cases::Study& study)
{
  std::vector<RecordedFile> inputs;
  for (const fs::path& input : study.inputs)
    inputs.push_back({input.string(), FingerprintOf(input).value_or(Fingerprint{})});
  return inputs;
}

/// All envelopes; with VTU, which envelopes do not have, all cases too.
cases::Selection SelectionOf(const cases::Study& study, const Options& options)
{
  cases::Selection selection;
  for (int k = 0; options.vtu && k < study.cases; ++k)
    selection.combinations.push_back(k);
  for (std::size_t k = 0; k < study.envelopes.size(); ++k)
    selection.envelopes.push_back(static_cast<int>(k));
  return selection;
}

cases::CaseTargets TargetsOf(const Job& job, const Options& options)
{
  cases::CaseTargets targets = {job.Result(".results"), job.base.filename().string(), {}};
  if (options.vtu)
    targets.formats.insert("vtu");
  if (options.json)
    targets.formats.insert("json");
  if (options.csv || !options.json)
    targets.formats.insert("csv");
  return targets;
}

std::vector<Extreme> ExtremesOfAll(const cases::Study& study, const SolvedCases& solved)
{
  std::vector<Extreme> extremes;
  for (int k = 0; k < study.cases; ++k)
    MergeExtremes(extremes,
                  ExtremesOf(study.model, cases::ResultsOf(study, solved, study.combinations[k])),
                  ", case " + study.combinations[k].name);
  return extremes;
}

std::vector<EnvelopeExtremes> ExtremesOfEnvelopes(
    const cases::Study& study, const cases::Selection& selection,
    const std::vector<std::vector<cases::Peak>>& peaks)
{
  std::vector<EnvelopeExtremes> found;
  for (std::size_t k = 0; k < peaks.size(); ++k)
    found.push_back(
        {study.envelopes[selection.envelopes[k]].name, ExtremesOf(study.model, peaks[k])});
  return found;
}

/// Adds the problems of the model, unless the file has the same.
void AddProblems(const check::Report& ofModel, const std::string& model, check::Report& report)
{
  const std::size_t own = report.problems.size();
  for (check::Located problem : ofModel.problems) {
    const auto end = report.problems.begin() + static_cast<std::ptrdiff_t>(own);
    const bool known = std::any_of(report.problems.begin(), end, [&](const check::Located& one) {
      return check::TextOf(one) == check::TextOf(problem);
    });
    if (known)
      continue;
    ++(problem.severity == check::Severity::Error ? report.errors : report.warnings);
    problem.file = model;
    report.problems.push_back(std::move(problem));
  }
}

check::Report CheckAll(const Job& job, std::string_view text, ProgressSender& progress)
{
  check::Report report = cases::CheckCases(job.input, text);
  if (!report.cases)
    return report;
  const std::string& model = report.cases->model;
  const check::Report ofModel =
      check::CheckText(FileText(model).value_or(""), check::Motions::LeaveToAnalysis);
  if (ofModel.summary)
    progress.SetEquations(ofModel.summary->equations);
  AddProblems(ofModel, model, report);
  return report;
}

Outcome SolveStudy(cases::Study& study, const check::Report& report, const Job& job,
                   const Options& options, ProgressSender& progress, const Stopwatch& watch)
{
  const cases::Selection selection = SelectionOf(study, options);
  const cases::CaseTargets targets = TargetsOf(job, options);
  PrepareFolder(job.Folder());
  const fs::path page = job.Result(".html");
  RefuseInputs(page, study.inputs);
  RequireWritable(std::array{page, job.Result(".morlen.run")});
  AllowManyFiles();
  NewFolder newFolder(targets.folder);
  PrepareCaseResults(study, selection, targets);
  const std::vector<CaseActions> actions = ActionsOf(study);
  const std::unique_ptr<SolverKit> kit = MakeKit();
  const SolvedCases solved(*study.problem, FamiliesOf(*study.problem), study.loads,
                           {.info = progress.Stream(), .kit = *kit});
  progress.Stage("writing the results and the report");
  Summary summary;
  summary.facts = FactsOfAll(solved, *study.problem);
  OutputSet files;
  const std::vector<std::vector<cases::Peak>> peaks =
      WriteCaseResults(study, solved, selection, targets, files);
  const std::string title = TitleOf(job);
  const CaseBalances balances = WriteCaseReport(
      study, actions, solved, {title, DescriptionOf(job.input), FindingsOf(report.problems, title)},
      page, files);
  summary.neighbours = Publish(job, RecordedInputs(study), summary.facts, files);
  summary.balance = balances.Worst().residual;
  summary.balanceOf = study.combinations[balances.worst].name;
  summary.advice = balances.advice[balances.worst];
  summary.extremes = ExtremesOfAll(study, solved);
  summary.envelopes = ExtremesOfEnvelopes(study, selection, peaks);
  summary.checkWarnings = report.warnings;
  summary.analysisWarnings = progress.Warnings();
  summary.seconds = watch.Seconds();
  newFolder.Keep();
  return {Tell(summary, stdout), true};
}

// The file of load cases names the model, unless it has errors.
Outcome Stop(const Job& job, const Options& options, const check::Report& report)
{
  const std::optional<std::string> model =
      report.cases ? FileText(report.cases->model) : std::nullopt;
  if (!model)
    return NotSolved(job.input, report);
  return NotSolved(job, options, report, *model, DescriptionOf(job.input));
}

}  // namespace

Outcome SolveCases(const Job& job, const Options& options, ProgressSender& progress)
{
  const Stopwatch watch;
  const std::optional<std::string> text = FileText(job.input);
  if (!text)
    return CannotRead(job.input);
  progress.Stage("checking");
  const check::Report report = CheckAll(job, *text, progress);
  PrintProblems(report, job.input);
  if (StopsAt(report, options.strict))
    return Stop(job, options, report);
  cases::Problems silent(cases::Problems::LostData::Warning);
  const std::string all[] = {"*"};  // the report shows every case
  const std::unique_ptr<cases::Study> study = cases::ReadStudy(job.input, *text, all, silent);
  if (!study)
    return NotSolved(job.input, report);
  return SolveStudy(*study, report, job, options, progress, watch);
}

}  // namespace morlen::run
