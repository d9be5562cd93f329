#include "outputs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <span>
#include <system_error>
#include <vector>

#include "base/errorwriter.h"
#include "base/interruption.h"
#include "base/output_file.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "common/run_record.h"
#include "common/source_files.h"
#include "export/vtu.h"
#include "problem/problem_image.h"
#include "report/page_data.h"
#include "report/run_report.h"
#include "results/kiv_results.h"
#include "results/text_results.h"
#include "run/element_families.h"
#include "run/file_identity.h"

namespace morlen::python {

namespace fs = std::filesystem;

namespace {

/// A folder for files that only this process reads. It is removed in the end.
class TemporaryFolder
{
public:
  TemporaryFolder() : name((fs::temp_directory_path() / "morlen-XXXXXX").string())
  {
    if (!mkdtemp(name.data()))
      Fatal("error: no folder for temporary files can be made: ", name, "\n");
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder()
  {
    std::error_code ignored;
    fs::remove_all(name, ignored);
  }

  fs::path operator/(const char* file) const { return fs::path(name) / file; }

private:
  std::string name;
};

void RequireFree(const OutputNames& names, std::span<const fs::path> inputs)
{
  std::vector<RunFile> files;
  const auto add = [&](const char* role, const std::optional<std::string>& name) {
    if (name)
      files.push_back({role, *name});
  };
  add("text results file", names.text);
  add("results file", names.post);
  add("mesh file", names.mesh);
  add("VTU file", names.vtu);
  add("report", names.report);
  RequireDifferentFiles(files);
  for (const RunFile& file : files) {
    RefuseSources(file.name);
    RefuseInputs(file.name, inputs);
  }
}

/// The files of one call. Nothing is under their names before Commit.
class Outputs
{
public:
  /// Tests all files. Fatal when one cannot be written; then all are as before.
  explicit Outputs(const OutputNames& names)
  {
    Open(text, names.text);
    Open(post, names.post);
    Open(mesh, names.mesh);
    Open(vtu, names.vtu);
    Open(report, names.report);
  }

  // A full disk is noticed before the first file gets its name.
  void Commit()
  {
    for (OutputFile* file : opened)
      file->Complete();
    for (OutputFile* file : opened)
      file->Commit();
  }

  std::optional<OutputFile> text, post, mesh, vtu, report;

private:
  void Open(std::optional<OutputFile>& file, const std::optional<std::string>& name)
  {
    if (name)
      opened.push_back(&file.emplace(*name));
  }

  std::vector<OutputFile*> opened;
};

void WriteText(const Problem& problem, const Solution& solution, OutputFile& file)
{
  WriteResults(problem, FamiliesOf(problem), solution, file.Stream());
}

// mesh: null without a mesh file.
void WritePost(const Problem& problem, const Solution& solution, OutputFile& file, OutputFile* mesh)
{
  WriteKivResults(problem, FamiliesOf(problem), solution, file.Stream(),
                  mesh ? mesh->WrittenName().c_str() : nullptr);
}

std::vector<std::string> DescriptionIn(const std::string& head, const TemporaryFolder& folder)
{
  const fs::path file = folder / "model.dat";
  std::ofstream(file) << head;
  return DescriptionOf(file);
}

/// The model before its analysis and its results as the companions have them: from the result
/// files, whose digits they get.
class ForCompanions
{
public:
  explicit ForCompanions(const Solved& solved)
  {
    ReadImage(solved.analysis->modelImage, problem);
    problem.solverSettings.type = solved.analysis->solver;
    model = model::ModelOf(problem);
    const fs::path post = folder / "post";
    const fs::path text = folder / "text";
    solved.With([&](const Problem& prepared, const Solution& solution) {
      run = {KnownRun::State::Matches,
             FactsOf(solved.analysis->account, solution.accuracy, prepared.Equations())};
      Outputs files({.text = text, .post = post, .mesh = {}, .vtu = {}, .report = {}});
      WriteText(prepared, solution, *files.text);
      WritePost(prepared, solution, *files.post, nullptr);
      files.Commit();
    });
    CheckInterruption();
    results = results::ReadResults(model, {.model = {}, .post = post, .text = text});
    CheckInterruption();
  }

  // title: that of the page.
  void WriteReport(std::ostream& out, const std::string& title, const std::string& head)
  {
    WriteRunReport(
        problem, model, results,
        {.file = title, .description = DescriptionIn(head, folder), .check = {}, .run = run}, out);
  }

  model::Model model;
  results::Results results;

private:
  TemporaryFolder folder;
  Problem problem{100};
  KnownRun run;
};

}  // namespace

void WriteOutputs(const Solved& solved, const OutputNames& names)
{
  RequireFree(names, solved.analysis->origin.files);
  if (names.report && solved.analysis->isCase)
    Fatal("error: a report is of a model with its loads, not of a load case\n");
  if (names.mesh && !names.post)
    Fatal("error: the mesh file is written with the results file: give both names\n");
  Outputs files(names);
  solved.With([&](const Problem& problem, const Solution& solution) {
    if (files.text)
      WriteText(problem, solution, *files.text);
    if (files.post)
      WritePost(problem, solution, *files.post, files.mesh ? &*files.mesh : nullptr);
  });
  if (files.vtu || files.report) {
    ForCompanions data(solved);
    if (files.vtu)
      WriteVtu(data.model, data.results, !solved.analysis->isCase, files.vtu->Stream());
    CheckInterruption();
    if (files.report)
      data.WriteReport(files.report->Stream(), fs::path(*names.report).stem().string(),
                       solved.analysis->origin.head);
  }
  CheckInterruption();  // the last one: from here on all files get their names
  files.Commit();
}

}  // namespace morlen::python
