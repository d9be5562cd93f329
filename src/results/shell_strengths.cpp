#include "results/shell_strengths.h"

#include <cmath>
#include <iterator>

#include "assembly/shell.h"
#include "assembly/shell_family.h"
#include "assembly/solution.h"
#include "base/array_size.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/principal_values.h"

namespace morlen {

void CalcShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results)
{
  constexpr int kValues = 8;
  constexpr int kAngles = 6;
  const int points = results.points;
  const auto count = std::ssize(results.numbers);
  results.blockSize = kValues * points;
  results.strengths.resize(ArrayLength(count, results.blockSize), 0.0);
  if (problem.stressOutput != StressOutput::Local)
    results.mainAngles.resize(ArrayLength(count, kAngles * points), 0.0);
  if (problem.stressOutput == StressOutput::MainAndLocal)
    results.mainStrengths.resize(ArrayLength(count, results.blockSize), 0.0);
  ReaVecV* const main =
      problem.stressOutput == StressOutput::MainAndLocal ? &results.mainStrengths : nullptr;

  ShellEvaluator shell;
  double local[6 * 6];
  int place = 0;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    shell.Evaluate(elem, problem.RequireMaterial(elem));
    shell.CalcRelative(elem, FoldedNodes(problem.coplanarity, elem), solution.Displacements(),
                       local);
    const int offset = place * results.blockSize;
    shell.AddStrengths(local, results.strengths, offset);
    if (problem.stressOutput != StressOutput::Local)
      ConvertResultsToMainValues(results.strengths, offset, points, results.mainAngles,
                                 place * kAngles * points, AxesFromMatriu(shell.Frame()), main,
                                 std::sqrt(shell.Area()));
    ++place;
  }
}

}  // namespace morlen
