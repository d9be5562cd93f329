#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/node_components.h"
#include "common/vec3.h"

namespace morlen {

class Units;
enum class PreassureLT_type : int;
struct Problem;

/// A model as plain data: the content of its problem file, in the units of the results.
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
  int number;  ///< 0 for a material that belongs to one element
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
  bool ownAxes;                  ///< false: the components are global
  std::array<double, 3> euler;   ///< of the axes of its components, radians
};

struct NodalLoad
{
  int node;
  std::array<double, 6> values;
};

struct ElementLoad
{
  int element;
  const char* kind;                          ///< the keyword of its block
  std::optional<PreassureLT_type> pressure;  ///< none for a change of temperature
  std::array<double, 6> values;
  int face;  ///< from 0; -1 without one

  bool IsTemperature() const { return !pressure; }
  /// The dimensions that the load is spread over, on an element of this kind: 1 for a length, 2 for
  /// an area, 3 for a volume.
  int Dimensions(Kind ofElement) const { return static_cast<int>(ofElement) + (face < 0 ? 1 : 0); }
};

/// Components of a node in space: three displacements, three rotations.
constexpr int kSpaceComponents = 6;

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
  int shellPoints = 0;  ///< result points of all shells
  Units units;
  std::vector<Node> nodes;        ///< by ascending number
  std::vector<Element> elements;  ///< mesh by mesh, by ascending number
  std::vector<Material> materials;
  std::vector<Support> supports;
  std::vector<NodalLoad> nodalLoads;
  std::vector<ElementLoad> elementLoads;

  /// Components that are displacements, not rotations: 2 or 3.
  int Translations() const
  {
    return (solids ? kSolidComponents : ComponentsOf(plane ? kPlane : kSpace)).translations;
  }

  /// The place of component k of a node, both from 0, among the six of a node in space.
  int PlaceInSpace(int k) const
  {
    return k < Translations() ? k : k + kSpaceComponents - components;
  }
};

/// Reads a problem file into an empty problem as the program does. Fatal: a file that cannot be
/// opened, and every error of reading.
void ReadProblemFile(const std::filesystem::path& file, Problem& problem);

/// The model of a problem file; fatal as ReadProblemFile.
Model ReadModel(const std::filesystem::path& file);

/// The data of a problem that has been read and not yet analysed.
Model ModelOf(const Problem& problem);

/// The unit names of the results: those of the unit system with the factors and names of the
/// results, or else of the first system with these factors. Empty when the file has no such system:
/// the names in `units` are then only defaults.
Units UnitsOf(const morlen::Units& units);

/// Place of a division point of a beam, from 0. The points have equal distances.
Vec3 PointOfBeam(const Model& model, const Element& beam, int point);

/// "beam", "shell" or "solid".
const char* KindName(Kind kind);

}  // namespace model

}  // namespace morlen
