#pragma once

#include <functional>
#include <span>
#include <vector>

#include "cases/combination.h"

namespace morlen {

/// The smallest or the largest value of a component at a point.
struct Extreme
{
  double value;
  int combination;  ///< that governs, from 0
  /// All values of the point in that combination, valid during the visit.
  std::span<const double> values;
};

struct EnvelopePoint
{
  int item;       ///< of the group, from 0
  int point;      ///< of the item, from 0
  int component;  ///< of the point, from 0
  Extreme minimum, maximum;
};

/// Finds the extremes of all values of a group over combinations, and calls visit for each item,
/// point and component in this order.
///
/// At a tie the first combination governs. Values count as equal when they differ by at most 1e-12
/// of the largest value that the component has in the group.
void ForEachEnvelopePoint(const SolvedCases& cases, const ValueGroup& group,
                          std::span<const Combination> combinations,
                          const std::function<void(const EnvelopePoint&)>& visit);

}  // namespace morlen
