#include "report/model_page.h"

#include "assembly/model_checks.h"
#include "base/textscan.h"
#include "check/run_end.h"
#include "common/model_data.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "report/applied_loads.h"
#include "report/page.h"
#include "report/page_data.h"
#include "run/element_families.h"

namespace morlen {

namespace {

void RequireReferences(const Problem& problem)
{
  CheckReferences(problem.meshes, problem.materials, FamiliesOf(problem));
}

AppliedLoads LoadsOrNone(Problem& problem, const model::Model& model)
{
  AppliedLoads loads;
  const auto compute = [&] {
    PrepareLoads(problem);
    loads = AppliedLoadsOf(problem, model);
  };
  if (!check::Succeeds(compute)) {
    loads = {};
    loads.nodes.resize(model.nodes.size());
    loads.onSurfaces.resize(model.nodes.size());
  }
  return loads;
}

}  // namespace

void WriteModelPage(Problem& problem, const ModelPageTexts& texts,
                    const std::filesystem::path& output, AtomicFile::By writer)
{
  RequireReferences(problem);
  const model::Model model = model::ModelOf(problem);
  const AppliedLoads loads = LoadsOrNone(problem, model);
  WritePage(output, texts.file,
            PageDataOfModel(texts.file, texts.description, model, loads, texts.findings), writer);
}

bool WriteModelPage(std::string_view text, const ModelPageTexts& texts,
                    const std::filesystem::path& output, AtomicFile::By writer)
{
  Problem problem(100);
  const bool isWhole = check::Succeeds([&] {
    TextScan scan(text);
    ReadProblem(scan, problem);
    RequireReferences(problem);
  });
  if (isWhole)
    WriteModelPage(problem, texts, output, writer);
  return isWhole;
}

}  // namespace morlen
