// The strain energy that a motion gives to the elements, one by one.

#include "assembly/free_motion.h"

#include <algorithm>
#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/element_family.h"
#include "assembly/free_equations.h"
#include "assembly/solve.h"
#include "model/mesh.h"
#include "numeric/reavecv.h"
#include "problem/problem.h"
#include "solvers/element_blocks.h"

namespace morlen {

namespace {

/// Takes elements and keeps the largest strain energy of one of them for given displacements,
/// relative to that which its largest entry would have for the largest displacement.
class StrainMeter : public ElementSink
{
public:
  StrainMeter(const ComponentScale& unit, const ReaVecV& motion) : scale(unit), u(motion)
  {
    for (int i = 1; i <= u.Size(); ++i)
      largest = std::max(largest, scale.Unit(Component(i)) * std::fabs(u(i)));
  }

  void AddElement(const ElementBlocks& element) override
  {
    const double* block = element.values;
    const int count = static_cast<int>(element.nodes.size());
    Energy sum;
    for (int i = 0; i < count; ++i) {
      for (int j = i; j < count; ++j, block += element.ndof * element.ndof)
        AddBlock(block, element.nodes[i], element.nodes[j], sum);
    }
    if (sum.possible > 0.0)
      strain = std::max(strain, std::fabs(sum.found) / (sum.possible * largest * largest));
  }

  double Strain() const { return strain; }
  double Largest() const { return largest; }

private:
  int Component(int equation) const { return (equation - 1) % scale.components.count + 1; }
  double At(int node, int k) const { return u(scale.components.Equation(node, k)); }

  /// Of an element: the energy, and the largest entry of its stiffness.
  struct Energy
  {
    double found = 0.0;
    double possible = 0.0;
  };

  void AddBlock(const double* block, int first, int second, Energy& sum) const
  {
    const double times = first == second ? 1.0 : 2.0;
    for (int a = 1; a <= scale.components.count; ++a) {
      for (int b = 1; b <= scale.components.count; ++b) {
        const double value = *block++;
        sum.found += times * value * At(first, a) * At(second, b);
        sum.possible = std::max(sum.possible, std::fabs(value) / (scale.Unit(a) * scale.Unit(b)));
      }
    }
  }

  ComponentScale scale;
  const ReaVecV& u;
  double largest = 0.0;
  double strain = 0.0;
};

}  // namespace

bool IsFreeMotion(const Problem& problem, const ElementFamilies& families, const ReaVecV& motion)
{
  // The square of a strain of 1e-6, above the rounding errors of the sums.
  constexpr double kLargestStrain = 1e-12;
  if (!AllFinite(motion))
    return false;
  StrainMeter meter(ScaleOfComponents(problem.meshes, problem.components), motion);
  if (!(meter.Largest() > 0.0))
    return false;
  for (const auto& mesh : problem.meshes)
    families.Of(*mesh).addStiffness(problem, *mesh, kInGlobalAxes, meter);
  return meter.Strain() <= kLargestStrain;
}

}  // namespace morlen
