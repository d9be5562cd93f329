#pragma once

#include <array>
#include <span>
#include <utility>
#include <vector>

#include "common/model_data.h"

namespace morlen {

/// True when the forces of two shells may be compared: one mesh, and axes x' and z' that differ by
/// less than 15 degrees.
bool AxesAgree(const model::Element& a, const model::Element& b);

/// The shells of a model around its nodes and beyond their edges.
///
/// Across some lines forces and moments jump or have a kink. A shell has no neighbour there: at
/// edges with one shell or more than two, with a beam, or with a line support; where the mesh, the
/// axes (AxesAgree), the thickness or the moduli change. A line support is an edge with a component
/// that both its nodes have and the opposite nodes of both triangles do not have.
class ShellNeighbours
{
public:
  explicit ShellNeighbours(const model::Model& model);

  /// A shell at a node: the node is its node i. Elements and nodes are positions, from 0.
  struct Corner
  {
    int element, i;
  };
  /// The shells at a node, by ascending position; also those whose middle of an edge it is.
  std::span<const Corner> At(int node) const;

  /// The shell beyond the edge from corner `edge` to the next one, from 0; -1 for none.
  int Beyond(int element, int edge) const { return beyond[element][edge]; }

private:
  using Edge = std::pair<int, int>;  ///< its nodes, ascending

  void ListCorners();
  void CollectLines();
  int FindBeyond(int element, int edge) const;
  bool IsHeld(const Edge& edge, int oppositeOne, int oppositeTwo) const;
  bool HasBeam(const model::Element& element, int edge) const;

  const model::Model& model;
  std::vector<int> start;  ///< by node: of its shells in `corners`
  std::vector<Corner> corners;
  std::vector<Edge> beams;                   ///< sorted
  std::vector<unsigned> held;                ///< by node: a bit for each supported component
  std::vector<std::array<int, 3>> beyond{};  ///< by element
};

}  // namespace morlen
