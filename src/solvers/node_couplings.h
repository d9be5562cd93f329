#pragma once

#include <cstddef>
#include <vector>

namespace morlen {

/// The blocks of a matrix of node blocks: line p has those of the nodes columns[s], ascending, for
/// s from starts[p] to starts[p + 1] - 1. Everything counts from 0.
struct NodePattern
{
  std::vector<int> starts = {0};
  std::vector<int> columns;

  int Lines() const { return static_cast<int>(starts.size()) - 1; }
};

/// Collects which nodes are coupled; pairs may be named in any order and repeatedly.
///
/// Method: every mention of a neighbour is appended to the list of its node. When the list is
/// full, one pass removes the repeats: it marks each node with the number of the round in which it
/// was seen. If more than half remains, the capacity doubles. A mention therefore costs constant
/// time on average, whatever the number of neighbours; there is no search and no sort.
class NodeCouplings
{
public:
  /// A node may have at most `limit` neighbours; itself counts if it is named as one.
  NodeCouplings(int nodes, int limit);

  /// Names `neighbour` as a neighbour of `node`, both from 0. Returns false, and leaves the list
  /// as it is, when that would be one too many.
  bool Add(int node, int neighbour);

  /// The pattern in which every node has a block for itself and one for each neighbour. Each
  /// coupling must have been named from both ends. Call it once, last: it frees the lists.
  NodePattern MakePattern();

private:
  /// Removes the repeats from a list.
  void RemoveRepeats(std::vector<int>& list);
  /// Makes room for one more neighbour; false when the limit is reached.
  bool MakeRoom(std::vector<int>& list);
  /// NodePattern::starts.
  std::vector<int> LineStarts();

  std::size_t limit;
  std::vector<std::vector<int>> lists;
  std::vector<int> marks;  ///< by node: the last round of RemoveRepeats in which it was seen
  int round;
};

}  // namespace morlen
