#include "assembly/probe_load.h"

#include <random>
#include <vector>

#include "assembly/free_equations.h"

namespace morlen {

namespace {

/// Limits of the sum of the loads of one component, in units of the largest load.
constexpr double kLeastSum = 1.0;
constexpr double kLargestSum = 12.0;

}  // namespace

ReaVecV ProbeLoad(const VoidPlex& nodes, const ComponentScale& scale, int equations)
{
  ReaVecV loads;
  loads.resize(equations, 0.0);
  std::minstd_rand random;
  std::vector<double> sums(static_cast<std::size_t>(scale.components.count));
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double size = 0.5 + 0.5 * static_cast<double>(random()) / std::minstd_rand::max();
    double& sum = sums[component - 1];
    const bool rises = sum - size < kLeastSum ||
                       (sum + size < kLargestSum && random() < std::minstd_rand::max() / 2);
    const double load = rises ? size : -size;
    sum += load;
    loads(equation) = load * scale.Unit(component);
  });
  return loads;
}

}  // namespace morlen
