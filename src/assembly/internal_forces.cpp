#include "assembly/internal_forces.h"

#include <utility>

#include "assembly/element_family.h"
#include "base/interruption.h"
#include "base/node_components.h"
#include "model/mesh.h"
#include "model/node.h"
#include "problem/problem.h"

namespace morlen {

InternalForces::InternalForces(std::vector<SplitView> displacements_, int equations,
                               int components_, Elements elements)
    : displacements(std::move(displacements_)), components(components_), which(elements)
{
  for (int index = 0; index < Count(); ++index) {
    sums.emplace_back();
    sums.back().resize(equations, 0.0);
  }
}

bool InternalForces::Wants(const Elem& elem) const
{
  if (which == Elements::All)
    return true;
  for (int i = 0; i < elem.Nnode(); ++i) {
    if (elem(i)->constraint)
      return true;
  }
  return false;
}

void InternalForces::Add(const Elem& elem, int index, const double* forces)
{
  CheckInterruption();
  double* const sum = sums[index].Data();
  const NodeComponents numbering = WithRotations(components);
  for (int i = 0; i < elem.Nnode(); ++i) {
    double* const own = sum + numbering.Equation(elem(i)->number, 1) - 1;
    for (int k = 0; k < components; ++k)
      own[k] += *forces++;
  }
}

void AddForces(const Problem& problem, const ElementFamilies& families, InternalForces& forces)
{
  for (const auto& mesh : problem.meshes)
    families.Of(*mesh).addForces(problem, *mesh, forces);
}

}  // namespace morlen
