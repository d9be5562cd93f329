// The blocks of beams in the post-process results: displacements, forces and local axes
// at the division points of every beam, points 0 and d at its ends.

#include <cstdio>

#include "base/text_out.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

struct ForceBlock
{
  const char* name;
  int axis;     ///< local axis along which the diagram is drawn
  double sign;  ///< of the drawing; moments are drawn on the other side
};

constexpr ForceBlock kPlaneForces[] = {
    {"X'_Shear", 2, 1.0}, {"Y'_Shear", 2, 1.0}, {"Z'_Momentus", 2, -1.0}};
constexpr ForceBlock kSpaceForces[] = {{"X'_Shear", 2, 1.0},     {"Y'_Shear", 2, 1.0},
                                       {"Z'_Shear", 3, 1.0},     {"X'_Momentus", 2, -1.0},
                                       {"Y'_Momentus", 3, -1.0}, {"Z'_Momentus", 2, -1.0}};

}  // namespace

void Project::WriteKivResultsBeams(int mesh, TextOut& res) const
{
  WriteKivBeamDisplacements(mesh, res);
  for (int component = 1; component <= freeDegrees; ++component)
    WriteKivBeamForces(mesh, component, res);
  WriteKivBeamAxes(mesh, res);
}

void Project::WriteKivBeamDisplacements(int mesh, TextOut& res) const
{
  const int c = TranslationsOf(freeDegrees);
  std::vector<double> points(static_cast<std::size_t>(numOfDivisions + 1) * c);
  Matriu T;
  res << "BDisplacements 4 1.0 Estatic 2 2 1 \"Beams\"\nX\nY\nZ\n";
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    const BeamSpan beam = SpanOf(elem, T);
    SetDisplacementVectors(elem, T, numOfDivisions, points.data());
    const SpanLoad load = LoadOn(beam);
    const bool loaded = !load.IsZero();
    res << elem.Num();
    double* value = points.data();
    for (int i = 0; i <= numOfDivisions; ++i) {
      if (loaded)
        load.AddToDisplacementVectors(beam, static_cast<double>(i) / numOfDivisions, value);
      res << ' ';
      for (int k = 0; k < c; ++k)
        res << *value++ << ' ';
      res << '\n';
    }
  }
}

void Project::WriteKivBeamForces(int mesh, int component, TextOut& res) const
{
  const ForceBlock& block =
      freeDegrees == 3 ? kPlaneForces[component - 1] : kSpaceForces[component - 1];
  char header[64];
  std::snprintf(header, sizeof header, "%-15s4 1.0 Estatic 2 2 0 \"Beams\"\n", block.name);
  res << header;
  Matriu T;
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    const BeamSpan beam = SpanOf(elem, T);
    const SpanLoad load = LoadOn(beam);
    const bool loaded = !load.IsZero();
    double direction[3];
    for (int k = 1; k <= 3; ++k)
      direction[k - 1] = block.sign * T(k, block.axis);
    res << elem.Num();
    for (int i = 0; i <= numOfDivisions; ++i) {
      const double t = static_cast<double>(i) / numOfDivisions;
      double value = GiveStrength(mesh, elem, component, t, beam.L);
      if (loaded)
        load.AddToStrengthVectors(beam, component, t, value);
      for (const double cosine : direction)
        res << ' ' << value * cosine;
      res << ' ' << value << '\n';
    }
  }
}

// The angles stand at the middle point; the others carry a mark that draws nothing.
void Project::WriteKivBeamAxes(int mesh, TextOut& res) const
{
  res << "Local Axes Beam   4 1.0 Estatic 6 2 0 \"Beams\"\n";
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    double angles[3];
    elem.GiveEulerAnglesBeam(angles, &RequireMaterial(elem), problemType);
    res << elem.Num();
    for (int i = 0; i <= numOfDivisions; ++i) {
      if (i == numOfDivisions / 2)
        res << ' ' << angles[0] << ' ' << angles[1] << ' ' << angles[2] << '\n';
      else
        res << " 1000 1000 1000\n";
    }
  }
}

}  // namespace morlen
