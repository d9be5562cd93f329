#pragma once

#include <cstddef>
#include <vector>

#include "common/vec3.h"
#include "model/elem.h"

namespace morlen {

class Material;
class Node;
struct Problem;

namespace check {

class Recorder;

/// The parts of a model as read that the checks look at: the elements whose nodes all exist.
struct Subject
{
  /// Nodes of elements that are connected with each other by common nodes.
  struct Part
  {
    std::vector<const Node*> nodes;
  };

  const Problem& problem;
  std::vector<const Elem*> elements;
  std::vector<const Node*> nodes;  ///< of the elements, by ascending number
  std::vector<Part> parts;         ///< by their lowest node number
  bool complete = true;            ///< false when elements were left out
};

using Point = Vec3;

Point PlaceOf(const Node& node);

/// The normal of the triangle of the first three nodes, twice as long as its area.
Point NormalOf(const Elem& elem);
/// The determinant that the analysis divides by: twice the area of a shell element, six times the
/// volume of a solid one, which is negative for a turned element.
double DeterminantOf(const Elem& elem);

/// The place of the record with the values of the element's material: the record of the material,
/// or of the element when it owns its material.
std::ptrdiff_t PlaceOfMaterial(const Elem& elem, const Recorder& recorder);

Subject SubjectOf(const Problem& problem);

/// Coincident nodes, slivers, turned neighbours among shells, turned solids.
void CheckGeometry(const Subject& subject, Recorder& recorder);
/// Parts of the model that share no node.
void CheckConnectivity(const Subject& subject, Recorder& recorder);
/// Beams that are almost vertical: their local axes are not those of a vertical beam.
void CheckBeamAxes(const Subject& subject, Recorder& recorder);
/// Values that are missing in a material and needed by the kind of its elements.
void CheckSections(const Subject& subject, Recorder& recorder);
/// Supports and springs that the conversion to six nodes adds where they are not meant.
void CheckMiddleNodes(const Subject& subject, Recorder& recorder);
/// Flat shells whose triangles are folded by the rounding of their coordinates.
void CheckFolds(const Subject& subject, Recorder& recorder);
/// Motions of whole parts that no support or spring holds. Returns those parts, by position in
/// Subject::parts.
std::vector<std::size_t> CheckSupports(const Subject& subject, Recorder& recorder);
/// Nodes, materials and unit systems that nothing uses; negative weights, weight without a
/// direction of gravity.
void CheckUse(const Subject& subject, Recorder& recorder);

}  // namespace check

}  // namespace morlen
