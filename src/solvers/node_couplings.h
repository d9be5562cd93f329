#pragma once

#include <cstddef>
#include <vector>

namespace morlen {

/// Which blocks the line of each node has in a matrix of node blocks: the nodes columns[s]
/// for s from starts[p] to starts[p + 1] - 1, ascending, everything from 0. kNoNode stands
/// behind them for a block that belongs to no node yet.
struct NodePattern
{
  static constexpr int kNoNode = -1;

  std::vector<int> starts = {0};
  std::vector<int> columns;

  int Lines() const { return static_cast<int>(starts.size()) - 1; }
};

/// Collects which nodes are coupled, in whatever order and however often they are named.
///
/// The list of a node takes every mention of a neighbour until it is full; only then are the
/// repeats taken out, by a mark on each node seen, so that a mention costs the same on
/// average however many neighbours there are.
class NodeCouplings
{
public:
  /// A node may have so many neighbours, itself among them if it is named as one.
  NodeCouplings(int nodes, int limit);

  /// Names `neighbour` as one of `node`, both from 0. Returns false, and leaves the list as it
  /// is, when that would be one too many.
  bool Add(int node, int neighbour);

  /// The line of every node has a block for itself and one for each of its neighbours, so one
  /// more than there are nodes in it when the node was named as its own neighbour. The lists
  /// are given up.
  NodePattern TakePattern();

private:
  void TakeOutRepeats(std::vector<int>& list);
  /// False when the list cannot take one more.
  bool MakeRoom(std::vector<int>& list);
  std::vector<int> LineStarts();

  std::size_t limit;
  std::vector<std::vector<int>> lists;
  std::vector<int> marks;  ///< the last round in which a node was seen
  int round;
};

}  // namespace morlen
