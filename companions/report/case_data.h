#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "case_file/study.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"
#include "report/page_parts.h"

namespace morlen {

/// What acts on a model in one load case.
struct CaseActions
{
  std::vector<model::Support> supports;  ///< with the settlements of the case
  std::vector<model::NodalLoad> nodalLoads;
  std::vector<model::ElementLoad> elementLoads;
  AppliedLoads applied;
};

/// The actions of each case of a study that has not been analysed.
std::vector<CaseActions> ActionsOf(cases::Study& study);

/// The data of a page with load cases. It contains the results of the cases only. The page computes
/// from them combinations, envelopes, and the values that are not linear in the loads. Values along
/// a beam are polynomials: the data has just as many points as determine them.
class CasePageData
{
public:
  /// Begins with the parts of the model. run: how all cases were solved. The study is borrowed.
  CasePageData(const cases::Study& study, const std::string& file,
               const std::vector<std::string>& description, const std::vector<Finding>& check,
               const KnownRun& run);
  ~CasePageData();

  /// Adds the cases in order. results: without principal values that only some problems ask for.
  void Add(const CaseActions& actions, const results::Results& results);

  /// The data after all cases, as PageText. balances, advice: of each case.
  std::string Text(std::span<const Equilibrium> balances,
                   std::span<const std::string> advice) const;

private:
  struct Parts;
  const cases::Study& study;
  model::Model model;
  std::unique_ptr<Parts> parts;
};

/// The number of values at equal distances, of 2 to 5 and then all, that determine the values of
/// polynomials: blocks of `points` values each. The places of `count` values: ChosenPoints.
int CountOfPoints(std::span<const double> values, int points);

/// The positions, from 0, of `count` of the points.
std::vector<int> ChosenPoints(int count, int points);

}  // namespace morlen
