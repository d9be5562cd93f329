#include "check/shell_edges.h"

#include <algorithm>
#include <tuple>

#include "model/elem.h"
#include "model/node.h"

namespace morlen::check {

const Node& ShellSide::First() const
{
  return *(*elem)(corner);
}

const Node& ShellSide::Second() const
{
  return *(*elem)((corner + 1) % 3);
}

const Node& ShellSide::Opposite() const
{
  return *(*elem)((corner + 2) % 3);
}

ShellEdges::ShellEdges(const std::vector<const Elem*>& elements)
{
  for (std::size_t t = 0; t < elements.size(); ++t) {
    if (elements[t]->ElemType() != Triangle)
      continue;
    for (int i = 0; i < 3; ++i) {
      const int a = (*elements[t])(i)->number;
      const int b = (*elements[t])((i + 1) % 3)->number;
      sides.push_back({elements[t], t, i, std::min(a, b), std::max(a, b), a < b});
    }
  }
  const auto ends = [](const ShellSide& side) { return std::tie(side.low, side.high); };
  std::stable_sort(sides.begin(), sides.end(),
                   [ends](const ShellSide& a, const ShellSide& b) { return ends(a) < ends(b); });
  for (auto first = sides.begin(); first != sides.end();) {
    const auto last = std::find_if(
        first, sides.end(), [&](const ShellSide& side) { return ends(side) != ends(*first); });
    edges.emplace_back(first, last);
    first = last;
  }
}

}  // namespace morlen::check
