#include "assembly/element_assembly.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "assembly/support_axes.h"
#include "base/interruption.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "solvers/bsolver.h"

namespace morlen {

namespace {

void TransposeInPlace(Matriu& K)
{
  for (int i = 1; i <= K.Rows(); ++i) {
    for (int j = 1; j < i; ++j)
      std::swap(K(i, j), K(j, i));
  }
}

}  // namespace

BlockAssembler::BlockAssembler(ElementSink& sink_, int components, int applyLocalAxes)
    : sink(sink_), n(components), toSupportAxes(applyLocalAxes > 0)
{
}

void BlockAssembler::Append(const Matriu& K)
{
  std::copy_n(K.Data(), K.Size(), NextBlock());
}

void BlockAssembler::MakeRoom(int nodesOfElement)
{
  // The matrix blocks that a group changes should fit into the first cache.
  constexpr std::size_t kNodesOfGroup = 64;
  nnode = nodesOfElement;
  group.reserve(std::max(kNodesOfGroup / nnode, std::size_t{1}));
  blocks.resize(static_cast<std::size_t>(nnode) * (nnode + 1) / 2 * n * n);
}

bool BlockAssembler::IsSupported(const Elem& elem) const
{
  for (int i = 0; i < nnode; ++i) {
    if (elem(i)->constraint)
      return true;
  }
  return false;
}

void BlockAssembler::Prefetch()
{
  CheckInterruption();  // once for each group of elements
  numbers.clear();
  for (const Elem* elem : group) {
    for (int i = 0; i < nnode; ++i)
      numbers.push_back((*elem)(i)->number);
  }
  sink.Prefetch(numbers, nnode);
}

void BlockAssembler::Add(std::size_t k)
{
  if (toSupportAxes && IsSupported(*group[k]))
    TurnToSupports(*group[k]);
  const std::span<const int> all = numbers;
  sink.AddElement({all.subspan(k * nnode, nnode), n, blocks.data()});
}

// A block is rotated with the rows of the node with the lower number, so that rounding does not
// depend on the order of the nodes in the element.
void BlockAssembler::TurnToSupports(const Elem& elem)
{
  Matriu K(n, n);
  double* block = blocks.data();
  for (int i = 0; i < nnode; ++i) {
    for (int j = i; j < nnode; ++j, block += n * n) {
      const bool swapped = elem(i)->number > elem(j)->number;
      std::copy_n(block, n * n, K.Data());
      if (swapped)
        TransposeInPlace(K);
      ApplyLocalAxestoKMatrix(K, elem(swapped ? j : i), elem(swapped ? i : j), n);
      if (swapped)
        TransposeInPlace(K);
      std::copy_n(K.Data(), n * n, block);
    }
  }
}

}  // namespace morlen
