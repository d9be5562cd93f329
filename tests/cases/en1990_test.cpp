// Combinations by EN 1990, against lists made by hand and an independent enumeration.

#include "cases/en1990.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace morlen {

namespace {

// Each combination as its name and "case:factor" in order.
std::vector<std::string> Texts(const std::vector<Combination>& list)
{
  std::vector<std::string> texts;
  for (const Combination& one : list) {
    std::string& text = texts.emplace_back(one.name);
    for (const auto& [index, factor] : one.factors) {
      char part[40];
      std::snprintf(part, sizeof part, " %d:%g", index, factor);
      text += part;
    }
  }
  return texts;
}

// Cases 0 permanent; 1, 2 imposed, together; 3 wind.
Actions SmallHall()
{
  Actions actions;
  actions.permanent = {{0}};
  actions.variable = {{{1, 2}, true, {0.7, 0.5, 0.3}}, {{3}, false, {0.6, 0.2, 0.0}}};
  return actions;
}

using Row = std::map<int, long long>;  // factors in millionths, by case

/// Another way to the same sets: each case of a variable action is on or off, one action or none
/// leads, each permanent action has one of two factors.
class Enumeration
{
public:
  struct Factors
  {
    double favourable, unfavourable, partial;
    int leading, accompanying;  ///< psi, -1 for 1
  };

  Enumeration(const Actions& actions_, const Factors& factors_)
      : actions(actions_), factors(factors_)
  {
    for (std::size_t a = 0; a < actions.variable.size(); ++a) {
      for (const int one : actions.variable[a].cases)
        cases.push_back({one, static_cast<int>(a)});
    }
  }

  std::set<Row> All() const
  {
    std::set<Row> found;
    const int leaders = static_cast<int>(actions.variable.size());
    for (int on = 0; on < (1 << cases.size()); ++on) {
      for (int leader = 0; leader <= leaders; ++leader) {
        for (int high = 0; IsAllowed(on, leader) && high < (1 << actions.permanent.size()); ++high)
          found.insert(RowOf(on, leader, high));
      }
    }
    found.erase(Row());
    return found;
  }

private:
  // The number of cases of an action that are on.
  int CountOf(int action, int on) const
  {
    int count = 0;
    for (std::size_t k = 0; k < cases.size(); ++k)
      count += cases[k].second == action ? on >> k & 1 : 0;
    return count;
  }

  bool IsAllowed(int on, int leader) const
  {
    const int leaders = static_cast<int>(actions.variable.size());
    for (int action = 0; action < leaders; ++action) {
      if (!actions.variable[action].together && CountOf(action, on) > 1)
        return false;
    }
    return leader == leaders ? on == 0 : CountOf(leader, on) > 0;
  }

  Row RowOf(int on, int leader, int high) const
  {
    Row row;
    const auto enter = [&](int one, double factor) {
      if (std::llround(factor * 1e6) != 0)
        row[one] = std::llround(factor * 1e6);
    };
    for (std::size_t g = 0; g < actions.permanent.size(); ++g) {
      for (const int one : actions.permanent[g])
        enter(one, high >> g & 1 ? factors.unfavourable : factors.favourable);
    }
    for (std::size_t k = 0; k < cases.size(); ++k) {
      const auto [one, action] = cases[k];
      const int psi = action == leader ? factors.leading : factors.accompanying;
      if (on >> k & 1)
        enter(one, factors.partial * (psi < 0 ? 1.0 : actions.variable[action].psi[psi]));
    }
    return row;
  }

  const Actions& actions;
  Factors factors;
  std::vector<std::pair<int, int>> cases;  ///< with their actions
};

std::set<Row> Enumerate(const Actions& actions, const Enumeration::Factors& factors)
{
  return Enumeration(actions, factors).All();
}

std::set<Row> SetOf(const std::vector<Combination>& list, const std::string& prefix)
{
  std::set<Row> set;
  int number = 0;
  for (const Combination& one : list) {
    if (!one.name.starts_with(prefix))
      continue;
    EXPECT_EQ(one.name, prefix + std::to_string(++number));
    Row row;
    for (const auto& [index, factor] : one.factors)
      row[index] = std::llround(factor * 1e6);
    EXPECT_TRUE(set.insert(row).second) << one.name << " is a duplicate";
  }
  return set;
}

void ExpectEnumerated(const Actions& actions)
{
  const ActionFactors& f = actions.factors;
  const double low = f.permanent[0];
  const double high = f.permanent[1];
  const auto check = [&](Formula formula, const char* prefix, const Enumeration::Factors& factors) {
    SCOPED_TRACE(prefix);
    const std::vector<Combination> list = MakeCombinations(actions, formula);
    EXPECT_EQ(SetOf(list, prefix), Enumerate(actions, factors));
    EXPECT_LE(static_cast<double>(list.size()), CombinationBound(actions, formula));
  };
  check(Formula::Fundamental, "6.10/", {low, high, f.variable, -1, 0});
  check(Formula::Equilibrium, "EQU/", {f.equilibrium[0], f.equilibrium[1], f.variable, -1, 0});
  check(Formula::Characteristic, "characteristic/", {1, 1, 1, -1, 0});
  check(Formula::Frequent, "frequent/", {1, 1, 1, 1, 2});
  check(Formula::QuasiPermanent, "quasi-permanent/", {1, 1, 1, 2, 2});
  const std::vector<Combination> both = MakeCombinations(actions, Formula::FundamentalAB);
  const std::set<Row> a = Enumerate(actions, {low, high, f.variable, 0, 0});
  std::set<Row> b = Enumerate(actions, {low, f.xi * high, f.variable, -1, 0});
  for (const Row& row : a)
    b.erase(row);
  EXPECT_EQ(SetOf(both, "6.10a/"), a);
  EXPECT_EQ(SetOf(both, "6.10b/"), b);
  EXPECT_LE(static_cast<double>(both.size()), CombinationBound(actions, Formula::FundamentalAB));
}

}  // namespace

