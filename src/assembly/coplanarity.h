#pragma once

#include <vector>

#include "numeric/reavec.h"

namespace morlen {

class Mesh;
struct Problem;

/// Finds the nodes around which all triangles of all meshes lie in one plane.
///
/// Two triangles lie in one plane when the cosine of the angle between their normals is at least
/// that of the limit. A flat shell has no stiffness against the rotation of such a node about the
/// normal.
class CoplanarityTest
{
public:
  /// For nodes with system numbers 1..nodes. Planes that differ by at most `angle` (radians) are
  /// the same.
  CoplanarityTest(int nodes, double angle);

  /// Adds the triangles of a mesh. Fatal on a triangle without a normal, on triangles at one node
  /// with opposite normals, and on a node with too many triangles. fileNumbers: the mesh that knows
  /// the numbers of the file, for messages.
  void Add(const Mesh& mesh, const Mesh& fileNumbers);

  /// By system number less 1: 1 for a coplanar node, 0 for a folded one and for one without
  /// triangles.
  std::vector<int> Marks() const;

private:
  void Compare(int node, const ReaVec& normal);

  double cosine;
  std::vector<ReaVec> planes;  ///< by node: normal of its first triangle; empty without triangles
  std::vector<char> folded;    ///< by node: 1 when its triangles lie in several planes
};

/// The number of triangles of a mesh around each node, by system number less 1. Fatal when there
/// are more than 25. fileNumbers: the mesh that knows the numbers of the file, for the message.
std::vector<int> CountElementsAround(const Mesh& mesh, int nodes, const Mesh& fileNumbers);

/// Makes the largest slight fold of the shells the hint of the next error: an angle at a node above
/// the coplanarity angle and below 0.02 radians. Such folds are often rounding errors of the
/// coordinates, and hold the rotations weakly. Refined shells have no such hint.
void ExplainSlightFolds(const Problem& problem);

/// Sets the coplanarity marks of a problem with shells, and with refined shells the shares of the
/// nodes. Problems without shells have neither. Both are ordered by system number, so that they are
/// valid until the nodes are renumbered.
void MarkCoplanarNodes(Problem& problem);

}  // namespace morlen
