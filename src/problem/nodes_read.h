#pragma once

#include "numeric/plex_range.h"

namespace morlen {

class Node;

/// Calls visit(number, node) for every node that the file has, by its number there. `nodes` may
/// also have nodes that the preparation added: their numbers are above initialNumNodes.
template <class Visit>
void ForEachNodeRead(const VoidPlex& nodes, int initialNumNodes, Visit visit)
{
  for (const auto [number, node] : EachNumbered<const Node>(nodes)) {
    if (number > initialNumNodes)
      return;
    visit(number, node);
  }
}

}  // namespace morlen
