#pragma once

#include <vector>

#include "solvers/compressed_rows.h"

namespace morlen {

class SparseMatrix;

/// An approximation M of a matrix, whose systems are cheap to solve.
///
/// The arrays have one number for each row of the matrix; y may be x. When the preconditioner could
/// not be computed (a pivot is 0, not finite or, in the Cholesky factor, negative), the solutions
/// are NaN, which the iterative methods report as a breakdown.
class Preconditioner
{
public:
  virtual ~Preconditioner() = default;

  /// y = M⁻¹·x.
  virtual void solve(const double* x, double* y) const = 0;
  /// The same for two vectors; the result of each is bit for bit that of a separate call. The
  /// default makes these calls.
  virtual void SolveTwo(const double* const x[2], double* const y[2]) const;
  /// y = M⁻ᵀ·x. Not used by the analysis itself.
  virtual void trans_solve(const double* x, double* y) const = 0;
  /// Always fatal: a preconditioner belongs to the matrix it was made from.
  virtual void New_Matrix(const SparseMatrix& matrix) = 0;

  const char* Name() const { return name; }

  /// Whether the text is the name of this class or "Preconditioner", in upper or lower case. Not
  /// used by the analysis itself.
  bool AreYou(const char* text) const;

protected:
  explicit Preconditioner(const char* name_) : name(name_) {}
  Preconditioner(const Preconditioner&) = default;
  Preconditioner& operator=(const Preconditioner&) = default;

private:
  const char* name;
};

/// The diagonal of the matrix. Fatal when one of its entries is 0 or has no slot. Not used by the
/// analysis itself.
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

/// Incomplete Cholesky factors L·Lᵀ on the pattern of the matrix's lower triangle; the upper one is
/// not read. Fatal when a row has no slot on the diagonal. Not used by the analysis itself.
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

/// The solution of a preconditioner that could not be computed.
void FillWithNaN(double* y, int n);

}  // namespace morlen