TEST(En1990, ListsOneWindAndOnePermanentLoad)
{
  Actions actions;
  actions.permanent = {{0}};
  actions.variable = {{{1}, false, {0.6, 0.2, 0.0}}};
  const auto texts = [&](Formula formula) { return Texts(MakeCombinations(actions, formula)); };
  using List = std::vector<std::string>;
  EXPECT_EQ(texts(Formula::Fundamental),
            (List{"6.10/1 0:1.35", "6.10/2 0:1", "6.10/3 0:1.35 1:1.5", "6.10/4 0:1 1:1.5"}));
  EXPECT_EQ(texts(Formula::FundamentalAB),
            (List{"6.10a/1 0:1.35", "6.10a/2 0:1", "6.10a/3 0:1.35 1:0.9", "6.10a/4 0:1 1:0.9",
                  "6.10b/1 0:1.1475", "6.10b/2 0:1.1475 1:1.5", "6.10b/3 0:1 1:1.5"}));
  EXPECT_EQ(texts(Formula::Equilibrium),
            (List{"EQU/1 0:1.1", "EQU/2 0:0.9", "EQU/3 0:1.1 1:1.5", "EQU/4 0:0.9 1:1.5"}));
  EXPECT_EQ(texts(Formula::Characteristic),
            (List{"characteristic/1 0:1", "characteristic/2 0:1 1:1"}));
  EXPECT_EQ(texts(Formula::Frequent), (List{"frequent/1 0:1", "frequent/2 0:1 1:0.2"}));
  EXPECT_EQ(texts(Formula::QuasiPermanent), (List{"quasi-permanent/1 0:1"}));  // psi2 is 0
}

// Imposed loads of two spans that may act alone or together, and wind.
TEST(En1990, CharacteristicOfAHallByHand)
{
  const std::vector<std::string> expected = {
      "characteristic/1 0:1",
      "characteristic/2 0:1 1:1",
      "characteristic/3 0:1 1:1 3:0.6",
      "characteristic/4 0:1 2:1",
      "characteristic/5 0:1 2:1 3:0.6",
      "characteristic/6 0:1 1:1 2:1",
      "characteristic/7 0:1 1:1 2:1 3:0.6",
      "characteristic/8 0:1 3:1",
      "characteristic/9 0:1 1:0.7 3:1",
      "characteristic/10 0:1 2:0.7 3:1",
      "characteristic/11 0:1 1:0.7 2:0.7 3:1",
  };
  EXPECT_EQ(Texts(MakeCombinations(SmallHall(), Formula::Characteristic)), expected);
}

// Products of factors have no rounding errors of their own: 1.5 times 0.7 is 1.05 to the last bit.
TEST(En1990, FactorsAreRoundDecimals)
{
  for (const Combination& one : MakeCombinations(SmallHall(), Formula::Fundamental)) {
    for (const auto& [index, factor] : one.factors) {
      const double allowed[] = {1.0, 1.35, 1.5, 1.05, 0.9};
      EXPECT_NE(std::find(std::begin(allowed), std::end(allowed), factor), std::end(allowed))
          << one.name << " has " << factor;
    }
  }
}

TEST(En1990, AgreesWithAnIndependentEnumeration)
{
  ExpectEnumerated(SmallHall());
  Actions actions = SmallHall();
  actions.permanent = {{0, 4}, {5}};  // two cases share their factor, a third varies by itself
  ExpectEnumerated(actions);
  actions.variable.push_back({{6, 7, 8}, false, {1.0, 0.9, 0.8}});
  ExpectEnumerated(actions);
  actions.variable.push_back({{9}, false, {0.0, 0.0, 0.0}});
  ExpectEnumerated(actions);
  actions.factors.permanent[0] = 1.35;  // one factor only
  ExpectEnumerated(actions);
  actions.permanent.clear();
  ExpectEnumerated(actions);
}

// A list of thousands, with several cases in most actions.
TEST(En1990, AgreesOnAMassList)
{
  Actions actions;
  actions.permanent = {{0}, {1, 2}, {3}};
  actions.variable = {{{4, 5, 6, 7}, true, {0.7, 0.5, 0.3}},
                      {{8, 9, 10, 11}, false, {0.6, 0.2, 0.0}},
                      {{12}, false, {0.5, 0.2, 0.1}},
                      {{13}, false, {0.9, 0.8, 0.7}}};
  EXPECT_GT(MakeCombinations(actions, Formula::Fundamental).size(), 7000u);
  ExpectEnumerated(actions);
}

TEST(En1990, BoundOfManyCasesIsFoundWithoutListing)
{
  Actions actions;
  actions.permanent = {{0}};
  VariableAction many{{}, true, {0.7, 0.5, 0.3}};
  for (int k = 1; k <= 60; ++k)
    many.cases.push_back(k);
  actions.variable = {many};
  EXPECT_NEAR(CombinationBound(actions, Formula::Fundamental), 2.0 * std::exp2(60), std::exp2(10));
  EXPECT_NEAR(CombinationBound(actions, Formula::QuasiPermanent), std::exp2(60), std::exp2(10));
}

}  // namespace morlen
