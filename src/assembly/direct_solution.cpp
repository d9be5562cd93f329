// The direct solution: factorised, refined, and judged by its refinement.

#include <string>
#include <utility>

#include "assembly/free_equations.h"
#include "assembly/probe_load.h"
#include "assembly/refinement.h"
#include "base/stprintf.h"
#include "problem/project.h"
#include "solvers/skymatriu.h"

namespace morlen {

namespace {

/// A line for a model that is refused although it may stand; empty for one that can move.
std::string RoughModelHint(const RefinedCases& cases, Refinement::Verdict verdict)
{
  if (verdict == Refinement::Verdict::Moves && !cases.probe.Diverges())
    return "";
  return "The model is too rough: its stiffnesses or lengths differ so much that the digits of the "
         "arithmetic are not enough for its displacements\n";
}

}  // namespace

void Project::SolveDirectly(std::FILE* info)
{
  const ReaVecV loads = displacements;
  ApplySupports();
  Progress(info, "Just before Solver\n");
  RefinedCases cases;
  if (const int failed = SolveCases(loads, cases, info))
    SolverFailed(failed, RefusedPivotHint(loads));
  const Refinement refinement = MakeRefinement();
  const Refinement::Verdict verdict = refinement.Run(cases);
  if (verdict == Refinement::Verdict::Moves)
    SolverFailed(refinement.LargestMotion(cases.probe), RoughModelHint(cases, verdict));
  if (verdict == Refinement::Verdict::TooRough)
    SolverFailed(-1, RoughModelHint(cases, verdict));
  accuracy = {.error = cases.model.LastCorrection(), .residual = cases.model.LastResidual()};
  displacements = std::move(cases.model.u.value);
  displacementRests = std::move(cases.model.u.rest);
  elementForces = std::move(cases.model.elementForces);
  TellAccuracy(info);
}

// From the right-hand side in the displacements to the solutions before their refinement. Returns
// what SolverFailed takes, or 0.
int Project::SolveCases(const ReaVecV& loads, RefinedCases& cases, std::FILE* info)
{
  using Norm = RefinedCase::Norm;
  const ComponentScale scale = ScaleOfComponents();
  const ReaVecV probeLoads = ProbeLoad(GiveNodes(), scale, loads.Size());
  ReaVecV ofProbe = probeLoads;
  const double size = SizeOnFree(Norm::Euclidean, GiveNodes(), scale, displacements);
  const double sizeOfProbe = SizeOnFree(Norm::Largest, GiveNodes(), scale, ofProbe);
  if (const int refused = Skyline().Solver({&displacements, &ofProbe}, info))
    return refused;
  if (!AllFinite(displacements))
    return -1;
  cases.model = RefinedCase(loads, Norm::Euclidean, size, displacements);
  cases.probe = RefinedCase(probeLoads, Norm::Largest, sizeOfProbe, std::move(ofProbe));
  return 0;
}

// A refused pivot tells nothing about why it is small. Without the limit for pivots that have lost
// digits, the refinement can often tell.
std::string Project::RefusedPivotHint(const ReaVecV& loads)
{
  Skyline().SetToZero();
  AssembleStiffness();
  displacements = loads;
  ApplySupports();
  Skyline().AcceptLostPivots();
  RefinedCases cases;
  if (SolveCases(loads, cases, nullptr) != 0)
    return "";
  return RoughModelHint(cases, MakeRefinement().Run(cases));
}

SkyMatriu& Project::Skyline() const
{
  return static_cast<SkyMatriu&>(*solver);
}

Refinement Project::MakeRefinement() const
{
  return {Skyline(), GiveNodes(), ScaleOfComponents(), [this](InternalForces& f) { AddForces(f); }};
}

}  // namespace morlen
