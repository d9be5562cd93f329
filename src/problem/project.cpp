#include "problem/project.h"

#include <algorithm>

#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "solvers/bsolver.h"

namespace morlen {

int MeshResults::Block(int elemNumber) const
{
  // Elements are mostly numbered without gaps.
  std::size_t place = static_cast<std::size_t>(elemNumber - numbers.front());
  if (place >= numbers.size() || numbers[place] != elemNumber)
    place = static_cast<std::size_t>(std::lower_bound(numbers.begin(), numbers.end(), elemNumber) -
                                     numbers.begin());
  return static_cast<int>(place) * blockSize;
}

Project::Project(int chunkSize) : materials(chunkSize), elemLoads(chunkSize) {}

Project::~Project()
{
  for (const auto& mesh : meshes)
    mesh->ClearAllElems();
  if (!meshes.empty())
    meshes.front()->ClearAllNodes();
  DeleteAll<BaseElemLoads>(elemLoads);
  DeleteAll<Material>(materials);
}

VoidPlex& Project::GiveNodes() const
{
  return *meshes.front()->GiveNodePlex();
}

Node* Project::FindNode(int number) const
{
  return meshes.empty() ? nullptr : Find<Node>(GiveNodes(), number);
}

int Project::GiveMaxElmNum() const
{
  int highest = 0;
  for (const auto& mesh : meshes)
    highest = std::max(highest, mesh->GiveElemPlex()->Last());
  return highest;
}

Elem* Project::GiveElem(int number) const
{
  for (const auto& mesh : meshes) {
    if (Elem* elem = Find<Elem>(*mesh->GiveElemPlex(), number))
      return elem;
  }
  return nullptr;
}

bool Project::IsAddedNode(const Node& node) const
{
  return meshes.front()->GiveOldNumber(&node) > initialNumNodes;
}

int Project::Equation(const Node& node, int k) const
{
  return (node.number - 1) * freeDegrees + k;
}

Material& Project::RequireMaterial(const Elem& elem) const
{
  Material* material = elem.GiveMaterial(&materials);
  if (!material)
    Fatal("error: Material in element: ", elem.Num(), " doesn't exist\n");
  return *material;
}

}  // namespace morlen
