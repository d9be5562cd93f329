#include <array>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "common/atomic_file.h"
#include "common/command_line.h"
#include "common/input_files.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "common/run_record.h"
#include "common/source_files.h"
#include "problem/problem.h"
#include "report/case_report.h"
#include "report/findings_of.h"
#include "report/model_page.h"
#include "report/page_data.h"
#include "report/run_report.h"

using namespace morlen;

namespace fs = std::filesystem;

namespace {

struct Options
{
  InputFiles input;
  std::optional<fs::path> output;
};

void Declare(CLI::App& app, Options& options)
{
  options.input.Declare(app);
  app.get_option("model")->description(
      "the problem file of a run of morlen, or a file of load cases (.cases)");
  app.add_option("-o,--output", options.output,
                 "the report (default: MODEL.html); - is standard output")
      ->type_name("FILE");
  app.footer(
      "It runs nothing: run morlen first. Only load cases are solved. MODEL is the name of the "
      "problem file without its ending. A model with errors and without results gets a page "
      "that shows them.\n"
      "Exit status: 0; 1 when loads and reactions are not in equilibrium or a model with errors "
      "has no results; 2 when the report cannot be made.");
}

ExitStatus PrintBalance(const Balance& balance, std::FILE* notes)
{
  std::fprintf(notes, "residual of equilibrium: %.2g\n", balance.equilibrium.residual);
  if (balance.equilibrium.IsBalanced())
    return ExitStatus::Done;
  std::cerr << "warning: loads and reactions are not in equilibrium. " << balance.advice << "\n";
  return ExitStatus::Found;
}

// The page of a model without results shows the findings of the check, with their motions.
ExitStatus ReportModel(const fs::path& file, const fs::path& output, Problem& problem,
                       const std::vector<Finding>& findings, AtomicFile::By writer)
{
  WriteModelPage(problem, {file.filename().string(), DescriptionOf(file), findings}, output,
                 writer);
  std::cerr << "warning: there are no results of this model: the report shows the model and its "
               "errors\n";
  WarnOfErrors(findings, file.string());
  return ExitStatus::Found;
}

// True for a model with errors that has no results, or only those of an earlier state.
bool IsWithoutResults(const InputFiles& input, const std::vector<Finding>& findings)
{
  return HasErrors(findings) && !input.NamesResults() && !results::HasFreshResults(input.Files());
}

ExitStatus Report(const Options& options)
{
  const fs::path& file = options.input.Model();
  const fs::path output = options.output.value_or(fs::path(file).replace_extension("html"));
  if (IsCaseFile(file.string())) {
    if (options.input.NamesResults())
      Fatal(
          "error: --results, --text and --any-time are for problem files: load cases are solved\n");
    return ReportCases(file, output);
  }
  RefuseInputs(output, options.input.All());
  const AtomicFile::By writer = WriterOf(std::array{std::optional(output)});
  Problem problem(100);
  model::ReadProblemFile(file, problem);
  const std::vector<Finding> findings = FindingsIn(file);
  if (IsWithoutResults(options.input, findings))
    return ReportModel(file, output, problem, findings, writer);
  const model::Model model = model::ModelOf(problem);
  const results::Results results = results::ReadResults(model, options.input.Files());
  const results::Files files = options.input.Files();
  const Balance balance = WriteRunReport(problem, model, results,
                                         {.file = file.filename().string(),
                                          .description = DescriptionOf(file),
                                          .check = findings,
                                          .run = FindRun(file, results::ResultsOf(files))},
                                         output, writer);
  WarnOfErrors(findings, file.string());
  return PrintBalance(balance, writer.Notes());
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine("morlen-report",
                          "Writes the results of a run of morlen as a page for the browser.");
  Options options;
  Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return SystemStatus(*end);
  return SystemStatus(Report(options));
}
