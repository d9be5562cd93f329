#include "assembly/mid_side_offsets.h"

#include <cmath>

#include "model/elem.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/matriu.h"

namespace morlen {

namespace {

constexpr int kCorners = 3;
constexpr int kNodes = 6;

}  // namespace

void MidSideOffsets::Set(const Elem& elem, const Matriu& T, const double* x, const double* y)
{
  constexpr double kRounding = 1e-9;  // of the length of an edge
  double d[kNodes][3];
  CalcPlacesFromFirst(elem, kNodes, d);
  const double least = kRounding * std::hypot(x[1] - x[0], y[1] - y[0]);
  any = false;
  for (int m = 0; m < kCorners; ++m) {
    const double* const place = d[kCorners + m];
    z[m] = T(1, 3) * place[0] + T(2, 3) * place[1] + T(3, 3) * place[2];
    any = any || std::fabs(z[m]) > least;
  }
}

// Calls visit(from, to, factor) for the entries of A off its diagonal: the displacement `from` of a
// mid-side node gets `factor` times its rotation `to`.
template <class Visit>
void MidSideOffsets::ForEachEntry(Visit visit) const
{
  for (int m = 0; m < kCorners; ++m) {
    const int u = 6 * (kCorners + m);
    visit(u, u + 4, -z[m]);
    visit(u + 1, u + 3, z[m]);
  }
}

void MidSideOffsets::TransformStiffness(double (&K)[36][36]) const
{
  ForEachEntry([&](int from, int to, double factor) {
    for (auto& row : K)
      row[to] += factor * row[from];
  });
  ForEachEntry([&](int from, int to, double factor) {
    for (int j = 0; j < 6 * kNodes; ++j)
      K[to][j] += factor * K[from][j];
  });
}

void MidSideOffsets::TransformForces(double* f) const
{
  ForEachEntry([&](int from, int to, double factor) { f[to] += factor * f[from]; });
}

void MidSideOffsets::TransformDisplacements(double* u) const
{
  ForEachEntry([&](int from, int to, double factor) { u[from] += factor * u[to]; });
}

}  // namespace morlen
