#pragma once

#include <vector>

#include "numeric/reavec.h"

namespace morlen {

class Mesh;
struct Problem;

/// Finds the nodes around which all triangles lie in one plane, over all triangle meshes.
class CoplanarityTest
{
public:
  /// For nodes with system numbers 1..nodes; planes are the same up to `angle` (radians).
  CoplanarityTest(int nodes, double angle);

  /// Takes the triangles of a mesh. Fatal on a triangle without a normal, on neighbours that
  /// face opposite ways, and on a node with too many triangles around it. fileNumbers is the
  /// mesh that knows the numbers of the file.
  void Add(const Mesh& mesh, const Mesh& fileNumbers);

  /// 1 for each coplanar node, at its system number less 1; nodes without triangles have 0.
  std::vector<int> Marks() const;

private:
  void Compare(int node, const ReaVec& normal);

  double cosine;
  std::vector<ReaVec> planes;  ///< normal of the first triangle at each node; empty: none
  std::vector<char> folded;
};

/// Number of triangles of a mesh around each node, at its system number less 1. Fatal when
/// there are more than 25.
std::vector<int> CountElementsAround(const Mesh& mesh, int nodes, const Mesh& fileNumbers);

/// Sets the coplanarity marks of a problem with shells; others keep none.
void MarkCoplanarNodes(Problem& problem);

}  // namespace morlen
