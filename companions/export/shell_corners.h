#pragma once

#include <array>
#include <span>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen {

/// Forces and moments of shells at their nodes: the values of the Gauss points continued to the
/// corners, and averaged over neighbours.
///
/// Neighbours are averaged in groups: shells at one node, of one mesh, whose x' and z' differ by
/// less than 15 degrees from those of the first shell of the group. The values are along the axes
/// of that shell. The first group of a node has the point of the node; each further group is a
/// copy of the node, so that values jump at folds and where axes turn.
class ShellCorners
{
public:
  /// Nx' Ny' Nxy' Mx' My' Mxy' Qx' Qy', as in results::ShellPoint.
  using Forces = std::array<double, 8>;

  ShellCorners() = default;  ///< without values: every shell has the points of its nodes
  ShellCorners(const model::Model& model, std::span<const results::ShellPoint> points);

  /// The nodes of the copies.
  const std::vector<int>& CopiedNodes() const { return copiedNodes; }
  /// The copy that node i of an element has, both by their positions; -1 for the node itself.
  int CopyAt(std::size_t element, int i) const;

  /// Values of a node or a copy; NaN for nodes without shells.
  const Forces& OfNode(int node) const { return ofNodes[node]; }
  const Forces& OfCopy(int copy) const { return ofCopies[copy]; }

private:
  void AddNode(const model::Model& model, std::span<const results::ShellPoint> points, int node,
               std::span<const int> places);

  std::vector<int> firstPlace;  ///< by element: of its nodes in `copies`
  std::vector<int> copies;      ///< by place: CopyAt
  std::vector<int> copiedNodes;
  std::vector<Forces> ofNodes, ofCopies;
  std::vector<int> ownerOf;  ///< by place: the element
};

/// The values of a shell at its node i: at a corner the linear function through the three Gauss
/// points, which are the middles of the edges; at the middle of an edge its Gauss point; the only
/// value of a shell with one point.
ShellCorners::Forces ForcesAtNode(std::span<const results::ShellPoint> pointsOfElement, int i);

/// Forces and moments along the axes of another shell. Both have nearly the same normal; the turn
/// about it is that between their axes.
ShellCorners::Forces Turned(const ShellCorners::Forces& forces, const std::array<Vec3, 3>& from,
                            const std::array<Vec3, 3>& to);

}  // namespace morlen
