#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "solvers/block_kernel.h"
#include "solvers/element_blocks.h"
#include "solvers/node_couplings.h"
#include "solvers/system_matrix.h"

namespace morlen {

/// Square matrix of nodes with three or six equations, in blocks of all entries that two nodes
/// have in common. Equation a of node p is p·ndof + a; nodes count from 0.
///
/// The blocks are those of a fixed pattern. All of them exist from the start, filled with zeros;
/// nothing can be added outside them.
class NodeBlockMatrix : public SystemMatrix
{
public:
  /// Whether there are loops for nodes of so many equations.
  static bool Suits(int ndof);

  /// ndof must suit. Fatal when there are no nodes, or more slots than an int can count. Blocks
  /// are multiplied with the instructions of the processor, which this one must have.
  NodeBlockMatrix(NodePattern pattern, int ndof, Processor processor = ThisProcessor());

  int GiveSlots() const override { return starts.back() * ndof * ndof; }

  double& set(int i, int j) override;
  double operator()(int i, int j) const override;
  void addToLhs(int i, int j, double v) override;

  /// Adds an ndof×ndof block, given row by row, or its transpose, at the nodes p and q. Fatal
  /// outside the pattern.
  void AddNodeBlock(int p, int q, const double* m, bool transposed);

  /// Adds the blocks of an element and their mirror images, each as AddNodeBlock does. A block
  /// between two places of an element that hold the same node has no mirror image.
  void AddElement(const ElementBlocks& element);

  /// ElementSink::Prefetch. Fatal when a node is outside the matrix.
  void Prefetch(std::span<const int> nodes, int count);

  void mult(const double* x, double* y) const override;
  /// One pass over the blocks serves both vectors.
  void MultiplyTwo(const double* const x[2], double* const y[2]) const override;
  void trans_mult(const double* x, double* y) const override;
  double MultiplyVector(int i, const double* x) const override;

  void Fix_Row_Dalvek(int i) override;
  void NullifyMatrix() override;
  void PrintTo(std::ostream& out) const override;

  /// Calls visit(column, value) for every slot of row i, columns ascending.
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const
  {
    const int p = i / ndof;
    for (int s = starts[p]; s < starts[p + 1]; ++s)
      for (int b = 0; b < ndof; ++b)
        visit(columns[s] * ndof + b, values[Place(s, i % ndof, b)]);
  }

  /// Equations of a node.
  int BlockSize() const { return ndof; }

  /// The blocks by the lines of their nodes; each is stored column by column.
  BlockLines Blocks() const
  {
    return {GiveSize() / ndof, values.data(), columns.data(), starts.data()};
  }

  /// The loops over the blocks.
  const BlockKernels* Kernels() const { return kernels; }

private:
  std::size_t Place(int block, int a, int b) const
  {
    return (static_cast<std::size_t>(block) * ndof + b) * ndof + a;
  }

  /// The block of the nodes p and q; -1 when the pattern has none.
  int FindBlock(int p, int q) const;
  /// The same for an entry; fatal when the pattern has no block for it.
  int RequireBlock(int i, int j) const;
  /// Fatal unless the matrix has this node, from 1.
  void RequireNode(int node) const;

  /// A group of elements that was announced, and where its blocks are.
  struct Announced
  {
    std::vector<int> nodes;   ///< of one element after the other, from 1
    std::size_t count = 0;    ///< nodes of an element
    std::vector<int> places;  ///< of the blocks of its nodes, row by row, for each element
    std::size_t added = 0;    ///< nodes of the elements that have been added
    bool complete = false;    ///< all blocks are in the pattern
  };
  /// The places of the blocks of an element; null when the pattern lacks one of them.
  const int* NextPlaces(std::span<const int> nodes);
  bool FindInLine(int line, std::span<const int> nodes, int* places) const;
  template <int size>
  void AddAtPlaces(const ElementBlocks& element, const int* places);
  void AddElementSlow(const ElementBlocks& element);

  int ndof;
  const BlockKernels* kernels;
  std::vector<int> starts;    ///< line p has the blocks starts[p] to starts[p + 1] - 1
  std::vector<int> columns;   ///< the node of every block's columns, ascending in a line
  LargeArray<double> values;  ///< of the blocks, each column by column; kBlockPadding more
  Announced announced;
};

}  // namespace morlen
