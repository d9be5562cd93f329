#pragma once

#include "solvers/compressed_rows.h"

namespace morlen {

// Products and triangular solves on compressed storage, by columns (CompCol_...) or by rows
// (CompRow_...). Not used by the analysis itself, whose matrices are blocks or profiles.
//
// "Unit": the diagonal is 1 and not stored. "Diag": it is stored, as the first entry of a line in
// a lower triangle by columns or an upper one by rows, else as the last. The other entries of a
// line may have any order. x may be b, except in the products.

void CompCol_LowerUnitSolve(const CompressedView& L, const double* b, double* x);
void CompCol_LowerDiagSolve(const CompressedView& L, const double* b, double* x);
void CompCol_UpperUnitSolve(const CompressedView& U, const double* b, double* x);
void CompCol_UpperDiagSolve(const CompressedView& U, const double* b, double* x);
void CompRow_LowerUnitSolve(const CompressedView& L, const double* b, double* x);
void CompRow_LowerDiagSolve(const CompressedView& L, const double* b, double* x);
void CompRow_UpperUnitSolve(const CompressedView& U, const double* b, double* x);
void CompRow_UpperDiagSolve(const CompressedView& U, const double* b, double* x);

/// y = A·x.
void CompColMatVec(const CompressedView& A, const double* x, double* y);
void CompRowMatVec(const CompressedView& A, const double* x, double* y);

/// The codes of a matrix descriptor, three numbers: kind of matrix, stored triangle, diagonal.
enum DescriptorCode : int
{
  kGeneralMatrix = 0,
  kLowerTriangle = 1,
  kUpperTriangle = 2,
  kStoredDiagonal = 0,
  kUnitDiagonal = 1
};

/// Solves T·x = b, or Tᵀ·x = b when transa is not 0, T in column storage. descra describes T
/// as it is stored; unitd, the scaling, must be 1. Fatal on any other code.
void dcscsm(int transa, int unitd, const int descra[3], const CompressedView& T, const double* b,
            double* x);

/// The same with T in row storage.
void dcsrsm(int transa, int unitd, const int descra[3], const CompressedView& T, const double* b,
            double* x);

}  // namespace morlen
