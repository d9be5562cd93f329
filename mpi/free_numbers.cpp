#include "mpi/multigrid.h"

#include <algorithm>

#include "model/constraint.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen::mpi {

FreeEquations NumberFreeEquations(const Part& part, const std::vector<int>& first)
{
  const int n = part.problem.components.count;
  FreeEquations equations;
  equations.blockSize = n;
  equations.numbers.reserve(first.size() * n);
  for (const Node& node : Each<Node>(part.problem.GiveNodes())) {
    int next = first[node.number - 1];
    for (int k = 0; k < n; ++k) {
      const bool isFree = !node.constraint || node.constraint->flags[k] != Constraint::kPrescribed;
      equations.numbers.push_back(isFree ? next++ : -1);
    }
    const int count = next - first[node.number - 1];
    if (count != 0 && count != n)
      equations.blockSize = 1;
    if (part.owned[node.number - 1])
      equations.own += count;
  }
  return equations;
}

}  // namespace morlen::mpi
