#pragma once

#include <cstddef>
#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"

namespace morlen {

class ElementSink;
class Matriu;

// Values of applyLocalAxes: the axes in which the stiffness of the elements is added.
constexpr int kInGlobalAxes = 0;
constexpr int kInSupportAxes = 1;

/// Adds the stiffness of the elements of a mesh to a sink, in blocks of pairs of nodes.
class BlockAssembler
{
public:
  /// components: their number at a node, which is the order n of a block.
  BlockAssembler(ElementSink& sink, int components, int applyLocalAxes);

  /// Adds all elements. calculate(elem) appends the blocks of an element in global axes by
  /// NextBlock or Append. Elements are announced to the sink in groups so that it can prefetch.
  template <class Calculate>
  void Assemble(const Mesh& mesh, Calculate calculate)
  {
    MakeRoom(mesh.GiveNnode());
    const auto addGroup = [&] {
      Prefetch();
      for (std::size_t k = 0; k < group.size(); ++k) {
        next = blocks.data();
        calculate(*group[k]);
        Add(k);
      }
      group.clear();
    };
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      Collect(elem);
      if (group.size() == group.capacity())
        addGroup();
    }
    addGroup();
  }

  /// The place of the next block of the current element: n×n numbers, row by row. The blocks are
  /// those of the nodes i (rows) and j (columns) with i <= j, ordered by i, then by j.
  double* NextBlock()
  {
    double* const block = next;
    next += n * n;
    return block;
  }
  /// Copies K (n×n) to the place of the next block.
  void Append(const Matriu& K);

private:
  void MakeRoom(int nodesOfElement);
  bool IsSupported(const Elem& elem) const;
  /// Appends the element to the group and prefetches its nodes.
  void Collect(const Elem& elem)
  {
    group.push_back(&elem);
    for (int i = 0; i < nnode; ++i)
      __builtin_prefetch(elem(i));
  }
  void Prefetch();
  void Add(std::size_t k);
  void TurnToSupports(const Elem& elem);

  ElementSink& sink;
  int n;
  bool toSupportAxes;
  int nnode = 0;
  std::vector<const Elem*> group;  ///< elements that are announced together
  std::vector<int> numbers;        ///< system numbers of their nodes
  std::vector<double> blocks;      ///< of the current element
  double* next = nullptr;          ///< where its next block begins
};

}  // namespace morlen
