// The blocks of solids in the post-process results: nodal displacements, and nodal stresses
// where they have been smoothed.

#include <algorithm>
#include <cmath>

#include "base/text_out.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

// Of the stresses divided by the largest, whose squares stay in the range of numbers.
double VonMises(const double* stresses)
{
  double largest = 0.0;
  for (int i = 0; i < 6; ++i)
    largest = std::max(largest, std::fabs(stresses[i]));
  if (largest == 0.0)
    return 0.0;
  double s[6];
  for (int i = 0; i < 6; ++i)
    s[i] = stresses[i] / largest;
  const double a = s[0] - s[1];
  const double b = s[1] - s[2];
  const double c = s[2] - s[0];
  return largest *
         std::sqrt(0.5 * (a * a + b * b + c * c + 6.0 * (s[3] * s[3] + s[4] * s[4] + s[5] * s[5])));
}

}  // namespace

void Project::WriteKivResultsTetra(int mesh, TextOut& res) const
{
  if (!smoothing.on)
    res << "gausspoints     0  " << results[mesh].points << "  1  0  0\n";
  WriteKivDisplacements(res);
  if (!smoothing.on)
    return;
  // The stresses are kept as x, y, z, xy, xz, yz.
  constexpr int kWritten[] = {0, 1, 2, 3, 5, 4};
  res << "Strengths      4 1.0 Estatic 3 1 1\nSx\nSy\nSz\nTxy\nTyz\nTxz\n";
  ForEachNodeRead([&](int number, const Node& node) {
    const double* stresses = nodalStresses.Data() + (node.number - 1) * 6;
    res << number << ' ';
    for (const int k : kWritten)
      res << ' ' << stresses[k];
    res << '\n';
  });
  res << "Von Misses     4 1.0 Estatic 1 1 1\nVon_Misses\n";
  ForEachNodeRead([&](int number, const Node& node) {
    res << number << ' ' << VonMises(nodalStresses.Data() + (node.number - 1) * 6) << '\n';
  });
}

}  // namespace morlen
