#include "solvers/bsolver.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numeric/matriu.h"

void BSolver::AddElement(const ElementBlocks& element)
{
  const int n = element.ndof;
  Matriu m(n, n);
  const double* block = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i) {
    for (std::size_t j = i; j < element.nodes.size(); ++j, block += n * n) {
      const auto [row, column] = std::minmax(element.nodes[i], element.nodes[j]);
      const bool turned = row != element.nodes[i];
      for (int a = 0; a < n; ++a) {
        for (int b = 0; b < n; ++b)
          m(a + 1, b + 1) = turned ? block[b * n + a] : block[a * n + b];
      }
      AddSubMatriu((row - 1) * n + 1, (column - 1) * n + 1, m);
    }
  }
}

bool AreEqual(BSolver& a, BSolver& b, double tol)
{
  const int n = a.GiveSize();
  if (n != b.GiveSize())
    return false;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      if (!(std::fabs(a(i, j) - b(i, j)) < tol))
        return false;
  return true;
}
