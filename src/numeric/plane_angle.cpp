#include "numeric/plane_angle.h"

#include <cmath>
#include <numeric>

namespace morlen {

void CrossProduct(const double* a, const double* b, double* product)
{
  for (int k = 0; k < 3; ++k) {
    const int k1 = (k + 1) % 3;
    const int k2 = (k + 2) % 3;
    product[k] = a[k1] * b[k2] - a[k2] * b[k1];
  }
}

double AngleOfPlanes(const double* a, const double* b)
{
  double product[3];
  CrossProduct(a, b, product);
  const double sine = std::sqrt(std::inner_product(product, product + 3, product, 0.0));
  return std::atan2(sine, std::fabs(std::inner_product(a, a + 3, b, 0.0)));
}

}  // namespace morlen
