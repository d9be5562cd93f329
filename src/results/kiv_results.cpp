// The post-process results file: the order of its blocks, its point sets, the mesh file
// and the reactions.

#include "results/kiv_results.h"

#include <fstream>

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

void WriteMeshFile(const Mesh& mesh, int initialNumNodes, const char* fileName)
{
  std::ofstream file;
  OpenOutput(file, fileName);
  TextOut out(file);
  out << "\n\n\n\n\nNumElems NumNodes ElemType\n"
      << mesh.GiveElemPlex()->Count() << ' ' << initialNumNodes << " 7\nnode x y z\n";
  ForEachNodeRead(*mesh.GiveNodePlex(), initialNumNodes, [&](int number, const Node& node) {
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

// Meshes whose families write their point set by the same function share one set. Its number of
// points is that of the last of these meshes.
void WritePointSets(const Problem& problem, const ElementFamilies& families, TextOut& res)
{
  decltype(ElementFamily::writePointSet) written = nullptr;
  for (const ElementFamily& family : families.Rows()) {
    if (!family.writePointSet || family.writePointSet == written)
      continue;
    written = family.writePointSet;
    const ElementFamily* last = nullptr;
    for (const auto& mesh : problem.meshes) {
      const ElementFamily& ofMesh = families.Of(*mesh);
      if (ofMesh.writePointSet == written)
        last = &ofMesh;
    }
    if (last)
      written(problem, last->points, res);
  }
}

void WriteReactions(const Problem& problem, const ReaVecV& reactions, TextOut& res)
{
  const NodeComponents& components = problem.components;
  const auto writeComponents = [&](int first, int last) {  // of every node, from 1
    problem.ForEachNodeRead([&](int number, const Node& node) {
      res << number << ' ';
      if (!node.constraint) {
        res << "0 0 0\n";
        return;
      }
      for (int k = first; k <= last; ++k)
        res << reactions(components.Equation(node.number, k)) << ' ';
      res << '\n';
    });
  };
  const int forces = problem.problemType == kPlane ? 2 : 3;
  res << "Reactions       4 1.0 Estatic 2 1 1\nPx\nPy\nPz\n";
  writeComponents(1, forces);
  if (problem.problemType == kPlane)
    res << "M Reactions     4 1.0 Estatic 1 1 1\nM\n";
  else if (components.count == 6)
    res << "M Reactions     4 1.0 Estatic 2 1 1\nMx\nMy\nMz\n";
  else
    return;
  writeComponents(forces + 1, components.count);
}

}  // namespace

void WriteKivDisplacements(const VoidPlex& nodes, int initialNumNodes,
                           const NodeComponents& components, const ReaVecV& displacements,
                           TextOut& res)
{
  res << "Displacements   4 1.0 Estatic 2 1 1\nX\nY\nZ\n";
  ForEachNodeRead(nodes, initialNumNodes, [&](int number, const Node& node) {
    res << number;
    for (int k = 1; k <= 3; ++k)
      res << ' ' << displacements(components.Equation(node.number, k));
    res << '\n';
  });
}

void WriteKivResults(const Problem& problem, const ElementFamilies& families,
                     const Solution& solution, std::ostream& stream, const char* meshFileName)
{
  if (meshFileName)
    WriteMeshFile(*problem.meshes.front(), problem.initialNumNodes, meshFileName);
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
