#include "solvers/block_factors.h"

#include <algorithm>
#include <cmath>

#include "solvers/sparse_matrix.h"

namespace {

/// Inverts a block in place by elimination without exchange of rows, whose pivots are those of
/// the scalar factors. `work` is as large as the block. False at a pivot that cannot be
/// divided by. A row of the identity stays one exactly.
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

}  // namespace

void BlockRows::Reserve(std::size_t lines, std::size_t blocks)
{
  values.reserve(blocks * size * size + kBlockPadding);
  columns.reserve(blocks);
  starts.reserve(lines + 1);
}

void BlockRows::Add(int column, const double* block)
{
  columns.push_back(column);
  values.insert(values.end(), block, block + size * size);
}

std::size_t BlockRows::StorageBytes() const
{
  return values.size() * sizeof(double) + (columns.size() + starts.size()) * sizeof(int);
}

BlockFactors::BlockFactors(const SparseMatrix& matrix)
    : size(matrix.BlockSize()),
      kernels(GiveBlockKernels(size, ThisProcessor())),
      lower{size, {}, {}},
      upper{size, {}, {}}
{
  Split(matrix);
  complete = Factorise();
}

void BlockFactors::Split(const SparseMatrix& matrix)
{
  const BlockLines A = matrix.Blocks();
  const int square = size * size;
  std::size_t below = 0;
  std::size_t others = 0;
  for (int i = 0; i < A.lines; ++i)
    for (int s = A.starts[i]; s < A.starts[i + 1]; ++s)
      if (A.columns[s] >= 0)
        ++(A.columns[s] < i ? below : others);
  const auto block = [&](int s) { return A.values + static_cast<std::size_t>(s) * square; };

  lower.Reserve(A.lines, below);
  for (int i = 0; i < A.lines; ++i) {
    for (int s = A.starts[i]; s < A.starts[i + 1]; ++s)
      if (A.columns[s] >= 0 && A.columns[s] < i)
        lower.Add(A.columns[s], block(s));
    lower.EndLine();
  }
  upper.Reserve(A.lines, others);
  for (int i = A.lines - 1; i >= 0; --i) {
    const int* const line = A.columns + A.starts[i];
    const int length = A.starts[i + 1] - A.starts[i];
    const int own = static_cast<int>(std::find(line, line + length, i) - line);
    if (own < length)
      upper.Add(i, block(A.starts[i] + own));
    for (int s = length - 1; s > own; --s)
      if (line[s] >= 0)
        upper.Add(line[s], block(A.starts[i] + s));
    upper.EndLine();
  }
  for (BlockRows* const rows : {&lower, &upper})
    rows->values.resize(rows->values.size() + kBlockPadding, 0.0);
}

// Node by node: S_ij = A_ij − Σ S_ik·U'_kj over k < min(i, j), dropped outside the pattern;
// then D_i = S_ii, U'_ij = D_i⁻¹·S_ij, L'_ij = S_ij·D_j⁻¹. The blocks of the line at work are
// known by their columns, so that nothing is searched.
bool BlockFactors::Factorise()
{
  const int n = Nodes();
  std::vector<double*> target(static_cast<std::size_t>(n), nullptr);
  const auto mark = [&](BlockRows& rows, int line, bool present) {
    for (int s = rows.starts[line]; s < rows.starts[line + 1]; ++s)
      target[rows.columns[s]] = present ? rows.Block(s) : nullptr;
  };
  std::vector<double> work(static_cast<std::size_t>(size) * size);
  for (int i = 0; i < n; ++i) {
    mark(lower, i, true);
    mark(upper, UpperLine(i), true);
    if (!target[i])
      return false;
    EliminateLine(i, target.data());
    if (!FinishLine(i, work.data()))
      return false;
    mark(lower, i, false);
    mark(upper, UpperLine(i), false);
  }
  return true;
}

// Which blocks meet one in the line is found before they are used, without jumps that depend
// on it.
void BlockFactors::EliminateLine(int i, double* const* target)
{
  for (int s = lower.starts[i]; s < lower.starts[i + 1]; ++s) {
    const int line = UpperLine(lower.columns[s]);
    const int first = upper.starts[line] + 1;
    const int length = upper.starts[line + 1] - first;
    if (static_cast<std::size_t>(length) > updates.size())
      updates.resize(static_cast<std::size_t>(length));
    int count = 0;
    for (int t = 0; t < length; ++t) {
      double* const place = target[upper.columns[first + t]];
      updates[count] = {t, place};
      count += place != nullptr;
    }
    kernels->addProducts(lower.Block(s), upper.Block(first), updates.data(), count);
    kernels->scaleRight(lower.Block(s), upper.Block(first - 1));
  }
}

bool BlockFactors::FinishLine(int i, double* work)
{
  const int line = UpperLine(i);
  const int own = upper.starts[line];
  if (!Invert(size, upper.Block(own), work))
    return false;
  kernels->scaleLeft(upper.Block(own), upper.Block(own + 1), upper.starts[line + 1] - own - 1);
  return true;
}

void BlockFactors::Solve(const double* x, double* y) const
{
  kernels->forward(lower.View(), x, y);
  kernels->backward(upper.View(), y);
}

void BlockFactors::TransSolve(const double* x, double* y) const
{
  const int n = Nodes();
  std::copy_n(x, n * size, y);
  std::vector<double> node(static_cast<std::size_t>(size));
  const auto scatter = [&](const BlockRows& rows, int s) {
    AddTransposedBlock(size, rows.Block(s), node.data(), y + rows.columns[s] * size);
  };
  for (int i = 0; i < n; ++i) {
    const int line = UpperLine(i);
    std::copy_n(y + i * size, size, node.data());
    std::fill_n(y + i * size, size, 0.0);
    for (int s = upper.starts[line]; s < upper.starts[line + 1]; ++s)
      scatter(upper, s);
  }
  for (int i = n - 1; i >= 0; --i) {
    std::copy_n(y + i * size, size, node.data());
    for (int s = lower.starts[i]; s < lower.starts[i + 1]; ++s)
      scatter(lower, s);
  }
}
