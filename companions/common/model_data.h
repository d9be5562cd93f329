#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace morlen {

class Project;

/// A vector in global axes; plane models leave what they lack at 0.
using Vec3 = std::array<double, 3>;

/// A model as plain data: what its problem file says, in the units of the results.
///
/// Nodes and elements refer to each other by their positions in the lists, from 0; their
/// `number` is the one in the problem file.
namespace model {

enum class Kind : int
{
  Beam,
  Shell,
  Solid
};

struct Node
{
  int number;
  Vec3 x;
};

/// The values are those of the core's Material; 0 when not given.
struct Material
{
  int number;  ///< 0 for the own material of an element
  double E1, E2, nuXY, nuYX, Gxy, Gxz, Gyz;
  double A, Iy, Iz, J, t, weight;
};

struct Element
{
  static constexpr int kMostNodes = 10;

  int number;
  int mesh;  ///< from 0
  Kind kind;
  int material;    ///< position in the list; -1 without one
  int hingeCode;   ///< of a beam: 11 continuous, a digit 0 for a hinge at that end
  int firstPoint;  ///< of its result points, among those of all elements of its kind
  int points;      ///< result points: divisions and 1 of a beam, 1 or 3 of a shell, 0 of a solid
  int nodeCount;
  std::array<int, kMostNodes> nodes;
  std::array<Vec3, 3> axes;  ///< local x, y, z of a beam or shell
};

struct Support
{
  int node;
  std::array<int, 6> flags;      ///< 0 free, 1 prescribed, 2 spring
  std::array<double, 6> values;  ///< prescribed value or stiffness
  bool ownAxes;
  std::array<double, 3> euler;  ///< of its own axes, radians
};

struct NodalLoad
{
  int node;
  std::array<double, 6> values;
};

struct ElementLoad
{
  int element;
  const char* kind;  ///< the keyword of its block
  std::array<double, 6> values;
  int face;  ///< from 0; -1 without one
};

/// Names of the units of the results, in UTF-8; empty when the problem file does not name them.
struct Units
{
  std::string force, length, pressure;
};

struct Model
{
  bool plane = false;     ///< a plane problem, with x, y and the rotation about z
  int components = 0;     ///< of a node: 3 or 6
  bool solids = false;    ///< nodes without rotations
  int beamDivisions = 0;  ///< of every beam in the results
  int meshes = 0;
  int beamPoints = 0;   ///< result points of all beams
  int shellPoints = 0;  ///< and of all shells
  Units units;
  std::vector<Node> nodes;        ///< by ascending number
  std::vector<Element> elements;  ///< mesh by mesh, by ascending number
  std::vector<Material> materials;
  std::vector<Support> supports;
  std::vector<NodalLoad> nodalLoads;
  std::vector<ElementLoad> elementLoads;

  /// Components that are displacements, not rotations: 2 or 3.
  int Translations() const { return plane && !solids ? 2 : 3; }
};

/// Reads a problem file as the program does: fatal on all that the program refuses.
Model ReadModel(const std::filesystem::path& file);

/// The data of a project that has been read and not yet analysed.
Model ModelOf(const Project& project);

/// The names of the units of the results. Without a unit system for them the names in the project
/// are only its defaults; then the first system of the same size tells them, if there is one.
Units UnitsOf(const Project& project);

/// Place of a division point of a beam, from 0; they stand at equal distances.
Vec3 PointOfBeam(const Model& model, const Element& beam, int point);

/// "beam", "shell" or "solid".
const char* KindName(Kind kind);

}  // namespace model

}  // namespace morlen
