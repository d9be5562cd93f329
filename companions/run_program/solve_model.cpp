// One problem file: the check, the analysis, the results under temporary names, and at the end the
// names. The file is read once, so that all parts see the same content. The problem is made of its
// text twice, because an analysis changes it.

#include "run_program/solve_model.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/errorwriter.h"
#include "base/signals_held.h"
#include "base/textscan.h"
#include "check/run_end.h"
#include "common/file_text.h"
#include "common/output_set.h"
#include "common/run_record.h"
#include "export/csv.h"
#include "export/run_tables.h"
#include "export/vtu.h"
#include "kit/make_kit.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "report/findings_of.h"
#include "report/page_data.h"
#include "report/run_report.h"
#include "run/project.h"
#include "run_program/finish.h"
#include "run_program/input_check.h"
#include "run_program/scratch_folder.h"
#include "run_program/summary.h"

namespace morlen::run {

namespace fs = std::filesystem;

namespace {

// As the program prints it.
void PrintFailure(const check::Failure& failure)
{
  std::cerr << failure.message << (failure.message.ends_with('\n') ? "" : "\n");
  if (!failure.hint.empty())
    std::cerr << "hint: " << failure.hint << "\n";
}

check::Located ProblemOf(const check::Failure& failure)
{
  constexpr std::string_view kBeginning = "error: ";
  std::string message = failure.message.substr(0, failure.message.find_last_not_of('\n') + 1);
  if (message.starts_with(kBeginning))
    message.erase(0, kBeginning.size());
  return {.severity = check::Severity::Error,
          .code = check::Code::ModelRefused,
          .line = 0,
          .column = 0,
          .message = message,
          .hint = failure.hint};
}

/// The solution of a problem file whose check has found nothing that stops it.
class ModelRun
{
public:
  ModelRun(const Job& job_, const Options& options_, std::string text_, check::Report report_,
           ProgressSender& progress_)
      : job(job_),
        options(options_),
        text(std::move(text_)),
        report(std::move(report_)),
        progress(progress_)
  {
  }

  Outcome Run(const Stopwatch& watch)
  {
    Open();
    if (const std::optional<check::Failure> failure = Solve())
      return Refused(*failure);
    results::Results results;
    model::Model model = ReadBack(results);
    progress.Stage(options.ToStandardOutput() ? "writing the results"
                                              : "writing the results and the report");
    Write(model, results);
    summary.extremes = ExtremesOf(model, results);
    summary.checkWarnings = report.warnings;
    summary.analysisWarnings = progress.Warnings();
    return Finish(watch);
  }

private:
  // The files whose writing takes a test before the solution.
  void Open()
  {
    if (options.ToStandardOutput())
      base = scratch.emplace().Path() / "model";
    else
      PrepareFolder(job.Folder());
    textResults = &files.Open(NameOf(".txt"));
    postResults = &files.Open(NameOf(".morlen.res"));
    if (!options.ToStandardOutput())
      TestOthers();
  }

  // The files that are made after the solution.
  void TestOthers()
  {
    std::vector<fs::path> others = {job.Result(".html"), job.Result(".morlen.run")};
    if (options.vtu)
      others.push_back(job.Result(".vtu"));
    if (options.json)
      others.push_back(job.Result(".json"));
    RequireWritable(others);
    if (options.csv)
      newFolder.emplace(job.Result("_csv"));
  }

  fs::path NameOf(const char* ending) const
  {
    if (base.empty())
      return job.Result(ending);
    fs::path name = base;
    return name += ending;
  }

  // Returns the error that ends the analysis.
  std::optional<check::Failure> Solve()
  {
    const std::unique_ptr<SolverKit> kit = MakeKit();
    Project project(100, *kit);
    std::optional<check::Failure> failure = check::FailureOf([&] {
      TextScan scan(text);
      project.ReadFromAscii(scan);
      project.Calc(true, progress.Stream());
    });
    if (failure)
      return failure;
    project.CalcStrengthsAndReactions(progress.Stream());
    project.WriteResults(textResults->Stream());
    project.WriteKivResults(postResults->Stream(), nullptr);
    summary.facts =
        FactsOf(project.account, project.solution.accuracy, project.problem.Equations());
    files.Flush();
    return std::nullopt;
  }

