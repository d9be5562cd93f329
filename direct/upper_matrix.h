#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "numeric/reavecv.h"
#include "solvers/element_blocks.h"
#include "solvers/node_couplings.h"

namespace morlen {

class Matriu;

namespace direct {

/// The entries of a matrix that are not 0, on and above the diagonal: `values[k]` is in row
/// `rows[k]` and column `columns[k]`, both from 1. Borrows the values.
struct Coordinates
{
  std::vector<int> rows;
  std::vector<int> columns;
  double* values = nullptr;

  std::int64_t Count() const { return static_cast<std::int64_t>(rows.size()); }
};

/// A symmetric matrix of node blocks, of which the blocks on and above the diagonal are stored:
/// those of the nodes p and q with p <= q. Equation k of node p is (p - 1)·ndof + k, all from 1.
class UpperMatrix
{
public:
  /// An empty matrix, without nodes.
  UpperMatrix() = default;
  /// All blocks of the pattern, filled with zeros. Fatal when memory is short.
  UpperMatrix(NodePattern pattern, int ndof);

  const NodePattern& Pattern() const { return pattern; }
  int Equations() const { return pattern.Lines() * ndof; }
  std::size_t StorageBytes() const { return values.size() * sizeof(double); }
  void SetToZero();

  /// The place of entry (i, j), in any order; null outside the pattern.
  double* Find(int i, int j);
  const double* Find(int i, int j) const { return const_cast<UpperMatrix*>(this)->Find(i, j); }

  /// Adds the blocks of an element. Fatal outside the pattern.
  void AddElement(const ElementBlocks& element);
  /// Adds the entries of m on and above the diagonal; (1, 1) of m is at (row, col).
  void AddBlock(int row, int col, const Matriu& m);

  /// Imposes u(eq) = value on each side: column eq moves to the sides, row and column become 0, and
  /// the diagonal entry 1.
  void Constrain(int eq, std::span<const double> prescribed, std::span<ReaVecV* const> sides);

  double RowTimes(int i, const ReaVecV& v) const;

  /// Moves the entries that are not 0 to the front of the storage. The matrix can then only be read
  /// through the result, until SetToZero.
  Coordinates Compress();

private:
  /// The number of the block (p, q), nodes from 0 with p <= q; -1 outside the pattern.
  std::ptrdiff_t FindBlock(int p, int q) const;
  void AddNodeBlock(int p, int q, const double* m, bool transposed);
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const;

  int ndof = 1;
  NodePattern pattern;                ///< of the whole matrix
  std::vector<int> firstUpper;        ///< in the pattern: the place of (p, p) in line p
  std::vector<int> blockNumber;       ///< number of the block (p, p); the others of the line follow
  mutable LargeArray<double> values;  ///< of the blocks, each row by row
};

}  // namespace direct
}  // namespace morlen
