#pragma once

#include <array>
#include <span>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"
#include "export/shell_neighbours.h"

namespace morlen {

/// Forces and moments of shells at their nodes, from the Gauss points around them.
///
/// The shells at a node are taken in groups of neighbours (ShellNeighbours) whose axes agree with
/// those of the first shell of the group. The values are along the axes of that shell. The first
/// group of a node has the point of the node; each further group is a copy of the node, so that
/// values jump at folds, at beams and where axes turn.
///
/// The value of a group is that of the polynomial of least squares through its Gauss points. The
/// polynomial has the degree of the shells: 2 with three Gauss points, where these determine it
/// well, else 1. A group of fewer than five shells with one point takes their neighbours too. The
/// value exceeds the range of these Gauss points by at most half of the range. Source:
/// O. C. Zienkiewicz, J. Z. Zhu, The superconvergent patch recovery and a posteriori error
/// estimates, part 1, Int. J. Numer. Meth. Engng 33, 1992.
class ShellCorners
{
public:
  /// Nx' Ny' Nxy' Mx' My' Mxy' Qx' Qy', as in results::ShellPoint.
  using Forces = std::array<double, 8>;

  ShellCorners() = default;  ///< without values: every shell has the points of its nodes
  ShellCorners(const model::Model& model, std::span<const results::ShellPoint> points);

  /// The values of a group; NaN, and the element -1, for nodes without shells.
  struct Group
  {
    Forces forces;
    int first;  ///< the element whose axes the values are along, by its position
  };

  /// The nodes of the copies.
  const std::vector<int>& CopiedNodes() const { return copiedNodes; }
  /// The copy that node i of an element has, both by their positions; -1 for the node itself.
  int CopyAt(std::size_t element, int i) const;

  const Group& OfNode(int node) const { return ofNodes[node]; }
  const Group& OfCopy(int copy) const { return ofCopies[copy]; }

private:
  class Recovery;

  std::vector<int> firstPlace;  ///< by element: of its nodes in `copies`
  std::vector<int> copies;      ///< by place: CopyAt
  std::vector<int> copiedNodes;
  std::vector<Group> ofNodes, ofCopies;
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
