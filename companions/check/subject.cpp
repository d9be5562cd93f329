#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "base/disjoint_sets.h"
#include "check/checks.h"
#include "check/recorder.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "run/element_families.h"

namespace morlen::check {
namespace {

bool IsWhole(const Elem& elem)
{
  for (int i = 0; i < elem.Nnode(); ++i) {
    if (!elem(i))
      return false;
  }
  return true;
}

void AddNodes(Subject& subject)
{
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < elem->Nnode(); ++i)
      subject.nodes.push_back((*elem)(i));
  }
  std::sort(subject.nodes.begin(), subject.nodes.end(),
            [](const Node* a, const Node* b) { return a->number < b->number; });
  subject.nodes.erase(std::unique(subject.nodes.begin(), subject.nodes.end()), subject.nodes.end());
}

void AddParts(Subject& subject)
{
  std::unordered_map<const Node*, std::size_t> position;
  for (std::size_t i = 0; i < subject.nodes.size(); ++i)
    position[subject.nodes[i]] = i;
  DisjointSets sets(subject.nodes.size());
  for (const Elem* elem : subject.elements) {
    for (int i = 1; i < elem->Nnode(); ++i)
      sets.Join(position[(*elem)(0)], position[(*elem)(i)]);
  }
  std::unordered_map<std::size_t, std::size_t> partOf;
  for (std::size_t i = 0; i < subject.nodes.size(); ++i) {
    const auto [part, added] = partOf.try_emplace(sets.Find(i), subject.parts.size());
    if (added)
      subject.parts.emplace_back();
    subject.parts[part->second].nodes.push_back(subject.nodes[i]);
  }
}

}  // namespace

Point PlaceOf(const Node& node)
{
  Point place{};
  for (int k = 1; k <= node.Size(); ++k)
    place[k - 1] = node(k);
  return place;
}

Point NormalOf(const Elem& elem)
{
  const Point a = PlaceOf(*elem(0));
  return Cross(Minus(PlaceOf(*elem(1)), a), Minus(PlaceOf(*elem(2)), a));
}

double DeterminantOf(const Elem& elem)
{
  const Point n = NormalOf(elem);
  return elem.ElemType() == Triangle ? Length(n)
                                     : Dot(n, Minus(PlaceOf(*elem(3)), PlaceOf(*elem(0))));
}

std::ptrdiff_t PlaceOfMaterial(const Elem& elem, const Recorder& recorder)
{
  const int number = elem.GiveMaterialNum();
  return number ? recorder.PlaceOf(ReadItem::Material, number)
                : recorder.PlaceOf(ReadItem::Element, elem.Num());
}

Subject SubjectOf(const Problem& problem)
{
  Subject subject{.problem = problem, .elements = {}, .nodes = {}, .parts = {}};
  for (const auto& mesh : problem.meshes) {
    if (!FamiliesOf(problem).Find(*mesh))
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      if (IsWhole(elem))
        subject.elements.push_back(&elem);
      else
        subject.complete = false;
    }
  }
  AddNodes(subject);
  AddParts(subject);
  return subject;
}

}  // namespace morlen::check
