#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/shell_model.h"
#include "support/solid_model.h"

namespace morlen {

/// The data of a model of beams and triangles, or of tetrahedra. A problem file is written from it,
/// and the reference in higher precision is computed from it. Elements are numbered from 1: beams,
/// then triangles, then tetrahedra. Materials are isotropic.
struct Structure : Frame
{
  struct Shell
  {
    double E = 3e7;
    double nu = 0.2;
    double G = 1.25e7;
    double t = 0.2;
    bool refined = false;  ///< the formulation; refined shells have G = E / 2(1 + ν)
  };
  struct Solid
  {
    double E = 2.1e8;
    double nu = 0.3;
  };
  using Places = std::function<bool(const Vector3&)>;

  std::map<int, int> hinges;                 ///< hinge codes of beams; others have 11
  std::vector<std::vector<int>> triangles;   ///< of three or six nodes
  std::vector<std::vector<int>> tetrahedra;  ///< of four or ten nodes
  Shell shell;
  Solid solid;

  /// The number of components of a node.
  int Components() const { return tetrahedra.empty() ? Frame::Components() : 3; }
  /// The problem file. settings: lines after the header.
  std::string Text(const std::string& settings = "") const;

  Structure& HoldNode(int node, const std::array<int, 6>& flags);
  /// Supports all nodes at these places.
  Structure& Hold(const Places& there, const std::array<int, 6>& flags = kClamped);
  Structure& Load(int node, const std::array<double, 6>& values);
  /// Loads every node.
  Structure& LoadAll(const std::array<double, 6>& values);
  /// Adds hinges at the ends of the beams between these two kinds of places.
  Structure& Hinge(const Places& first, const Places& second, int code = 0);
  /// Adds hinges at both ends of all beams, which makes them bars.
  Structure& HingeAll();
  /// Adds beams between consecutive nodes.
  Structure& AddBeams(const std::vector<int>& through, int section = 1);
  /// Moves every node.
  Structure& Map(const std::function<Vector3(const Vector3&)>& place);

  int NodeCount() const { return static_cast<int>(nodes.size()); }
  int Equations() const { return NodeCount() * Components(); }
  /// The number of translations of a node.
  int Translations() const { return space ? 3 : 2; }
  /// The node that is closest to a place.
  int NodeAt(const Vector3& place) const;
  /// The mean distance between the first two nodes of an element.
  double MeanLength() const;
  /// The lengths of the bounding box of all nodes.
  Vector3 Extent() const;
};

constexpr std::array<int, 6> kPin = {1, 1, 0, 0, 0, 0};
constexpr std::array<int, 6> kRollerInX = {0, 1, 0, 0, 0, 0};
constexpr std::array<int, 6> kBall = {1, 1, 1, 0, 0, 0};

/// True when component `axis` (from 0) of a place has this value.
Structure::Places At(int axis, double value);

/// A steel section, about HEB 200, in kN and m.
Frame::Section Steel();

/// An empty model with that section.
Structure SteelFrame(bool space);

/// A chain of beams along a direction, 1 m each.
Structure Chain(int beams, bool space, const Vector3& direction = {1, 0, 0});

/// Columns in rows of `columns` nodes, `storeys` high, with girders, in a plane; feet first.
Structure Storeys(int columns, int storeys, const std::array<int, 6>& feet);

/// Columns and girders of bays × bays × storeys in space, 6 m wide and 3.5 m high; feet first.
Structure Building(int baysX, int baysY, int storeys, const std::array<int, 6>& feet);

/// A tower of square storeys in space on four feet.
Structure Tower(int storeys, const std::array<int, 6>& feet);

/// A beam of an even number of parts whose ends slide along slopes: the first slope is 1 to 2, the
/// second is given by the angle Euler1. The middle cannot rotate.
Structure OnSkewRollers(double other, int beams = 4);

/// A plane girder of bars along x: chords, posts and one diagonal in each panel, 1 m by 1 m.
/// The nodes 2i + 1 are below, 2i + 2 above.
Structure TrussGirder(int panels);

/// A square mast of bars along z: chords, rings, diagonals in all faces and in each ring.
Structure TrussMast(int panels);

/// A wall of bars in a plane, nx by ny panels with one diagonal each.
Structure TrussWall(int nx, int ny);

/// A shell without supports. Nodes at the same place become one node.
Structure ShellOf(const ShellModel& model, const Structure::Shell& shell);

/// The same for a grid, see GridShell. The triangles have three or six nodes.
Structure ShellOn(const std::function<Vector3(double, double)>& place, int nx, int ny, double t,
                  int nnode = 3);

/// A solid without supports.
Structure SolidOf(const SolidModel& model, const Structure::Solid& solid = {});

}  // namespace morlen
