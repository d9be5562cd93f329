#include "solvers/block_factors.h"

#include <algorithm>
#include <cmath>

#include "base/errorwriter.h"
#include "solvers/node_block_matrix.h"

// Incomplete factors without fill in node blocks.
//
// The pattern consists of whole blocks, and so does that of the scalar factors L·U without fill of
// the same matrix. With the diagonal blocks factored out, L·U = (I + Uᵀ)·D·(I + U): the same
// preconditioner in half the memory, and a substitution waits for a product with one block where it
// would wait for each unknown of a node. Stored are D⁻¹ and −U.
//
// Elimination line by line (Factorise), with S the blocks that are left of the matrix:
//
//   U(k,j) = D(k)⁻¹·S(k,j);   S(i,j) -= S(k,i)ᵀ·U(k,j) for all nodes i <= j of line k,
//
// where products outside the pattern are dropped.
//
// Source of the scalar method: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM,
// Philadelphia 2003, section 10.3.

namespace morlen {

namespace {

/// Inverts a block in place by elimination without exchange of rows; the pivots are those of the
/// scalar factors. `work` is as large as the block. False at a pivot that is 0 or not finite. A row
/// of the unit matrix is exactly preserved.
bool Invert(int size, double* block, double* work)
{
  const auto A = [=](int a, int b) -> double& { return block[b * size + a]; };
  const auto X = [=](int a, int b) -> double& { return work[b * size + a]; };
  for (int k = 0; k < size; ++k) {  // A = L·U in place
    if (A(k, k) == 0.0 || !std::isfinite(A(k, k)))
      return false;
    for (int a = k + 1; a < size; ++a) {
      const double factor = A(a, k) /= A(k, k);
      for (int b = k + 1; b < size; ++b)
        A(a, b) -= factor * A(k, b);
    }
  }
  for (int b = 0; b < size; ++b) {
    for (int a = 0; a < size; ++a) {
      X(a, b) = a == b ? 1.0 : 0.0;
      for (int k = 0; k < a; ++k)
        X(a, b) -= A(a, k) * X(k, b);
    }
    for (int a = size - 1; a >= 0; --a) {
      for (int k = a + 1; k < size; ++k)
        X(a, b) -= A(a, k) * X(k, b);
      X(a, b) /= A(a, a);
    }
  }
  std::copy_n(work, size * size, block);
  return true;
}

/// to = fromᵀ.
void CopyTransposed(int size, const double* from, double* to)
{
  for (int a = 0; a < size; ++a)
    for (int b = 0; b < size; ++b)
      to[a * size + b] = from[b * size + a];
}

}  // namespace

BlockFactors::BlockFactors(const NodeBlockMatrix& matrix, std::span<const int> prescribed)
    : Preconditioner("ILU"), size(matrix.BlockSize()), kernels(matrix.Kernels())
{
  CopyUpperHalf(matrix);
  ClearColumns(prescribed);
  complete = Factorise();
}

void BlockFactors::CopyUpperHalf(const NodeBlockMatrix& matrix)
{
  const BlockLines A = matrix.Blocks();
  std::size_t above = 0;
  for (int i = 0; i < A.lines; ++i)
    for (int s = A.starts[i]; s < A.starts[i + 1]; ++s)
      above += A.columns[s] > i;
  values.assign(above * Square() + kBlockPadding, 0.0);
  diagonal.assign(A.lines * Square() + kBlockPadding, 0.0);
  columns.reserve(above);
  starts.reserve(static_cast<std::size_t>(A.lines) + 1);
  for (int i = 0; i < A.lines; ++i) {
    for (int s = A.starts[i]; s < A.starts[i + 1]; ++s) {
      const double* const block = A.values + s * Square();
      if (A.columns[s] == i)
        CopyTransposed(size, block, Diagonal(i));
      if (A.columns[s] <= i)
        continue;
      CopyTransposed(size, block, Block(static_cast<int>(columns.size())));
      columns.push_back(A.columns[s]);
    }
    starts.push_back(static_cast<int>(columns.size()));
  }
}

void BlockFactors::ClearColumns(std::span<const int> equations)
{
  std::vector<bool> isCleared(static_cast<std::size_t>(Nodes()) * size, false);
  for (const int equation : equations) {
    isCleared[equation] = true;
    const int b = equation % size;
    double* const own = Diagonal(equation / size);
    for (int a = 0; a < size; ++a)
      if (a != b)
        own[a * size + b] = 0.0;
  }
  for (int s = 0; s < starts.back(); ++s)
    for (int b = 0; b < size; ++b)
      for (int a = 0; a < size && isCleared[columns[s] * size + b]; ++a)
        Block(s)[a * size + b] = 0.0;
}

// Marks the blocks of the line in work by their columns, so that none is searched for.
bool BlockFactors::Factorise()
{
  std::vector<int> place(static_cast<std::size_t>(Nodes()), -1);
  std::vector<double> work(Square());
  for (int k = 0; k < Nodes(); ++k) {
    if (!Invert(size, Diagonal(k), work.data()))
      return false;
    KeepLine(k);
    const int first = starts[k];
    const int count = starts[k + 1] - first;
    kernels->scale(Block(first), count, Diagonal(k));
    for (int t = 0; t < count; ++t)
      place[columns[first + t]] = t;
    SubtractLine(k, place.data());
    for (int t = 0; t < count; ++t)
      place[columns[first + t]] = -1;
  }
  return true;
}

void BlockFactors::KeepLine(int line)
{
  const int count = starts[line + 1] - starts[line];
  kept.resize(std::max(kept.size(), count * Square() + kBlockPadding));
  for (int t = 0; t < count; ++t)
    CopyTransposed(size, Block(starts[line] + t), kept.data() + t * Square());
}

// Lists the blocks to update first, without a jump for each, then updates them in one call.
void BlockFactors::SubtractLine(int line, const int* place)
{
  const int first = starts[line];
  for (int t = 0; first + t < starts[line + 1]; ++t) {
    const int i = columns[first + t];
    const int length = starts[i + 1] - starts[i];
    updates.resize(std::max(updates.size(), static_cast<std::size_t>(length) + 2));
    updates[0] = {t, Diagonal(i)};
    int count = 1;
    for (int s = starts[i]; s < starts[i + 1]; ++s) {
      const int met = place[columns[s]];
      updates[count] = {met, Block(s)};
      count += met >= 0;
    }
    kernels->addProducts(kept.data() + t * Square(), Block(first), updates.data(), count);
  }
}

void BlockFactors::solve(const double* x, double* y) const
{
  if (!complete) {
    FillWithNaN(y, Nodes() * size);
    return;
  }
  if (x != y)
    std::copy_n(x, Nodes() * size, y);
  kernels->forward(Lines(), y);
  kernels->backward(Lines(), diagonal.data(), y);
}

void BlockFactors::SolveTwo(const double* const x[2], double* const y[2]) const
{
  for (int v = 0; v < 2; ++v) {
    if (!complete)
      FillWithNaN(y[v], Nodes() * size);
    else if (x[v] != y[v])
      std::copy_n(x[v], Nodes() * size, y[v]);
  }
  if (!complete)
    return;
  kernels->forwardOfTwo(Lines(), y);
  kernels->backwardOfTwo(Lines(), diagonal.data(), y);
}

void BlockFactors::New_Matrix(const SparseMatrix&)
{
  Fatal("Wrong use of BlockFactors::New_Matrix");
}

std::size_t BlockFactors::StorageBytes() const
{
  return (diagonal.size() + values.size()) * sizeof(double) +
         (columns.size() + starts.size()) * sizeof(int);
}

}  // namespace morlen
