#include "solvers/bsolver.h"

#include <cmath>

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
