#include "solvers/sparse_matrix.h"

#include <algorithm>
#include <climits>

#include "base/errorwriter.h"
#include "solvers/triangular_solve.h"

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

}  // namespace

SparseMatrix::SparseMatrix(int n_, const int* rowLengths)
    : n(n_),
      rowStart(RunningSums(n_, rowLengths)),
      columns(static_cast<std::size_t>(rowStart.back()), kFree),
      values(static_cast<std::size_t>(rowStart.back()), 0.0),
      freeSlots(rowStart.back())
{
}

void SparseMatrix::RequireInside(int i, int j) const
{
  if (!IsInside(i, j))
    Fatal("Sparse Matrix accessing exception -- out of bounds.");
}

int SparseMatrix::FindSlot(int i, int column) const
{
  const auto first = columns.begin() + rowStart[i];
  const auto last = columns.begin() + rowStart[i + 1];
  const auto found = std::find(first, last, column);
  return found == last ? GiveSlots() : static_cast<int>(found - columns.begin());
}

void SparseMatrix::Give(int slot, int column)
{
  columns[slot] = column;
  --freeSlots;
}

double& SparseMatrix::set(int i, int j)
{
  const int slot = IsInside(i, j) ? FindSlot(i, j) : GiveSlots();
  if (slot == GiveSlots())
    Fatal("Sparse Matrix element (", i, ",", j, ") not in sparse structure -- cannot assign.");
  return values[slot];
}

double SparseMatrix::operator()(int i, int j) const
{
  RequireInside(i, j);
  const int slot = FindSlot(i, j);
  return slot == GiveSlots() ? 0.0 : values[slot];
}

void SparseMatrix::addToLhs(int i, int j, double v)
{
  RequireInside(i, j);
  int slot = FindSlot(i, j);
  if (slot == GiveSlots()) {
    slot = FindSlot(i, kFree);
    if (slot == GiveSlots())
      Fatal("Wrong Row ", i, " definition: Row length ", RowLength(i));
    Give(slot, j);
  }
  values[slot] += v;
}

void SparseMatrix::AddRun(int i, int slot, int j, int count, const double* v, int step)
{
  const int first = rowStart[i] + slot;
  for (int k = 0; k < count; ++k) {
    const double number = v[static_cast<std::ptrdiff_t>(k) * step];
    if (columns[first + k] == kFree)
      Give(first + k, j + k);
    if (columns[first + k] == j + k)
      values[first + k] += number;
    else
      addToLhs(i, j + k, number);
  }
}

void SparseMatrix::mult(const double* x, double* y) const
{
  if (freeSlots == 0) {
    CompRowMatVec(View(), x, y);
    return;
  }
  for (int i = 0; i < n; ++i)
    y[i] = MultiplyVector(i, x);
}

void SparseMatrix::trans_mult(const double* x, double* y) const
{
  if (freeSlots == 0) {
    CompColMatVec(View(), x, y);  // the rows are the columns of the transpose
    return;
  }
  std::fill_n(y, n, 0.0);
  for (int i = 0; i < n; ++i)
    ForEachInRow(i, [&](int j, double value) { y[j] += value * x[i]; });
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
  for (int s = rowStart[i]; s < rowStart[i + 1]; ++s)
    values[s] = columns[s] == i || columns[s] == kFree ? 1.0 : 0.0;
}

void SparseMatrix::Fix_Row(int i)
{
  RequireInside(i, i);
  if (FindSlot(i, i) == GiveSlots() && FindSlot(i, kFree) == GiveSlots())
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
