#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "check/checks.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen::check {
namespace {

/// Sets of positions that grow together.
class DisjointSets
{
public:
  explicit DisjointSets(std::size_t size) : parent(size)
  {
    std::iota(parent.begin(), parent.end(), std::size_t{0});
  }

  std::size_t Find(std::size_t i)
  {
    while (parent[i] != i)
      i = parent[i] = parent[parent[i]];
    return i;
  }

  /// The lower root stays.
  void Join(std::size_t a, std::size_t b)
  {
    a = Find(a);
    b = Find(b);
    parent[std::max(a, b)] = std::min(a, b);
  }

private:
  std::vector<std::size_t> parent;
};

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

Point Minus(const Point& a, const Point& b)
{
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point Cross(const Point& a, const Point& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const Point& a, const Point& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Subject SubjectOf(const Project& project)
{
  Subject subject{.project = project, .elements = {}, .nodes = {}, .parts = {}};
  for (const auto& mesh : project.meshes) {
    if (!FindFamily(*mesh))
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
