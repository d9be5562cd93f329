#include "solvers/bsolver.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numeric/matriu.h"

namespace morlen {

namespace {

/// m = the transpose of a block of the same size, given row by row.
void CopyTransposed(const double* block, Matriu& m)
{
  for (int j = 1; j <= m.Cols(); ++j) {
    for (int i = 1; i <= m.Rows(); ++i)
      m(i, j) = *block++;
  }
}

}  // namespace

void BSolver::AddElement(const ElementBlocks& element)
{
  const int n = element.ndof;
  Matriu m(n, n);
  const double* block = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i) {
    for (std::size_t j = i; j < element.nodes.size(); ++j, block += n * n) {
      const auto [row, column] = std::minmax(element.nodes[i], element.nodes[j]);
      if (row == element.nodes[i])
        std::copy_n(block, n * n, m.Data());
      else
        CopyTransposed(block, m);
      AddSubMatriu((row - 1) * n + 1, (column - 1) * n + 1, m);
    }
  }
}

int BSolver::ApplyConstraint(int eq, double value, ReaVecV& b)
{
  ReaVecV* const side = &b;
  return ApplyConstraint(eq, {&value, 1}, {&side, 1});
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

}  // namespace morlen
