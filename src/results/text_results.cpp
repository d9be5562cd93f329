// The text results file: displacements, end forces of beams, reactions.

#include "results/text_results.h"

#include "assembly/element_family.h"
#include "assembly/solution.h"
#include "base/errorwriter.h"
#include "base/text_out.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"
#include "results/mesh_output.h"

namespace morlen {

namespace {

// The text for plane or for space problems. Fatal for another type.
const char* ByProblem(PROBLEMTYPE type, const char* plane, const char* space)
{
  if (type != kPlane && type != kSpace)
    Fatal("error: Project::WriteResults. problemtype unknown\n");
  return type == kPlane ? plane : space;
}

// Writes the rest of a line: a blank before each value.
void WriteLine(TextOut& out, const double* values, int count)
{
  for (int i = 0; i < count; ++i)
    out << ' ' << values[i];
  out << '\n';
}

}  // namespace

void WriteResults(const Problem& problem, const ElementFamilies& families, const Solution& solution,
                  std::ostream& stream)
{
  const PROBLEMTYPE type = problem.problemType;
  const int n = problem.components.count;
  TextOut out(stream);
  out << ByProblem(type, "\n\nNODAL DISPLACEMENTS (x y theta)\n",
                   "\n\nNODAL DISPLACEMENTS (x y z thetax thetay thetaz)\n");
  problem.ForEachNodeRead([&](int number, const Node& node) {
    out << number << ' ';
    WriteLine(out, solution.displacements.Data() + problem.Equation(node, 1) - 1, n);
  });
  for (std::size_t k = 0; k < problem.meshes.size(); ++k) {
    const Mesh& mesh = *problem.meshes[k];
    if (const auto write = families.Of(mesh).writeText)
      write({problem, solution, mesh, solution.results[k]}, out);
  }
  out << ByProblem(type, "\n\nREACTIONS (Px Py M)\n", "\n\nREACTIONS (Px Py Pz Mx My Mz)\n");
  problem.ForEachNodeRead([&](int number, const Node& node) {
    if (!node.constraint)
      return;
    out << number << ' ';
    WriteLine(out, solution.reactions.Data() + problem.Equation(node, 1) - 1, n);
  });
}

void WriteBeamForces(const MeshOutput& output, TextOut& out)
{
  const Problem& problem = output.problem;
  const Mesh& nodesOfFile = *problem.meshes.front();
  out << ByProblem(problem.problemType, "\n\nELEMENT STRENGTH (Px,local  Py,local  Mlocal)\n",
                   "\n\nELEMENT STRENGTH (Px,local  Py,local  Pz,local  Mx,local  My,local  "
                   "Mz,local)\n");
  Matriu T;
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    double R[2][kMaxComponents] = {};
    if (const SpanLoad load = LoadOn(problem, beam, output.solution.elementLoads); !load.IsZero())
      load.AddToReactionsVecs(beam, R[0], R[1]);
    out << "Element " << elem.Num()
        << " local strength. nodes: " << nodesOfFile.GiveOldNumber(elem(0)) << ' '
        << nodesOfFile.GiveOldNumber(elem(1)) << '\n';
    const double* forces = output.results.strengths.Data() + output.results.Block(elem.Num());
    for (const auto& correction : R) {
      for (int i = 0; i < problem.components.count; ++i)
        out << *forces++ + correction[i] << ' ';
      out << '\n';
    }
  }
}

}  // namespace morlen
