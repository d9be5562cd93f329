// From displacements to element strengths and support reactions.

#include "results/strengths.h"

#include "assembly/element_family.h"
#include "assembly/solution.h"
#include "assembly/solve.h"
#include "base/stprintf.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/finite_results.h"
#include "results/reactions.h"

namespace morlen {

void CalcStrengths(const Problem& problem, const ElementFamilies& families, int mesh,
                   Solution& solution, const SolverKit& kit)
{
  const Mesh& elements = *problem.meshes[mesh];
  solution.results.resize(problem.meshes.size());
  MeshResults& results = solution.results[mesh];
  results = {};
  results.points = families.Of(elements).points;
  for (const Elem& elem : Each<Elem>(*elements.GiveElemPlex()))
    results.numbers.push_back(elem.Num());
  kit.FillStrengths(problem, families, mesh, solution);
}

void Smooth(const Problem& problem, const ElementFamilies& families, Solution& solution,
            std::FILE* info)
{
  if (!problem.smoothing.on)
    return;
  Progress(info, "Beginning smooth of the gaussian variables\n");
  for (int mesh = 0; mesh < static_cast<int>(problem.meshes.size()); ++mesh) {
    if (const auto smooth = families.Of(*problem.meshes[mesh]).smooth)
      smooth(problem, mesh, solution);
  }
}

void CalcStrengthsAndReactions(const Problem& problem, const ElementFamilies& families,
                               Solution& solution, std::FILE* info, const SolverKit& kit)
{
  for (int mesh = 0; mesh < static_cast<int>(problem.meshes.size()); ++mesh)
    CalcStrengths(problem, families, mesh, solution, kit);
  CalcReactions(problem, families, solution);
  Smooth(problem, families, solution, info);
  if (!AreResultsFinite(problem, families, solution))
    SolverFailed(problem.meshes, problem.components, -1);
}

}  // namespace morlen
