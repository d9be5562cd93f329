#include <cmath>

#include "base/constants.h"
#include "model/elem.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

// The matrix is assembled again, in global axes and without supports: its rows times the
// displacements are the forces that the nodes exert on the elements.
void Project::CalcReactions()
{
  solver->SetToZero();
  AssembleStiffness(0);
  for (const Node& node : Each<Node>(GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= freeDegrees; ++k) {
      const double force = solver->ReturnRowPerVector(Equation(node, k), displacements);
      if (!std::isfinite(force))
        SolverFailed(-1);
      node.constraint->AddToReaction(k, force);
    }
  }
  solver.reset();
  if (convertTo6Nodes)
    HandOverMidSideReactions();
}

double Project::GiveReaction(const Elem& elem, int dof, double t) const
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? elem(0) : t >= kEnd ? elem(1) : nullptr;
  return node && node->constraint ? node->constraint->reactions[dof - 1] : 0.0;
}
