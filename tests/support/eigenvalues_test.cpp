#include "support/eigenvalues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "support/solved.h"

namespace morlen {

// The matrix of a chain of equal springs between two walls: 2 − 2 cos(kπ/(n + 1)).
TEST(Eigenvalues, OfAChainAreKnown)
{
  constexpr int n = 12;
  DenseRows chain = DenseZero(n);
  std::vector<double> expected;
  for (int i = 0; i < n; ++i) {
    chain[i][i] = 2.0;
    if (i > 0)
      chain[i][i - 1] = chain[i - 1][i] = -1.0;
    expected.push_back(2.0 - 2.0 * std::cos((i + 1) * std::numbers::pi / (n + 1)));
  }
  ExpectValues(EigenvaluesOf(chain), expected, 1e-14);  // rounding
}

}  // namespace morlen
