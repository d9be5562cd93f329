#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "base/temporary_file.h"
#include "case_file/envelope_files.h"
#include "case_file/names.h"
#include "case_file/open_study.h"
#include "case_file/results_of.h"
#include "case_file/study.h"
#include "cases/case_writer.h"
#include "cases/solved_cases.h"
#include "common/atomic_file.h"
#include "common/command_line.h"
#include "common/source_files.h"
#include "common/tables.h"
#include "export/csv.h"
#include "export/json.h"
#include "export/vtu.h"
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

/// True for the name of a file that the case, combination or envelope called `result` may get. A
/// table has its name between that of the result and the ending: "ULS.reactions.csv".
bool IsResult(const std::string& file, const std::string& result)
{
  constexpr const char* kEndings[] = {".txt", ".morlen.res", ".vtu", ".json", ".csv"};
  return file.starts_with(result + ".") &&
         std::any_of(std::begin(kEndings), std::end(kEndings),
                     [&](const char* ending) { return file.ends_with(ending); });
}

/// Fatal when a result would replace one of the files that were read. collection: the name of the
/// list of VTU files.
void SpareInputs(const cases::Study& study, const cases::Selection& selection,
                 const fs::path& folder, const std::string& collection)
{
  std::vector<std::string> results;
  for (const int index : selection.combinations)
    results.push_back(cases::FileNameOf(study.combinations[index].name));
  for (const int index : selection.envelopes)
    results.push_back(cases::FileNameOf(study.envelopes[index].name));
  for (const fs::path& input : study.inputs) {
    const std::string name = input.filename().string();
    if (name == collection || std::any_of(results.begin(), results.end(), [&](const auto& result) {
          return IsResult(name, result);
        }))
      RefuseInputs(folder / name, study.inputs,
                   "a result would have its name; -o names another folder for the results");
  }
}

/// Writes the selected results of a study.
class Writer
{
public:
  Writer(cases::Study& study_, const SolvedCases& cases_, const Options& options, fs::path folder_)
      : study(study_),
        solved(cases_),
        formats(options.formats.begin(), options.formats.end()),
        folder(std::move(folder_)),
        stem(fs::path(options.file).stem().string())
  {
  }

  void Write(const cases::Selection& selection)
  {
    for (const int index : selection.combinations)
      Write(study.combinations[index]);
    if (formats.contains("vtu") && !selection.combinations.empty())
      WriteCollection(selection.combinations);
    for (const int index : selection.envelopes)
      cases::WriteEnvelope(study, solved, study.envelopes[index],
                           {formats.contains("csv"), formats.contains("json")}, folder);
  }

private:
  fs::path FileOf(const Combination& combination, const char* ending) const
  {
    return folder / (cases::FileNameOf(combination.name) + ending);
  }

  void Write(const Combination& combination)
  {
    if (formats.contains("text") || formats.contains("post"))
      WriteOurs(combination);
    const bool csv = formats.contains("csv");
    const bool json = formats.contains("json");
    const bool vtu = formats.contains("vtu");
    if (!csv && !json && !vtu)
      return;
    const results::Results results = cases::ResultsOf(study, solved, combination);
    if (vtu)
      WriteVtu(study.model, results, FileOf(combination, ".vtu"), {.withLoads = false});
    if (!csv && !json)
      return;
    const std::vector<tables::Table> tables = tables::ResultTables(study.model, results);
    if (csv)
      WriteCsv(tables, folder, cases::FileNameOf(combination.name) + ".");
    if (json)
      WriteJson({"morlen-results", "morlen-cases", cases::JsonOf(study, combination)}, study.model,
                study.modelFile, tables, FileOf(combination, ".json"));
  }

  // In the formats of the program.
  void WriteOurs(const Combination& combination)
  {
    const std::vector<double> column = CombinedColumn(solved, combination);
    const CaseWriter writer(*study.problem, FamiliesOf(*study.problem), solved.Layout(), column);
    if (formats.contains("text")) {
      AtomicFile file(FileOf(combination, ".txt"));
      writer.WriteText(file.Stream());
      file.Commit();
    }
    if (formats.contains("post")) {
      AtomicFile file(FileOf(combination, ".morlen.res"));
      writer.WritePost(file.Stream());
      file.Commit();
    }
  }

  // The list of the VTU files for ParaView, whose time is the number of the combination.
  void WriteCollection(const std::vector<int>& combinations)
  {
    AtomicFile file(folder / (stem + ".pvd"));
    file.Write("<VTKFile type=\"Collection\" version=\"0.1\">\n<Collection>\n");
    int time = 0;
    for (const int index : combinations)
      file.Write("<DataSet timestep=\"" + std::to_string(time++) + "\" file=\"" +
                 FileOf(study.combinations[index], ".vtu").filename().string() + "\"/>\n");
    file.Write("</Collection>\n</VTKFile>\n");
    file.Commit();
  }

  cases::Study& study;
  const SolvedCases& solved;
  std::set<std::string> formats;
  fs::path folder;
  std::string stem;
};

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
  SpareInputs(*study, selection, folder, fs::path(options.file).stem().string() + ".pvd");
  MakeFolder(folder);
  RemoveStaleTemporaries(folder);
  const std::unique_ptr<SolverKit> kit = MakeKit();
  const SolvedCases solved(*study->problem, FamiliesOf(*study->problem), study->loads,
                           {.kit = *kit});
  Writer(*study, solved, options, folder).Write(selection);
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
