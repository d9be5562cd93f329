#include "outputs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "base/errorwriter.h"
#include "base/output_file.h"
#include "common/model_data.h"
#include "common/result_data.h"
#include "export/vtu.h"
#include "problem/problem_image.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"
#include "report/page.h"
#include "report/page_data.h"
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

void RequireFree(const OutputNames& names)
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
  RequireNoProblemFile(files);
}

void WriteText(const Problem& problem, const Solution& solution, const std::string& name)
{
  OutputFile file(name);
  WriteResults(problem, FamiliesOf(problem), solution, file.Stream());
  file.Commit();
}

// The mesh file, if any, is written with the results.
void WritePost(const Problem& problem, const Solution& solution, const std::string& name,
               const std::optional<std::string>& meshName)
{
  std::optional<OutputFile> mesh;
  if (meshName)
    mesh.emplace(*meshName);
  OutputFile file(name);
  WriteKivResults(problem, FamiliesOf(problem), solution, file.Stream(),
                  mesh ? mesh->WrittenName().c_str() : nullptr);
  if (mesh)
    mesh->Commit();
  file.Commit();
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
    ReadImage(*solved.analysis->modelImage, problem);
    problem.solverSettings.type = solved.analysis->solver;
    model = model::ModelOf(problem);
    const fs::path post = folder / "post";
    const fs::path text = folder / "text";
    solved.With([&](const Problem& prepared, const Solution& solution) {
      WritePost(prepared, solution, post.string(), {});
      WriteText(prepared, solution, text.string());
    });
    results = results::ReadResults(model, {.model = {}, .post = post, .text = text});
  }

  void WriteReport(const std::string& name, const std::string& head)
  {
    PrepareLoads(problem);
    const AppliedLoads loads = AppliedLoadsOf(problem, model);
    const Equilibrium equilibrium = EquilibriumOf(model, loads.nodes, results);
    const SolverType solver = problem.solverSettings.type;
    const bool iterated = solver == SolverType::Sparse || solver == SolverType::Double;
    const std::string title = fs::path(name).stem().string();
    WritePage(name, title,
              PageData({.file = title,
                        .description = DescriptionIn(head, folder),
                        .model = model,
                        .results = results,
                        .loads = loads,
                        .equilibrium = equilibrium,
                        .advice = AdviceOf(equilibrium, model, problem.shellFormulation, iterated),
                        .check = {}}),
              AtomicFile::By::Library);
  }

  model::Model model;
  results::Results results;

private:
  TemporaryFolder folder;
  Problem problem{100};
};

}  // namespace

void WriteOutputs(const Solved& solved, const OutputNames& names)
{
  RequireFree(names);
  if (names.report && solved.analysis->isCase)
    Fatal("error: a report is of a model with its loads, not of a load case\n");
  if (names.mesh && !names.post)
    Fatal("error: the mesh file is written with the results file: give both names\n");
  solved.With([&](const Problem& problem, const Solution& solution) {
    if (names.text)
      WriteText(problem, solution, *names.text);
    if (names.post)
      WritePost(problem, solution, *names.post, names.mesh);
  });
  if (!names.vtu && !names.report)
    return;
  ForCompanions data(solved);
  if (names.vtu)
    WriteVtu(data.model, data.results, *names.vtu, AtomicFile::By::Library);
  if (names.report)
    data.WriteReport(*names.report, solved.analysis->head);
}

}  // namespace morlen::python
