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

/// Takes the stiffness of the elements of a mesh to the matrix or whatever else is made of it, in
/// blocks of their nodes.
class BlockAssembler
{
public:
  /// components: of a node.
  BlockAssembler(ElementSink& sink, int components, int applyLocalAxes);

  /// Adds all elements: calculate(elem) hands over their blocks in global axes. The sink gets to
  /// know of some elements at a time before their turn.
  template <class Calculate>
  void Assemble(const Mesh& mesh, Calculate calculate)
  {
    MakeRoom(mesh.GiveNnode());
    const auto addGroup = [&] {
      Expect();
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

  /// The room for the next block, n×n numbers row by row, between the nodes i and j (from 0)
  /// of the element at work: those for j from i on, one i after the other.
  double* NextBlock()
  {
    double* const block = next;
    next += n * n;
    return block;
  }
  /// Hands over the next block.
  void Take(const Matriu& K);

private:
  void MakeRoom(int nodesOfElement);
  bool IsSupported(const Elem& elem) const;
  /// Takes the element into the group and asks for the memory of its nodes.
  void Collect(const Elem& elem)
  {
    group.push_back(&elem);
    for (int i = 0; i < nnode; ++i)
      __builtin_prefetch(elem(i));
  }
  void Expect();
  void Add(std::size_t k);
  void TurnToSupports(const Elem& elem);

  ElementSink& sink;
  int n;
  bool toSupportAxes;
  int nnode = 0;
  std::vector<const Elem*> group;  ///< elements of which the sink knows
  std::vector<int> numbers;        ///< of their nodes
  std::vector<double> blocks;      ///< of the element at work
  double* next = nullptr;          ///< where its next block begins
};

}  // namespace morlen
