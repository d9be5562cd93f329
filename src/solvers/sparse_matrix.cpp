#include "solvers/sparse_matrix.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <utility>

#include "base/errorwriter.h"
#include "solvers/triangular_solve.h"

namespace morlen {

namespace {

std::vector<int> RunningSums(int n, const int* lengths)
{
  if (n < 1)
    Fatal("Sparse Matrix size must be greater than 0");
  std::vector<int> sums(static_cast<std::size_t>(n) + 1, 0);
  long long sum = 0;
  for (int i = 0; i < n; ++i) {
    sum += lengths[i];
    if (lengths[i] < 0 || sum > INT_MAX)
      Fatal("Not space available on heap");
    sums[i + 1] = static_cast<int>(sum);
  }
  return sums;
}

std::size_t ValuesOf(int blocks, int size)
{
  return static_cast<std::size_t>(blocks) * size * size + kBlockPadding;
}

/// The column of an entry of a block, as the block's is given.
int SeparateColumn(int blockColumn, int blockSize, int b)
{
  if (blockColumn == SparseMatrix::kFree)
    return SparseMatrix::kFree;
  return blockColumn < 0 ? ~(~blockColumn * blockSize + b) : blockColumn * blockSize + b;
}

void CheckSlots(const NodePattern& pattern, int ndof)
{
  if (pattern.Lines() < 1 || ndof < 1)
    Fatal("Sparse Matrix size must be greater than 0");
  if (static_cast<long long>(pattern.starts.back()) * ndof * ndof > INT_MAX)
    Fatal("Not space available on heap");
}

[[noreturn]] void OutOfBounds()
{
  Fatal("Sparse Matrix accessing exception -- out of bounds.");
}

}  // namespace

SparseMatrix::SparseMatrix(int n_, const int* rowLengths)
    : n(n_),
      size(1),
      ndof(1),
      ordered(false),
      starts(RunningSums(n_, rowLengths)),
      columns(static_cast<std::size_t>(starts.back()), kFree),
      values(ValuesOf(starts.back(), 1), 0.0),
      freeBlocks(starts.back())
{
}

SparseMatrix::SparseMatrix(NodePattern pattern, int ndof_, Processor processor)
    : n(pattern.Lines() * ndof_),
      size(ndof_),
      kernels(GiveBlockKernels(size, processor)),
      ndof(ndof_),
      ordered(true)
{
  CheckSlots(pattern, ndof);
  starts = std::move(pattern.starts);
  columns = std::move(pattern.columns);
  for (int& column : columns)
    column = column == NodePattern::kNoNode ? kFree : ~column;
  freeBlocks = EndOfBlocks();
  if (kernels)
    values.assign(ValuesOf(freeBlocks, size), 0.0);
  else
    Separate();
}

void SparseMatrix::RequireInside(int i, int j) const
{
  if (!IsInside(i, j))
    OutOfBounds();
}

void SparseMatrix::RequireNode(int node) const
{
  if (node < 1 || node > n / ndof)
    OutOfBounds();
}

// The number of columns before q, without a jump that depends on them: lines are short.
int SparseMatrix::FindOrdered(int p, int q) const
{
  const int* const first = columns.data() + starts[p];
  const int length = starts[p + 1] - starts[p];
  int before = 0;
  for (int s = 0; s < length; ++s)
    before += (first[s] ^ (first[s] >> 31)) < q;
  const bool found = before < length && (first[before] == q || first[before] == ~q);
  return found ? starts[p] + before : EndOfBlocks();
}

int SparseMatrix::FindBlock(int p, int q) const
{
  if (ordered)
    return FindOrdered(p, q);
  const auto first = columns.begin() + starts[p];
  const auto last = columns.begin() + starts[p + 1];
  auto found = std::find(first, last, q);
  if (found == last)
    found = std::find(first, last, ~q);
  return found == last ? EndOfBlocks() : static_cast<int>(found - columns.begin());
}

int SparseMatrix::FindFree(int p) const
{
  for (int s = starts[p]; s < starts[p + 1]; ++s)
    if (columns[s] < 0)
      return s;
  return EndOfBlocks();
}

void SparseMatrix::Give(int block, int column)
{
  if (columns[block] < 0)
    --freeBlocks;
  columns[block] = column;
}

double& SparseMatrix::set(int i, int j)
{
  const int block = IsInside(i, j) ? FindBlock(i / size, j / size) : EndOfBlocks();
  if (block == EndOfBlocks() || columns[block] < 0)
    Fatal("Sparse Matrix element (", i, ",", j, ") not in sparse structure -- cannot assign.");
  return values[Place(block, i % size, j % size)];
}

double SparseMatrix::operator()(int i, int j) const
{
  RequireInside(i, j);
  const int block = FindBlock(i / size, j / size);
  const bool held = block != EndOfBlocks() && columns[block] >= 0;
  return held ? values[Place(block, i % size, j % size)] : 0.0;
}

void SparseMatrix::addToLhs(int i, int j, double v)
{
  RequireInside(i, j);
  const int p = i / size;
  const int q = j / size;
  int block = FindBlock(p, q);
  if (block == EndOfBlocks()) {
    block = FindFree(p);
    if (block == EndOfBlocks())
      Fatal("Wrong Row ", i, " definition: Row length ", (starts[p + 1] - starts[p]) * size);
    if (size > 1) {
      Separate();
      addToLhs(i, j, v);
      return;
    }
    ordered = false;
  }
  double& value = values[Place(block, i % size, j % size)];
  if (size > 1 && columns[block] < 0)
    ClearOthers(block, value);
  Give(block, q);
  value += v;
}

// What a fixed row has put into the other entries of a free block was left out of everything.
void SparseMatrix::ClearOthers(int block, double& value)
{
  const double kept = value;
  std::fill_n(&values[Place(block, 0, 0)], size * size, 0.0);
  value = kept;
}

void SparseMatrix::Separate()
{
  const int blockSize = std::exchange(size, 1);
  kernels = nullptr;
  const std::vector<int> lineStarts = std::exchange(starts, {0});
  const std::vector<int> blockColumns = std::exchange(columns, {});
  const LargeArray<double> blockValues = std::exchange(values, {});
  const std::size_t slots = blockColumns.size() * blockSize * blockSize;
  columns.reserve(slots);
  values.reserve(slots + kBlockPadding);
  for (int i = 0; i < n; ++i) {
    const int p = i / blockSize;
    for (int entry = lineStarts[p] * blockSize; entry < lineStarts[p + 1] * blockSize; ++entry) {
      columns.push_back(
          SeparateColumn(blockColumns[entry / blockSize], blockSize, entry % blockSize));
      values.push_back(blockValues.empty() ? 0.0 : blockValues[entry * blockSize + i % blockSize]);
    }
    starts.push_back(static_cast<int>(columns.size()));
  }
  values.resize(slots + kBlockPadding, 0.0);
  freeBlocks *= blockSize * blockSize;
}

void SparseMatrix::mult(const double* x, double* y) const
{
  if (freeBlocks > 0) {
    for (int i = 0; i < n; ++i)
      y[i] = MultiplyVector(i, x);
  } else if (size > 1) {
    kernels->product(Blocks(), x, y);
  } else {
    CompRowMatVec(Rows(), x, y);
  }
}

void SparseMatrix::MultiplyTwo(const double* const x[2], double* const y[2]) const
{
  if (kernels && freeBlocks == 0) {
    kernels->productOfTwo(Blocks(), x, y);
    return;
  }
  for (int v = 0; v < 2; ++v)
    mult(x[v], y[v]);
}

void SparseMatrix::trans_mult(const double* x, double* y) const
{
  if (freeBlocks == 0 && size == 1) {
    CompColMatVec(Rows(), x, y);  // the rows are the columns of the transpose
    return;
  }
  std::fill_n(y, n, 0.0);
  for (int p = 0; p < n / size; ++p)
    for (int s = starts[p]; s < starts[p + 1]; ++s)
      if (columns[s] >= 0)
        AddTransposedBlock(size, &values[Place(s, 0, 0)], x + p * size, y + columns[s] * size);
}

double SparseMatrix::MultiplyVector(int i, const double* x) const
{
  RequireInside(i, i);
  double sum = 0.0;
  ForEachInRow(i, [&](int j, double value) { sum += value * x[j]; });
  return sum;
}

void SparseMatrix::Fix_Row_Dalvek(int i)
{
  RequireInside(i, i);
  const int p = i / size;
  for (int s = starts[p]; s < starts[p + 1]; ++s)
    for (int b = 0; b < size; ++b)
      values[Place(s, i % size, b)] = columns[s] < 0 || columns[s] * size + b == i ? 1.0 : 0.0;
}

void SparseMatrix::Fix_Row(int i)
{
  RequireInside(i, i);
  const int p = i / size;
  if (FindBlock(p, p) == EndOfBlocks() && FindFree(p) == EndOfBlocks())
    Fatal("Wrong Row ", i, " boundary condition");
  Fix_Row_Dalvek(i);
}

void SparseMatrix::NullifyMatrix()
{
  std::fill(values.begin(), values.end(), 0.0);
}

std::ostream& operator<<(std::ostream& out, const SparseMatrix& matrix)
{
  for (int i = 0; i < matrix.GiveSize(); ++i) {
    matrix.ForEachInRow(i, [&](int j, double value) { out << "    " << j + 1 << ":" << value; });
    out << "\n";
  }
  return out;
}

}  // namespace morlen
