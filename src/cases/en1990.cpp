#include "cases/en1990.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>

namespace morlen {

namespace {

/// One expression for combinations: the factors of permanent and variable actions.
struct Expression
{
  const char* name;
  double favourable, unfavourable;
  double variable;  ///< partial factor
  int leading;      ///< psi of the leading action: 0, 1 or 2; -1 for 1
  int accompanying;
};

std::vector<Expression> ExpressionsOf(const ActionFactors& f, Formula formula)
{
  const double low = f.permanent[0];
  const double high = f.permanent[1];
  switch (formula) {
    case Formula::Fundamental:
      return {{"6.10", low, high, f.variable, -1, 0}};
    case Formula::FundamentalAB:
      return {{"6.10a", low, high, f.variable, 0, 0},
              {"6.10b", low, f.xi * high, f.variable, -1, 0}};
    case Formula::Equilibrium:
      return {{"EQU", f.equilibrium[0], f.equilibrium[1], f.variable, -1, 0}};
    case Formula::Characteristic:
      return {{"characteristic", 1.0, 1.0, 1.0, -1, 0}};
    case Formula::Frequent:
      return {{"frequent", 1.0, 1.0, 1.0, 1, 2}};
    default:
      return {{"quasi-permanent", 1.0, 1.0, 1.0, 2, 2}};
  }
}

// Without the last digits, which are rounding errors of products.
double Rounded(double factor)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.14g", factor);
  return std::strtod(text, nullptr);
}

double PsiOf(const VariableAction& action, int index)
{
  return index < 0 ? 1.0 : action.psi[index];
}

// The number of choices of at least one case.
double ChoicesOf(const VariableAction& action)
{
  const double cases = static_cast<double>(action.cases.size());
  return action.together ? std::exp2(cases) - 1.0 : cases;
}

// Calls visit(cases) for every choice of at least one case of an action.
template <class Visit>
void ForEachChoice(const VariableAction& action, Visit visit)
{
  std::vector<int> chosen;
  if (!action.together) {
    for (const int one : action.cases)
      visit(chosen = {one});
    return;
  }
  const unsigned long long subsets = 1ULL << action.cases.size();
  for (unsigned long long subset = 1; subset < subsets; ++subset) {
    chosen.clear();
    for (std::size_t k = 0; k < action.cases.size(); ++k) {
      if (subset >> k & 1)
        chosen.push_back(action.cases[k]);
    }
    visit(chosen);
  }
}

using Factors = std::map<int, double>;

/// Lists the combinations of an expression, without those that it knows.
class Lister
{
public:
  Lister(const Actions& actions_, std::set<std::vector<std::pair<int, double>>>& known_)
      : actions(actions_), known(known_)
  {
  }

  void List(const Expression& expression, std::vector<Combination>& list)
  {
    number = 0;
    AddPermanent(expression, {}, 0, list);
    for (std::size_t leading = 0; leading < actions.variable.size(); ++leading) {
      const VariableAction& action = actions.variable[leading];
      const double factor = Rounded(expression.variable * PsiOf(action, expression.leading));
      ForEachChoice(action, [&](const std::vector<int>& cases) {
        Factors factors;
        for (const int one : cases)
          factors[one] = factor;
        AddAccompanying(expression, leading, 0, factors, list);
      });
    }
  }

private:
  // Adds the variable actions from `next` on in all ways.
  void AddAccompanying(const Expression& expression, std::size_t leading, std::size_t next,
                       const Factors& factors, std::vector<Combination>& list)
  {
    if (next == actions.variable.size())
      return AddPermanent(expression, factors, 0, list);
    AddAccompanying(expression, leading, next + 1, factors, list);
    if (next == leading)
      return;
    const VariableAction& action = actions.variable[next];
    const double factor = Rounded(expression.variable * PsiOf(action, expression.accompanying));
    ForEachChoice(action, [&](const std::vector<int>& cases) {
      Factors more = factors;
      for (const int one : cases)
        more[one] = factor;
      AddAccompanying(expression, leading, next + 1, more, list);
    });
  }

  // Adds the permanent actions from `next` on, unfavourable first.
  void AddPermanent(const Expression& expression, const Factors& factors, std::size_t next,
                    std::vector<Combination>& list)
  {
    if (next == actions.permanent.size())
      return Enter(expression.name, factors, list);
    for (const double factor : {expression.unfavourable, expression.favourable}) {
      Factors more = factors;
      for (const int one : actions.permanent[next])
        more[one] = Rounded(factor);
      AddPermanent(expression, more, next + 1, list);
      if (Rounded(expression.favourable) == Rounded(expression.unfavourable))
        break;
    }
  }

  void Enter(const char* name, const Factors& factors, std::vector<Combination>& list)
  {
    std::vector<std::pair<int, double>> key(factors.begin(), factors.end());
    std::erase_if(key, [](const auto& one) { return one.second == 0.0; });
    if (key.empty() || !known.insert(key).second)
      return;
    Combination& added = list.emplace_back();
    added.name = std::string(name) + "/" + std::to_string(++number);
    for (const auto& [index, factor] : key)
      added.factors.push_back({index, factor});
  }

  const Actions& actions;
  std::set<std::vector<std::pair<int, double>>>& known;
  int number = 0;
};

}  // namespace

double CombinationBound(const Actions& actions, Formula formula)
{
  double bound = 0.0;
  for (const Expression& e : ExpressionsOf(actions.factors, formula)) {
    const bool same = Rounded(e.favourable) == Rounded(e.unfavourable);
    const double permanent = same ? 1.0 : std::exp2(static_cast<double>(actions.permanent.size()));
    double all = 1.0;  // ways in which any of the actions accompany
    double ways = 1.0;
    for (const VariableAction& action : actions.variable)
      all *= 1.0 + ChoicesOf(action);
    for (const VariableAction& action : actions.variable)
      ways += ChoicesOf(action) * (all / (1.0 + ChoicesOf(action)));
    // Where leading actions have the factor of accompanying ones, it does not matter which leads.
    bound += permanent * (e.leading == e.accompanying ? all : ways);
  }
  return bound;
}

std::vector<Combination> MakeCombinations(const Actions& actions, Formula formula)
{
  std::vector<Combination> list;
  std::set<std::vector<std::pair<int, double>>> known;
  for (const Expression& expression : ExpressionsOf(actions.factors, formula))
    Lister(actions, known).List(expression, list);
  return list;
}

}  // namespace morlen
