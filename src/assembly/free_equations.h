#pragma once

#include <algorithm>
#include <cmath>

#include "model/node.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"
#include "problem/constraint.h"

/// Calls visit(equation, component from 1, stiffness of a spring there) for every component of
/// a node that has no prescribed displacement.
template <class Visit>
void ForEachFree(const VoidPlex& nodes, int components, Visit visit)
{
  for (const Node& node : Each<Node>(nodes)) {
    const Constraint* support = node.constraint.get();
    for (int k = 1; k <= components; ++k) {
      const int flag = support ? support->flags[k - 1] : Constraint::kFree;
      if (flag != Constraint::kPrescribed)
        visit((node.number - 1) * components + k, k,
              flag == Constraint::kSpring ? support->values[k - 1] : 0.0);
    }
  }
}

/// Euclidean norm over those equations; scaled, so that no square leaves the range of numbers.
inline double NormOnFree(const VoidPlex& nodes, int components, const ReaVecV& v)
{
  double largest = 0.0;
  ForEachFree(nodes, components, [&](int equation, int, double) {
    largest = std::max(largest, std::fabs(v(equation)));
  });
  if (largest == 0.0)
    return 0.0;
  double squares = 0.0;
  ForEachFree(nodes, components, [&](int equation, int, double) {
    squares += (v(equation) / largest) * (v(equation) / largest);
  });
  return largest * std::sqrt(squares);
}
