#include "results/shell_strengths.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "assembly/refined_shell.h"
#include "assembly/shell.h"
#include "assembly/shell_family.h"
#include "assembly/solution.h"
#include "base/array_size.h"
#include "base/interruption.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/principal_values.h"

namespace morlen {

namespace {

constexpr int kValues = 8;
constexpr int kAngles = 6;

void MakeRoomForMain(StressOutput output, MeshResults& results)
{
  const auto count = std::ssize(results.numbers);
  if (output != StressOutput::Local)
    results.mainAngles.resize(ArrayLength(count, kAngles * results.points), 0.0);
  if (output == StressOutput::MainAndLocal)
    results.mainStrengths.resize(ArrayLength(count, results.blockSize), 0.0);
}

// Makes the local values of all elements those of the stress output. local(elem, offset): makes the
// local values of an element complete, which begin at results.strengths(offset + 1), and returns
// the evaluator, which knows frame and area.
template <class Local>
void ConvertResults(const Problem& problem, const Mesh& mesh, MeshResults& results, Local local)
{
  const StressOutput output = problem.stressOutput;
  MakeRoomForMain(output, results);
  ReaVecV* const main = output == StressOutput::MainAndLocal ? &results.mainStrengths : nullptr;
  const int points = results.points;
  int place = 0;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    CheckInterruption();
    const int offset = place * results.blockSize;
    const auto& shell = local(elem, offset);
    if (output != StressOutput::Local)
      ConvertResultsToMainValues(results.strengths, offset, points, results.mainAngles,
                                 place * kAngles * points, AxesFromMatriu(shell.Frame()), main,
                                 std::sqrt(shell.Area()));
    ++place;
  }
}

// Fills the results. calculate: as `local` of ConvertResults; it adds the local values.
template <class Calculate>
void FillResults(const Problem& problem, const Mesh& mesh, MeshResults& results,
                 Calculate calculate)
{
  results.blockSize = kValues * results.points;
  results.strengths.resize(ArrayLength(std::ssize(results.numbers), results.blockSize), 0.0);
  ConvertResults(problem, mesh, results, calculate);
}

template <class Evaluator>
void ConvertWith(Evaluator&& shell, const Problem& problem, const Mesh& mesh, MeshResults& results)
{
  ConvertResults(
      problem, mesh, results, [&](const Elem& elem, int) -> const auto& {
        shell.Evaluate(elem, problem.RequireMaterial(elem));
        return shell;
      });
}

template <class Shell>
void CalcRefined(const Problem& problem, const Mesh& mesh, const Solution& solution,
                 MeshResults& results)
{
  RefinedShellEvaluator<Shell> shell(problem.shellShares);
  double local[6 * Shell::kNodes];
  FillResults(
      problem, mesh, results, [&](const Elem& elem, int offset) -> const auto& {
        shell.Evaluate(elem, problem.RequireMaterial(elem));
        shell.CalcRelative(elem, solution.Displacements(), local);
        for (int point = 0; point < results.points; ++point)
          shell.Element().CalcStrengths(point, local,
                                        results.strengths.Data() + offset + point * kValues);
        return shell;
      });
}

}  // namespace

void CalcShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results)
{
  ShellEvaluator shell;
  double local[6 * 6];
  FillResults(
      problem, mesh, results, [&](const Elem& elem, int offset) -> const auto& {
        shell.Evaluate(elem, problem.RequireMaterial(elem));
        shell.CalcRelative(elem, FoldedNodes(problem.coplanarity, elem), solution.Displacements(),
                           local);
        shell.AddStrengths(local, results.strengths, offset);
        return shell;
      });
}

void CalcRefinedShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                               MeshResults& results)
{
  if (mesh.GiveNnode() == ThreeNodeShell::kNodes)
    CalcRefined<ThreeNodeShell>(problem, mesh, solution, results);
  else
    CalcRefined<SixNodeShell>(problem, mesh, solution, results);
}

void ConvertShellStrengths(const Problem& problem, const Mesh& mesh, MeshResults& results)
{
  if (problem.stressOutput == StressOutput::Local)
    return;
  if (problem.shellFormulation == ShellFormulation::Standard)
    ConvertWith(ShellEvaluator(), problem, mesh, results);
  else if (mesh.GiveNnode() == ThreeNodeShell::kNodes)
    ConvertWith(RefinedShellEvaluator<ThreeNodeShell>(problem.shellShares), problem, mesh, results);
  else
    ConvertWith(RefinedShellEvaluator<SixNodeShell>(problem.shellShares), problem, mesh, results);
}

}  // namespace morlen
