#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

/// Six stresses or strains: x, y, z, xy, xz, yz.
using Tensor = std::array<double, 6>;

/// A face of an element on the surface of a model.
struct SolidSide
{
  int elem;                    ///< from 1
  int face;                    ///< index in a load record
  std::array<int, 3> corners;  ///< nodes
};

/// The data of a model of tetrahedra, from which a problem file is written. Nodes and elements are
/// numbered from 1 in their order.
struct SolidModel
{
  struct Support
  {
    std::string flags = "111";
    Vector3 values = {};
    std::string items = "";
  };

  std::string header = "3d";
  std::string settings = "";  ///< lines after the header
  int nnode = 4;
  std::vector<Vector3> nodes;
  std::vector<std::vector<int>> elements;
  std::string material = "E 1000 nu 0.25";
  std::map<int, Support> supports;
  std::map<int, Vector3> loads;
  std::string rest = "";  ///< lines after the loads

  std::string Text() const;

  /// Moves every node.
  SolidModel& Map(const std::function<Vector3(const Vector3&)>& place);
  /// Adds a node in the middle of every edge of a model of four-node elements.
  SolidModel& ToTenNodes();
  /// Prescribes the displacements of the field at these nodes.
  SolidModel& Prescribe(const std::vector<int>& at,
                        const std::function<Vector3(const Vector3&)>& field);
  /// Puts rollers under the nodes with coordinate `axis` (from 0) at the value.
  SolidModel& Roller(int axis, double value);
  /// Loads all sides that satisfy the condition, by a block of `keyword` with these values.
  SolidModel& LoadSides(const std::string& keyword, const Vector3& values,
                        const std::function<bool(const Vector3&)>& picks);

  /// The faces that belong to one element only.
  std::vector<SolidSide> Sides() const;
  /// The nodes of those faces, ascending.
  std::vector<int> OuterNodes() const;
  /// The node at a place; fails the test and is 0 when there is none.
  int NodeAt(const Vector3& place) const;
};

/// One tetrahedron with these corners.
SolidModel OneSolid(const std::vector<Vector3>& corners, int nnode);

/// The corners (0,0,0), (1,0,0), (0,1,0), (0,0,1).
SolidModel UnitSolid(int nnode);

/// A block with a corner at the origin, in cells of six tetrahedra each.
SolidModel SolidBlock(const std::array<int, 3>& cells, const Vector3& sides, int nnode);

/// The index (from 0) of the mid-side node of an edge in a ten-node element. Corners count from 0.
int MiddleOf(int corner, int other);

/// The displacement G·x of a field with the gradient G, row by row.
Vector3 GradientTimes(const std::array<double, 9>& G, const Vector3& x);

/// The stresses of an isotropic material.
Tensor StressOf(double E, double nu, const Tensor& strain);

/// The smoothed stresses of a node of the file.
Tensor StressAt(const Solved& solved, int node);

/// The loads on the elements as nodal forces: three for each node, in the order of the file.
std::vector<Vector3> ElementLoads(const SolidModel& model);

/// The sum of the forces, and of their moments about the origin.
struct Resultant
{
  Vector3 force{};
  Vector3 moment{};

  void Add(const Vector3& f, const Vector3& at);
  double Size() const;
};

Resultant ResultantOf(const SolidModel& model, const std::vector<Vector3>& forces);

/// Expects that the reactions balance nodal loads and element loads.
void ExpectBalanced(const SolidModel& model, const Solved& solved, double tolerance = 1e-9);

double Dot(const Vector3& a, const Vector3& b);
Vector3 Cross(const Vector3& a, const Vector3& b);
/// A rotation by three angles that are not small.
Vector3 Rotated(const Vector3& v);

}  // namespace morlen
