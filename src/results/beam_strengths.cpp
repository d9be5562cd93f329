// End forces of beams, and their forces and displacements along the span.

#include "results/beam_strengths.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

#include "assembly/beam_blocks.h"
#include "assembly/relative_motion.h"
#include "base/array_size.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

// A plane of bending: its deflection and its rotation (components from 0), with the sign
// of the rotation that raises the deflection.
struct BendingPlane
{
  int v;
  int r;
  double sign;
};

constexpr BendingPlane kPlaneFrame[] = {{1, 2, 1.0}};
constexpr BendingPlane kSpaceFrame[] = {{1, 5, 1.0}, {2, 4, -1.0}};

std::span<const BendingPlane> BendingPlanes(int components)
{
  if (components == 3)
    return kPlaneFrame;
  return kSpaceFrame;
}

// Deflection at the relative abscissa t of a beam of length L with these end deflections
// and slopes: the cubic through them.
double Cubic(double t, double L, double v1, double slope1, double v2, double slope2)
{
  const double t2 = t * t;
  const double t3 = t2 * t;
  return (1.0 - 3.0 * t2 + 2.0 * t3) * v1 + (t - 2.0 * t2 + t3) * L * slope1 +
         (3.0 * t2 - 2.0 * t3) * v2 + (t3 - t2) * L * slope2;
}

}  // namespace

BeamEnds Project::GiveBeamEnds(const Elem& elem, const Matriu& T) const
{
  BeamEnds ends;
  const auto take = [&](const Node& node, double* components) {
    std::copy_n(&displacements.Data()[Equation(node, 1) - 1], freeDegrees, components);
    TurnVector(T, Turn::ToLocal, freeDegrees, components);
  };
  take(*elem(0), ends.first);
  take(*elem(1), ends.second);
  return ends;
}

void Project::CalcStrengthsBeams(int mesh)
{
  const VoidPlex& elems = *meshes[mesh]->GiveElemPlex();
  const int n = freeDegrees;
  MeshResults& result = results[mesh];
  result.blockSize = 2 * n;
  result.strengths.resize(ArrayLength(std::ssize(result.numbers), result.blockSize), 0.0);
  BeamBlocks K;
  Matriu T;
  double local[2 * kMaxComponents];
  int place = 1;
  for (const Elem& elem : Each<Elem>(elems)) {
    const BeamSpan beam = SpanOf(elem, T);
    K.Construct(beam);
    TakeRelativeBeam(elem, beam.hingeCode, n, T, {displacements, displacementRests}, local);
    K.Multiply(local, &result.strengths(place));
    place += result.blockSize;
  }
}

double Project::GiveStrength(int mesh, const Elem& elem, int component, double t, double L) const
{
  if (component < 1 || component > freeDegrees)
    return 0.0;
  const MeshResults& result = results[mesh];
  const int first = result.Block(elem.Num());
  const int second = first + freeDegrees;
  const double S1 = result.strengths(first + component);
  const double S2 = result.strengths(second + component);
  const double v = S1 * (1.0 - t) - S2 * t;
  const bool plane = freeDegrees == 3;
  switch (component) {
    case 1:
      return -v;
    case 2:
    case 4:
      return v;
    case 3:
      return plane ? -S1 + t * L * result.strengths(first + 2) : v;
    case 5:
      return S1 + t * L * result.strengths(first + 3);
    default:  // 6
      return -S1 + t * L * result.strengths(first + 2);
  }
}

void ReleaseHingedRotations(int hingeCode, double L, int components, BeamEnds& ends)
{
  const bool firstHinged = hingeCode / 10 == 0;
  const bool secondHinged = hingeCode % 10 == 0;
  for (const BendingPlane& plane : BendingPlanes(components)) {
    const double chord = plane.sign * (ends.second[plane.v] - ends.first[plane.v]) / L;
    double& first = ends.first[plane.r];
    double& second = ends.second[plane.r];
    if (firstHinged && secondHinged)
      first = second = chord;
    else if (firstHinged)
      first = 1.5 * chord - 0.5 * second;
    else if (secondHinged)
      second = 1.5 * chord - 0.5 * first;
  }
}

void Project::SetDisplacementVectors(const Elem& elem, const Matriu& T, int divisions,
                                     double* out) const
{
  const int components = freeDegrees;
  const int count = TranslationsOf(components);
  const double L = std::sqrt(dist2(elem(0), elem(1)));
  BeamEnds ends = GiveBeamEnds(elem, T);
  ReleaseHingedRotations(GiveHingeCode(elem.Num()), L, components, ends);
  for (int i = 0; i <= divisions; ++i) {
    const double t = static_cast<double>(i) / divisions;
    double local[3] = {(1.0 - t) * ends.first[0] + t * ends.second[0], 0.0, 0.0};
    for (const BendingPlane& plane : BendingPlanes(components)) {
      local[plane.v] = Cubic(t, L, ends.first[plane.v], plane.sign * ends.first[plane.r],
                             ends.second[plane.v], plane.sign * ends.second[plane.r]);
    }
    TurnVector(T, Turn::ToGlobal, 3, local);
    std::copy_n(local, count, out + i * count);
  }
}

}  // namespace morlen
