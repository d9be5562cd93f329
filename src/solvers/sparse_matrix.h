#pragma once

#include <climits>
#include <cstddef>
#include <ostream>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "solvers/block_kernel.h"
#include "solvers/compressed_rows.h"
#include "solvers/element_blocks.h"
#include "solvers/node_couplings.h"

namespace morlen {

/// Square matrix in compressed storage; rows, columns and slots run from 0.
///
/// Each row has a fixed number of slots. A slot is free until a number added to the row gives
/// it a column; free slots are left out of products, factorisations and dumps.
///
/// The slots are stored in square blocks, of one entry each or, when the matrix was made for
/// nodes of three or six equations, of all entries that two nodes have in common. A block of
/// nodes gets its columns as a whole, with the first number added to one of its entries.
class SparseMatrix
{
public:
  /// One row length for each of the n rows; all slots free. Fatal when n < 1, or when there
  /// are more slots than an int can count.
  SparseMatrix(int n, const int* rowLengths);

  /// For nodes of ndof equations: equation a of node p is p·ndof + a. A slot is set aside in
  /// each of the rows of a node for all columns of the nodes in its line of the pattern; it is
  /// free until it is added to. Fatal when there are no nodes, or too many slots.
  /// Blocks are multiplied with the instructions of the processor, which this one must have.
  SparseMatrix(NodePattern pattern, int ndof, Processor processor = ThisProcessor());

  int GiveSize() const { return n; }
  int GiveColumns() const { return n; }
  int GiveSlots() const { return starts.back() * size * size; }

  /// The value at (i, j), which must have a slot.
  double& set(int i, int j);

  /// The value at (i, j); 0 when it has no slot. Fatal outside the matrix.
  double operator()(int i, int j) const;

  /// Adds v to (i, j), which takes the slot set aside for it, else the first free one of row
  /// i, when it has none. Fatal when there is no free slot, and outside the matrix.
  void addToLhs(int i, int j, double v);

  /// Adds an ndof×ndof block, given row by row, or its transpose at the nodes p and q, ndof as
  /// the matrix was made. Fatal as addToLhs.
  void AddNodeBlock(int p, int q, const double* m, bool transposed);

  /// Adds the blocks of an element, ndof as the matrix was made, and their mirror images, for
  /// each as AddNodeBlock; that between places of one node without a mirror image.
  void AddElement(const ElementBlocks& element);

  /// Finds the blocks of elements that are to be added next, in this order, and asks for their
  /// memory; nodes: theirs from 1, `count` for each. Changes nothing; fatal as addToLhs.
  void Expect(std::span<const int> nodes, int count);

  /// y = A·x.
  void mult(const double* x, double* y) const;
  /// The same for two vectors, with the same bits, in one pass over the blocks of nodes.
  void MultiplyTwo(const double* const x[2], double* const y[2]) const;
  /// y = Aᵀ·x.
  void trans_mult(const double* x, double* y) const;
  /// Row i times x.
  double MultiplyVector(int i, const double* x) const;

  /// Makes row i the equation of a prescribed value: 1 in the slots of column i and in free
  /// ones, 0 in the others. Column i of the other rows stays.
  void Fix_Row_Dalvek(int i);
  /// The same; fatal when row i has neither column i nor a free slot.
  void Fix_Row(int i);

  /// Sets all values to 0; the columns stay.
  void NullifyMatrix();
  void Nullify() { NullifyMatrix(); }

  /// Calls visit(column, value) for every slot of row i that has a column, in slot order.
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const
  {
    const int p = i / size;
    for (int s = starts[p]; s < starts[p + 1]; ++s)
      for (int b = 0; b < size && columns[s] >= 0; ++b)
        visit(columns[s] * size + b, values[Place(s, i % size, b)]);
  }

  /// Equations of the nodes whose blocks are stored; 1 when single entries are.
  int BlockSize() const { return size; }

  /// Blocks by lines; those that are free have negative columns.
  BlockLines Blocks() const { return {n / size, values.data(), columns.data(), starts.data()}; }

  /// The loops over the blocks of nodes; null when single entries are stored.
  const BlockKernels* Kernels() const { return kernels; }

  /// A double and an int for every slot, an int for every row: what the matrix takes in single
  /// entries, whatever its blocks.
  std::size_t StorageBytes() const
  {
    return static_cast<std::size_t>(GiveSlots()) * (sizeof(double) + sizeof(int)) +
           static_cast<std::size_t>(n) * sizeof(int);
  }

  /// The column of a free block that is set aside for none. One set aside for q has ~q.
  static constexpr int kFree = INT_MIN;

private:
  std::size_t Place(int block, int a, int b) const
  {
    return (static_cast<std::size_t>(block) * size + b) * size + a;
  }
  bool IsInside(int i, int j) const { return i >= 0 && i < n && j >= 0 && j < n; }
  void RequireInside(int i, int j) const;
  /// A node from 1.
  void RequireNode(int node) const;
  int EndOfBlocks() const { return starts.back(); }

  /// The block of line p that has column q or is set aside for it; EndOfBlocks() when there is
  /// none.
  int FindBlock(int p, int q) const;
  int FindOrdered(int p, int q) const;

  /// The blocks of the elements that are to be added next.
  struct Expected
  {
    std::vector<int> nodes;   ///< as given
    std::size_t count = 0;    ///< of each element
    std::vector<int> places;  ///< of the blocks, for each element in rows of nodes
    std::size_t added = 0;    ///< nodes of the elements that have been added
    bool complete = false;    ///< all blocks were found
    bool someFree = false;    ///< some of them were free
  };
  const int* PlacesOf(std::span<const int> nodes);
  void FindInLine(int line, std::span<const int> nodes, int* places);
  void GiveAll(std::span<const int> nodes, const int* places);
  template <int blockSize>
  void AddAtPlaces(const ElementBlocks& element, const int* places);
  /// The first free block of line p; EndOfBlocks() when there is none.
  int FindFree(int p) const;
  void Give(int block, int column);
  void ClearOthers(int block, double& value);

  CompressedView Rows() const { return {n, values.data(), columns.data(), starts.data()}; }

  /// Turns every block into its single entries, free ones into free entries.
  void Separate();

  int n;
  int size;  ///< rows and columns of a block
  const BlockKernels* kernels = nullptr;
  int ndof;                   ///< equations of a node
  bool ordered;               ///< the columns of each line, held or set aside, ascend
  std::vector<int> starts;    ///< line p has the blocks starts[p] to starts[p + 1] - 1
  std::vector<int> columns;   ///< of every block, in blocks
  LargeArray<double> values;  ///< of the blocks, each column by column; kBlockPadding more
  int freeBlocks;             ///< how many there are
  Expected expected;
};

/// One line a row: four blanks, the column from 1, ':' and the value for every slot that has
/// a column.
std::ostream& operator<<(std::ostream& out, const SparseMatrix& matrix);

}  // namespace morlen
