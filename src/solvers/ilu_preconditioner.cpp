#include "solvers/ilu_preconditioner.h"

#include <cmath>
#include <vector>

#include "base/errorwriter.h"
#include "base/interruption.h"
#include "solvers/sparse_matrix.h"
#include "solvers/triangular_solve.h"

// Incomplete LU factors without fill, ILU(0).
//
// Gaussian elimination row by row, restricted to the pattern of the matrix: for each entry (i, k)
// left of the diagonal, in ascending k, l(i,k) = a(i,k) / u(k,k), then a(i,j) -= l(i,k)·u(k,j) for
// those j > k where (i, j) is in the pattern; other products are dropped. L and U are kept as two
// matrices in compressed rows with ascending columns.
//
// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM, Philadelphia 2003,
// section 10.3.

namespace morlen {

namespace {

constexpr int kUnitLower[3] = {kGeneralMatrix, kLowerTriangle, kUnitDiagonal};
constexpr int kStoredUpper[3] = {kGeneralMatrix, kUpperTriangle, kStoredDiagonal};
constexpr int kNoScaling = 1;

}  // namespace

ILUPreconditioner::ILUPreconditioner(const SparseMatrix& matrix)
    : Preconditioner("ILU"), n(matrix.GiveSize())
{
  Split(matrix);
  SortLines(lower);
  SortLines(upper);
  complete = Factorise();
}

void ILUPreconditioner::Split(const SparseMatrix& matrix)
{
  std::size_t below = 0;
  std::size_t others = 0;
  for (int i = 0; i < n; ++i)
    matrix.ForEachInRow(i, [&](int j, double) { ++(j < i ? below : others); });
  lower.Reserve(static_cast<std::size_t>(n), below);
  upper.Reserve(static_cast<std::size_t>(n), others);

  for (int i = 0; i < n; ++i) {
    matrix.ForEachInRow(i, [&](int j, double value) { (j < i ? lower : upper).Add(j, value); });
    lower.EndLine();
    upper.EndLine();
  }
}

std::size_t ILUPreconditioner::StorageBytes() const
{
  return lower.StorageBytes() + upper.StorageBytes();
}

bool ILUPreconditioner::HasPivot(int i) const
{
  const int first = upper.starts[i];
  if (first == upper.starts[i + 1] || upper.indices[first] != i)
    return false;
  const double pivot = upper.values[first];
  return pivot != 0.0 && std::isfinite(pivot);
}

// Marks the entries of the row in work by their columns, so that none is searched for.
bool ILUPreconditioner::Factorise()
{
  std::vector<double*> entry(static_cast<std::size_t>(n), nullptr);
  const auto mark = [&](CompressedRows& rows, int i, bool present) {
    for (int s = rows.starts[i]; s < rows.starts[i + 1]; ++s)
      entry[rows.indices[s]] = present ? &rows.values[s] : nullptr;
  };
  for (int i = 0; i < n; ++i) {
    CheckInterruption();
    mark(lower, i, true);
    mark(upper, i, true);
    EliminateRow(i, entry.data());
    if (!HasPivot(i))
      return false;
    mark(lower, i, false);
    mark(upper, i, false);
  }
  return true;
}

void ILUPreconditioner::EliminateRow(int i, double* const* entry)
{
  for (int s = lower.starts[i]; s < lower.starts[i + 1]; ++s) {
    const int k = lower.indices[s];
    const int pivot = upper.starts[k];
    const double factor = lower.values[s] /= upper.values[pivot];
    for (int t = pivot + 1; t < upper.starts[k + 1]; ++t)
      if (double* const target = entry[upper.indices[t]])
        *target -= factor * upper.values[t];
  }
}

void ILUPreconditioner::solve(const double* x, double* y) const
{
  if (!complete) {
    FillWithNaN(y, n);
    return;
  }
  dcsrsm(0, kNoScaling, kUnitLower, lower.View(), x, y);
  dcsrsm(0, kNoScaling, kStoredUpper, upper.View(), y, y);
}

void ILUPreconditioner::trans_solve(const double* x, double* y) const
{
  if (!complete) {
    FillWithNaN(y, n);
    return;
  }
  dcsrsm(1, kNoScaling, kStoredUpper, upper.View(), x, y);
  dcsrsm(1, kNoScaling, kUnitLower, lower.View(), y, y);
}

void ILUPreconditioner::New_Matrix(const SparseMatrix&)
{
  Fatal("Wrong use of ILUPreconditioner::New_Matrix");
}

}  // namespace morlen
