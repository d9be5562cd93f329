// End forces of beams, and their forces and displacements along the span.
//
// A beam without loads on its span has a linear moment, so that its deflection is the cubic through
// the deflections and slopes of its ends (Hermite interpolation). The loads of the span add their
// part later: SpanLoad, problem/beam_span.h.

#include "results/beam_strengths.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

#include "assembly/beam_blocks.h"
#include "assembly/relative_motion.h"
#include "assembly/solution.h"
#include "base/array_size.h"
#include "base/node_components.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"

namespace morlen {

namespace {

// A plane of bending.
struct BendingPlane
{
  int v;        // component of the deflection, from 0
  int r;        // component of the rotation, from 0
  double sign;  // slope of the deflection = sign · rotation
};

constexpr BendingPlane kPlaneFrame[] = {{1, 2, 1.0}};
constexpr BendingPlane kSpaceFrame[] = {{1, 5, 1.0}, {2, 4, -1.0}};

std::span<const BendingPlane> BendingPlanes(int components)
{
  if (components == 3)
    return kPlaneFrame;
  return kSpaceFrame;
}

// Deflection at the relative abscissa t of a beam of length L: the cubic with these deflections
// and slopes at the ends.
double Cubic(double t, double L, double v1, double slope1, double v2, double slope2)
{
  const double t2 = t * t;
  const double t3 = t2 * t;
  return (1.0 - 3.0 * t2 + 2.0 * t3) * v1 + (t - 2.0 * t2 + t3) * L * slope1 +
         (3.0 * t2 - 2.0 * t3) * v2 + (t3 - t2) * L * slope2;
}

}  // namespace

BeamEnds GiveBeamEnds(const NodeComponents& components, const ReaVecV& displacements,
                      const Elem& beam, const Matriu& T)
{
  const int n = components.count;
  BeamEnds ends;
  const auto copy = [&](const Node& node, double* end) {
    std::copy_n(&displacements.Data()[components.Equation(node.number, 1) - 1], n, end);
    TurnVector(T, Turn::ToLocal, n, end);
  };
  copy(*beam(0), ends.first);
  copy(*beam(1), ends.second);
  return ends;
}

void CalcBeamStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                       MeshResults& results)
{
  const int n = problem.components.count;
  results.blockSize = 2 * n;
  results.strengths.resize(ArrayLength(std::ssize(results.numbers), results.blockSize), 0.0);
  BeamBlocks K;
  Matriu T;
  double local[2 * kMaxComponents];
  int place = 1;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    K.Construct(beam);
    CalcRelativeBeam(elem, beam.hingeCode, n, T, solution.Displacements(), local);
    K.Multiply(local, &results.strengths(place));
    place += results.blockSize;
  }
}

double StrengthFromEnds(const double* ends, int n, int component, double t, double L)
{
  const auto first = [ends](int k) { return ends[k - 1]; };
  const double S1 = first(component);
  const double S2 = ends[n + component - 1];
  const double v = S1 * (1.0 - t) - S2 * t;
  const bool plane = n == 3;
  switch (component) {
    case 1:
      return -v;
    case 2:
    case 4:
      return v;
    case 3:
      return plane ? -S1 + t * L * first(2) : v;
    case 5:
      return S1 + t * L * first(3);
    default:  // 6
      return -S1 + t * L * first(2);
  }
}

double GiveStrength(const MeshResults& results, int elemNumber, int component, double t, double L)
{
  const int n = results.blockSize / 2;
  if (component < 1 || component > n)
    return 0.0;
  return StrengthFromEnds(results.strengths.Data() + results.Block(elemNumber), n, component, t, L);
}

void ReleaseHingedRotations(HingeCode hingeCode, double L, int components, BeamEnds& ends)
{
  for (const BendingPlane& plane : BendingPlanes(components)) {
    const double chord = plane.sign * (ends.second[plane.v] - ends.first[plane.v]) / L;
    double& first = ends.first[plane.r];
    double& second = ends.second[plane.r];
    if (hingeCode.FirstHinged() && hingeCode.SecondHinged())
      first = second = chord;
    else if (hingeCode.FirstHinged())
      first = 1.5 * chord - 0.5 * second;
    else if (hingeCode.SecondHinged())
      second = 1.5 * chord - 0.5 * first;
  }
}

namespace {

// ends: in the axes of the beam.
void SetPoints(const NodeComponents& components, BeamEnds ends, HingeCode hingeCode, double L,
               const Matriu& T, int divisions, double* out)
{
  const int count = components.translations;
  ReleaseHingedRotations(hingeCode, L, components.count, ends);
  for (int i = 0; i <= divisions; ++i) {
    const double t = static_cast<double>(i) / divisions;
    double local[3] = {(1.0 - t) * ends.first[0] + t * ends.second[0], 0.0, 0.0};
    for (const BendingPlane& plane : BendingPlanes(components.count)) {
      local[plane.v] = Cubic(t, L, ends.first[plane.v], plane.sign * ends.first[plane.r],
                             ends.second[plane.v], plane.sign * ends.second[plane.r]);
    }
    TurnVector(T, Turn::ToGlobal, 3, local);
    std::copy_n(local, count, out + i * count);
  }
}

}  // namespace

void SetDisplacementVectors(const NodeComponents& components, const ReaVecV& displacements,
                            const Elem& beam, HingeCode hingeCode, const Matriu& T, int divisions,
                            double* out)
{
  SetPoints(components, GiveBeamEnds(components, displacements, beam, T), hingeCode,
            std::sqrt(dist2(beam(0), beam(1))), T, divisions, out);
}

void SetDisplacementVectors(const BeamSpan& beam, const double* first, const double* second,
                            int divisions, double* out)
{
  const NodeComponents components = beam.Components();
  BeamEnds ends;
  std::copy_n(first, components.count, ends.first);
  std::copy_n(second, components.count, ends.second);
  TurnVector(beam.T, Turn::ToLocal, components.count, ends.first);
  TurnVector(beam.T, Turn::ToLocal, components.count, ends.second);
  SetPoints(components, ends, beam.hingeCode, beam.L, beam.T, divisions, out);
}

}  // namespace morlen
