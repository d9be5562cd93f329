#pragma once

#include <vector>

#include "solvers/compressed_rows.h"

namespace morlen {

class SparseMatrix;

/// An approximation M of a matrix whose systems are cheap to solve.
///
/// The arrays are as long as the matrix has rows; y may be x. A preconditioner that could not
/// be computed (a pivot that is 0, not finite, or for the Cholesky factor negative) gives
/// NaN, which the iterative methods report as a breakdown.
class Preconditioner
{
public:
  virtual ~Preconditioner() = default;

  /// y = M⁻¹·x.
  virtual void solve(const double* x, double* y) const = 0;
  /// The same for two vectors, with the same bits; by default one after the other.
  virtual void SolveTwo(const double* const x[2], double* const y[2]) const;
  /// y = M⁻ᵀ·x.
  virtual void trans_solve(const double* x, double* y) const = 0;
  /// Always fatal: a preconditioner belongs to the matrix it was made from.
  virtual void New_Matrix(const SparseMatrix& matrix) = 0;

  const char* Name() const { return name; }

  /// Whether the text is, in any case, the name of this class or "Preconditioner".
  bool AreYou(const char* text) const;

protected:
  explicit Preconditioner(const char* name_) : name(name_) {}
  Preconditioner(const Preconditioner&) = default;
  Preconditioner& operator=(const Preconditioner&) = default;

private:
  const char* name;
};

/// The diagonal of the matrix. Fatal when one of its entries is 0 or has no slot.
class DiagPreconditioner : public Preconditioner
{
public:
  explicit DiagPreconditioner(const SparseMatrix& matrix);

  void solve(const double* x, double* y) const override;
  void trans_solve(const double* x, double* y) const override { solve(x, y); }
  void New_Matrix(const SparseMatrix& matrix) override;

private:
  void CopyInvDiagonals(const SparseMatrix& matrix);

  std::vector<double> inverse;
};

/// Incomplete Cholesky factor L·Lᵀ on the pattern of the matrix's lower triangle; the upper
/// one is not looked at. Fatal when a row has no slot on the diagonal.
class ICPreconditioner : public Preconditioner
{
public:
  explicit ICPreconditioner(const SparseMatrix& matrix);

  void solve(const double* x, double* y) const override { ICSolve(x, y); }
  void trans_solve(const double* x, double* y) const override { ICSolve(x, y); }
  void New_Matrix(const SparseMatrix& matrix) override;

  /// L by rows, columns ascending, the diagonal last.
  CompressedView GiveL() const { return lower.View(); }
  bool IsComplete() const { return complete; }

private:
  void CopyLowerTriangle(const SparseMatrix& matrix);
  /// False at the first pivot that has no root.
  bool ICFactor();
  void ICSolve(const double* x, double* y) const;

  CompressedRows lower;
  bool complete;  ///< all rows are factorised
};

/// Sorts each line by index, the values with it.
void SortLines(CompressedRows& matrix);

/// What a preconditioner gives that could not be computed.
void FillWithNaN(double* y, int n);

}  // namespace morlen
