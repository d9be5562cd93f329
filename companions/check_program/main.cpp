#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "case_file/check_cases.h"
#include "check/check.h"
#include "common/command_line.h"
#include "common/file_text.h"
#include "common/source_files.h"

using namespace morlen;

namespace fs = std::filesystem;

namespace {

constexpr const char* kStandardInput = "-";

struct Options
{
  std::vector<std::string> files;
  bool json = false;
  bool strict = false;
  bool quick = false;
};

void Declare(CLI::App& app, Options& options)
{
  app.add_option("models", options.files,
                 "the problem files, and files of load cases (.cases); - is standard input")
      ->type_name("FILE")
      ->required();
  app.add_flag("--json", options.json,
               "print JSON instead of text: an object, or an array for several files");
  app.add_flag("--strict", options.strict, "warnings count as errors in the exit status");
  app.add_flag("--quick", options.quick,
               "look for motions in small models only: morlen finds them in all");
  app.footer(
      "Exit status, the highest of all files: 0, 1 when there are errors, 2 when a file cannot be "
      "read.");
}

std::optional<std::string> TextOf(const std::string& file)
{
  return file == kStandardInput ? StreamText(std::cin) : FileText(file);
}

// Null after a message when the file cannot be read.
std::optional<check::FileReport> ReportOn(const std::string& file, check::Motions motions)
{
  if (const std::optional<std::string> text = TextOf(file))
    return check::FileReport{
        file, IsCaseFile(file) ? cases::CheckCases(file, *text) : check::CheckText(*text, motions)};
  std::error_code fault;
  const bool folder = fs::is_directory(file, fault);
  std::cerr << "can't read file " << file << (folder ? ": it is a folder" : "") << "\n";
  return std::nullopt;
}

std::string Counted(int count, const char* noun)
{
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Counts(int errors, int warnings)
{
  return Counted(errors, "error") + ", " + Counted(warnings, "warning") + "\n";
}

void PrintProblems(const check::FileReport& one)
{
  std::string lines;
  for (const check::Located& problem : one.report.problems)
    lines += check::LineOf(problem, one.file) + "\n";
  std::cerr << lines << std::flush;
}

// The summary of a file; named: with its name.
void PrintSummary(const check::FileReport& one, bool named)
{
  if (named)
    std::cout << one.file << ":\n";
  if (one.report.summary)
    std::cout << check::TextOf(*one.report.summary);
  if (const std::optional<check::CasesSummary>& s = one.report.cases)
    std::cout << "model: " << s->model << "\n"
              << Counted(s->cases, "case") << ", " << Counted(s->combinations, "combination")
              << ", " << Counted(s->envelopes, "envelope") << "\n";
  std::cout << Counts(one.report.errors, one.report.warnings);
}

void PrintTotal(const std::vector<check::FileReport>& reports, std::size_t files)
{
  int errors = 0;
  int warnings = 0;
  for (const check::FileReport& one : reports) {
    errors += one.report.errors;
    warnings += one.report.warnings;
  }
  std::cout << files << " files";
  if (reports.size() < files)
    std::cout << ", " << files - reports.size() << " not read";
  std::cout << ": " << Counts(errors, warnings);
}

ExitStatus StatusOf(const check::Report& report, bool strict)
{
  const bool found = report.errors > 0 || (strict && report.warnings > 0);
  return found ? ExitStatus::Found : ExitStatus::Done;
}

// Text is printed file by file, JSON at the end.
ExitStatus Check(const Options& options)
{
  const bool several = options.files.size() > 1;
  ExitStatus status = ExitStatus::Done;
  std::vector<check::FileReport> reports;
  const check::Motions motions =
      options.quick ? check::Motions::LeaveToAnalysis : check::Motions::Find;
  for (const std::string& file : options.files) {
    std::optional<check::FileReport> one = ReportOn(file, motions);
    status = std::max(status, one ? StatusOf(one->report, options.strict) : ExitStatus::Failed);
    if (!one)
      continue;
    if (!options.json) {
      PrintProblems(*one);
      PrintSummary(*one, several);
    }
    reports.push_back(std::move(*one));
  }
  if (options.json && several)
    std::cout << check::JsonOf(reports);
  else if (options.json && !reports.empty())
    std::cout << check::JsonOf(reports.front().report, reports.front().file);
  else if (several)
    PrintTotal(reports, options.files.size());
  return status;
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine("morlen-check", "Reports every problem of problem files in one pass.");
  Options options;
  Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return SystemStatus(*end);
  return SystemStatus(Check(options));
}
