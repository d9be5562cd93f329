// The blocks of shells in the post-process results: nodal displacements, then forces,
// moments and axes at the Gauss points.

#include "results/kiv_shells.h"

#include "assembly/solution.h"
#include "base/text_out.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/kiv_results.h"
#include "results/mesh_output.h"

namespace morlen {

namespace {

struct ShellBlock
{
  const char* header;
  bool main;   // principal values; else local ones
  int first;   // first of the eight values of a point, from 1
  int values;  // 3, or 2 shears: a 0 is written after them
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

void WriteShellBlock(const MeshOutput& output, const ShellBlock& block, TextOut& res)
{
  const MeshResults& results = output.results;
  const bool apart = block.main && output.problem.stressOutput == StressOutput::MainAndLocal;
  const double* point = (apart ? results.mainStrengths : results.strengths).Data();
  res << block.header;
  for (const int number : results.numbers) {
    res << number;
    for (int g = 0; g < results.points; ++g, point += 8) {
      WriteValues(res, point + block.first - 1, block.values);
      res << (block.values == 2 ? " 0\n" : "\n");
    }
  }
}

void WriteAxes(const MeshOutput& output, TextOut& res)
{
  res << "Local Axes      4 1.0 Estatic 6 2 0 \"Triangles\"\n";
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    double angles[3];
    elem.GiveEulerAnglesTriangle(angles, &output.problem.RequireMaterial(elem));
    res << elem.Num();
    for (int g = 0; g < output.results.points; ++g) {
      WriteValues(res, angles, 3);
      res << '\n';
    }
  }
}

void WriteMainAxes(const MeshResults& results, const char* header, int first, TextOut& res)
{
  const double* point = results.mainAngles.Data();
  res << header;
  for (const int number : results.numbers) {
    res << number;
    for (int g = 0; g < results.points; ++g, point += 6) {
      WriteValues(res, point + first, 3);
      res << '\n';
    }
  }
}

}  // namespace

void WriteShellPointSet(const Problem&, int points, TextOut& res)
{
  res << "GaussPoints \"Triangles\" ElemType Triangle\n Number of Gauss Points: " << points
      << "\nNatural Coordinates: Internal\nEnd gausspoints\n";
}

void WriteShellBlocks(const MeshOutput& output, TextOut& res)
{
  const Problem& problem = output.problem;
  WriteKivDisplacements(problem.GiveNodes(), problem.initialNumNodes, problem.components,
                        output.solution.displacements, res);
  const bool local = problem.stressOutput != StressOutput::Main;
  const bool main = problem.stressOutput != StressOutput::Local;
  for (const ShellBlock& block : kShellBlocks) {
    if (block.main ? main : local)
      WriteShellBlock(output, block, res);
  }
  if (local)
    WriteAxes(output, res);
  if (main) {
    WriteMainAxes(output.results, "L Axes Axial    4 1.0 Estatic 6 2 0 \"Triangles\"\n", 0, res);
    WriteMainAxes(output.results, "L Axes Momentus 4 1.0 Estatic 6 2 0 \"Triangles\"\n", 3, res);
  }
}

}  // namespace morlen
