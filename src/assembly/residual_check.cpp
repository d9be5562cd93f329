#include "assembly/residual_check.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "assembly/support_axes.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"

namespace {

/// The part of the largest load that may be missing. Chains of 5000 beams loaded at their end
/// come to 3e-3, structures that can move to 1.
constexpr double kMissingPart = 1e-2;

/// Calls visit(equation, component from 1, stiffness of a spring there) for every component
/// that has no prescribed displacement.
template <class Visit>
void ForEachFree(const VoidPlex& nodes, int components, Visit visit)
{
  for (const Node& node : Each<Node>(nodes)) {
    const Constraint* support = node.constraint.get();
    for (int k = 1; k <= components; ++k) {
      const int flag = support ? support->flags[k - 1] : Constraint::kFree;
      if (flag != Constraint::kPrescribed)
        visit((node.number - 1) * components + k, k,
              flag == Constraint::kSpring ? support->values[k - 1] : 0.0);
    }
  }
}

}  // namespace

ResidualCheck::ResidualCheck(const VoidPlex& nodes_, const ComponentScale& scale_)
    : nodes(nodes_), scale(scale_)
{
}

// Between one half and one, so that the few entries that a small motion meets do not cancel.
LoadCase ResidualCheck::Probe(int equations) const
{
  LoadCase probe;
  std::minstd_rand random;
  probe.loads.resize(equations, 0.0);
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double size = 0.5 + 0.5 * static_cast<double>(random()) / std::minstd_rand::max();
    const double sign = random() % 2 == 0 ? 1.0 : -1.0;
    probe.loads(equation) = sign * size * (component <= scale.translations ? 1.0 : scale.length);
  });
  FindScales(probe.loads, probe);
  probe.displacements = probe.loads;
  return probe;
}

// Without moments, or with those alone that rounding has left, the forces say what is large.
void ResidualCheck::FindScales(const ReaVecV& rightHandSide, LoadCase& loadCase) const
{
  double force = 0.0;
  double moment = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    double& largest = component <= scale.translations ? force : moment;
    largest = std::max(largest, std::fabs(rightHandSide(equation)));
  });
  loadCase.force = std::max(force, moment / scale.length);
  loadCase.moment = std::max(moment, force * scale.length);
}

ReaVecV ResidualCheck::InGlobalAxes(const LoadCase& loadCase) const
{
  ReaVecV displacements = loadCase.displacements;
  ConvertLocalResultsToGlobal(nodes, displacements, scale.components);
  return displacements;
}

bool ResidualCheck::Holds(const LoadCase& loadCase, ReaVecV& forces) const
{
  ConvertGlobalLoadToLocal(nodes, forces, scale.components);
  bool holds = true;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double spring) {
    const double missing =
        forces(equation) + spring * loadCase.displacements(equation) - loadCase.loads(equation);
    const double largest = component <= scale.translations ? loadCase.force : loadCase.moment;
    // Written so that what is not a number does not hold.
    holds = holds && std::fabs(missing) <= kMissingPart * largest;
  });
  return holds;
}
