#include "assembly/preparation.h"

#include <algorithm>
#include <string>
#include <vector>

#include "assembly/coplanarity.h"
#include "assembly/model_checks.h"
#include "assembly/six_nodes.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "problem/hinges.h"
#include "problem/problem.h"

namespace morlen {

namespace {

// The fastest solver of a large model, the skyline of a small model. The iteration uses the numbers
// of the file.
SolverChoice ChooseSolver(Problem& problem, const ElementFamilies& families,
                          const AnalysisOptions& options)
{
  PrepareForSkyline(problem, options.renumber);
  const long long equations = static_cast<long long>(problem.numNodes) * problem.components.count;
  if (equations < kChoiceFrom)
    return {.reason = "the usual method below " + std::to_string(kChoiceFrom) + " equations"};
  SolverWork work = EstimateWork(problem, families);
  work.loadVectors = options.loadVectors;
  const int n = problem.components.count;
  const double blocks = work.sparseEntries / n / n;
  const std::uint64_t memory = UsableMemory(MemoryLimit());
  SolverChoice choice = FasterSolver(
      work, memory, options.kit.PlanDirect(problem, blocks, MostDirectSeconds(work, memory)));
  problem.solverSettings.type = choice.type;
  if (choice.type == SolverType::Sparse && options.renumber) {
    problem.meshes.front()->RestoreNumbers();
    MarkCoplanarNodes(problem);
  }
  return choice;
}

}  // namespace

void PrepareModel(Problem& problem, const ElementFamilies& families)
{
  CheckReferences(problem.meshes, problem.materials, families);
  CheckModel(problem.meshes, problem.problemType, problem.components, families);
  if (problem.hasHinges)
    MergeHinges(problem);
}

SolverChoice PrepareEquations(Problem& problem, const ElementFamilies& families,
                              const AnalysisOptions& options)
{
  if (problem.convertTo6Nodes && ConvertTriangles(problem))
    Progress(options.info, "Mesh converted to internal 6-noded representation\n");
  const SolverType asked = problem.solverSettings.type;
  SolverChoice choice{.type = asked, .reason = "the problem file asks for it"};
  if (asked == SolverType::Automatic)
    choice = ChooseSolver(problem, families, options);
  else if (asked == SolverType::SkyLine)
    PrepareForSkyline(problem, options.renumber);
  else
    MarkCoplanarNodes(problem);
  ReportMarks(problem, options.info);
  return choice;
}

void PrepareForSkyline(Problem& problem, bool renumber)
{
  problem.solverSettings.type = SolverType::SkyLine;
  if (renumber)
    problem.meshes.front()->RenumberNodes();
  MarkCoplanarNodes(problem);
}

void PrepareForDirect(Problem& problem, SolverType type, bool renumber)
{
  if (type == SolverType::SkyLine)
    return PrepareForSkyline(problem, renumber);
  problem.solverSettings.type = type;
  MarkCoplanarNodes(problem);
}

void ReportMarks(const Problem& problem, std::FILE* info)
{
  const std::vector<int>& marks = problem.coplanarity;
  if (!marks.empty())
    Progress(info, "%i out of %i nodes are coplanar\n",
             static_cast<int>(std::count(marks.begin(), marks.end(), 1)), problem.numNodes);
}

}  // namespace morlen
