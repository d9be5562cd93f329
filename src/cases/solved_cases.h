#pragma once

#include <memory>
#include <span>
#include <vector>

#include "assembly/preparation.h"
#include "assembly/solution.h"
#include "assembly/solver_account.h"
#include "cases/result_layout.h"
#include "problem/load_set.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The results of a model for many load cases, solved with one factorisation.
///
/// With a direct solver the results of a case are bit for bit those of a problem with its loads
/// only; they do not depend on the other cases.
class SolvedCases
{
public:
  /// Analyses a problem that has been read, not yet prepared, and has no loads (see ExtractLoads).
  /// The loads of the cases belong to the problem; they are in it only as long as they are needed.
  /// Fatal as Analyse and CalcStrengthsAndReactions. options: its loadVectors is ignored.
  ///
  /// Memory: that of one analysis, a load vector for each case, and the columns.
  SolvedCases(Problem& problem, const ElementFamilies& families, std::span<LoadSet> cases,
              const AnalysisOptions& options);
  /// Results that have been stored. problem: as the other constructor has left it. Fatal for
  /// columns that are not of this problem.
  SolvedCases(const Problem& problem, const ElementFamilies& families,
              std::vector<std::vector<double>>&& columns,
              std::vector<SolutionAccuracy>&& accuracies);

  int Count() const { return static_cast<int>(columns.size()); }
  const ResultLayout& Layout() const { return *layout; }
  /// The results of a case (from 0).
  std::span<const double> Column(int index) const { return columns[index]; }
  const SolutionAccuracy& Accuracy(int index) const { return accuracies[index]; }
  const SolverAccount& Account() const { return account; }

private:
  // False when a result is not finite.
  bool Enter(std::size_t index, Solution&& solution, Problem& problem,
             const ElementFamilies& families, const SolverKit& kit);

  std::unique_ptr<ResultLayout> layout;
  std::vector<std::vector<double>> columns;
  std::vector<SolutionAccuracy> accuracies;
  SolverAccount account;
};

}  // namespace morlen
