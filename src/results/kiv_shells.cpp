// The blocks of shells in the post-process results: nodal displacements, then forces,
// moments and axes at the Gauss points.

#include "base/text_out.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

struct ShellBlock
{
  const char* header;
  bool main;   // principal values, else local ones
  int first;   // of the point's eight values, from 1
  int values;  // two shears are followed by a 0
};

constexpr ShellBlock kShellBlocks[] = {
    {"Axial Force     4 1.0 Estatic 2 2 1 \"Triangles\"\nNx'\nNy'\nNxy'\n", false, 1, 3},
    {"Main Ax. Force  4 1.0 Estatic 2 2 1 \"Triangles\"\nN11\nN22\n0\n", true, 1, 3},
    {"Momentus        4 1.0 Estatic 2 2 1 \"Triangles\"\nMx'\nMy'\nMxy'\n", false, 4, 3},
    {"Main Momentus   4 1.0 Estatic 2 2 1 \"Triangles\"\nM11\nM22\n0\n", true, 4, 3},
    {"Shear          4 1.0 Estatic 2 2 1 \"Triangles\"\nQx'\nQy'\n0\n", false, 7, 2},
    {"Shear in Main  4 1.0 Estatic 2 2 1 \"Triangles\"\nQm1\nQm2\n0\n", true, 7, 2},
};

void WriteValues(TextOut& res, const double* values, int count)
{
  for (int i = 0; i < count; ++i)
    res << ' ' << values[i];
}

}  // namespace

void Project::WriteKivDisplacements(TextOut& res) const
{
  res << "Displacements   4 1.0 Estatic 2 1 1\nX\nY\nZ\n";
  ForEachNodeRead([&](int number, const Node& node) {
    res << number;
    WriteValues(res, &displacements.Data()[Equation(node, 1) - 1], 3);
    res << '\n';
  });
}

void Project::WriteKivResultsTriangle(int mesh, TextOut& res) const
{
  const bool local = stressOutput != StressOutput::Main;
  const bool main = stressOutput != StressOutput::Local;
  const MeshResults& result = results[mesh];
  WriteKivDisplacements(res);
  for (const ShellBlock& block : kShellBlocks) {
    if (block.main ? !main : !local)
      continue;
    const bool apart = block.main && stressOutput == StressOutput::MainAndLocal;
    const double* point = (apart ? result.mainStrengths : result.strengths).Data();
    res << block.header;
    for (const int number : result.numbers) {
      res << number;
      for (int g = 0; g < result.points; ++g, point += 8) {
        WriteValues(res, point + block.first - 1, block.values);
        res << (block.values == 2 ? " 0\n" : "\n");
      }
    }
  }
  if (local)
    WriteKivShellAxes(mesh, res);
  if (main) {
    WriteKivMainAxes(mesh, "L Axes Axial    4 1.0 Estatic 6 2 0 \"Triangles\"\n", 0, res);
    WriteKivMainAxes(mesh, "L Axes Momentus 4 1.0 Estatic 6 2 0 \"Triangles\"\n", 3, res);
  }
}

void Project::WriteKivShellAxes(int mesh, TextOut& res) const
{
  res << "Local Axes      4 1.0 Estatic 6 2 0 \"Triangles\"\n";
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    double angles[3];
    elem.GiveEulerAnglesTriangle(angles, &RequireMaterial(elem));
    res << elem.Num();
    for (int g = 0; g < results[mesh].points; ++g) {
      WriteValues(res, angles, 3);
      res << '\n';
    }
  }
}

void Project::WriteKivMainAxes(int mesh, const char* header, int first, TextOut& res) const
{
  const MeshResults& result = results[mesh];
  const double* point = result.mainAngles.Data();
  res << header;
  for (const int number : result.numbers) {
    res << number;
    for (int g = 0; g < result.points; ++g, point += 6) {
      WriteValues(res, point + first, 3);
      res << '\n';
    }
  }
}

}  // namespace morlen
