#pragma once

#include <cstddef>
#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"

namespace morlen {

class ElementSink;
class Matriu;

// Values of applyLocalAxes: in which axes the stiffness of the elements is added.
constexpr int kInGlobalAxes = 0;
constexpr int kInSupportAxes = 1;

/// Hands the stiffness of the elements of a mesh to a sink, in blocks of their nodes.
class BlockAssembler
{
public:
  /// components: of a node.
  BlockAssembler(ElementSink& sink, int components, int applyLocalAxes);

  /// Adds all elements: calculate(elem) appends their blocks in global axes, by NextBlock or
  /// Append. Elements are announced to the sink in groups so that it can prefetch.
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

  /// The place of the next block of the element at work, n×n numbers row by row. The blocks are
  /// those between the nodes i and j (from 0), for j from i on, one i after the other.
  double* NextBlock()
  {
    double* const block = next;
    next += n * n;
    return block;
  }
  /// Copies K to the place of the next block.
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
  std::vector<const Elem*> group;  ///< elements that the sink has been told of
  std::vector<int> numbers;        ///< of their nodes
  std::vector<double> blocks;      ///< of the element at work
  double* next = nullptr;          ///< where its next block begins
};

}  // namespace morlen
