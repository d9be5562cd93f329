#include "assembly/internal_forces.h"

#include <cstddef>
#include <utility>

#include "assembly/element_family.h"
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
  double* const sum = sums[index].Data();
  for (int i = 0; i < elem.Nnode(); ++i) {
    double* const own = sum + static_cast<std::ptrdiff_t>(elem(i)->number - 1) * components;
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
