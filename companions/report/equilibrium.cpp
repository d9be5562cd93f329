#include "report/equilibrium.h"

#include <algorithm>
#include <cmath>

namespace morlen {

namespace {

/// Adds wrenches at nodes up, and their sizes.
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
  double forces = 0.0;   ///< sum of the sizes of all components
  double moments = 0.0;  ///< likewise, of the moments that act on nodes

private:
  const model::Model& model;
  const Vec3& center;
};

double HalfDiagonal(const model::Model& model, Vec3& center)
{
  Vec3 low = model.nodes.front().x;
  Vec3 high = low;
  double squares = 0.0;
  for (int k = 0; k < 3; ++k) {
    for (const model::Node& node : model.nodes) {
      low[k] = std::min(low[k], node.x[k]);
      high[k] = std::max(high[k], node.x[k]);
    }
    center[k] = (low[k] + high[k]) / 2.0;
    squares += (high[k] - low[k]) * (high[k] - low[k]);
  }
  return std::sqrt(squares) / 2.0;
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
  const double arm = HalfDiagonal(model, found.center);
  Summer applied(model, found.center);
  Summer reactions(model, found.center);
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    applied.Add(i, loads[i]);
    reactions.Add(i, {results.nodes[i].force, results.nodes[i].moment});
  }
  found.loads = applied.sum;
  found.reactions = reactions.sum;
  const double force = std::max(applied.forces, reactions.forces);
  const double moment = force * arm + std::max(applied.moments, reactions.moments);
  found.forceResidual = Ratio(LargestOfSum(found.loads.force, found.reactions.force), force);
  found.residual = std::max(
      found.forceResidual, Ratio(LargestOfSum(found.loads.moment, found.reactions.moment), moment));
  return found;
}

std::string AdviceOf(const Equilibrium& equilibrium, const model::Model& model, bool iterated)
{
  if (equilibrium.IsBalanced())
    return {};
  const bool shells =
      std::any_of(model.elements.begin(), model.elements.end(),
                  [](const model::Element& e) { return e.kind == model::Kind::Shell; });
  std::string advice;
  if (shells && equilibrium.forceResidual <= Equilibrium::kLimit)
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
