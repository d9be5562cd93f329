#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/residual_check.h"
#include "base/constants.h"
#include "model/elem.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

// The matrix is assembled again, in global axes and without supports: its product with the
// displacements is the forces that the nodes exert on the elements. Where only the rows of
// supported nodes are asked for, only these are complete.
void Project::CalcReactions()
{
  solver->SetToZero();
  AssembleStiffness(checkedSolution ? kInGlobalAxes : kOnlyAtSupports);
  ReaVecV forces(displacements.Size());
  solver->Multiply(displacements, forces);
  CheckResiduals(forces);
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
  solver.reset();
  if (convertTo6Nodes)
    HandOverMidSideReactions();
}

void Project::CheckResiduals(const ReaVecV& forcesOfModel)
{
  if (!checkedSolution)
    return;
  const auto& [model, probe] = *checkedSolution;
  const ResidualCheck check(GiveNodes(), ScaleOfComponents());
  ReaVecV forces = forcesOfModel;
  bool holds = check.Holds(model, forces);
  if (holds) {
    solver->Multiply(check.InGlobalAxes(probe), forces);
    holds = check.HoldsProbe(probe, forces);
  }
  if (!holds)
    SolverFailed(-1);
  checkedSolution.reset();
}

double Project::GiveReaction(const Elem& elem, int dof, double t) const
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? elem(0) : t >= kEnd ? elem(1) : nullptr;
  return node && node->constraint ? node->constraint->reactions[dof - 1] : 0.0;
}
