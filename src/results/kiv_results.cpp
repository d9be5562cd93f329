// The post-process results file: the order of its blocks, its point sets, the mesh file
// and the reactions.

#include "results/kiv_results.h"

#include "assembly/element_family.h"
#include "assembly/solution.h"
#include "base/errorwriter.h"
#include "base/output_file.h"
#include "base/text_out.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/mesh_output.h"

namespace morlen {

namespace {

void WriteMeshFile(const Problem& problem, const char* fileName)
{
  std::ofstream file;
  OpenOutput(file, fileName);
  TextOut out(file);
  const Mesh& mesh = *problem.meshes.front();
  out << "\n\n\n\n\nNumElems NumNodes ElemType\n"
      << mesh.GiveElemPlex()->Count() << ' ' << problem.initialNumNodes << " 7\nnode x y z\n";
  problem.ForEachNodeRead([&](int number, const Node& node) {
    out << number << ' ';
    for (int i = 1; i <= node.Size(); ++i)
      out.Scientific(node(i));
    out << '\n';
  });
  constexpr int kNodes = 3;
  out << "element node1 node2 node3 material\n";
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    out << elem.Num();
    for (int i = 0; i < kNodes; ++i)
      out << ' ' << (i < elem.Nnode() ? mesh.GiveOldNumber(elem(i)) : 0);
    out << "  " << elem.GiveMaterialNum() << '\n';
  }
  out.Flush();
  CloseOutput(file);
}

// One point set for all meshes whose families write it by the same function; the last mesh tells
// the number of points.
void WritePointSets(const Problem& problem, const ElementFamilies& families, TextOut& res)
{
  decltype(ElementFamily::writePointSet) written = nullptr;
  for (const ElementFamily& family : families.Rows()) {
    if (!family.writePointSet || family.writePointSet == written)
      continue;
    written = family.writePointSet;
    const Mesh* last = nullptr;
    for (const auto& mesh : problem.meshes) {
      if (families.Of(*mesh).writePointSet == written)
        last = mesh.get();
    }
    if (last)
      written(problem, *last, res);
  }
}

// Reaction components first..last of every node, from 1.
void WriteReactionBlock(const Problem& problem, const ReaVecV& reactions, int first, int last,
                        TextOut& res)
{
  problem.ForEachNodeRead([&](int number, const Node& node) {
    res << number << ' ';
    if (!node.constraint) {
      res << "0 0 0\n";
      return;
    }
    for (int k = first; k <= last; ++k)
      res << reactions(problem.Equation(node, k)) << ' ';
    res << '\n';
  });
}

void WriteReactions(const Problem& problem, const ReaVecV& reactions, TextOut& res)
{
  const NodeComponents& components = problem.components;
  const int forces = problem.problemType == kPlane ? 2 : 3;
  res << "Reactions       4 1.0 Estatic 2 1 1\nPx\nPy\nPz\n";
  WriteReactionBlock(problem, reactions, 1, forces, res);
  if (problem.problemType == kPlane)
    res << "M Reactions     4 1.0 Estatic 1 1 1\nM\n";
  else if (components.count == 6)
    res << "M Reactions     4 1.0 Estatic 2 1 1\nMx\nMy\nMz\n";
  else
    return;
  WriteReactionBlock(problem, reactions, forces + 1, components.count, res);
}

}  // namespace

void WriteKivDisplacements(const Problem& problem, const ReaVecV& displacements, TextOut& res)
{
  res << "Displacements   4 1.0 Estatic 2 1 1\nX\nY\nZ\n";
  problem.ForEachNodeRead([&](int number, const Node& node) {
    res << number;
    for (int k = 1; k <= 3; ++k)
      res << ' ' << displacements(problem.Equation(node, k));
    res << '\n';
  });
}

void WriteKivResults(const Problem& problem, const ElementFamilies& families,
                     const Solution& solution, std::ofstream& stream, const char* meshFileName)
{
  if (meshFileName)
    WriteMeshFile(problem, meshFileName);
  TextOut res(stream);
  const bool solids = problem.meshes.front()->GiveElemType() == Tetrahedra;
  if (solids && problem.meshes.size() > 1)
    Fatal("tetrahedra elements cannot be mixed with other elements\n");
  WritePointSets(problem, families, res);
  for (std::size_t k = 0; k < problem.meshes.size(); ++k) {
    const Mesh& mesh = *problem.meshes[k];
    families.Of(mesh).writeBlocks({problem, solution, mesh, solution.results[k]}, res);
  }
  WriteReactions(problem, solution.reactions, res);
}

}  // namespace morlen
