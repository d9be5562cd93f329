#include "results/finite_results.h"

#include <algorithm>
#include <cmath>

#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

// Leaves room for sums of several values.
constexpr double kLargest = 1e300;

bool IsBounded(double value)
{
  return std::fabs(value) <= kLargest;
}

bool AreBounded(const ReaVecV& v)
{
  return std::all_of(v.Data(), v.Data() + v.Size(), IsBounded);
}

// The largest size of a value; 0 for none.
double LargestOf(const ReaVecV& v)
{
  double largest = 0.0;
  for (int i = 0; i < v.Size(); ++i)
    largest = std::max(largest, std::fabs(v.Data()[i]));
  return largest;
}

bool AreReactionsFinite(const Project& project)
{
  for (const Node& node : Each<Node>(project.GiveNodes())) {
    if (!node.constraint)
      continue;
    const auto& reactions = node.constraint->reactions;
    if (!std::all_of(reactions.begin(), reactions.end(), [](double r) { return std::isfinite(r); }))
      return false;
  }
  return true;
}

// Whether the load on a beam stays finite in the moments (by L²) and deflections (by L⁴ over
// the stiffness) that it causes between the ends.
bool IsSpanBounded(const BeamSpan& beam, const SpanLoad& load)
{
  double stiffness = std::min(beam.EA, beam.EIz);
  if (beam.type == kSpace)
    stiffness = std::min(stiffness, beam.EIy);
  double q = 0.0;
  for (const double component : load.q)
    q = std::max(q, std::isfinite(component) ? std::fabs(component) : INFINITY);
  const double length2 = std::max(1.0, beam.L * beam.L);
  const double deflection = std::max(1.0, q) * length2 * length2;
  return IsBounded(deflection) && IsBounded(deflection / stiffness) &&
         IsBounded(beam.EA * load.strain);
}

bool AreBeamsBounded(const Project& project, int mesh)
{
  const double largest =
      LargestOf(project.displacements) + LargestOf(project.results[mesh].strengths);
  Matriu T;
  for (const Elem& elem : Each<Elem>(*project.meshes[mesh]->GiveElemPlex())) {
    const BeamSpan beam = project.SpanOf(elem, T);
    const SpanLoad load = project.LoadOn(beam);
    if (!IsBounded(std::max(1.0, beam.L) * largest) ||
        !(load.IsZero() || IsSpanBounded(beam, load)))
      return false;
  }
  return true;
}

}  // namespace

bool AreResultsFinite(const Project& project)
{
  if (!AreBounded(project.displacements) || !AreBounded(project.nodalStresses) ||
      !AreReactionsFinite(project))
    return false;
  for (int mesh = 0; mesh < static_cast<int>(project.meshes.size()); ++mesh) {
    const MeshResults& result = project.results[mesh];
    if (!AreBounded(result.strengths) || !AreBounded(result.mainStrengths) ||
        !AreBounded(result.mainAngles))
      return false;
    if (project.meshes[mesh]->GiveElemType() == Linear && !AreBeamsBounded(project, mesh))
      return false;
  }
  return true;
}

}  // namespace morlen
