#pragma once

#include <array>
#include <ostream>

#include "base/node_components.h"
#include "base/object_pool.h"

namespace morlen {

/// The forces and moments on one node, in global axes.
class Load : public Pooled<Load>
{
public:
  /// For nodes of n components that have rotations too.
  explicit Load(int n) : Load(WithRotations(n)) {}
  explicit Load(const NodeComponents& components) : translations(components.translations) {}

  /// Adds n values, forces then moments, converted by the two unit ratios.
  void AddValues(const double* given, int n, double forceFactor, double lengthFactor);
  /// Adds to component i (from 1). Not used by the analysis itself.
  void AddNewDegree(int i, double v) { values[i - 1] += v; }

  /// One line with the values. Not used by the analysis itself.
  void PrintTo(std::ostream& out, int n) const;

  std::array<double, kMaxComponents> values{};

private:
  int translations;
};

}  // namespace morlen
