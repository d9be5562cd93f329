#pragma once

#include <array>
#include <vector>

#include "model/elem.h"

namespace morlen {

class Material;
class Node;
class Project;

namespace check {

class Recorder;

/// What the checks of a model as read walk over: the elements whose nodes are all there.
struct Subject
{
  /// Nodes that belong to elements of the same part of the model, which share nodes.
  struct Part
  {
    std::vector<const Node*> nodes;
  };

  const Project& project;
  std::vector<const Elem*> elements;
  std::vector<const Node*> nodes;  ///< of the elements, by ascending number
  std::vector<Part> parts;         ///< by their lowest node number
  bool complete = true;            ///< whether that is all of them
};

using Point = std::array<double, 3>;

Point PlaceOf(const Node& node);
Point Minus(const Point& a, const Point& b);
Point Cross(const Point& a, const Point& b);
double Dot(const Point& a, const Point& b);

Subject SubjectOf(const Project& project);

/// Coincident nodes, slivers, turned neighbours among shells, turned solids.
void CheckGeometry(const Subject& subject, Recorder& recorder);
/// Parts of the model that share no node.
void CheckConnectivity(const Subject& subject, Recorder& recorder);
/// Values that the elements' kind needs and their material lacks.
void CheckSections(const Subject& subject, Recorder& recorder);
/// Motions of whole parts that no support or spring holds.
void CheckSupports(const Subject& subject, Recorder& recorder);
/// Nodes, materials and unit systems that nothing uses; weight without a direction of gravity.
void CheckUse(const Subject& subject, Recorder& recorder);

}  // namespace check

}  // namespace morlen
