#pragma once

#include "model/node.h"
#include "numeric/plex_range.h"
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
