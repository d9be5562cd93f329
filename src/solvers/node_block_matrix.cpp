#include "solvers/node_block_matrix.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <utility>

#include "base/array_size.h"
#include "base/errorwriter.h"

namespace morlen {

namespace {

/// Number of equations of the nodes of a pattern, after a check of its size.
int CheckedSize(const NodePattern& pattern, int ndof)
{
  if (pattern.Lines() < 1)
    Fatal("Sparse Matrix size must be greater than 0");
  if (static_cast<long long>(pattern.starts.back()) * ndof * ndof > INT_MAX)
    TooManyToCount("entries of the matrix");
  return pattern.Lines() * ndof;
}

}  // namespace

bool NodeBlockMatrix::Suits(int ndof)
{
  return GiveBlockKernels(ndof, Processor::kPlain) != nullptr;
}

NodeBlockMatrix::NodeBlockMatrix(NodePattern pattern, int ndof_, Processor processor)
    : SystemMatrix(CheckedSize(pattern, ndof_)),
      ndof(ndof_),
      kernels(GiveBlockKernels(ndof_, processor)),
      starts(std::move(pattern.starts)),
      columns(std::move(pattern.columns))
{
  assert(kernels);
  values.assign(static_cast<std::size_t>(NodeBlockMatrix::GiveSlots()) + kBlockPadding, 0.0);
}

void NodeBlockMatrix::RequireNode(int node) const
{
  if (node < 1 || node > GiveSize() / ndof)
    OutOfBounds();
}

// Counts the columns before q without a jump that depends on them: lines are short.
int NodeBlockMatrix::FindBlock(int p, int q) const
{
  const int* const first = columns.data() + starts[p];
  const int length = starts[p + 1] - starts[p];
  int before = 0;
  for (int s = 0; s < length; ++s)
    before += first[s] < q;
  return before < length && first[before] == q ? starts[p] + before : -1;
}

int NodeBlockMatrix::RequireBlock(int i, int j) const
{
  const int p = i / ndof;
  const int block = FindBlock(p, j / ndof);
  if (block < 0)
    RowIsFull(i, (starts[p + 1] - starts[p]) * ndof);
  return block;
}

double& NodeBlockMatrix::set(int i, int j)
{
  const int block = IsInside(i, j) ? FindBlock(i / ndof, j / ndof) : -1;
  if (block < 0)
    NotInStructure(i, j);
  return values[Place(block, i % ndof, j % ndof)];
}

double NodeBlockMatrix::operator()(int i, int j) const
{
  RequireInside(i, j);
  const int block = FindBlock(i / ndof, j / ndof);
  return block < 0 ? 0.0 : values[Place(block, i % ndof, j % ndof)];
}

void NodeBlockMatrix::addToLhs(int i, int j, double v)
{
  RequireInside(i, j);
  values[Place(RequireBlock(i, j), i % ndof, j % ndof)] += v;
}

void NodeBlockMatrix::mult(const double* x, double* y) const
{
  kernels->product(Blocks(), x, y);
}

void NodeBlockMatrix::MultiplyTwo(const double* const x[2], double* const y[2]) const
{
  kernels->productOfTwo(Blocks(), x, y);
}

void NodeBlockMatrix::trans_mult(const double* x, double* y) const
{
  std::fill_n(y, GiveSize(), 0.0);
  for (int p = 0; p < GiveSize() / ndof; ++p)
    for (int s = starts[p]; s < starts[p + 1]; ++s)
      AddTransposedBlock(ndof, &values[Place(s, 0, 0)], x + p * ndof, y + columns[s] * ndof);
}

double NodeBlockMatrix::MultiplyVector(int i, const double* x) const
{
  RequireInside(i, i);
  return RowTimesVector(*this, i, x);
}

void NodeBlockMatrix::Fix_Row_Dalvek(int i)
{
  RequireInside(i, i);
  const int p = i / ndof;
  for (int s = starts[p]; s < starts[p + 1]; ++s)
    for (int b = 0; b < ndof; ++b)
      values[Place(s, i % ndof, b)] = columns[s] * ndof + b == i ? 1.0 : 0.0;
}

void NodeBlockMatrix::NullifyMatrix()
{
  std::fill(values.begin(), values.end(), 0.0);
}

void NodeBlockMatrix::PrintTo(std::ostream& out) const
{
  PrintRows(*this, out);
}

}  // namespace morlen
