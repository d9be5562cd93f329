#include "direct/node_ordering.h"

#include <metis.h>

#include <cstddef>
#include <numeric>
#include <utility>

#include "base/errorwriter.h"

namespace morlen::direct {

namespace {

/// The graph of the nodes that are coupled with others, in the arrays of METIS.
struct Graph
{
  std::vector<idx_t> nodes;  ///< their numbers in the pattern
  std::vector<idx_t> starts = {0};
  std::vector<idx_t> neighbours;
};

bool IsCoupled(const NodePattern& pattern, int node)
{
  return pattern.starts[node + 1] - pattern.starts[node] > 1;  // one column is the node itself
}

Graph GraphOf(const NodePattern& pattern)
{
  Graph graph;
  std::vector<idx_t> number(static_cast<std::size_t>(pattern.Lines()), -1);
  for (int p = 0; p < pattern.Lines(); ++p) {
    if (!IsCoupled(pattern, p))
      continue;
    number[p] = static_cast<idx_t>(graph.nodes.size());
    graph.nodes.push_back(p);
  }
  graph.starts.reserve(graph.nodes.size() + 1);
  graph.neighbours.reserve(pattern.columns.size());
  for (const idx_t p : graph.nodes) {
    for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s) {
      if (pattern.columns[s] != p)
        graph.neighbours.push_back(number[pattern.columns[s]]);
    }
    graph.starts.push_back(static_cast<idx_t>(graph.neighbours.size()));
  }
  return graph;
}

}  // namespace

// Nodes without couplings come first: METIS gets only the others.
std::vector<int> OrderNodes(const NodePattern& pattern)
{
  Graph graph = GraphOf(pattern);
  auto count = static_cast<idx_t>(graph.nodes.size());
  const int single = pattern.Lines() - count;
  std::vector<int> place(static_cast<std::size_t>(pattern.Lines()), 0);
  int next = 0;
  for (int p = 0; p < pattern.Lines(); ++p) {
    if (!IsCoupled(pattern, p))
      place[p] = next++;
  }
  if (count == 0)
    return place;
  std::vector<idx_t> order(graph.nodes.size());
  std::vector<idx_t> inverse(graph.nodes.size());
  idx_t options[METIS_NOPTIONS];
  METIS_SetDefaultOptions(options);
  options[METIS_OPTION_NUMBERING] = 0;
  const int result = METIS_NodeND(&count, graph.starts.data(), graph.neighbours.data(), nullptr,
                                  options, order.data(), inverse.data());
  if (result == METIS_ERROR_MEMORY)
    Fatal("Not space available on heap");
  if (result != METIS_OK)
    Fatal("error: the nodes could not be ordered for the solver Direct\n");
  for (std::size_t k = 0; k < graph.nodes.size(); ++k)
    place[graph.nodes[k]] = single + inverse[k];
  return place;
}

// Row i of the factor: from each earlier neighbour the path towards the root, up to a node that the
// row has already. The first node after which a path ends gets the row as its parent.
std::vector<int> PlacesOfEquations(const std::vector<int>& placesOfNodes, int ndof)
{
  std::vector<int> places;
  places.reserve(placesOfNodes.size() * ndof);
  for (const int place : placesOfNodes) {
    for (int k = 1; k <= ndof; ++k)
      places.push_back(place * ndof + k);
  }
  return places;
}

FactorSize CountFactor(const NodePattern& pattern, const std::vector<int>& place)
{
  const std::size_t count = place.size();
  std::vector<int> nodeAt(count);
  for (std::size_t p = 0; p < count; ++p)
    nodeAt[place[p]] = static_cast<int>(p);
  std::vector<int> parent(count, -1);
  std::vector<int> row(count, -1);
  std::vector<int> below(count, 1);  // blocks of each column, diagonal included
  for (int i = 0; i < static_cast<int>(count); ++i) {
    row[i] = i;
    const int p = nodeAt[i];
    for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s) {
      for (int j = place[pattern.columns[s]]; j < i && row[j] != i; j = parent[j]) {
        row[j] = i;
        ++below[j];
        if (parent[j] < 0)
          parent[j] = i;
      }
    }
  }
  FactorSize size;
  for (const int blocks : below) {
    size.blocks += blocks;
    size.operations += static_cast<double>(blocks) * blocks;
  }
  return size;
}

}  // namespace morlen::direct
