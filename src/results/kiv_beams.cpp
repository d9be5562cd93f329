// The blocks of beams in the post-process results: displacements, forces and local axes at
// numOfDivisions + 1 equidistant points of every beam, its ends included.

#include "results/kiv_beams.h"

#include <cstdio>
#include <vector>

#include "assembly/solution.h"
#include "base/text_out.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"
#include "results/beam_strengths.h"
#include "results/mesh_output.h"

namespace morlen {

namespace {

struct ForceBlock
{
  const char* name;
  int axis;     ///< local axis along which the diagram is drawn
  double sign;  ///< of the drawing: -1 for moments, which are drawn on the side of the tension
};

constexpr ForceBlock kPlaneForces[] = {
    {"X'_Shear", 2, 1.0}, {"Y'_Shear", 2, 1.0}, {"Z'_Momentus", 2, -1.0}};
constexpr ForceBlock kSpaceForces[] = {{"X'_Shear", 2, 1.0},     {"Y'_Shear", 2, 1.0},
                                       {"Z'_Shear", 3, 1.0},     {"X'_Momentus", 2, -1.0},
                                       {"Y'_Momentus", 3, -1.0}, {"Z'_Momentus", 2, -1.0}};

void WriteDisplacements(const MeshOutput& output, TextOut& res)
{
  const Problem& problem = output.problem;
  const int divisions = problem.numOfDivisions;
  const int c = problem.components.translations;
  std::vector<double> points(static_cast<std::size_t>(divisions + 1) * c);
  Matriu T;
  res << "BDisplacements 4 1.0 Estatic 2 2 1 \"Beams\"\nX\nY\nZ\n";
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    SetDisplacementVectors(problem.components, output.solution.displacements, elem, beam.hingeCode,
                           T, divisions, points.data());
    const SpanLoad load = LoadOn(problem, beam, output.solution.elementLoads);
    const bool loaded = !load.IsZero();
    res << elem.Num();
    double* value = points.data();
    for (int i = 0; i <= divisions; ++i) {
      if (loaded)
        load.AddToDisplacementVectors(beam, static_cast<double>(i) / divisions, value);
      res << ' ';
      for (int k = 0; k < c; ++k)
        res << *value++ << ' ';
      res << '\n';
    }
  }
}

void WriteForces(const MeshOutput& output, int component, TextOut& res)
{
  const Problem& problem = output.problem;
  const int divisions = problem.numOfDivisions;
  const ForceBlock& block =
      problem.components.count == 3 ? kPlaneForces[component - 1] : kSpaceForces[component - 1];
  char header[64];
  std::snprintf(header, sizeof header, "%-15s4 1.0 Estatic 2 2 0 \"Beams\"\n", block.name);
  res << header;
  Matriu T;
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    const SpanLoad load = LoadOn(problem, beam, output.solution.elementLoads);
    const bool loaded = !load.IsZero();
    double direction[3];
    for (int k = 1; k <= 3; ++k)
      direction[k - 1] = block.sign * T(k, block.axis);
    res << elem.Num();
    for (int i = 0; i <= divisions; ++i) {
      const double t = static_cast<double>(i) / divisions;
      double value = GiveStrength(output.results, elem.Num(), component, t, beam.L);
      if (loaded)
        load.AddToStrengthVectors(beam, component, t, value);
      for (const double cosine : direction)
        res << ' ' << value * cosine;
      res << ' ' << value << '\n';
    }
  }
}

// The axes are drawn at the middle point; angles of 1000 tell the post-processor to draw none.
void WriteAxes(const MeshOutput& output, TextOut& res)
{
  const Problem& problem = output.problem;
  res << "Local Axes Beam   4 1.0 Estatic 6 2 0 \"Beams\"\n";
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    double angles[3];
    elem.GiveEulerAnglesBeam(angles, &problem.RequireMaterial(elem), problem.problemType);
    res << elem.Num();
    for (int i = 0; i <= problem.numOfDivisions; ++i) {
      if (i == problem.numOfDivisions / 2)
        res << ' ' << angles[0] << ' ' << angles[1] << ' ' << angles[2] << '\n';
      else
        res << " 1000 1000 1000\n";
    }
  }
}

}  // namespace

void WriteBeamPointSet(const Problem& problem, int, TextOut& res)
{
  res << "GaussPoints \"Beams\" ElemType Linear\n Number of Gauss Points: "
      << problem.numOfDivisions + 1
      << "\nNatural Coordinates: Internal\nNodes included\nEnd gausspoints\n";
}

void WriteBeamBlocks(const MeshOutput& output, TextOut& res)
{
  WriteDisplacements(output, res);
  for (int component = 1; component <= output.problem.components.count; ++component)
    WriteForces(output, component, res);
  WriteAxes(output, res);
}

}  // namespace morlen
