#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "case_file/case_results.h"
#include "case_file/open_study.h"
#include "case_file/study.h"
#include "cases/solved_cases.h"
#include "common/command_line.h"
#include "kit/make_kit.h"
#include "problem/problem.h"
#include "run/element_families.h"

using namespace morlen;

namespace fs = std::filesystem;

namespace {

struct Options
{
  std::string file;
  std::optional<fs::path> folder;
  std::vector<std::string> write;
  std::vector<std::string> formats = {"csv"};
  bool check = false;
};

void Declare(CLI::App& app, Options& options)
{
  app.add_option("cases", options.file, "the file of load cases (TOML)")
      ->type_name("FILE")
      ->required();
  app.add_option("-o,--output", options.folder,
                 "the folder of the results (default: the name of the file with the ending "
                 ".results)")
      ->type_name("DIR");
  app.add_option("--write", options.write,
                 "what to write: names or patterns (* and ?) of cases, combinations and envelopes "
                 "(default: all envelopes)")
      ->type_name("PATTERN");
  app.add_option("--formats", options.formats,
                 "the formats: text, post, csv, json, vtu (default: csv)")
      ->type_name("LIST")
      ->delimiter(',')
      ->check(CLI::IsMember({"text", "post", "csv", "json", "vtu"}));
  app.add_flag("--check", options.check,
               "check the files and list the combinations; solve nothing");
  app.footer("Exit status: 0, also with warnings, or 2 when something is wrong.");
}

std::string Counted(std::size_t count, const char* noun)
{
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void PrintStudy(const cases::Study& study)
{
  std::string text = Counted(static_cast<std::size_t>(study.cases), "case") + ", " +
                     Counted(study.combinations.size() - study.cases, "combination") + ", " +
                     Counted(study.envelopes.size(), "envelope") + " of " +
                     study.modelFile.string() + "\n";
  for (int k = 0; k < study.cases; ++k)
    text += "case " + study.combinations[k].name +
            (study.titles[k].empty() ? "" : ": " + study.titles[k]) + "\n";
  for (std::size_t k = study.cases; k < study.combinations.size(); ++k)
    text += "combination " + study.combinations[k].name + " = " +
            cases::TextOf(study, study.combinations[k]) + "\n";
  for (const cases::Envelope& one : study.envelopes) {
    text += "envelope " + one.name + ":";
    for (const int member : one.members)
      text += (member == one.members.front() ? " " : ", ") + study.combinations[member].name;
    text += "\n";
  }
  std::cout << text;
}

ExitStatus Run(const Options& options)
{
  const std::unique_ptr<cases::Study> study = cases::OpenStudy(options.file, options.write);
  if (!study)
    return ExitStatus::Failed;
  std::vector<std::string> unmatched;
  cases::Selection selection = cases::Select(*study, options.write, unmatched);
  for (const std::string& pattern : unmatched)
    std::cerr << "error: --write '" << pattern << "' matches no case, combination or envelope\n";
  if (!unmatched.empty())
    return ExitStatus::Failed;
  if (options.check) {
    PrintStudy(*study);
    return ExitStatus::Done;
  }
  for (std::size_t k = 0; options.write.empty() && k < study->envelopes.size(); ++k)
    selection.envelopes.push_back(static_cast<int>(k));
  if (selection.combinations.empty() && selection.envelopes.empty())
    errorwriter.WriteWarning(
        "nothing is written: the file has no envelope, and --write is not given");
  const fs::path folder =
      options.folder.value_or(fs::path(options.file).replace_extension(".results"));
  const cases::CaseTargets targets = {folder,
                                      fs::path(options.file).stem().string(),
                                      {options.formats.begin(), options.formats.end()}};
  PrepareCaseResults(*study, selection, targets);
  const std::unique_ptr<SolverKit> kit = MakeKit();
  const SolvedCases solved(*study->problem, FamiliesOf(*study->problem), study->loads,
                           {.kit = *kit});
  WriteCaseResults(*study, solved, selection, targets);
  return ExitStatus::Done;
}

}  // namespace

int main(int argc, char** argv)
{
  CommandLine commandLine(
      "morlen-cases",
      "Solves the load cases of a model with one factorisation, combines them, and writes "
      "envelopes.");
  Options options;
  Declare(commandLine.Options(), options);
  if (const std::optional<ExitStatus> end = commandLine.Parse(argc, argv))
    return SystemStatus(*end);
  return SystemStatus(Run(options));
}
