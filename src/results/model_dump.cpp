#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

void Project::PrintTo(std::ofstream& out) const
{
  out << "\nProblemType=" << problemType << "\nFreeDegrees=" << freeDegrees
      << "\nNumNodes=" << numNodes << '\n';
  for (const auto& mesh : meshes)
    mesh->PrintTo(out, 1, 0);
  for (const Material& material : Each<Material>(materials))
    material.PrintTo(out);
  for (const auto [number, node] : EachNumbered<Node>(GiveNodes())) {
    if (!node.constraint)
      continue;
    out << number << ' ';
    node.constraint->PrintTo(out, freeDegrees);
  }
  for (const auto [number, node] : EachNumbered<Node>(GiveNodes())) {
    if (!node.load)
      continue;
    out << number << ' ';
    node.load->PrintTo(out, freeDegrees);
  }
  if (hasHinges)
    PrintHinges(out);
  if (coplanarity.empty())
    return;
  out << "Coplanarity vector:\n";
  for (std::size_t i = 0; i < coplanarity.size(); ++i)
    out << i + 1 << ' ' << coplanarity[i] << '\n';
}

void Project::PrintHinges(std::ofstream& out) const
{
  out << "nodes with rotule:\n";
  for (const auto [number, node] : EachNumbered<Node>(GiveNodes())) {
    if (node.hasRotule)
      out << number << '\n';
  }
  out << "elements rotule:\n";
  for (const auto& mesh : meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      if (GiveHingeCode(elem.Num()) != 11)
        out << "elm " << elem.Num() << " code=" << GiveHingeCode(elem.Num()) << '\n';
    }
  }
}

}  // namespace morlen
