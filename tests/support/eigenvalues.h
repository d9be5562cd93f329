#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/sparse.h"

namespace morlen {

/// Makes the entries (p, q) and (q, p) of a symmetric matrix 0 by a rotation.
inline void Rotate(DenseRows& a, int p, int q)
{
  const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
  const double t = std::copysign(1.0, theta) / (std::fabs(theta) + std::hypot(theta, 1.0));
  const double c = 1.0 / std::hypot(t, 1.0);
  const double s = t * c;
  const int n = static_cast<int>(a.size());
  for (int k = 0; k < n; ++k) {
    const double x = a[k][p];
    const double y = a[k][q];
    a[k][p] = c * x - s * y;
    a[k][q] = s * x + c * y;
  }
  for (int k = 0; k < n; ++k) {
    const double x = a[p][k];
    const double y = a[q][k];
    a[p][k] = c * x - s * y;
    a[q][k] = s * x + c * y;
  }
}

/// The eigenvalues of a symmetric matrix in ascending order, by cyclic Jacobi rotations (G. H.
/// Golub, C. F. Van Loan, Matrix Computations, 4th ed., Johns Hopkins 2013, section 8.5). Their
/// errors are a few roundings of the largest.
inline std::vector<double> EigenvaluesOf(DenseRows a)
{
  const int n = static_cast<int>(a.size());
  for (bool rotated = true; rotated;) {
    rotated = false;
    double largest = 0.0;
    for (int i = 0; i < n; ++i)
      largest = std::max(largest, std::fabs(a[i][i]));
    for (int p = 0; p < n; ++p) {
      for (int q = p + 1; q < n; ++q) {
        if (std::fabs(a[p][q]) <= 1e-17 * largest)
          continue;
        Rotate(a, p, q);
        rotated = true;
      }
    }
  }
  std::vector<double> values(a.size());
  for (int i = 0; i < n; ++i)
    values[i] = a[i][i];
  std::sort(values.begin(), values.end());
  return values;
}

}  // namespace morlen
