#include "solvers/node_couplings.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "base/errorwriter.h"

NodeCouplings::NodeCouplings(int nodes, int limit_)
    : limit(limit_),
      lists(static_cast<std::size_t>(std::max(nodes, 0))),
      marks(lists.size(), 0),
      round(0)
{
}

std::span<int> NodeCouplings::Numbers(const List& list)
{
  return std::span(numbers).subspan(list.start, static_cast<std::size_t>(list.size));
}

bool NodeCouplings::Add(int node, int neighbour)
{
  List& list = lists[node];
  if (list.size == list.capacity && !MakeRoom(list)) {
    const std::span<const int> held = Numbers(list);
    return std::find(held.begin(), held.end(), neighbour) != held.end();
  }
  numbers[list.start + static_cast<std::size_t>(list.size++)] = neighbour;
  return true;
}

// A list that stays more than half full without repeats gets twice the room.
bool NodeCouplings::MakeRoom(List& list)
{
  constexpr int kFirst = 8;
  TakeOutRepeats(list);
  const int capacity = std::min(std::max(2 * list.capacity, kFirst), limit);
  if (2 * list.size >= list.capacity && capacity > list.capacity) {
    const std::size_t start = numbers.size();
    numbers.resize(start + static_cast<std::size_t>(capacity));
    std::ranges::copy(Numbers(list), numbers.begin() + static_cast<std::ptrdiff_t>(start));
    list = {start, list.size, capacity};
  }
  return list.size < limit;
}

void NodeCouplings::TakeOutRepeats(List& list)
{
  if (round == INT_MAX) {
    std::fill(marks.begin(), marks.end(), 0);
    round = 0;
  }
  ++round;
  const auto seen = [this](int node) { return std::exchange(marks[node], round) == round; };
  const std::span<int> held = Numbers(list);
  list.size = static_cast<int>(std::remove_if(held.begin(), held.end(), seen) - held.begin());
}

// The length of every line: a block for the node itself and one for each list that names it.
std::vector<int> NodeCouplings::LineStarts()
{
  std::vector<long long> lengths(lists.size(), 1);
  for (List& list : lists) {
    TakeOutRepeats(list);
    for (const int q : Numbers(list))
      ++lengths[q];
  }
  std::vector<int> starts = {0};
  starts.reserve(lists.size() + 1);
  long long blocks = 0;
  for (const long long length : lengths) {
    blocks += length;
    if (blocks > INT_MAX)
      Fatal("Not space available on heap");
    starts.push_back(static_cast<int>(blocks));
  }
  return starts;
}

// Walking through the nodes in order and adding each to the lines of its neighbours leaves
// every line in order; coupling is mutual.
NodePattern NodeCouplings::TakePattern()
{
  NodePattern pattern;
  pattern.starts = LineStarts();
  pattern.columns.assign(static_cast<std::size_t>(pattern.starts.back()), NodePattern::kNoNode);
  std::vector<int> next(pattern.starts.begin(), pattern.starts.end() - 1);
  for (int p = 0; p < static_cast<int>(lists.size()); ++p) {
    pattern.columns[next[p]++] = p;
    for (const int q : Numbers(lists[p]))
      if (q != p)
        pattern.columns[next[q]++] = p;
  }
  // Not by {}, which would keep the memory.
  lists = std::vector<List>();
  numbers = std::vector<int>();
  marks = std::vector<int>();
  return pattern;
}
