#include <cmath>
#include <utility>

#include "assembly/internal_forces.h"
#include "base/constants.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

namespace morlen {

// A reaction is the force that the node exerts on the elements, less its load. The matrix is not
// needed any more.
void Project::CalcReactions()
{
  solver.reset();
  const ReaVecV forces = elementForces.Size() > 0 ? std::move(elementForces) : ForcesAtSupports();
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

ReaVecV Project::ForcesAtSupports() const
{
  InternalForces forces({{displacements, displacementRests}}, displacements.Size(), freeDegrees,
                        InternalForces::Elements::AtSupports);
  AddForces(forces);
  return std::move(forces.Forces(0));
}

double Project::GiveReaction(const Elem& elem, int dof, double t) const
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? elem(0) : t >= kEnd ? elem(1) : nullptr;
  return node && node->constraint ? node->constraint->reactions[dof - 1] : 0.0;
}

}  // namespace morlen
