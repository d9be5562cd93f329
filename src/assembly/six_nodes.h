#pragma once

#include <vector>

namespace morlen {

class Mesh;
class Node;
struct Problem;

/// The nodes that the conversion adds in the middle of edges, one for each edge of the model.
class EdgeNodes
{
public:
  /// The node in the middle of the edge a-b. The first call for an edge returns a null pointer,
  /// which the caller sets before the next call.
  Node*& Between(const Node& a, const Node& b);

private:
  /// An edge from a node to one of a higher number.
  struct Edge
  {
    int high;
    int next;  ///< the next one of the lower node; -1 at the end
    Node* middle;
  };

  std::vector<int> first;  ///< index of the first edge, by the number of the lower node; -1: none
  std::vector<Edge> edges;
};

/// Converts a mesh of three-node triangles to six nodes. With standard shells a node in the middle
/// of an edge gets the supports that both ends of the edge have; with refined shells none. Fatal
/// for other meshes, and for more than 25 triangles at a node.
void ConvertTriangleTo6nod(Problem& problem, Mesh& mesh, EdgeNodes& edges);

/// Gives the nodes that a conversion has added the prescribed values of their edges: the means of
/// both ends. For other values of prescribed displacements than those that it found.
void SetMiddleValues(Problem& problem);

/// Converts all meshes of three-node triangles, with the supports of the middle nodes. Returns
/// false when there are none.
bool ConvertTriangles(Problem& problem);

}  // namespace morlen
