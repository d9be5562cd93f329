#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

/// The data of a shell of triangles, from which a problem file is written. Nodes and triangles are
/// numbered from 1 in their order. The material has the number 1.
struct ShellModel
{
  std::vector<Vector3> nodes;
  std::vector<std::vector<int>> triangles;  ///< of three or six nodes
  std::string settings;                     ///< lines after the header
  std::string material = "E=1000 nu=0.25 G=400 t=0.1";
  std::string constraints;
  std::string loads;
  std::string rest;  ///< lines at the end

  /// Supports a node. The flags are six digits, and the values belong to them.
  void Hold(int node, const std::string& flags, const std::array<double, 6>& values = {});
  void Load(int node, const std::array<double, 6>& values);
  /// Records of all triangles, each with the number and this text.
  std::string OnAll(const std::string& record) const;

  std::string Text() const;
};

/// The diagonals that cut the quadrilaterals of a grid: always the same one, or both in turn. In
/// turn they make a grid of even numbers symmetric.
enum class Cut
{
  OneWay,
  BothWays
};

/// A grid of nx by ny quadrilaterals, each of two triangles. place(u, v), with u and v from 0 to 1,
/// gives its points. Node i + 1 + j (nx + 1) is at (i/nx, j/ny). The normal has the direction of
/// u × v.
ShellModel GridShell(int nx, int ny, const std::function<Vector3(double, double)>& place,
                     Cut cut = Cut::OneWay);

/// The same with six-node triangles. Their middle nodes follow the corners and have no supports.
ShellModel WithMidSideNodes(const ShellModel& model);

/// The nodes whose place satisfies the condition.
std::vector<int> NodesWhere(const ShellModel& model,
                            const std::function<bool(const Vector3&)>& condition);

/// The eight forces of each Gauss point of a triangle, from the results.
using ShellForces = std::array<double, 8>;
std::vector<ShellForces> ForcesOf(const Solved& solved, int triangle);

/// Expects these forces at every Gauss point of every triangle. The error may be the tolerance
/// times the largest force, moment or shear, for each of these kinds, but at least the tolerance.
void ExpectForcesEverywhere(const Solved& solved, const ShellForces& expected, double tolerance);

/// The force and the moment about the origin of all reactions at the nodes of the file.
std::array<double, 6> SumOfReactions(const Solved& solved);

/// The vector with these components in the axes.
Vector3 Turned(const std::array<Vector3, 3>& axes, const Vector3& components);

}  // namespace morlen
