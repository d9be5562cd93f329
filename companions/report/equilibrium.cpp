#include "report/equilibrium.h"

#include <algorithm>
#include <cmath>

namespace morlen {

namespace {

constexpr double kLeastPart = 1e-9;  // of a scale; below it reactions are rounding

/// Sums of wrenches at nodes, and of their sizes.
class Summer
{
public:
  Summer(const model::Model& itsModel, const Vec3& itsCenter) : model(itsModel), center(itsCenter)
  {
  }

  void Add(std::size_t node, const Wrench& wrench)
  {
    const Vec3& x = model.nodes[node].x;
    const Vec3& f = wrench.force;
    for (int k = 0; k < 3; ++k) {
      const int i = (k + 1) % 3;
      const int j = (k + 2) % 3;
      sum.force[k] += f[k];
      sum.moment[k] += wrench.moment[k] + (x[i] - center[i]) * f[j] - (x[j] - center[j]) * f[i];
      forces += std::fabs(f[k]);
      moments += std::fabs(wrench.moment[k]);
    }
  }

  Wrench sum;
  double forces = 0.0;   ///< sum of |component| of all forces
  double moments = 0.0;  ///< the same for the moments that act on nodes

private:
  const model::Model& model;
  const Vec3& center;
};

Box BoxOf(const model::Model& model)
{
  Box box;
  for (const model::Node& node : model.nodes)
    box.Add(node.x);
  return box;
}

double LargestOfSum(const Vec3& a, const Vec3& b)
{
  double largest = 0.0;
  for (int k = 0; k < 3; ++k)
    largest = std::max(largest, std::fabs(a[k] + b[k]));
  return largest;
}

double Ratio(double value, double scale)
{
  return scale > 0.0 ? value / scale : 0.0;
}

}  // namespace

Equilibrium EquilibriumOf(const model::Model& model, const std::vector<Wrench>& loads,
                          const results::Results& results)
{
  Equilibrium found;
  const Box box = BoxOf(model);
  const double arm = box.Diagonal() / 2.0;
  found.center = box.Middle();
  Summer applied(model, found.center);
  Summer reactions(model, found.center);
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    applied.Add(i, loads[i]);
    reactions.Add(i, {results.nodes[i].force, results.nodes[i].moment});
  }
  found.loads = applied.sum;
  found.reactions = reactions.sum;
  const double moments = std::max(applied.moments, reactions.moments);
  const double force = found.scale =
      std::max({applied.forces, reactions.forces, kLeastPart * Ratio(moments, arm)});
  const double moment = force * arm + moments;
  found.forceResidual = Ratio(LargestOfSum(found.loads.force, found.reactions.force), force);
  found.residual = std::max(
      found.forceResidual, Ratio(LargestOfSum(found.loads.moment, found.reactions.moment), moment));
  return found;
}

void RelateToLargest(std::span<Equilibrium> cases)
{
  double largest = 0.0;
  for (const Equilibrium& one : cases)
    largest = std::max(largest, one.scale);
  for (Equilibrium& one : cases) {
    const double least = kLeastPart * largest;
    if (one.scale >= least)
      continue;
    one.residual *= one.scale / least;
    one.forceResidual *= one.scale / least;
  }
}

std::string AdviceOf(const Equilibrium& equilibrium, const model::Model& model,
                     ShellFormulation formulation, bool iterated)
{
  if (equilibrium.IsBalanced())
    return {};
  const bool grounded =
      formulation == ShellFormulation::Standard &&
      std::any_of(model.elements.begin(), model.elements.end(),
                  [](const model::Element& e) { return e.kind == model::Kind::Shell; });
  std::string advice;
  if (grounded && equilibrium.forceResidual <= Equilibrium::kLimit)
    advice =
        "Only the moments differ: the stiffness of shells against turning about their normal takes "
        "moments about it, which no reaction balances.";
  if (iterated)
    advice += std::string(advice.empty() ? "" : " ") +
              "The iteration of the equations may have ended too early, as it does with thin "
              "curved shells: solve with `Solver SkyLine`.";
  if (!advice.empty())
    return advice;
  return "The structure may be close to a mechanism, or its stiffnesses too far apart.";
}

}  // namespace morlen
