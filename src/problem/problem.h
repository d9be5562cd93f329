#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "base/constants.h"
#include "base/node_components.h"
#include "model/hinge_code.h"
#include "model/units.h"
#include "numeric/reavec.h"
#include "numeric/voidplex.h"
#include "problem/nodes_read.h"
#include "problem/settings.h"

namespace morlen {

class Elem;
class Material;
class Mesh;
class Node;

using Meshes = std::vector<std::unique_ptr<Mesh>>;

/// Hinge codes by element number. Elements without an entry are continuous.
using HingeCodes = std::unordered_map<int, HingeCode>;

/// The element's material. `materials`: of Material by number. Fatal when there is none.
Material& RequireMaterial(const Elem& elem, const VoidPlex& materials);

HingeCode GiveHingeCode(const HingeCodes& codes, int elemNumber);

/// The model and the settings that a problem file gives.
///
/// Readers fill it. The preparation of an analysis changes it once: it merges hinges, adds nodes to
/// shells and numbers the nodes. All later phases only read it.
///
/// The node container is indexed by the numbers of the file. Node::number is the system number,
/// from which Equation computes the place in vectors and matrices.
struct Problem
{
  static constexpr int kMaxMeshes = 10;

  /// chunkSize: chunk size of the containers of materials and element loads.
  explicit Problem(int chunkSize);
  Problem(const Problem&) = delete;
  Problem& operator=(const Problem&) = delete;
  ~Problem();

  /// The node container that all meshes share. At least one mesh must exist.
  VoidPlex& GiveNodes() const;
  Node* FindNode(int number) const;  ///< null when absent
  Elem* GiveElem(int number) const;  ///< null when absent
  /// The highest element number; 0 without elements.
  int GiveMaxElmNum() const;
  /// The first element number that occurs in more than one mesh; 0 when there is none.
  int CheckElementsNumbers() const;
  /// The element's material. Fatal when there is none.
  Material& RequireMaterial(const Elem& elem) const;
  HingeCode GiveHingeCode(int elemNumber) const;

  /// The equation of component k (from 1) of a node.
  int Equation(const Node& node, int k) const;
  /// The number of equations. Fatal when it is too large for a vector.
  int Equations() const;

  /// Calls visit(number, node) for every node of the file, in ascending order of the file's
  /// numbers.
  template <class Visit>
  void ForEachNodeRead(Visit visit) const
  {
    morlen::ForEachNodeRead(GiveNodes(), initialNumNodes, visit);
  }

  Units units;
  PROBLEMTYPE problemType = kPlane;
  NodeComponents components;
  Meshes meshes;
  int initialNumNodes = 0;  ///< highest node number in the file
  int numNodes = 0;         ///< initialNumNodes and the nodes that the preparation adds
  VoidPlex materials;       ///< of Material by number, owned
  VoidPlex elemLoads;       ///< of BaseElemLoads by element number, owned: chains of loads
  bool selfWeight = true;   ///< false: the elements have no weight, whatever their materials
  bool hasHinges = false;   ///< true when the file has a hinge record
  HingeCodes hingeCodes;
  std::vector<int> coplanarity;  ///< by system number - 1: 1 at a node where the shells are flat

  /// Shares of the nodes in the drilling freedoms of refined shells, by system number - 1; empty
  /// with standard shells.
  std::vector<double> shellShares;

  SolverSettings solverSettings;
  SmoothingSettings smoothing;
  StressOutput stressOutput = StressOutput::Local;
  bool convertTo6Nodes = false;
  ShellFormulation shellFormulation = ShellFormulation::Standard;
  double coplanarityAngle = 1e-7;          ///< radians
  ReaVec gravityDirection{0.0, 0.0, 1.0};  ///< unit vector
  int numOfDivisions = 20;                 ///< of a beam in the results
};

}  // namespace morlen
