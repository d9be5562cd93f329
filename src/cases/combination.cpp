#include "cases/combination.h"

#include <algorithm>
#include <cmath>

#include "base/errorwriter.h"

namespace morlen {

namespace {

void AddMultiple(std::span<const double> values, double factor, double* sums)
{
  for (std::size_t i = 0; i < values.size(); ++i)
    sums[i] += factor * values[i];
}

void RequireFinite(std::span<const double> values, const Combination& combination)
{
  // A sum is not finite when a term is not.
  double sum = 0.0;
  for (const double value : values)
    sum += 0.0 * value;
  if (sum != 0.0)
    Fatal("error: the results of '", combination.name, "' are too large\n");
}

}  // namespace

std::vector<double> CombinedColumn(const SolvedCases& cases, const Combination& combination)
{
  std::vector<double> column(cases.Layout().Size());
  if (combination.factors.size() == 1 && combination.factors.front().factor == 1.0) {
    const std::span<const double> only = cases.Column(combination.factors.front().index);
    std::copy(only.begin(), only.end(), column.begin());
    return column;
  }
  for (const CaseFactor& one : combination.factors)
    AddMultiple(cases.Column(one.index), one.factor, column.data());
  RequireFinite(column, combination);
  return column;
}

GroupValues::GroupValues(const SolvedCases& cases_, const ValueGroup& group_,
                         std::span<const Combination> combinations_)
    : cases(cases_),
      group(group_),
      combinations(combinations_),
      placeOf(static_cast<std::size_t>(cases.Count()), -1)
{
  for (const Combination& combination : combinations) {
    for (const CaseFactor& one : combination.factors) {
      if (placeOf[one.index] >= 0)
        continue;
      placeOf[one.index] = static_cast<int>(used.size());
      used.push_back(one.index);
    }
  }
}

int GroupValues::ItemsOfBlock() const
{
  constexpr std::size_t kValues = 1 << 16;
  const std::size_t ofItem = group.ValuesOfItem() * (combinations.size() + used.size());
  return static_cast<int>(std::max<std::size_t>(1, kValues / std::max<std::size_t>(1, ofItem)));
}

void GroupValues::Compute(int first, int count)
{
  size = static_cast<std::size_t>(count) * group.ValuesOfItem();
  linear.assign(size * used.size(), 0.0);
  for (std::size_t k = 0; k < used.size(); ++k)
    cases.Layout().LinearValues(group, cases.Column(used[k]), first, count,
                                linear.data() + k * size);
  values.assign(size * combinations.size(), 0.0);
  double* sums = values.data();
  for (const Combination& combination : combinations) {
    for (const CaseFactor& one : combination.factors)
      AddMultiple({linear.data() + placeOf[one.index] * size, size}, one.factor, sums);
    cases.Layout().Derive(group, count * group.points, sums);
    RequireFinite({sums, size}, combination);
    sums += size;
  }
}

}  // namespace morlen
