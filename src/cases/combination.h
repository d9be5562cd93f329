#pragma once

#include <span>
#include <string>
#include <vector>

#include "cases/solved_cases.h"

namespace morlen {

struct CaseFactor
{
  int index;  ///< of the case, from 0
  double factor;

  friend bool operator==(const CaseFactor&, const CaseFactor&) = default;
};

/// A linear combination of load cases, each at most once, by ascending index.
struct Combination
{
  std::string name;
  std::vector<CaseFactor> factors;
};

/// The combined column. Fatal when a value is not finite.
std::vector<double> CombinedColumn(const SolvedCases& cases, const Combination& combination);

/// The values of a group for several combinations, one block of items at a time.
///
/// The linear values of the cases are computed at each point and then combined, the derived ones
/// from the combined ones. A value depends neither on the block nor on the other combinations.
class GroupValues
{
public:
  /// All are borrowed.
  GroupValues(const SolvedCases& cases, const ValueGroup& group,
              std::span<const Combination> combinations);

  /// Computes the values of the items from `first` on. Fatal when a value is not finite.
  void Compute(int first, int count);
  /// The values of a combination (from 0) for the items computed last.
  std::span<const double> Of(int combination) const
  {
    return {values.data() + combination * size, size};
  }
  /// Items of a block that keep all values in the cache of a processor.
  int ItemsOfBlock() const;

private:
  const SolvedCases& cases;
  const ValueGroup& group;
  std::span<const Combination> combinations;
  std::vector<int> used;     ///< cases of the combinations
  std::vector<int> placeOf;  ///< of a case in `used`
  std::size_t size = 0;      ///< values of one combination
  std::vector<double> linear, values;
};

}  // namespace morlen
