// Reactions of the supports: the forces that the elements exert on the supported nodes, less the
// loads that act there.

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

// K u, complete at supported nodes only.
ReaVecV ForcesAtSupports(const Problem& problem, const ElementFamilies& families,
                         const SplitView& displacements)
{
  InternalForces forces({displacements}, problem.Equations(), problem.components.count,
                        InternalForces::Elements::AtSupports);
  AddForces(problem, families, forces);
  return std::move(forces.Forces(0));
}

// Moves the reactions of the middle of an edge to its ends, one half to each.
void MoveToEnds(const NodeComponents& components, const Node& middle, const Node& a, const Node& b,
                ReaVecV& reactions)
{
  for (int k = 1; k <= components.count; ++k) {
    if (!middle.constraint->Carries(k))
      continue;
    double& reaction = reactions(components.Equation(middle.number, k));
    for (const Node* end : {&a, &b})
      reactions(components.Equation(end->number, k)) += reaction / 2.0;
    reaction = 0.0;
  }
}

// Moves the reactions of the mid-side nodes that the file does not have to the corners.
void MoveAddedMidSideReactions(const Meshes& meshes, int initialNumNodes,
                               const NodeComponents& components, ReaVecV& reactions)
{
  const Mesh& numbers = *meshes.front();
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 6)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        const Node& middle = *elem(i + 3);
        if (middle.constraint && numbers.GiveOldNumber(&middle) > initialNumNodes)
          MoveToEnds(components, middle, *elem(i), *elem((i + 1) % 3), reactions);
      }
    }
  }
}

}  // namespace

void CalcReactions(const Problem& problem, const ElementFamilies& families, Solution& solution)
{
  const ReaVecV forces = solution.elementForces.Size() > 0
                             ? std::move(solution.elementForces)
                             : ForcesAtSupports(problem, families, solution.Displacements());
  solution.reactions = solution.supportLoads;
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= problem.components.count; ++k) {
      const int equation = problem.Equation(node, k);
      if (!std::isfinite(forces(equation)))
        SolverFailed(problem.meshes, problem.components, -1);
      if (node.constraint->Carries(k))
        solution.reactions(equation) += forces(equation);
    }
  }
  if (problem.convertTo6Nodes)
    MoveAddedMidSideReactions(problem.meshes, problem.initialNumNodes, problem.components,
                              solution.reactions);
}

double GiveReaction(const NodeComponents& components, const ReaVecV& reactions, const Elem& beam,
                    int dof, double t)
{
  constexpr double kEnd = 0.999999999999999;
  const Node* node = t <= EPSILON ? beam(0) : t >= kEnd ? beam(1) : nullptr;
  return node && node->constraint ? reactions(components.Equation(node->number, dof)) : 0.0;
}

}  // namespace morlen
