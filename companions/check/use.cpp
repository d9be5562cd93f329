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
#include "problem/project.h"

namespace morlen::check {
namespace {

// Where there are hinges, the analysis holds the rotations of nodes that no element holds.
bool IsHeld(const Project& project, const Node& node)
{
  const int components = project.hasHinges ? project.translations : project.freeDegrees;
  if (!node.constraint)
    return false;
  const auto& flags = node.constraint->flags;
  return std::none_of(flags.begin(), flags.begin() + components,
                      [](int flag) { return flag == Constraint::kFree; });
}

// Its equations are empty: the solution stops at them, whatever acts on the node, unless they
// are held. With solids the results stop at a node without elements in any case.
void CheckNodes(const Subject& subject, Recorder& recorder)
{
  const std::set<const Node*> used(subject.nodes.begin(), subject.nodes.end());
  for (const auto [number, node] : EachNumbered<const Node>(subject.project.GiveNodes())) {
    if (used.contains(&node))
      continue;
    const std::ptrdiff_t place = recorder.PlaceOf(ReadItem::Node, number);
    const std::string name = Joined("node ", number, " belongs to no element");
    if (subject.project.meshes.front()->GiveElemType() == Tetrahedra)
      recorder.Error(place, name, ": the results of solids need one");
    else if (IsHeld(subject.project, node))
      recorder.Warn(place, name);
    else
      recorder.Error(place, name, " and is not held: the system cannot be solved");
  }
}

void CheckMaterials(const Subject& subject, Recorder& recorder)
{
  std::set<int> used;
  for (const Elem* elem : subject.elements)
    used.insert(elem->GiveMaterialNum());
  for (const auto [number, material] : EachNumbered<const Material>(subject.project.materials)) {
    if (!used.contains(number))
      recorder.Warn(recorder.PlaceOf(ReadItem::Material, number), "material ", number,
                    " is not used");
  }
}

void CheckUnits(const Project& project, Recorder& recorder)
{
  for (const UnitsBase& base : project.bases) {
    if (!recorder.UsesUnits(base.name))
      recorder.Warn(recorder.PlaceOfKeyword("units_names"), "the unit system '", base.name,
                    "' is not used");
  }
}

// Without a direction weight acts along +Z, upwards in most models.
void CheckGravity(const Subject& subject, Recorder& recorder)
{
  if (recorder.PlaceOfKeyword("GravityDirection") != kWholeFile)
    return;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&subject.project.materials);
    if (!material || !(material->Weight > 0.0))
      continue;
    const int number = elem->GiveMaterialNum();
    return recorder.Warn(number ? recorder.PlaceOf(ReadItem::Material, number)
                                : recorder.PlaceOf(ReadItem::Element, elem->Num()),
                         "weight without GravityDirection: it acts along +Z");
  }
}

}  // namespace

void CheckUse(const Subject& subject, Recorder& recorder)
{
  CheckNodes(subject, recorder);
  CheckMaterials(subject, recorder);
  CheckUnits(subject.project, recorder);
  CheckGravity(subject, recorder);
}

}  // namespace morlen::check
