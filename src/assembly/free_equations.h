#pragma once

#include <algorithm>
#include <cmath>

#include "base/node_components.h"
#include "model/constraint.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"

namespace morlen {

/// Calls visit(equation, component from 1, stiffness of its spring or 0) for every component of a
/// node without a prescribed displacement. These equations are called free.
template <class Visit>
void ForEachFree(const VoidPlex& nodes, const NodeComponents& components, Visit visit)
{
  for (const Node& node : Each<Node>(nodes)) {
    const Constraint* support = node.constraint.get();
    for (int k = 1; k <= components.count; ++k) {
      const int flag = support ? support->flags[k - 1] : Constraint::kFree;
      if (flag != Constraint::kPrescribed)
        visit(components.Equation(node.number, k), k,
              flag == Constraint::kSpring ? support->values[k - 1] : 0.0);
    }
  }
}

/// The components of a node, and a length that makes a rotation comparable with a translation and
/// a moment with a force.
struct ComponentScale
{
  NodeComponents components;
  double length = 1.0;  ///< the mean size of the elements

  /// 1 for a translation, the length for a rotation (components from 1). A rotation times it
  /// compares with a translation, a moment divided by it with a force.
  double Unit(int component) const { return component <= components.translations ? 1.0 : length; }
};

/// The largest absolute load on the free equations. Moments are divided by the length. The result
/// is NaN when an entry is.
inline double LargestOnFree(const VoidPlex& nodes, const ComponentScale& scale, const ReaVecV& v)
{
  double largest = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double size = std::fabs(v(equation)) / scale.Unit(component);
    largest = size <= largest ? largest : size;
  });
  return largest;
}

/// The Euclidean norm of the same loads. Scaling keeps the squares in the range of numbers.
inline double NormOnFree(const VoidPlex& nodes, const ComponentScale& scale, const ReaVecV& v)
{
  const double largest = LargestOnFree(nodes, scale, v);
  if (largest == 0.0 || !std::isfinite(largest))
    return largest;
  double squares = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double part = v(equation) / scale.Unit(component) / largest;
    squares += part * part;
  });
  return largest * std::sqrt(squares);
}

/// True when all entries are finite numbers.
inline bool AllFinite(const ReaVecV& v)
{
  const double* const values = v.Data();
  return std::all_of(values, values + v.Size(), [](double value) { return std::isfinite(value); });
}

}  // namespace morlen
