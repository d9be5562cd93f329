#include "results/reactions.h"

#include <cmath>
#include <utility>

#include "assembly/internal_forces.h"
#include "assembly/solution.h"
#include "assembly/solve.h"
#include "base/constants.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

ReaVecV ForcesAtSupports(const Problem& problem, const ElementFamilies& families,
                         const Solution& solution)
{
  InternalForces forces({solution.Displacements()}, solution.displacements.Size(),
                        problem.components.count, InternalForces::Elements::AtSupports);
  AddForces(problem, families, forces);
  return std::move(forces.Forces(0));
}

// Adds half of the reactions of a node to each end of its edge.
void HandOver(const Problem& problem, const Node& middle, const Node& a, const Node& b,
              ReaVecV& reactions)
{
  for (int k = 1; k <= problem.components.count; ++k) {
    if (!middle.constraint->Carries(k))
      continue;
    double& reaction = reactions(problem.Equation(middle, k));
    for (const Node* end : {&a, &b})
      reactions(problem.Equation(*end, k)) += reaction / 2.0;
    reaction = 0.0;
  }
}

void HandOverMidSideReactions(const Problem& problem, ReaVecV& reactions)
{
  const Mesh& numbers = *problem.meshes.front();
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 6)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        const Node& middle = *elem(i + 3);
        if (middle.constraint && numbers.GiveOldNumber(&middle) > problem.initialNumNodes)
          HandOver(problem, middle, *elem(i), *elem((i + 1) % 3), reactions);
      }
    }
  }
}

}  // namespace

void CalcReactions(const Problem& problem, const ElementFamilies& families, Solution& solution)
{
  const ReaVecV forces = solution.elementForces.Size() > 0
                             ? std::move(solution.elementForces)
                             : ForcesAtSupports(problem, families, solution);
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= problem.components.count; ++k) {
      const int equation = problem.Equation(node, k);
      if (!std::isfinite(forces(equation)))
        SolverFailed(problem, -1);
      if (node.constraint->Carries(k))
        solution.reactions(equation) += forces(equation);
    }
  }
  if (problem.convertTo6Nodes)
    HandOverMidSideReactions(problem, solution.reactions);
}

double GiveReaction(const Problem& problem, const Solution& solution, const Elem& beam, int dof,
                    double t)
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? beam(0) : t >= kEnd ? beam(1) : nullptr;
  return node && node->constraint ? solution.reactions(problem.Equation(*node, dof)) : 0.0;
}

}  // namespace morlen
