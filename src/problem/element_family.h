#pragma once

#include "model/elem.h"

namespace morlen {

class InternalForces;
class Mesh;
class Project;
class TextOut;

/// What one kind of elements needs of each phase. A new kind is a row of the table in
/// element_family.cpp and the members that the row names.
struct ElementFamily
{
  ElemType type;
  int nnode;
  bool spaceOnly;  ///< refused in plane problems

  void (Project::*addStiffness)(Mesh* mesh, int applyLocalAxes);
  /// The forces of the elements for given displacements.
  void (Project::*addForces)(const Mesh& mesh, InternalForces& forces) const;
  /// Self-weight and element loads.
  void (Project::*addLoads)(Mesh* mesh);
  void (Project::*calcStrengths)(int mesh);
  /// Smoothing of the results; null when the family has none.
  void (Project::*smooth)(int mesh);
  /// Section of the text results; null when the family has none.
  void (Project::*writeStrength)(int mesh, TextOut& out) const;
  /// Blocks of the post-process results.
  void (Project::*writeKiv)(int mesh, TextOut& res) const;
};

/// The family of a mesh; null for elements that cannot be analysed.
const ElementFamily* FindFamily(const Mesh& mesh);

/// The same. Fatal for elements that cannot be analysed.
const ElementFamily& FamilyOf(const Mesh& mesh);

}  // namespace morlen
