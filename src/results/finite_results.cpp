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

// The writers add several values: a bound below the largest double leaves room for their sums.
constexpr double kLargest = 1e300;

bool IsBounded(double value)
{
  return std::fabs(value) <= kLargest;
}

bool AreBounded(const ReaVecV& v)
{
  return std::all_of(v.Data(), v.Data() + v.Size(), IsBounded);
}

// The largest absolute value; 0 for an empty vector.
double MaxAbs(const ReaVecV& v)
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

// True when the moments (q L²) and deflections (q L⁴ / stiffness) that a load causes between the
// ends of a beam are bounded.
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
  const double largest = MaxAbs(output.solution.displacements) + MaxAbs(output.results.strengths);
  Matriu T;
  for (const Elem& elem : Each<Elem>(*output.mesh.GiveElemPlex())) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    const SpanLoad load = LoadOn(problem, beam, output.solution.elementLoads);
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
