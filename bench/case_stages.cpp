// The cost of a further load case against that of its substitutions, refinement and strengths, as
// JSON: one line for each problem file.

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "assembly/analysis.h"
#include "cases/solved_cases.h"
#include "measure.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "results/strengths.h"
#include "run/element_families.h"

using namespace morlen;

namespace {

constexpr int kFew = 10;
constexpr int kMany = 60;

void Read(const std::string& file, Problem& problem)
{
  std::ifstream in(file);
  ReadProblem(in, problem);
}

/// Solves the loads of the file `count` times with one factorisation.
void SolveLoads(const std::string& file, int count)
{
  Problem problem(100);
  Read(file, problem);
  const ElementFamilies& families = FamiliesOf(problem);
  const MakeLoads loads = [count](const Problem& prepared, const ElementFamilies& known) {
    return std::vector<LoadVector>(static_cast<std::size_t>(count),
                                   LoadsOfProblem(prepared, known).front());
  };
  Analyse(problem, families, {}, loads, [&](std::size_t, Solution&& given) {
    Solution solution = std::move(given);
    CalcStrengthsAndReactions(problem, families, solution, nullptr);
  });
}

/// The same as load cases.
void SolveCases(const std::string& file, int count)
{
  Problem problem(100);
  Read(file, problem);
  const LoadSet own = ExtractLoads(problem);
  std::vector<LoadSet> cases;
  for (int k = 0; k < count; ++k)
    cases.push_back(own.Copy());
  const SolvedCases solved(problem, FamiliesOf(problem), cases, {});
}

/// Seconds of one of the further cases.
template <class Solve>
double SecondsOfOne(const std::string& file, Solve solve)
{
  constexpr int kRepetitions = 5;
  const double few = Seconds(kRepetitions, [&] { solve(file, kFew); });
  const double many = Seconds(kRepetitions, [&] { solve(file, kMany); });
  return (many - few) / (kMany - kFew);
}

}  // namespace

int main(int argc, char** argv)
{
  for (int k = 1; k < argc; ++k) {
    const double loads = SecondsOfOne(argv[k], SolveLoads);
    const double cases = SecondsOfOne(argv[k], SolveCases);
    std::printf("{\"file\": \"%s\", \"load_vector\": %.6g, \"case\": %.6g, \"ratio\": %.4g}\n",
                argv[k], loads, cases, cases / loads);
  }
  return argc > 1 ? 0 : 2;
}
