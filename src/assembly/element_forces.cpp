#include "assembly/element_forces.h"

#include <utility>

namespace {

/// y += block·x and, where they are different nodes, mirrorY += blockᵀ·mirrorX; the block of n²
/// numbers row by row.
void AddProducts(int n, const double* block, const double* x, double* y, const double* mirrorX,
                 double* mirrorY)
{
  for (int a = 0; a < n; ++a, block += n) {
    double sum = 0.0;
    for (int b = 0; b < n; ++b)
      sum += block[b] * x[b];
    y[a] += sum;
    if (!mirrorY)
      continue;
    for (int b = 0; b < n; ++b)
      mirrorY[b] += block[b] * mirrorX[a];
  }
}

}  // namespace

ElementForces::ElementForces(std::vector<const ReaVecV*> displacements_)
    : displacements(std::move(displacements_))
{
  for (const ReaVecV* u : displacements) {
    forces.emplace_back(u->Size());
    forces.back() = 0.0;
  }
}

void ElementForces::AddElement(const ElementBlocks& element)
{
  const int n = element.ndof;
  const double* block = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i) {
    for (std::size_t j = i; j < element.nodes.size(); ++j, block += n * n) {
      const int p = (element.nodes[i] - 1) * n;
      const int q = (element.nodes[j] - 1) * n;
      for (std::size_t k = 0; k < forces.size(); ++k) {
        const double* const u = displacements[k]->Data();
        double* const f = forces[k].Data();
        AddProducts(n, block, u + q, f + p, u + p, p == q ? nullptr : f + q);
      }
    }
  }
}
