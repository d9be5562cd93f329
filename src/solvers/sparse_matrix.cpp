#include "solvers/sparse_matrix.h"

#include <algorithm>
#include <climits>
#include <cstddef>

#include "base/array_size.h"
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
    if (lengths[i] < 0)
      Fatal("Not space available on heap");
    if (sum > INT_MAX)
      TooManyToCount("entries of the matrix");
    sums[i + 1] = static_cast<int>(sum);
  }
  return sums;
}

}  // namespace

SparseMatrix::SparseMatrix(int size, const int* rowLengths)
    : SystemMatrix(size),
      starts(RunningSums(size, rowLengths)),
      columns(static_cast<std::size_t>(starts.back()), kFree),
      values(columns.size(), 0.0),
      freeSlots(starts.back())
{
}

int SparseMatrix::FindSlot(int i, int j) const
{
  int s = starts[i];
  while (s < starts[i + 1] && columns[s] != j && columns[s] != kFree)
    ++s;
  return s;
}

double& SparseMatrix::set(int i, int j)
{
  if (!IsInside(i, j))
    NotInStructure(i, j);
  const int s = FindSlot(i, j);
  if (s == starts[i + 1] || columns[s] == kFree)
    NotInStructure(i, j);
  return values[s];
}

double SparseMatrix::operator()(int i, int j) const
{
  RequireInside(i, j);
  const int s = FindSlot(i, j);
  return s == starts[i + 1] || columns[s] == kFree ? 0.0 : values[s];
}

void SparseMatrix::addToLhs(int i, int j, double v)
{
  RequireInside(i, j);
  const int s = FindSlot(i, j);
  if (s == starts[i + 1])
    RowIsFull(i, starts[i + 1] - starts[i]);
  if (columns[s] == kFree)
    --freeSlots;
  columns[s] = j;
  values[s] += v;
}

void SparseMatrix::mult(const double* x, double* y) const
{
  if (freeSlots == 0) {
    CompRowMatVec(Rows(), x, y);
    return;
  }
  for (int i = 0; i < GiveSize(); ++i)
    y[i] = RowTimesVector(*this, i, x);
}

void SparseMatrix::trans_mult(const double* x, double* y) const
{
  if (freeSlots == 0) {
    CompColMatVec(Rows(), x, y);  // the rows are the columns of the transpose
    return;
  }
  std::fill_n(y, GiveSize(), 0.0);
  for (int i = 0; i < GiveSize(); ++i)
    ForEachInRow(i, [&](int j, double value) { y[j] += value * x[i]; });
}

double SparseMatrix::MultiplyVector(int i, const double* x) const
{
  RequireInside(i, i);
  return RowTimesVector(*this, i, x);
}

void SparseMatrix::Fix_Row_Dalvek(int i)
{
  RequireInside(i, i);
  for (int s = starts[i]; s < starts[i + 1]; ++s)
    values[s] = columns[s] == i || columns[s] == kFree ? 1.0 : 0.0;
}

void SparseMatrix::Fix_Row(int i)
{
  RequireInside(i, i);
  if (FindSlot(i, i) == starts[i + 1])
    Fatal("Wrong Row ", i, " boundary condition");
  Fix_Row_Dalvek(i);
}

void SparseMatrix::NullifyMatrix()
{
  std::fill(values.begin(), values.end(), 0.0);
}

void SparseMatrix::PrintTo(std::ostream& out) const
{
  PrintRows(*this, out);
}

}  // namespace morlen
