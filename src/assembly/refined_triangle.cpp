#include "assembly/refined_triangle.h"

#include <algorithm>

namespace morlen {

CornerTriangle::CornerTriangle(const double* x, const double* y)
{
  area = ((x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0])) / 2.0;
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    gradient[i][0] = (y[j] - y[k]) / (2.0 * area);
    gradient[i][1] = (x[k] - x[j]) / (2.0 * area);
    edge[i][0] = x[j] - x[i];
    edge[i][1] = y[j] - y[i];
    squares[i] = edge[i][0] * edge[i][0] + edge[i][1] * edge[i][1];
  }
}

double DrillingRemainder(double thickness, double area)
{
  return std::min(1.0, thickness * thickness / (10.0 * area));
}

}  // namespace morlen
