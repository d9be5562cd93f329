// Lists a model as text, for debugging.

#include "results/model_dump.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "model/constraint.h"
#include "model/elem.h"
#include "model/hinge_code.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

void PrintHingedNodes(const VoidPlex& nodes, std::ofstream& out)
{
  out << "nodes with rotule:\n";
  for (const auto [number, node] : EachNumbered<Node>(nodes)) {
    if (node.hasRotule)
      out << number << '\n';
  }
}

using HingeCodes = std::unordered_map<int, HingeCode>;

void PrintHingedElements(const Meshes& meshes, const HingeCodes& codes, std::ofstream& out)
{
  out << "elements rotule:\n";
  for (const auto& mesh : meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const auto found = codes.find(elem.Num());
      if (found != codes.end() && !found->second.IsContinuous())
        out << "elm " << elem.Num() << " code=" << found->second.Value() << '\n';
    }
  }
}

void PrintCoplanarity(const std::vector<int>& coplanarity, std::ofstream& out)
{
  out << "Coplanarity vector:\n";
  for (std::size_t i = 0; i < coplanarity.size(); ++i)
    out << i + 1 << ' ' << coplanarity[i] << '\n';
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
  if (problem.hasHinges) {
    PrintHingedNodes(problem.GiveNodes(), out);
    PrintHingedElements(problem.meshes, problem.hingeCodes, out);
  }
  if (!problem.coplanarity.empty())
    PrintCoplanarity(problem.coplanarity, out);
}

}  // namespace morlen
