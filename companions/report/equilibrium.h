#pragma once

#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"
#include "report/applied_loads.h"

namespace morlen {

/// The loads and the reactions of a structure, each as one force and one moment.
struct Equilibrium
{
  /// Above this residual the results are not to be trusted; six printed digits leave some 1e-6.
  static constexpr double kLimit = 1e-4;

  Vec3 center{};  ///< the moments are about it: the middle of the model's box
  Wrench loads;
  Wrench reactions;
  /// The largest component of the two's sum, relative to the sum of the sizes of all loads or, if
  /// that is larger, of all reactions; moments relative to this sum at half the box's diagonal
  /// and the sizes of the moments.
  double residual = 0.0;
  double forceResidual = 0.0;  ///< of the forces alone

  bool IsBalanced() const { return residual <= kLimit; }
};

/// What to do about loads that the reactions do not carry; empty when they do.
/// iterated tells whether the equations have been solved by iteration.
std::string AdviceOf(const Equilibrium& equilibrium, const model::Model& model, bool iterated);

/// The balance of loads by position in the model's list and the reactions of the results.
Equilibrium EquilibriumOf(const model::Model& model, const std::vector<Wrench>& loads,
                          const results::Results& results);

}  // namespace morlen
