#include "assembly/residual_check.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "assembly/support_axes.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"

namespace {

/// The part of the loads that may be missing. Chains of 5000 beams and shells of a thickness
/// of 1e-4 of their length come to 1e-3, structures that can move to 0.02 and more.
constexpr double kMissingPart = 1e-2;

/// Limits of the sum of a probe's loads along one component, in largest loads.
constexpr double kLeastSum = 1.0;
constexpr double kLargestSum = 12.0;

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

// Entries between one half and one, so that the few that a small motion meets do not cancel.
// Their signs are random as long as the sum of each component stays within limits: a motion
// meets some of it, yet a slender structure need not carry much more than a single load.
LoadCase ResidualCheck::Probe(int equations) const
{
  LoadCase probe;
  probe.force = 1.0;
  probe.moment = scale.length;
  probe.loads.resize(equations, 0.0);
  std::minstd_rand random;
  std::vector<double> sums(static_cast<std::size_t>(scale.components));
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double size = 0.5 + 0.5 * static_cast<double>(random()) / std::minstd_rand::max();
    double& sum = sums[component - 1];
    const bool rises = sum - size < kLeastSum ||
                       (sum + size < kLargestSum && random() < std::minstd_rand::max() / 2);
    const double load = rises ? size : -size;
    sum += load;
    probe.loads(equation) = load * (component <= scale.translations ? 1.0 : scale.length);
  });
  probe.displacements = probe.loads;
  return probe;
}

// Without moments, or with those alone that rounding has left, the forces say what is large.
void ResidualCheck::FindScales(const ReaVecV& rightHandSide, LoadCase& loadCase) const
{
  double force = 0.0;
  double moment = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    (component <= scale.translations ? force : moment) += std::fabs(rightHandSide(equation));
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
  FindMissing(loadCase, forces);
  bool holds = true;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double largest = component <= scale.translations ? loadCase.force : loadCase.moment;
    // Written so that what is not a number does not hold.
    holds = holds && std::fabs(forces(equation)) <= kMissingPart * largest;
  });
  return holds;
}

bool ResidualCheck::HoldsProbe(const LoadCase& probe, ReaVecV& forces) const
{
  const bool holds = Holds(probe, forces);
  double missed = 0.0;
  double work = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int, double) {
    missed += forces(equation) * probe.displacements(equation);
    work += probe.loads(equation) * probe.displacements(equation);
  });
  return holds && std::fabs(missed) <= kMissingPart * std::fabs(work);
}

// From the forces K·u in global axes to K·u - f on the free components, in those of the supports.
void ResidualCheck::FindMissing(const LoadCase& loadCase, ReaVecV& forces) const
{
  ConvertGlobalLoadToLocal(nodes, forces, scale.components);
  ForEachFree(nodes, scale.components, [&](int equation, int, double spring) {
    forces(equation) =
        forces(equation) + spring * loadCase.displacements(equation) - loadCase.loads(equation);
  });
}
