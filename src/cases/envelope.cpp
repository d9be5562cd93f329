#include "cases/envelope.h"

#include <algorithm>
#include <cmath>

namespace morlen {

namespace {

constexpr double kTie = 1e-12;

/// The extremes of one block of items.
class Block
{
public:
  Block(const GroupValues& values_, int combinations_)
      : values(values_), combinations(combinations_)
  {
  }

  // tolerances: of each component.
  void Find(const std::vector<double>& tolerances)
  {
    const std::span<const double> first = values.Of(0);
    low.assign(first.begin(), first.end());
    high = low;
    for (int k = 1; k < combinations; ++k) {
      const std::span<const double> v = values.Of(k);
      for (std::size_t i = 0; i < v.size(); ++i) {
        low[i] = std::min(low[i], v[i]);
        high[i] = std::max(high[i], v[i]);
      }
    }
    // The last one that qualifies in descending order is the first.
    lowest.assign(low.size(), 0);
    highest.assign(low.size(), 0);
    const std::size_t width = tolerances.size();
    for (int k = combinations - 1; k >= 0; --k) {
      const double* const v = values.Of(k).data();
      for (std::size_t i = 0; i < low.size(); i += width) {
        for (std::size_t c = 0; c < width; ++c) {
          lowest[i + c] = v[i + c] <= low[i + c] + tolerances[c] ? k : lowest[i + c];
          highest[i + c] = v[i + c] >= high[i + c] - tolerances[c] ? k : highest[i + c];
        }
      }
    }
  }

  // index: of the value. point: of the first value of its point.
  Extreme Lowest(std::size_t index, std::size_t point, int width) const
  {
    return At(lowest[index], index, point, width);
  }
  Extreme Highest(std::size_t index, std::size_t point, int width) const
  {
    return At(highest[index], index, point, width);
  }

private:
  Extreme At(int combination, std::size_t index, std::size_t point, int width) const
  {
    const std::span<const double> all = values.Of(combination);
    return {all[index], combination, all.subspan(point, static_cast<std::size_t>(width))};
  }

  const GroupValues& values;
  int combinations;
  std::vector<double> low, high;
  std::vector<int> lowest, highest;  ///< combinations
};

// Calls use(first item) with the values of each block in order.
template <class Use>
void ForEachBlock(GroupValues& values, const ValueGroup& group, Use use)
{
  const int most = values.ItemsOfBlock();
  for (int first = 0; first < group.items; first += most) {
    const int count = std::min(most, group.items - first);
    values.Compute(first, count);
    use(first, count);
  }
}

std::vector<double> LargestValues(GroupValues& values, const ValueGroup& group, int combinations)
{
  const std::size_t width = static_cast<std::size_t>(group.Width());
  std::vector<double> largest(width, 0.0);
  ForEachBlock(values, group, [&](int, int) {
    for (int k = 0; k < combinations; ++k) {
      const std::span<const double> v = values.Of(k);
      for (std::size_t i = 0; i < v.size(); i += width) {
        for (std::size_t c = 0; c < width; ++c)
          largest[c] = std::max(largest[c], std::fabs(v[i + c]));
      }
    }
  });
  return largest;
}

}  // namespace

void ForEachEnvelopePoint(const SolvedCases& cases, const ValueGroup& group,
                          std::span<const Combination> combinations,
                          const std::function<void(const EnvelopePoint&)>& visit)
{
  if (combinations.empty())
    return;
  const int count = static_cast<int>(combinations.size());
  GroupValues values(cases, group, combinations);
  std::vector<double> tolerances = LargestValues(values, group, count);
  for (double& tolerance : tolerances)
    tolerance *= kTie;
  Block block(values, count);
  const int width = group.Width();
  ForEachBlock(values, group, [&](int first, int items) {
    block.Find(tolerances);
    std::size_t point = 0;
    for (int item = first; item < first + items; ++item) {
      for (int p = 0; p < group.points; ++p, point += width) {
        for (int c = 0; c < width; ++c)
          visit({item, p, c, block.Lowest(point + c, point, width),
                 block.Highest(point + c, point, width)});
      }
    }
  });
}

}  // namespace morlen
