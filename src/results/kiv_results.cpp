// The post-process results file: the order of its blocks, its point sets, the mesh file
// and the reactions.

#include "base/errorwriter.h"
#include "base/output_file.h"
#include "base/text_out.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen {

namespace {

void WriteMeshFile(const Project& project, const char* fileName)
{
  std::ofstream file;
  OpenOutput(file, fileName);
  TextOut out(file);
  const Mesh& mesh = *project.meshes.front();
  out << "\n\n\n\n\nNumElems NumNodes ElemType\n"
      << mesh.GiveElemPlex()->Count() << ' ' << project.initialNumNodes << " 7\nnode x y z\n";
  project.ForEachNodeRead([&](int number, const Node& node) {
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

void WritePointSets(const Project& project, TextOut& res)
{
  bool beams = false;
  int shellNodes = 0;
  for (const auto& mesh : project.meshes) {
    beams = beams || mesh->GiveElemType() == Linear;
    if (mesh->GiveElemType() == Triangle)
      shellNodes = mesh->GiveNnode();
  }
  if (beams)
    res << "GaussPoints \"Beams\" ElemType Linear\n Number of Gauss Points: "
        << project.numOfDivisions + 1
        << "\nNatural Coordinates: Internal\nNodes included\nEnd gausspoints\n";
  if (shellNodes)
    res << "GaussPoints \"Triangles\" ElemType Triangle\n Number of Gauss Points: "
        << (shellNodes == 3 ? 1 : 3) << "\nNatural Coordinates: Internal\nEnd gausspoints\n";
}

}  // namespace

void Project::WriteKivResults(std::ofstream& stream, const char* meshFileName) const
{
  if (meshFileName)
    WriteMeshFile(*this, meshFileName);
  TextOut res(stream);
  const bool solids = meshes.front()->GiveElemType() == Tetrahedra;
  if (solids && meshes.size() > 1)
    Fatal("tetrahedra elements cannot be mixed with other elements\n");
  WritePointSets(*this, res);
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh)
    (this->*FamilyOf(*meshes[mesh]).writeKiv)(mesh, res);
  WriteKivResultsReactions(res);
}

// Reaction components first..last of every node, numbered from 1 on.
void Project::WriteKivReactionBlock(TextOut& res, int first, int last) const
{
  ForEachNodeRead([&](int number, const Node& node) {
    res << number << ' ';
    if (!node.constraint) {
      res << "0 0 0\n";
      return;
    }
    for (int k = first; k <= last; ++k)
      res << node.constraint->reactions[k - 1] << ' ';
    res << '\n';
  });
}

void Project::WriteKivResultsReactions(TextOut& res) const
{
  const int forces = problemType == kPlane ? 2 : 3;
  res << "Reactions       4 1.0 Estatic 2 1 1\nPx\nPy\nPz\n";
  WriteKivReactionBlock(res, 1, forces);
  if (problemType == kPlane)
    res << "M Reactions     4 1.0 Estatic 1 1 1\nM\n";
  else if (freeDegrees == 6)
    res << "M Reactions     4 1.0 Estatic 2 1 1\nMx\nMy\nMz\n";
  else
    return;
  WriteKivReactionBlock(res, forces + 1, freeDegrees);
}

}  // namespace morlen
