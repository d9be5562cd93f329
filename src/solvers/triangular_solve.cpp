#include "solvers/triangular_solve.h"

#include <algorithm>

#include "base/errorwriter.h"

// Substitution in a triangle T, in compressed rows or columns.
//
// By rows, each unknown is its right-hand side less the products with the unknowns found before. By
// columns, each unknown that is found is subtracted, times its column, from the right-hand sides
// that follow. A lower triangle is solved from the first line, an upper one from the last. The
// transpose of a matrix by rows is the same arrays read by columns, with the triangles exchanged:
// one template for rows and one for columns serve all sixteen cases.

namespace morlen {

namespace {

enum class Diagonal
{
  kUnit,
  kFirst,
  kLast
};

// The entries of a line except its diagonal, and the diagonal.
struct Line
{
  const double* values;
  const int* indices;
  int count;
  double diagonal;
};

template <Diagonal diagonal>
Line LineOf(const CompressedView& T, int i)
{
  const int start = T.starts[i];
  const int count = T.LineLength(i);
  if constexpr (diagonal == Diagonal::kUnit)
    return {T.values + start, T.indices + start, count, 1.0};
  else if constexpr (diagonal == Diagonal::kFirst)
    return {T.values + start + 1, T.indices + start + 1, count - 1, T.values[start]};
  else
    return {T.values + start, T.indices + start, count - 1, T.values[start + count - 1]};
}

// Calls solveLine(i) for all lines, from the first (a lower triangle) or from the last.
template <class SolveLine>
void InOrder(int n, bool lower, SolveLine solveLine)
{
  if (lower) {
    for (int i = 0; i < n; ++i)
      solveLine(i);
  } else {
    for (int i = n - 1; i >= 0; --i)
      solveLine(i);
  }
}

// Rows: subtracts the products with the unknowns that are already found.
template <bool lower, Diagonal diagonal>
void SolveRows(const CompressedView& T, const double* b, double* x)
{
  InOrder(T.n, lower, [&](int i) {
    const Line line = LineOf<diagonal>(T, i);
    constexpr int kStep = lower ? 1 : -1;
    const double rest = b[i] - IndexedDot<kStep>(line.values, line.indices, line.count, x);
    x[i] = diagonal == Diagonal::kUnit ? rest : rest / line.diagonal;
  });
}

// Columns: subtracts each unknown, once found, from the right-hand sides that follow.
template <bool lower, Diagonal diagonal>
void SolveColumns(const CompressedView& T, const double* b, double* x)
{
  if (x != b)
    std::copy_n(b, T.n, x);
  InOrder(T.n, lower, [&](int j) {
    const Line line = LineOf<diagonal>(T, j);
    if constexpr (diagonal != Diagonal::kUnit)
      x[j] /= line.diagonal;
    for (int k = 0; k < line.count; ++k)
      x[line.indices[k]] -= line.values[k] * x[j];
  });
}

using Solve = void (*)(const CompressedView&, const double*, double*);

// By [upper][unit].
constexpr Solve kColumnSolves[2][2] = {{CompCol_LowerDiagSolve, CompCol_LowerUnitSolve},
                                       {CompCol_UpperDiagSolve, CompCol_UpperUnitSolve}};
constexpr Solve kRowSolves[2][2] = {{CompRow_LowerDiagSolve, CompRow_LowerUnitSolve},
                                    {CompRow_UpperDiagSolve, CompRow_UpperUnitSolve}};

void CheckDescriptor(int unitd, const int descra[3])
{
  if (unitd != 1)
    Fatal("unitd != 1 not implemented");
  if (descra[0] != kGeneralMatrix)
    Fatal("Must have general matrix");
  if (descra[1] != kLowerTriangle && descra[1] != kUpperTriangle)
    Fatal("Bad descra[1]");
  if (descra[2] != kStoredDiagonal && descra[2] != kUnitDiagonal)
    Fatal("Bad descra[2]");
}

// A matrix by rows is its transpose by columns, with the triangles exchanged.
void SolveStored(bool byRows, int transa, const int descra[3], const CompressedView& T,
                 const double* b, double* x)
{
  const bool transposed = transa != 0;
  const bool upper = (descra[1] == kUpperTriangle) != transposed;
  const bool unit = descra[2] == kUnitDiagonal;
  const auto& solves = byRows != transposed ? kRowSolves : kColumnSolves;
  solves[upper][unit](T, b, x);
}

}  // namespace

void CompCol_LowerUnitSolve(const CompressedView& L, const double* b, double* x)
{
  SolveColumns<true, Diagonal::kUnit>(L, b, x);
}

void CompCol_LowerDiagSolve(const CompressedView& L, const double* b, double* x)
{
  SolveColumns<true, Diagonal::kFirst>(L, b, x);
}

void CompCol_UpperUnitSolve(const CompressedView& U, const double* b, double* x)
{
  SolveColumns<false, Diagonal::kUnit>(U, b, x);
}

void CompCol_UpperDiagSolve(const CompressedView& U, const double* b, double* x)
{
  SolveColumns<false, Diagonal::kLast>(U, b, x);
}

void CompRow_LowerUnitSolve(const CompressedView& L, const double* b, double* x)
{
  SolveRows<true, Diagonal::kUnit>(L, b, x);
}

void CompRow_LowerDiagSolve(const CompressedView& L, const double* b, double* x)
{
  SolveRows<true, Diagonal::kLast>(L, b, x);
}

void CompRow_UpperUnitSolve(const CompressedView& U, const double* b, double* x)
{
  SolveRows<false, Diagonal::kUnit>(U, b, x);
}

void CompRow_UpperDiagSolve(const CompressedView& U, const double* b, double* x)
{
  SolveRows<false, Diagonal::kFirst>(U, b, x);
}

void CompColMatVec(const CompressedView& A, const double* x, double* y)
{
  std::fill_n(y, A.n, 0.0);
  for (int j = 0; j < A.n; ++j)
    for (int k = A.starts[j]; k < A.starts[j + 1]; ++k)
      y[A.indices[k]] += A.values[k] * x[j];
}

void CompRowMatVec(const CompressedView& A, const double* x, double* y)
{
  for (int i = 0; i < A.n; ++i)
    y[i] = IndexedDot<1>(A.values + A.starts[i], A.indices + A.starts[i], A.LineLength(i), x);
}

void dcscsm(int transa, int unitd, const int descra[3], const CompressedView& T, const double* b,
            double* x)
{
  CheckDescriptor(unitd, descra);
  SolveStored(false, transa, descra, T, b, x);
}

void dcsrsm(int transa, int unitd, const int descra[3], const CompressedView& T, const double* b,
            double* x)
{
  CheckDescriptor(unitd, descra);
  SolveStored(true, transa, descra, T, b, x);
}

}  // namespace morlen
