#include <algorithm>
#include <set>
#include <string>

#include "check/checks.h"
#include "check/recorder.h"
#include "model/constraint.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

// True when no component of a node without elements is free. In a model with hinges the analysis
// fixes the rotations of such a node.
bool IsHeld(const Node& node, const NodeComponents& components, bool hasHinges)
{
  if (!node.constraint)
    return false;
  const auto& flags = node.constraint->flags;
  return std::none_of(flags.begin(),
                      flags.begin() + (hasHinges ? components.translations : components.count),
                      [](int flag) { return flag == Constraint::kFree; });
}

// The equations of a node without elements are empty, and the solution fails at them unless they
// are held. With solids the results fail at such a node in any case.
void CheckNodes(const Subject& subject, Recorder& recorder)
{
  const std::set<const Node*> used(subject.nodes.begin(), subject.nodes.end());
  const Problem& problem = subject.problem;
  for (const auto [number, node] : EachNumbered<const Node>(problem.GiveNodes())) {
    if (used.contains(&node))
      continue;
    const std::ptrdiff_t place = recorder.PlaceOf(ReadItem::Node, number);
    const std::string name = Joined("node ", number, " belongs to no element");
    if (problem.meshes.front()->GiveElemType() == Tetrahedra)
      recorder.Error(Code::UnusedNode, place, name, ": the results of solids need one");
    else if (IsHeld(node, problem.components, problem.hasHinges))
      recorder.Warn(Code::UnusedNode, place, name);
    else
      recorder.Error(Code::UnusedNode, place, name,
                     " and is not held: the system cannot be solved");
  }
}

void CheckMaterials(const Subject& subject, Recorder& recorder)
{
  std::set<int> used;
  for (const Elem* elem : subject.elements)
    used.insert(elem->GiveNumberedMaterial());
  for (const auto [number, material] : EachNumbered<const Material>(subject.problem.materials)) {
    if (!used.contains(number))
      recorder.Warn(Code::UnusedMaterial, recorder.PlaceOf(ReadItem::Material, number), "material ",
                    number, " is not used");
  }
}

void CheckUnits(const Units& units, Recorder& recorder)
{
  for (const UnitsBase& base : units.bases) {
    if (!recorder.UsesUnits(base.name))
      recorder.Warn(Code::UnusedUnits, recorder.PlaceOf(ReadTopic::UnitSystems),
                    "the unit system '", base.name, "' is not used");
  }
}

// Self-weight is added for a weight above 0 only.
void CheckWeights(const Subject& subject, Recorder& recorder)
{
  std::set<const Material*> judged;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&subject.problem.materials);
    if (material && material->Weight < 0.0 && judged.insert(material).second)
      recorder.Error(Code::NegativeWeight, PlaceOfMaterial(*elem, recorder),
                     "a negative Weight gives no load: give a weight above 0 and turn "
                     "GravityDirection instead");
  }
}

// Without a direction of gravity, weight acts along +Z, which is upwards in most models.
void CheckGravity(const Subject& subject, Recorder& recorder)
{
  if (recorder.PlaceOf(ReadTopic::Gravity) != kWholeFile)
    return;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&subject.problem.materials);
    if (!material || !(material->Weight > 0.0))
      continue;
    return recorder.Warn(Code::WeightWithoutDirection, PlaceOfMaterial(*elem, recorder),
                         "weight without GravityDirection: it acts along +Z");
  }
}

}  // namespace

void CheckUse(const Subject& subject, Recorder& recorder)
{
  CheckNodes(subject, recorder);
  CheckMaterials(subject, recorder);
  CheckUnits(subject.problem.units, recorder);
  CheckWeights(subject, recorder);
  CheckGravity(subject, recorder);
}

}  // namespace morlen::check
