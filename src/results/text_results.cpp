// The text results file: displacements, end forces of beams, reactions.

#include "base/errorwriter.h"
#include "base/text_out.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen {

namespace {

// What stands for plane and for space problems. Fatal for another type.
const char* ByProblem(PROBLEMTYPE type, const char* plane, const char* space)
{
  if (type != kPlane && type != kSpace)
    Fatal("error: Project::WriteResults. problemtype unknown\n");
  return type == kPlane ? plane : space;
}

// Each value with a blank before it, then the end of the line.
void WriteLine(TextOut& out, const double* values, int count)
{
  for (int i = 0; i < count; ++i)
    out << ' ' << values[i];
  out << '\n';
}

}  // namespace

void Project::WriteResults(std::ofstream& stream) const
{
  TextOut out(stream);
  out << ByProblem(problemType, "\n\nNODAL DISPLACEMENTS (x y theta)\n",
                   "\n\nNODAL DISPLACEMENTS (x y z thetax thetay thetaz)\n");
  ForEachNodeRead([&](int number, const Node& node) {
    out << number << ' ';
    WriteLine(out, displacements.Data() + Equation(node, 1) - 1, freeDegrees);
  });
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh) {
    if (const auto write = FamilyOf(*meshes[mesh]).writeStrength)
      (this->*write)(mesh, out);
  }
  out << ByProblem(problemType, "\n\nREACTIONS (Px Py M)\n", "\n\nREACTIONS (Px Py Pz Mx My Mz)\n");
  ForEachNodeRead([&](int number, const Node& node) {
    if (!node.constraint)
      return;
    out << number << ' ';
    WriteLine(out, node.constraint->reactions.data(), freeDegrees);
  });
}

void Project::WriteBeamStrength(int mesh, TextOut& out) const
{
  const Mesh& nodesOfFile = *meshes.front();
  out << ByProblem(problemType, "\n\nELEMENT STRENGTH (Px,local  Py,local  Mlocal)\n",
                   "\n\nELEMENT STRENGTH (Px,local  Py,local  Pz,local  Mx,local  My,local  "
                   "Mz,local)\n");
  Matriu T;
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    const BeamSpan beam = SpanOf(elem, T);
    double R[2][6] = {};
    if (const SpanLoad load = LoadOn(beam); !load.IsZero())
      load.AddToReactionsVecs(beam, R[0], R[1]);
    out << "Element " << elem.Num()
        << " local strength. nodes: " << nodesOfFile.GiveOldNumber(elem(0)) << ' '
        << nodesOfFile.GiveOldNumber(elem(1)) << '\n';
    const double* forces = results[mesh].strengths.Data() + results[mesh].Block(elem.Num());
    for (const auto& correction : R) {
      for (int i = 0; i < freeDegrees; ++i)
        out << *forces++ + correction[i] << ' ';
      out << '\n';
    }
  }
}

}  // namespace morlen
