#include "solvers/node_couplings.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "base/array_size.h"

// From couplings in any order to a sorted pattern, in time proportional to the mentions: see
// NodeCouplings for the lists and MakePattern for the order of the lines.

namespace morlen {

NodeCouplings::NodeCouplings(int nodes, int limit_)
    : limit(static_cast<std::size_t>(limit_)),
      lists(static_cast<std::size_t>(std::max(nodes, 0))),
      marks(lists.size(), 0),
      round(0)
{
}

bool NodeCouplings::Add(int node, int neighbour)
{
  std::vector<int>& list = lists[node];
  if (list.size() == list.capacity() || list.size() == limit)
    if (!MakeRoom(list))
      return std::find(list.begin(), list.end(), neighbour) != list.end();
  list.push_back(neighbour);
  return true;
}

bool NodeCouplings::MakeRoom(std::vector<int>& list)
{
  constexpr std::size_t kFirst = 8;
  RemoveRepeats(list);
  if (2 * list.size() >= list.capacity())
    list.reserve(std::min(std::max(2 * list.capacity(), kFirst), limit));
  return list.size() < limit;
}

void NodeCouplings::RemoveRepeats(std::vector<int>& list)
{
  if (round == INT_MAX) {
    std::fill(marks.begin(), marks.end(), 0);
    round = 0;
  }
  ++round;
  const auto seen = [this](int node) { return std::exchange(marks[node], round) == round; };
  list.erase(std::remove_if(list.begin(), list.end(), seen), list.end());
}

// A line has a block for its own node and one for each other node whose list names it.
std::vector<int> NodeCouplings::LineStarts()
{
  std::vector<long long> lengths(lists.size(), 1);
  for (int p = 0; p < static_cast<int>(lists.size()); ++p) {
    RemoveRepeats(lists[p]);
    for (const int q : lists[p])
      lengths[q] += q != p;
  }
  std::vector<int> starts = {0};
  starts.reserve(lists.size() + 1);
  long long blocks = 0;
  for (const long long length : lengths) {
    blocks += length;
    if (blocks > INT_MAX)
      TooManyToCount("blocks of the matrix");
    starts.push_back(static_cast<int>(blocks));
  }
  return starts;
}

// Adds each node, in ascending order, to the lines of its neighbours: every line comes out
// sorted without a sort. Couplings are mutual, so that the lists hold the lines' transpose.
NodePattern NodeCouplings::MakePattern()
{
  NodePattern pattern;
  pattern.starts = LineStarts();
  pattern.columns.resize(static_cast<std::size_t>(pattern.starts.back()));
  std::vector<int> next(pattern.starts.begin(), pattern.starts.end() - 1);
  for (int p = 0; p < static_cast<int>(lists.size()); ++p) {
    pattern.columns[next[p]++] = p;
    for (const int q : lists[p])
      if (q != p)
        pattern.columns[next[q]++] = p;
  }
  // Assigning {} would keep the memory of the arrays.
  lists = std::vector<std::vector<int>>();
  marks = std::vector<int>();
  return pattern;
}

}  // namespace morlen
