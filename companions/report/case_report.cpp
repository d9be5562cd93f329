#include "report/case_report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/errorwriter.h"
#include "case_file/check_cases.h"
#include "case_file/open_study.h"
#include "case_file/results_of.h"
#include "cases/solved_cases.h"
#include "common/file_text.h"
#include "common/source_files.h"
#include "kit/make_kit.h"
#include "problem/problem.h"
#include "report/findings_of.h"
#include "report/page.h"
#include "report/page_data.h"
#include "run/element_families.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// The problems that morlen-check finds in the file with its loads, and in the model.
std::vector<Finding> FindingsInAll(const fs::path& file, const fs::path& model)
{
  const check::Report report = cases::CheckCases(file.string(), FileText(file).value_or(""));
  std::vector<Finding> findings = FindingsOf(report.problems, file.filename().string());
  for (Finding& finding : FindingsIn(model)) {
    const bool known = std::any_of(findings.begin(), findings.end(), [&](const Finding& other) {
      return other.text == finding.text;
    });
    if (!known)
      findings.push_back(std::move(finding));
  }
  return findings;
}

// Removes the reactions at nodes without supports: the tables of the page have the same rows for
// all cases.
void KeepReactionsOfSupports(const model::Model& model, results::Results& results)
{
  std::vector<bool> supported(model.nodes.size());
  for (const model::Support& support : model.supports)
    supported[support.node] = true;
  for (std::size_t i = 0; i < supported.size(); ++i) {
    if (!supported[i])
      results.nodes[i].force = results.nodes[i].moment = Vec3{};
  }
}

// Adds every case to the data of the page, one after the other. Returns the balances.
std::vector<Equilibrium> AddCases(const cases::Study& study,
                                  const std::vector<CaseActions>& actions,
                                  const SolvedCases& solved, CasePageData& data)
{
  std::vector<Equilibrium> balances;
  for (int k = 0; k < study.cases; ++k) {
    results::Results results = cases::ResultsOf(study, solved, study.combinations[k]);
    results.shellMain = false;
    balances.push_back(EquilibriumOf(study.model, actions[k].applied.nodes, results));
    KeepReactionsOfSupports(study.model, results);
    data.Add(actions[k], results);
  }
  RelateToLargest(balances);
  return balances;
}

std::vector<std::string> AdviceOnAll(const cases::Study& study,
                                     const std::vector<Equilibrium>& balances)
{
  const Problem& problem = *study.problem;
  const SolverType solver = problem.solverSettings.type;
  const bool iterated = solver == SolverType::Sparse || solver == SolverType::Double;
  std::vector<std::string> advice;
  advice.reserve(balances.size());
  for (const Equilibrium& one : balances)
    advice.push_back(AdviceOf(one, study.model, problem.shellFormulation, iterated));
  return advice;
}

}  // namespace

CaseBalances WriteCaseReport(const cases::Study& study, const std::vector<CaseActions>& actions,
                             const SolvedCases& solved, const CaseReportTexts& texts,
                             const fs::path& output, AtomicFile::By writer)
{
  CasePageData data(study, texts.file, texts.description, texts.findings,
                    {KnownRun::State::Matches, FactsOfAll(solved, *study.problem)});
  CaseBalances balances;
  balances.equilibria = AddCases(study, actions, solved, data);
  balances.advice = AdviceOnAll(study, balances.equilibria);
  for (std::size_t k = 0; k < balances.equilibria.size(); ++k) {
    if (balances.equilibria[k].residual > balances.Worst().residual)
      balances.worst = k;
  }
  WritePage(output, texts.file, data.Text(balances.equilibria, balances.advice), writer);
  return balances;
}

void WarnOfBalances(const cases::Study& study, const CaseBalances& balances)
{
  for (std::size_t k = 0; k < balances.equilibria.size(); ++k) {
    if (!balances.equilibria[k].IsBalanced())
      std::cerr << "warning: load case '" << study.combinations[k].name
                << "': loads and reactions are not in equilibrium. " << balances.advice[k] << "\n";
  }
}

ExitStatus ReportCases(const fs::path& file, const fs::path& output)
{
  const std::string all[] = {"*"};  // the page shows every case
  const std::unique_ptr<cases::Study> study = cases::OpenStudy(file.string(), all);
  if (!study)
    return ExitStatus::Failed;
  RefuseInputs(output, study->inputs);
  const std::vector<Finding> findings = FindingsInAll(file, study->modelFile);
  const std::vector<CaseActions> actions = ActionsOf(*study);
  const std::unique_ptr<SolverKit> kit = MakeKit();
  const SolvedCases solved(*study->problem, FamiliesOf(*study->problem), study->loads,
                           {.kit = *kit});
  const AtomicFile::By writer = WriterOf(std::array{std::optional(output)});
  const CaseBalances balances =
      WriteCaseReport(*study, actions, solved,
                      {file.filename().string(), DescriptionOf(file), findings}, output, writer);
  WarnOfErrors(findings, file.string());
  WarnOfBalances(*study, balances);
  std::fprintf(writer.Notes(), "residual of equilibrium: %.2g, the largest of all cases, of '%s'\n",
               balances.Worst().residual, study->combinations[balances.worst].name.c_str());
  return balances.Worst().IsBalanced() ? ExitStatus::Done : ExitStatus::Found;
}

}  // namespace morlen
