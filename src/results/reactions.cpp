#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/element_forces.h"
#include "assembly/residual_check.h"
#include "base/constants.h"
#include "model/elem.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

// The stiffness of the elements is calculated again, in global axes: with the displacements it
// gives the forces that the nodes exert on the elements. The matrix is not needed any more.
void Project::CalcReactions()
{
  solver.reset();
  const ReaVecV forces = checkedSolution ? CheckedForces() : ForcesAtSupports();
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= freeDegrees; ++k) {
      const double force = forces(Equation(node, k));
      if (!std::isfinite(force))
        SolverFailed(-1);
      node.constraint->AddToReaction(k, force);
    }
  }
  if (convertTo6Nodes)
    HandOverMidSideReactions();
}

ReaVecV Project::ForcesAtSupports()
{
  ElementForces elements({&displacements});
  AssembleStiffness(elements, kOnlyAtSupports);
  return elements.Forces(0);
}

// Fatal when they miss the loads.
ReaVecV Project::CheckedForces()
{
  const auto& [model, probe] = *checkedSolution;
  const ResidualCheck check(GiveNodes(), ScaleOfComponents());
  const ReaVecV ofProbe = check.InGlobalAxes(probe);
  ElementForces elements({&displacements, &ofProbe});
  AssembleStiffness(elements, kInGlobalAxes);
  ReaVecV missing = elements.Forces(0);
  if (!check.Holds(model, missing) || !check.HoldsProbe(probe, elements.Forces(1)))
    SolverFailed(-1);
  checkedSolution.reset();
  return elements.Forces(0);
}

double Project::GiveReaction(const Elem& elem, int dof, double t) const
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? elem(0) : t >= kEnd ? elem(1) : nullptr;
  return node && node->constraint ? node->constraint->reactions[dof - 1] : 0.0;
}
