#include "case_file/case_results.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <vector>

#include "base/temporary_file.h"
#include "case_file/case_facts.h"
#include "case_file/envelope_files.h"
#include "case_file/names.h"
#include "case_file/results_of.h"
#include "cases/case_writer.h"
#include "cases/solved_cases.h"
#include "common/atomic_file.h"
#include "common/source_files.h"
#include "common/tables.h"
#include "export/csv.h"
#include "export/json.h"
#include "export/vtu.h"
#include "problem/problem.h"
#include "run/element_families.h"

namespace morlen::cases {

namespace fs = std::filesystem;

namespace {

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
void SpareInputs(const Study& study, const Selection& selection, const fs::path& folder,
                 const std::string& collection)
{
  std::vector<std::string> results;
  for (const int index : selection.combinations)
    results.push_back(FileNameOf(study.combinations[index].name));
  for (const int index : selection.envelopes)
    results.push_back(FileNameOf(study.envelopes[index].name));
  for (const fs::path& input : study.inputs) {
    const std::string name = input.filename().string();
    if (name == collection || name == "run.csv" ||
        std::any_of(results.begin(), results.end(),
                    [&](const auto& result) { return IsResult(name, result); }))
      RefuseInputs(folder / name, study.inputs,
                   "a result would have its name; -o names another folder for the results");
  }
}

/// Writes the selected results of a study.
class Writer
{
public:
  Writer(Study& study_, const SolvedCases& cases_, const CaseTargets& targets, AtomicFile::By by_)
      : study(study_),
        solved(cases_),
        formats(targets.formats),
        folder(targets.folder),
        stem(targets.stem),
        run{KnownRun::State::Matches, FactsOfAll(solved, *study.problem)},
        by(by_)
  {
  }

  std::vector<std::vector<Peak>> Write(const Selection& selection)
  {
    std::vector<std::vector<Peak>> peaks;
    for (const int index : selection.combinations)
      Write(study.combinations[index]);
    if (formats.contains("vtu") && !selection.combinations.empty())
      WriteCollection(selection.combinations);
    for (const int index : selection.envelopes)
      peaks.push_back(WriteEnvelope(study, solved, study.envelopes[index],
                                    {formats.contains("csv"), formats.contains("json")}, folder,
                                    by));
    if (formats.contains("csv"))
      WriteCsv(std::array{RunTable(run)}, folder, "", by);
    return peaks;
  }

private:
  fs::path FileOf(const Combination& combination, const char* ending) const
  {
    return folder / (FileNameOf(combination.name) + ending);
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
    const results::Results results = ResultsOf(study, solved, combination);
    if (vtu)
      WriteVtu(study.model, results, FileOf(combination, ".vtu"),
               {.withLoads = false, .writer = by});
    if (!csv && !json)
      return;
    const std::vector<tables::Table> tables = tables::ResultTables(study.model, results);
    if (csv)
      WriteCsv(tables, folder, FileNameOf(combination.name) + ".", by);
    if (json)
      WriteJson({"morlen-results", "morlen-cases",
                 JsonOf(study, combination) + ",\"run\":" + morlen::JsonOf(run)},
                study.model, study.modelFile, tables, FileOf(combination, ".json"), by);
  }

  // In the formats of the program.
  void WriteOurs(const Combination& combination)
  {
    const std::vector<double> column = CombinedColumn(solved, combination);
    const CaseWriter writer(*study.problem, FamiliesOf(*study.problem), solved.Layout(), column);
    if (formats.contains("text")) {
      AtomicFile file(FileOf(combination, ".txt"), by);
      writer.WriteText(file.Stream());
      file.Commit();
    }
    if (formats.contains("post")) {
      AtomicFile file(FileOf(combination, ".morlen.res"), by);
      writer.WritePost(file.Stream());
      file.Commit();
    }
  }

  // The list of the VTU files for ParaView, whose time is the number of the combination.
  void WriteCollection(const std::vector<int>& combinations)
  {
    AtomicFile file(folder / (stem + ".pvd"), by);
    file.Write("<VTKFile type=\"Collection\" version=\"0.1\">\n<Collection>\n");
    int time = 0;
    for (const int index : combinations)
      file.Write("<DataSet timestep=\"" + std::to_string(time++) + "\" file=\"" +
                 FileOf(study.combinations[index], ".vtu").filename().string() + "\"/>\n");
    file.Write("</Collection>\n</VTKFile>\n");
    file.Commit();
  }

  Study& study;
  const SolvedCases& solved;
  const std::set<std::string>& formats;
  const fs::path& folder;
  const std::string& stem;
  const KnownRun run;
  AtomicFile::By by;
};

}  // namespace

void PrepareCaseResults(const Study& study, const Selection& selection, const CaseTargets& targets)
{
  SpareInputs(study, selection, targets.folder, targets.stem + ".pvd");
  MakeFolder(targets.folder);
  RemoveStaleTemporaries(targets.folder);
}

std::vector<std::vector<Peak>> WriteCaseResults(Study& study, const SolvedCases& solved,
                                                const Selection& selection,
                                                const CaseTargets& targets, AtomicFile::By writer)
{
  return Writer(study, solved, targets, writer).Write(selection);
}

}  // namespace morlen::cases
