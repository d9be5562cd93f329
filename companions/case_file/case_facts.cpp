#include "case_file/case_facts.h"

#include <algorithm>

#include "cases/solved_cases.h"
#include "problem/problem.h"

namespace morlen {

RunFacts FactsOfAll(const SolvedCases& solved, const Problem& problem)
{
  SolutionAccuracy worst;
  for (int k = 0; k < solved.Count(); ++k) {
    worst.error = std::max(worst.error, solved.Accuracy(k).error);
    worst.residual = std::max(worst.residual, solved.Accuracy(k).residual);
  }
  return FactsOf(solved.Account(), worst, problem.Equations());
}

}  // namespace morlen
