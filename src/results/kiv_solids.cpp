// The blocks of solids in the post-process results: nodal displacements, then nodal stresses when
// the results are smoothed.

#include "results/kiv_solids.h"

#include "assembly/solution.h"
#include "base/text_out.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/kiv_results.h"
#include "results/mesh_output.h"
#include "results/principal_values.h"
#include "results/smooth_solid.h"

namespace morlen {

void WriteSolidBlocks(const MeshOutput& output, TextOut& res)
{
  const Problem& problem = output.problem;
  const ReaVecV& nodalStresses = output.solution.nodalStresses;
  if (!problem.smoothing.on)
    res << "gausspoints     0  " << output.results.points << "  1  0  0\n";
  WriteKivDisplacements(problem.GiveNodes(), problem.initialNumNodes, problem.components,
                        output.solution.displacements, res);
  if (!problem.smoothing.on)
    return;
  // The solution has them as x, y, z, xy, xz, yz; the file has yz before xz.
  constexpr int kWritten[] = {0, 1, 2, 3, 5, 4};
  res << "Strengths      4 1.0 Estatic 3 1 1\nSx\nSy\nSz\nTxy\nTyz\nTxz\n";
  problem.ForEachNodeRead([&](int number, const Node& node) {
    const double* stresses = nodalStresses.Data() + PlaceOfStresses(node.number);
    res << number << ' ';
    for (const int k : kWritten)
      res << ' ' << stresses[k];
    res << '\n';
  });
  res << "Von Misses     4 1.0 Estatic 1 1 1\nVon_Misses\n";
  problem.ForEachNodeRead([&](int number, const Node& node) {
    res << number << ' ' << VonMises(nodalStresses.Data() + PlaceOfStresses(node.number)) << '\n';
  });
}

}  // namespace morlen
