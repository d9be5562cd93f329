#include "solvers/preconditioner.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "numeric/qsort.h"
#include "solvers/sparse_matrix.h"
#include "solvers/triangular_solve.h"

namespace morlen {

bool Preconditioner::AreYou(const char* text) const
{
  return EqualsNoCase(text, name) || EqualsNoCase(text, "Preconditioner");
}

void Preconditioner::SolveTwo(const double* const x[2], double* const y[2]) const
{
  for (int v = 0; v < 2; ++v)
    solve(x[v], y[v]);
}

void SortLines(CompressedRows& matrix)
{
  const CompressedView view = matrix.View();
  for (int i = 0; i < view.n; ++i)
    if (!std::is_sorted(view.indices + view.starts[i], view.indices + view.starts[i + 1]))
      QSort(matrix.indices.data(), matrix.values.data(), view.starts[i], view.LineLength(i));
}

void FillWithNaN(double* y, int n)
{
  std::fill_n(y, n, std::numeric_limits<double>::quiet_NaN());
}

DiagPreconditioner::DiagPreconditioner(const SparseMatrix& matrix) : Preconditioner("Diagonal")
{
  CopyInvDiagonals(matrix);
}

void DiagPreconditioner::CopyInvDiagonals(const SparseMatrix& matrix)
{
  const int n = matrix.GiveSize();
  inverse.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const double diagonal = matrix(i, i);
    if (diagonal == 0.0)
      Fatal("Diagonal preconditioner failure.\nZero detected in element", i);
    inverse.push_back(1.0 / diagonal);
  }
}

void DiagPreconditioner::solve(const double* x, double* y) const
{
  std::transform(inverse.begin(), inverse.end(), x, y,
                 [](double d, double component) { return d * component; });
}

void DiagPreconditioner::New_Matrix(const SparseMatrix&)
{
  Fatal("Wrong use of DiagPreconditioner::New_Matrix");
}

ICPreconditioner::ICPreconditioner(const SparseMatrix& matrix) : Preconditioner("Cholesky")
{
  CopyLowerTriangle(matrix);
  SortLines(lower);
  complete = ICFactor();
}

void ICPreconditioner::CopyLowerTriangle(const SparseMatrix& matrix)
{
  const int n = matrix.GiveSize();
  std::size_t entries = 0;
  for (int i = 0; i < n; ++i)
    matrix.ForEachInRow(i, [&](int j, double) { entries += j <= i; });
  lower.Reserve(static_cast<std::size_t>(n), entries);

  for (int i = 0; i < n; ++i) {
    bool hasDiagonal = false;
    matrix.ForEachInRow(i, [&](int j, double value) {
      hasDiagonal = hasDiagonal || j == i;
      if (j <= i)
        lower.Add(j, value);
    });
    if (!hasDiagonal)
      Fatal("IC Preconditioner: diagonal not found!");
    lower.EndLine();
  }
}

// Row by row: l(i,k) = (a(i,k) − Σ l(i,j)·l(k,j)) / l(k,k) over j < k, and
// l(i,i)² = a(i,i) − Σ l(i,k)². Entries outside the pattern are dropped (J. A. Meijerink, H. A. van
// der Vorst, An iterative solution method for linear systems of which the coefficient matrix is a
// symmetric M-matrix, Mathematics of Computation 31, 1977). `row` holds row i in full length, so
// that the sum is one pass through row k without a search.
bool ICPreconditioner::ICFactor()
{
  const CompressedView L = lower.View();
  std::vector<double> row(static_cast<std::size_t>(L.n), 0.0);
  for (int i = 0; i < L.n; ++i) {
    const int diagonal = L.starts[i + 1] - 1;
    double pivot = L.values[diagonal];
    for (int s = L.starts[i]; s < diagonal; ++s) {
      const int k = L.indices[s];
      const int offDiagonals = L.LineLength(k) - 1;
      const double* const rowK = L.values + L.starts[k];
      const double sum = IndexedDot<1>(rowK, L.indices + L.starts[k], offDiagonals, row.data());
      row[k] = lower.values[s] = (L.values[s] - sum) / rowK[offDiagonals];
      pivot -= row[k] * row[k];
    }
    if (!(pivot > 0.0 && std::isfinite(pivot)))
      return false;
    lower.values[diagonal] = std::sqrt(pivot);
    for (int s = L.starts[i]; s < diagonal; ++s)
      row[L.indices[s]] = 0.0;
  }
  return true;
}

void ICPreconditioner::ICSolve(const double* x, double* y) const
{
  const CompressedView L = lower.View();
  if (!complete) {
    FillWithNaN(y, L.n);
    return;
  }
  CompRow_LowerDiagSolve(L, x, y);
  CompCol_UpperDiagSolve(L, y, y);  // the rows of L are the columns of its transpose
}

void ICPreconditioner::New_Matrix(const SparseMatrix&)
{
  Fatal("Wrong use of ICPreconditioner::New_Matrix");
}

}  // namespace morlen
