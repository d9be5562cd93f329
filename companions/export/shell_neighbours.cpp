// Neighbours are found among the shells at the first node of an edge, so that the work grows with
// the number of shells.

#include "export/shell_neighbours.h"

#include <algorithm>

namespace morlen {

namespace {

std::pair<int, int> Ascending(int a, int b)
{
  return {std::min(a, b), std::max(a, b)};
}

std::pair<int, int> EdgeOf(const model::Element& shell, int edge)
{
  return Ascending(shell.nodes[edge], shell.nodes[(edge + 1) % 3]);
}

int OppositeNode(const model::Element& shell, int edge)
{
  return shell.nodes[(edge + 2) % 3];
}

bool SectionsAgree(const model::Model& model, const model::Element& a, const model::Element& b)
{
  if (a.material == b.material || a.material < 0 || b.material < 0)
    return a.material == b.material;
  const model::Material& one = model.materials[a.material];
  const model::Material& two = model.materials[b.material];
  return one.t == two.t && one.E1 == two.E1 && one.E2 == two.E2;
}

}  // namespace

bool AxesAgree(const model::Element& a, const model::Element& b)
{
  constexpr double kLimit = 0.9659258262890683;  // cos 15°
  return a.mesh == b.mesh && Dot(a.axes[0], b.axes[0]) > kLimit &&
         Dot(a.axes[2], b.axes[2]) > kLimit;
}

ShellNeighbours::ShellNeighbours(const model::Model& forModel)
    : model(forModel),
      start(model.nodes.size() + 1),
      held(model.nodes.size()),
      beyond(model.elements.size(), {-1, -1, -1})
{
  ListCorners();
  CollectLines();
  for (std::size_t e = 0; e < model.elements.size(); ++e) {
    for (int edge = 0; model.elements[e].kind == model::Kind::Shell && edge < 3; ++edge)
      beyond[e][edge] = FindBeyond(static_cast<int>(e), edge);
  }
}

std::span<const ShellNeighbours::Corner> ShellNeighbours::At(int node) const
{
  return std::span(corners).subspan(start[node], start[node + 1] - start[node]);
}

// Sorts by counting.
void ShellNeighbours::ListCorners()
{
  const auto forEach = [this](auto act) {
    for (std::size_t e = 0; e < model.elements.size(); ++e) {
      const model::Element& element = model.elements[e];
      for (int i = 0; element.kind == model::Kind::Shell && i < element.nodeCount; ++i)
        act(element.nodes[i], Corner{static_cast<int>(e), i});
    }
  };
  forEach([this](int node, const Corner&) { ++start[node + 1]; });
  for (std::size_t i = 1; i < start.size(); ++i)
    start[i] += start[i - 1];
  corners.resize(start.back());
  std::vector<int> next(start.begin(), start.end() - 1);
  forEach([&](int node, const Corner& corner) { corners[next[node]++] = corner; });
}

void ShellNeighbours::CollectLines()
{
  for (const model::Element& element : model.elements) {
    if (element.kind == model::Kind::Beam)
      beams.push_back(Ascending(element.nodes[0], element.nodes[1]));
  }
  std::sort(beams.begin(), beams.end());
  for (const model::Support& support : model.supports) {
    for (int k = 0; k < model.components; ++k)
      held[support.node] |= support.flags[k] != 0 ? 1u << k : 0u;
  }
}

int ShellNeighbours::FindBeyond(int element, int edge) const
{
  const model::Element& shell = model.elements[element];
  const Edge nodes = EdgeOf(shell, edge);
  int found = -1;
  int edgeOfFound = 0;
  for (const Corner& corner : At(nodes.first)) {
    const model::Element& other = model.elements[corner.element];
    for (int k = 0; corner.element != element && k < 3; ++k) {
      if (EdgeOf(other, k) != nodes)
        continue;
      if (found >= 0)
        return -1;
      found = corner.element;
      edgeOfFound = k;
    }
  }
  if (found < 0)
    return -1;
  const model::Element& other = model.elements[found];
  const bool jumps = !AxesAgree(shell, other) || !SectionsAgree(model, shell, other) ||
                     HasBeam(shell, edge) ||
                     IsHeld(nodes, OppositeNode(shell, edge), OppositeNode(other, edgeOfFound));
  return jumps ? -1 : found;
}

bool ShellNeighbours::IsHeld(const Edge& edge, int oppositeOne, int oppositeTwo) const
{
  return (held[edge.first] & held[edge.second] & ~held[oppositeOne] & ~held[oppositeTwo]) != 0;
}

// A beam from corner to corner, or from one of them to the middle of a shell with six nodes.
bool ShellNeighbours::HasBeam(const model::Element& element, int edge) const
{
  const auto joins = [this](int a, int b) {
    return std::binary_search(beams.begin(), beams.end(), Ascending(a, b));
  };
  const int one = element.nodes[edge];
  const int two = element.nodes[(edge + 1) % 3];
  if (beams.empty() || joins(one, two))
    return !beams.empty();
  if (element.nodeCount < 6)
    return false;
  const int middle = element.nodes[3 + edge];
  return joins(one, middle) || joins(middle, two);
}

}  // namespace morlen
