#pragma once

#include <cstdint>
#include <unordered_map>

class Node;

/// The nodes made in the middle of edges, one for each edge of the model.
class EdgeNodes
{
public:
  /// The node in the middle of the edge a-b; null, to be set, when there is none yet.
  Node*& Between(const Node& a, const Node& b);

private:
  std::unordered_map<std::uint64_t, Node*> nodes;
};
