// With the terms p(x, y) of the polynomial at each place as rows of P, the value at the origin is
// e₁ᵀ (PᵀP)⁻¹ Pᵀ v, because p(0, 0) = e₁. The places are first mapped to axes in which they have
// equal spread and no correlation: long thin triangles then count like others, and PᵀP is well
// conditioned.

#include "export/patch_fit.h"

#include <cmath>

namespace morlen {

namespace {

using Place = std::array<double, 2>;

constexpr int kMostTerms = 6;
// Of a pivot, relative to the diagonal: below it a column depends on the others.
constexpr double kLeastPivot = 1e-8;

using Terms = std::array<double, kMostTerms>;

// u = x / a, v = (y - b x) / c
struct Map
{
  double a, b, c;
  Terms At(const Place& place) const
  {
    const double u = place[0] / a;
    const double v = (place[1] - b * place[0]) / c;
    return {1.0, u, v, u * u, u * v, v * v};
  }
};

// False for places on a line.
bool FindMap(std::span<const Place> places, Map& map)
{
  const double count = static_cast<double>(places.size());
  Place mean{};
  for (const Place& place : places) {
    mean[0] += place[0] / count;
    mean[1] += place[1] / count;
  }
  double xx = 0.0;
  double xy = 0.0;
  double yy = 0.0;
  for (const Place& place : places) {
    const double x = place[0] - mean[0];
    const double y = place[1] - mean[1];
    xx += x * x;
    xy += x * y;
    yy += y * y;
  }
  if (!(xx > 0.0))
    return false;
  const double rest = yy - xy * xy / xx;
  if (!(rest > 1e-12 * yy) || !(rest > 0.0))
    return false;
  map = {std::sqrt(xx / count), xy / xx, std::sqrt(rest / count)};
  return true;
}

// Solves N a = e₁ for a symmetric positive definite N by its factors L Lᵀ, in place.
bool SolveForFirst(std::array<Terms, kMostTerms>& N, int terms, Terms& a)
{
  for (int j = 0; j < terms; ++j) {
    const double diagonal = N[j][j];
    for (int k = 0; k < j; ++k)
      N[j][j] -= N[j][k] * N[j][k];
    if (!(N[j][j] > kLeastPivot * diagonal))
      return false;
    N[j][j] = std::sqrt(N[j][j]);
    for (int i = j + 1; i < terms; ++i) {
      for (int k = 0; k < j; ++k)
        N[i][j] -= N[i][k] * N[j][k];
      N[i][j] /= N[j][j];
    }
  }
  for (int i = 0; i < terms; ++i) {
    double sum = i == 0 ? 1.0 : 0.0;
    for (int k = 0; k < i; ++k)
      sum -= N[i][k] * a[k];
    a[i] = sum / N[i][i];
  }
  for (int i = terms - 1; i >= 0; --i) {
    for (int k = i + 1; k < terms; ++k)
      a[i] -= N[k][i] * a[k];
    a[i] /= N[i][i];
  }
  return true;
}

}  // namespace

bool FindPatchFactors(std::span<const Place> places, int degree, double mostNoise,
                      std::vector<double>& factors)
{
  const int terms = degree == 1 ? 3 : kMostTerms;
  Map map{};
  if (places.size() < static_cast<std::size_t>(terms) || !FindMap(places, map))
    return false;
  std::array<Terms, kMostTerms> N{};
  for (const Place& place : places) {
    const Terms p = map.At(place);
    for (int i = 0; i < terms; ++i) {
      for (int j = 0; j <= i; ++j)
        N[i][j] += p[i] * p[j];
    }
  }
  Terms a{};
  if (!SolveForFirst(N, terms, a))
    return false;
  factors.clear();
  double noise = 0.0;
  for (const Place& place : places) {
    const Terms p = map.At(place);
    double factor = 0.0;
    for (int i = 0; i < terms; ++i)
      factor += a[i] * p[i];
    factors.push_back(factor);
    noise += factor * factor;
  }
  return noise <= mostNoise;
}

}  // namespace morlen
