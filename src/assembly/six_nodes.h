#pragma once

#include <vector>

namespace morlen {

class Mesh;
class Node;
struct Problem;

/// The nodes made in the middle of edges, one for each edge of the model.
class EdgeNodes
{
public:
  /// The node in the middle of the edge a-b; null, to be set before the next call, when there
  /// is none yet.
  Node*& Between(const Node& a, const Node& b);

private:
  /// An edge from a node to one of a higher number.
  struct Edge
  {
    int high;
    int next;  ///< the next one of the lower node; -1 at the end
    Node* middle;
  };

  std::vector<int> first;  ///< of each lower node, by its number; -1: none
  std::vector<Edge> edges;
};

/// Gives the triangles of a mesh nodes in the middle of their edges, with supports that both ends
/// of the edge share. Fatal for other meshes, and for more than 25 triangles at a node.
void ConvertTriangleTo6nod(Problem& problem, Mesh& mesh, EdgeNodes& edges);

/// Converts all meshes of three-node triangles. Returns whether there are any.
bool ConvertTriangles(Problem& problem);

}  // namespace morlen
