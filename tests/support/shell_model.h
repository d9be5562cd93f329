#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

/// A shell of triangles as data, from which a problem file is written. Nodes and triangles are
/// numbered from 1 in their order; the material has the number 1.
struct ShellModel
{
  std::vector<Vector3> nodes;
  std::vector<std::vector<int>> triangles;  ///< of three or six nodes
  std::string settings;                     ///< lines behind the header
  std::string material = "E=1000 nu=0.25 G=400 t=0.1";
  std::string constraints;
  std::string loads;
  std::string rest;  ///< lines at the end

  /// Supports a node: six digits and the values that go with them.
  void Hold(int node, const std::string& flags, const std::array<double, 6>& values = {});
  void Load(int node, const std::array<double, 6>& values);
  /// Records for all triangles, each the number and this text.
  std::string OnAll(const std::string& record) const;

  std::string Text() const;
};

/// How the quadrilaterals of a grid are cut: along one diagonal, or along both in turn, so
/// that a grid of even numbers is its own mirror image.
enum class Cut
{
  OneWay,
  BothWays
};

/// A grid of nx by ny quadrilaterals, each of two triangles; place(u, v), with u and v from 0
/// to 1, gives its points. Node i + 1 + j (nx + 1) stands at (i/nx, j/ny). The normal is that
/// of u × v.
ShellModel GridShell(int nx, int ny, const std::function<Vector3(double, double)>& place,
                     Cut cut = Cut::OneWay);

/// The same with six-node triangles, whose middle nodes stand behind the corners and have no
/// supports yet.
ShellModel WithMidSideNodes(const ShellModel& model);

/// Nodes for which the condition on their place holds.
std::vector<int> NodesWhere(const ShellModel& model,
                            const std::function<bool(const Vector3&)>& condition);

/// The eight forces of each point of a triangle as the results have them.
using ShellForces = std::array<double, 8>;
std::vector<ShellForces> ForcesOf(const Solved& solved, int triangle);

/// Expects these forces at every point of every triangle, to tolerance times the largest of
/// forces, moments and shears each (or to the tolerance itself, where that is larger).
void ExpectForcesEverywhere(const Solved& solved, const ShellForces& expected, double tolerance);

/// Force and moment about the origin of all reactions at the nodes of the file.
std::array<double, 6> SumOfReactions(const Solved& solved);

/// A vector with these components in the axes.
Vector3 Turned(const std::array<Vector3, 3>& axes, const Vector3& components);

}  // namespace morlen
