#include "results/finite_results.h"

#include <algorithm>
#include <cmath>

#include "assembly/element_family.h"
#include "assembly/solution.h"
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

bool AreFinite(const ReaVecV& v)
{
  return std::all_of(v.Data(), v.Data() + v.Size(), [](double r) { return std::isfinite(r); });
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

}  // namespace

bool AreBeamSpansBounded(const MeshOutput& output)
{
  const Problem& problem = output.problem;
  const double largest =
      LargestOf(output.solution.displacements) + LargestOf(output.results.strengths);
  Matriu T;
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    const SpanLoad load = LoadOn(problem, beam);
    if (!IsBounded(std::max(1.0, beam.L) * largest) ||
        !(load.IsZero() || IsSpanBounded(beam, load)))
      return false;
  }
  return true;
}

bool AreResultsFinite(const Problem& problem, const ElementFamilies& families,
                      const Solution& solution)
{
  if (!AreBounded(solution.displacements) || !AreBounded(solution.nodalStresses) ||
      !AreFinite(solution.reactions))
    return false;
  for (std::size_t k = 0; k < problem.meshes.size(); ++k) {
    const Mesh& mesh = *problem.meshes[k];
    const MeshResults& results = solution.results[k];
    if (!AreBounded(results.strengths) || !AreBounded(results.mainStrengths) ||
        !AreBounded(results.mainAngles))
      return false;
    const auto areSpansBounded = families.Of(mesh).areSpansBounded;
    if (areSpansBounded && !areSpansBounded({problem, solution, mesh, results}))
      return false;
  }
  return true;
}

}  // namespace morlen
