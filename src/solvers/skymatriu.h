#pragma once

#include <cstddef>
#include <ostream>
#include <span>
#include <vector>

#include "base/large_array.h"
#include "base/processor.h"
#include "numeric/reavecv.h"
#include "solvers/direct_solver.h"
#include "solvers/pivot_check.h"

namespace morlen {

struct LdltKernel;

/// An equation and a stiffness that was added to its diagonal.
struct HeldEquation
{
  int equation;
  double stiffness;
};

/// Symmetric matrix stored by profile, factorised in place as L·D·Lᵀ.
///
/// Row i holds its entries from the diagonal leftwards to the first column that was declared; the
/// upper triangle has the same entries. An entry outside the profile reads as
/// 0, and writing it changes nothing in the matrix.
///
/// After Solver the storage holds the factors. SetToZero makes the object ready for another
/// assembly on the same profile.
class SkyMatriu : public DirectSolver
{
public:
  /// Factorises with the instructions of the processor, which this one must have.
  explicit SkyMatriu(int n, Processor processor = ThisProcessor());

  int GiveSize() const override { return n; }
  void EnterMaxDiff(int node1, int node2, int ndof) override;

  /// Declares that two equations couple.
  void EnterMaxDiff(int eq1, int eq2);

  /// Stores also the whole diagonal block of every node, declared or not. Fatal when the profile
  /// does not fit into memory.
  void Create(int ndof) override;

  /// The entry of the profile. Outside the profile, a scratch value that all such entries share and
  /// that every access sets to 0.
  double& operator()(int i, int j) override;

  /// Entry (j, i), i <= j, which must lie inside the profile.
  double& val(int i, int j) { return rows[j - 1][j - i]; }

  void SetToZero() override;

  /// Adds only the part of m on and above the diagonal of the matrix: the caller hands over whole
  /// symmetric blocks.
  void AddSubMatriu(int row, int col, const Matriu& m) override;

  const char* Name() const override { return "SkyLine"; }

  /// Txolesky, with a message on success.
  int Factorise(std::FILE* info) override;

  /// Factorises in place, without pivoting. Returns 0, or the first equation whose pivot is
  /// refused: not a number, below 1e-15, or only rounding error (see AcceptsPivot). Progress
  /// every 500 equations.
  int Txolesky(std::FILE* info);

  void AcceptLostPivots() override { lostPart = 0.0; }

  /// From now on, an equation whose pivot is refused is held: its diagonal entry, or 1 if that is
  /// below 1e-15, is added to its diagonal and the factorisation goes on. Each motion without
  /// energy that the pivots show is then held at one equation.
  void HoldRefusedPivots() { holdsRefused = true; }

  /// The equations that the last factorisation has held, ascending.
  const std::vector<HeldEquation>& HeldEquations() const { return held; }

  /// After Txolesky has refused this equation: the motion u with u = 1 there and 0 in the equations
  /// after it, for which K·u is 0 in the equations before it and the pivot in this one.
  ReaVecV MotionOfRefused(int equation) const override;

  void Substitute(const RightHandSides& sides, std::FILE* info) const override;

  /// Moves column eq to the right-hand sides and leaves a 1 on its diagonal, so that the
  /// matrix stays symmetric. Work: the rows that reach column eq, see lastRow.
  int ApplyConstraint(int eq, std::span<const double> prescribed,
                      std::span<ReaVecV* const> sides) override;
  using BSolver::ApplyConstraint;

  /// Sets row and column eq to 0, except the diagonal.
  void EraseRowColumn(int eq);

  double ReturnRowPerVector(int i, const ReaVecV& v) const override;

  /// The first equation all of whose entries are 0 (below 1e-15); 0 when there is none. Not used by
  /// the analysis itself.
  int HasVoidRows() const;

  /// Writes a warning to the stream of the error writer for every equation whose row is a multiple
  /// of row eq; the run goes on. Not used by the analysis itself.
  void CheckDegree(int eq) const;

  void PrintTo(std::ofstream& out) const override;

  /// Like PrintTo, with the entries outside the profile. Not used by the analysis itself.
  void PrintToFull(std::ostream& out) const;

  void CopyFromYouToMat(Matriu& m) const override;

  /// Draws entry (i, j) as a quadrilateral whose four nodes carry its value.
  void WriteForKiv(std::ofstream& mesh, std::ofstream& res) const override;

  void PrintInfoMem(std::FILE* info) const override;

  /// Number of entries of row i that are stored.
  int GiveHeight(int i) const { return heights[i - 1]; }

  /// The loops of the factorisation.
  const LdltKernel& Kernel() const { return *kernel; }

  bool IsFactorised() const override { return factorised; }

  /// Before Create: the bytes of the entries that Create(ndof) will allocate with the couplings
  /// declared so far. After it, without an argument: the bytes that are allocated.
  std::size_t StorageBytes(int ndof = 1) const;

private:
  /// Height of row i once the diagonal block of its node is in the profile.
  int HeightWithBlock(int i, int ndof) const;
  void AllocateRows();
  void FindLastRows();

  /// Entry (i, j); null outside the profile.
  double* Find(int i, int j) const;
  double Value(int i, int j) const;

  /// Calls visit(j, entry) for every stored entry (i, j) of the whole symmetric row i,
  /// j ascending.
  template <class Visit>
  void ForEachInRow(int i, Visit visit) const;

  /// Whether row i is a multiple of the row given by its n entries `row`, of which those in
  /// the columns `significant` are not 0.
  bool IsMultiple(int i, const std::vector<double>& row, const std::vector<int>& significant) const;

  void PrintRowTo(std::ostream& out, int i) const;

  int n;
  const LdltKernel* kernel;
  std::vector<int> heights;   ///< of row i at i - 1: entries from the diagonal leftwards
  LargeArray<double> values;  ///< one array for all rows; empty before Create
  std::vector<double*> rows;  ///< into values; element d of row i is entry (i, i - d)

  /// For equation i, at i - 1: the last row that begins at or before column i. No later row has an
  /// entry in column i, so that work on row and column i ends there instead of passing over all n
  /// rows. Create finds it: the last row beginning in each column, then the maximum over the
  /// columns up to i.
  std::vector<int> lastRow;

  double outside = 0.0;  ///< target of operator() outside the profile
  bool factorised = false;
  double lostPart = kLostPart;
  bool holdsRefused = false;
  std::vector<HeldEquation> held;
};

}  // namespace morlen