  // The check has left the search for motions to the analysis, whose error shows none: the page
  // gets them now.
  Outcome Refused(const check::Failure& failure)
  {
    PrintFailure(failure);
    if (!options.ToStandardOutput()) {
      progress.Stage("looking for motions");
      report = check::CheckText(text);
      if (report.errors == 0)
        report.problems.push_back(ProblemOf(failure));
    }
    report.errors = std::max(report.errors, 1);
    std::istringstream description(text);
    return NotSolved(job, options, report, text, DescriptionIn(description));
  }

  // The results as the files have them, with six digits, for everything that is made of them.
  model::Model ReadBack(results::Results& results)
  {
    TextScan scan(text);
    ReadProblem(scan, problem);
    model::Model model = model::ModelOf(problem);
    results = results::ReadResults(model, {.model = job.input,
                                           .post = postResults->WrittenName(),
                                           .text = textResults->WrittenName(),
                                           .anyTime = true});
    return model;
  }

  void Write(const model::Model& model, const results::Results& results)
  {
    const KnownRun run = {KnownRun::State::Matches, summary.facts};
    Balance balance;
    if (options.ToStandardOutput()) {
      balance = BalanceOf(problem, model, results);
    } else {
      const std::string title = TitleOf(job);
      std::istringstream description(text);
      balance = WriteRunReport(problem, model, results,
                               {.file = title,
                                .description = DescriptionIn(description),
                                .check = FindingsOf(report.problems, title),
                                .run = run},
                               job.Result(".html"), files);
      Export(model, results, run);
    }
    summary.balance = balance.equilibrium.residual;
    summary.advice = balance.advice;
  }

  void Export(const model::Model& model, const results::Results& results, const KnownRun& run)
  {
    if (options.vtu)
      WriteVtu(model, results, job.Result(".vtu"), {.writer = files});
    TableTargets targets = {"morlen-run", TitleOf(job), std::nullopt, std::nullopt};
    if (options.csv)
      targets.csv = newFolder->Path();
    if (options.json)
      targets.json = job.Result(".json");
    WriteTables(model, results, run, targets, files);
  }

  Outcome Finish(const Stopwatch& watch)
  {
    if (options.ToStandardOutput())
      PrintFile(textResults->WrittenName());
    else
      Name();
    summary.seconds = watch.Seconds();
    const bool hasPage = !options.ToStandardOutput();
    return {Tell(summary, hasPage ? stdout : stderr), hasPage};
  }

  void Name()
  {
    const SignalsHeld held;
    summary.neighbours =
        Publish(job, {{job.input, FingerprintOf(std::string_view(text))}}, summary.facts, files);
    if (newFolder)
      newFolder->Keep();
  }

  const Job& job;
  const Options& options;
  const std::string text;  ///< of the problem file
  check::Report report;
  ProgressSender& progress;

  Problem problem{100};  ///< as read
  Summary summary;
  std::optional<ScratchFolder> scratch;  ///< of results that go to standard output
  fs::path base;                         ///< of these
  std::optional<NewFolder> newFolder;    ///< of the CSV files
  OutputSet files;
  OutputFile* textResults = nullptr;
  OutputFile* postResults = nullptr;
};

std::optional<std::string> TextOf(const Job& job)
{
  return job.IsStandardInput() ? StreamText(std::cin) : FileText(job.input);
}

}  // namespace

Outcome SolveModel(const Job& job, const Options& options, ProgressSender& progress)
{
  const Stopwatch watch;
  std::optional<std::string> text = TextOf(job);
  if (!text)
    return CannotRead(job.input);
  progress.Stage("checking");
  check::Report report = check::CheckText(*text, check::Motions::LeaveToAnalysis);
  PrintProblems(report, job.input);
  if (StopsAt(report, options.strict)) {
    std::istringstream description(*text);
    return NotSolved(job, options, report, *text, DescriptionIn(description));
  }
  if (report.summary)
    progress.SetEquations(report.summary->equations);
  return ModelRun(job, options, std::move(*text), std::move(report), progress).Run(watch);
}

}  // namespace morlen::run
