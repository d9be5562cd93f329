#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "cases/combination.h"

// Combinations of actions by EN 1990:2002, Eurocode - Basis of structural design, 6.4.3.2 and
// 6.5.3.

namespace morlen {

/// A variable action and its factors psi0, psi1, psi2.
struct VariableAction
{
  std::vector<int> cases;  ///< from 0
  bool together = false;   ///< any subset of the cases acts; false: one of them
  double psi[3] = {};
};

/// The partial factors.
struct ActionFactors
{
  double permanent[2] = {1.0, 1.35};   ///< favourable, unfavourable
  double equilibrium[2] = {0.9, 1.1};  ///< the same for EQU
  double variable = 1.5;
  double xi = 0.85;  ///< of unfavourable permanent actions in (6.10b)
};

struct Actions
{
  /// Permanent actions: the cases of one share their factor, the actions vary independently.
  std::vector<std::vector<int>> permanent;
  std::vector<VariableAction> variable;
  ActionFactors factors;
};

enum class Formula : int
{
  Fundamental,     ///< (6.10)
  FundamentalAB,   ///< (6.10a) and (6.10b)
  Equilibrium,     ///< EQU, in the form of (6.10)
  Characteristic,  ///< (6.14b)
  Frequent,        ///< (6.15b)
  QuasiPermanent   ///< (6.16b)
};

/// The names of the formulas in files, in the order of their values.
constexpr std::array<std::string_view, 6> kFormulaNames = {
    "6.10", "6.10ab", "EQU", "characteristic", "frequent", "quasi-permanent"};

/// A bound of the number of combinations of a formula: the number before duplicates are removed.
double CombinationBound(const Actions& actions, Formula formula);

/// The combinations of a formula, named "6.10/1", "6.10/2" ...; (6.10a) and (6.10b) have numbers of
/// their own.
///
/// Each variable action leads in turn with at least one of its cases. Each of the others
/// accompanies with any of its cases or is absent. The permanent actions alone are a combination
/// too. Each permanent action takes both of its factors, independently of the others. Factors of 0
/// are left out, then combinations without factors and duplicates; of duplicates the first stays,
/// also between (6.10a) and (6.10b). Factors are rounded to 14 digits: 1.5 times 0.7 is 1.05.
///
/// The caller has found the bound small enough.
std::vector<Combination> MakeCombinations(const Actions& actions, Formula formula);

}  // namespace morlen
