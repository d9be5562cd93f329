#include "results/model_dump.h"
#include "model/constraint.h"

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

void PrintHinges(const Problem& problem, std::ofstream& out)
{
  out << "nodes with rotule:\n";
  for (const auto [number, node] : EachNumbered<Node>(problem.GiveNodes())) {
    if (node.hasRotule)
      out << number << '\n';
  }
  out << "elements rotule:\n";
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const HingeCode code = problem.GiveHingeCode(elem.Num());
      if (!code.IsContinuous())
        out << "elm " << elem.Num() << " code=" << code.Value() << '\n';
    }
  }
}

}  // namespace

void PrintTo(const Problem& problem, std::ofstream& out)
{
  out << "\nProblemType=" << problem.problemType << "\nFreeDegrees=" << problem.components.count
      << "\nNumNodes=" << problem.numNodes << '\n';
  for (const auto& mesh : problem.meshes)
    mesh->PrintTo(out, 1, 0);
  for (const Material& material : Each<Material>(problem.materials))
    material.PrintTo(out);
  for (const auto [number, node] : EachNumbered<Node>(problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    out << number << ' ';
    node.constraint->PrintTo(out, problem.components.count);
  }
  for (const auto [number, node] : EachNumbered<Node>(problem.GiveNodes())) {
    if (!node.load)
      continue;
    out << number << ' ';
    node.load->PrintTo(out, problem.components.count);
  }
  if (problem.hasHinges)
    PrintHinges(problem, out);
  if (problem.coplanarity.empty())
    return;
  out << "Coplanarity vector:\n";
  for (std::size_t i = 0; i < problem.coplanarity.size(); ++i)
    out << i + 1 << ' ' << problem.coplanarity[i] << '\n';
}

}  // namespace morlen
