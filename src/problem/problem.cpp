#include "problem/problem.h"

#include <algorithm>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"

namespace morlen {

namespace {

[[noreturn]] void RefuseMaterial(const Elem& elem, const VoidPlex& materials)
{
  if (elem.GiveMaterialNum() == 0)
    Explain("no material number follows the nodes of element ", elem.Num());
  else if (materials.Count() == 0)
    Explain("the file has no materials");
  else
    Explain("the element has material ", elem.GiveMaterialNum(), ", and the last material is ",
            materials.Last());
  Fatal("error: Material in element: ", elem.Num(), " doesn't exist\n");
}

}  // namespace

Material& RequireMaterial(const Elem& elem, const VoidPlex& materials)
{
  Material* material = elem.GiveMaterial(&materials);
  if (!material)
    RefuseMaterial(elem, materials);
  return *material;
}

HingeCode GiveHingeCode(const HingeCodes& codes, int elemNumber)
{
  const auto found = codes.find(elemNumber);
  return found == codes.end() ? HingeCode() : found->second;
}

Problem::Problem(int chunkSize) : materials(chunkSize), elemLoads(chunkSize) {}

Problem::~Problem()
{
  for (const auto& mesh : meshes)
    mesh->ClearAllElems();
  if (!meshes.empty())
    meshes.front()->ClearAllNodes();
  DeleteAll<BaseElemLoads>(elemLoads);
  DeleteAll<Material>(materials);
}

VoidPlex& Problem::GiveNodes() const
{
  return *meshes.front()->GiveNodePlex();
}

Node* Problem::FindNode(int number) const
{
  return meshes.empty() ? nullptr : Find<Node>(GiveNodes(), number);
}

Elem* Problem::GiveElem(int number) const
{
  for (const auto& mesh : meshes) {
    if (Elem* elem = Find<Elem>(*mesh->GiveElemPlex(), number))
      return elem;
  }
  return nullptr;
}

int Problem::GiveMaxElmNum() const
{
  int highest = 0;
  for (const auto& mesh : meshes)
    highest = std::max(highest, mesh->GiveElemPlex()->Last());
  return highest;
}

int Problem::CheckElementsNumbers() const
{
  for (std::size_t later = 1; later < meshes.size(); ++later) {
    for (const auto [number, elem] : EachNumbered<Elem>(*meshes[later]->GiveElemPlex())) {
      for (std::size_t earlier = 0; earlier < later; ++earlier) {
        if (!meshes[earlier]->GiveElemPlex()->free(number))
          return number;
      }
    }
  }
  return 0;
}

Material& Problem::RequireMaterial(const Elem& elem) const
{
  return morlen::RequireMaterial(elem, materials);
}

HingeCode Problem::GiveHingeCode(int elemNumber) const
{
  return morlen::GiveHingeCode(hingeCodes, elemNumber);
}

int Problem::Equation(const Node& node, int k) const
{
  return components.Equation(node.number, k);
}

int Problem::Equations() const
{
  return ArrayLength(numNodes, components.count);
}

}  // namespace morlen
