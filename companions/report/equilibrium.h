#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"
#include "problem/settings.h"
#include "report/applied_loads.h"

namespace morlen {

/// The loads and the reactions of a structure, each as one force and one moment.
struct Equilibrium
{
  /// Results with a larger residual are not reliable. Printing six digits alone makes some 1e-6.
  static constexpr double kLimit = 1e-4;

  Vec3 center{};  ///< of the moments: the middle of the model's box
  Wrench loads;
  Wrench reactions;
  /// The largest component of loads + reactions as a ratio. Scale of forces: the larger of the sums
  /// of |component| over all loads and over all reactions, at least 1e-9 of the sum of |moment|
  /// over half the box's diagonal: moments that balance each other cause reactions from rounding
  /// only. Scale of moments: the scale of forces times half the box's diagonal, plus the larger of
  /// the sums of |moment|.
  double residual = 0.0;
  double forceResidual = 0.0;  ///< of the forces alone
  double scale = 0.0;          ///< of forces

  bool IsBalanced() const { return residual <= kLimit; }
};

/// Advice when loads and reactions are not in equilibrium; empty when they are. `formulation`: of
/// the shells. `iterated`: the equations have been solved by iteration.
std::string AdviceOf(const Equilibrium& equilibrium, const model::Model& model,
                     ShellFormulation formulation, bool iterated);

/// Makes the residuals of load cases of one structure relative to at least 1e-9 of the largest
/// scale of all: a settlement that causes no forces has reactions from rounding only.
void RelateToLargest(std::span<Equilibrium> cases);

/// The balance of the loads, by position in the model's list of nodes, and the reactions.
Equilibrium EquilibriumOf(const model::Model& model, const std::vector<Wrench>& loads,
                          const results::Results& results);

}  // namespace morlen
