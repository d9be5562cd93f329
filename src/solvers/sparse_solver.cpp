#include "solvers/sparse_solver.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <utility>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/block_factors.h"
#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"

namespace {

constexpr double kTolerance1 = 1e-05;
constexpr double kTolerance2 = 0.1;
constexpr int kMaxIterations = 3000;

}  // namespace

SparseSolver::SparseSolver(int nnodes, int ndof_)
    : SparseSolver(nnodes, ndof_, kTolerance1, kTolerance2, kMaxIterations)
{
}

SparseSolver::SparseSolver(int nnodes, int ndof_, double tolerance1_, double tolerance2_,
                           int MaxIterations_)
    : n(ArrayLength(std::max(nnodes, 0), ndof_)),
      ndof(ndof_),
      tolerance1(tolerance1_),
      tolerance2(tolerance2_),
      MaxIterations(MaxIterations_),
      couplings(nnodes, MAXNUMNODESAROUNDNODE)
{
}

void SparseSolver::EnterMaxDiff(int node1, int node2, [[maybe_unused]] int ndofOfNodes)
{
  assert(ndofOfNodes == ndof && !matrix);
  AddNeighbour(node1, node2);
  AddNeighbour(node2, node1);
}

void SparseSolver::AddNeighbour(int node, int neighbour)
{
  assert(node >= 1 && node * ndof <= n);
  if (!couplings.Add(node - 1, neighbour - 1))
    Fatal("error: increase parameter MAXNUMNODESAROUNDNODE node=", node, "\n");
}

void SparseSolver::Create([[maybe_unused]] int ndofOfNodes)
{
  assert(ndofOfNodes == ndof && !matrix);
  NodePattern pattern = couplings.TakePattern();
  const auto entries = static_cast<std::uint64_t>(ndof) * ndof * pattern.columns.size();
  const std::uint64_t ofFactors = (entries + static_cast<std::uint64_t>(n) * ndof) / 2;
  RequireMemory((entries + ofFactors) * sizeof(double));
  matrix = std::make_unique<SparseMatrix>(std::move(pattern), ndof);
}

double& SparseSolver::operator()(int i, int j)
{
  return matrix->set(i - 1, j - 1);
}

void SparseSolver::SetToZero()
{
  matrix->NullifyMatrix();
  prescribed.clear();
}

void SparseSolver::AddSubMatriu(int row, int col, const Matriu& m)
{
  if (row < 1 || col < 1 || row - 1 > n - m.Rows() || col - 1 > n - m.Cols())
    Fatal("Sparse Matrix accessing exception -- out of bounds.");
  const int p = (row - 1) / ndof;
  const int q = (col - 1) / ndof;
  const bool ofNodes = m.Rows() == ndof && m.Cols() == ndof;
  if (ofNodes && p * ndof == row - 1 && q * ndof == col - 1) {
    matrix->AddNodeBlock(p, q, m.Data(), false);
    if (p != q)
      matrix->AddNodeBlock(q, p, m.Data(), true);
    return;
  }
  for (int a = 1; a <= m.Rows(); ++a) {
    for (int b = 1; b <= m.Cols(); ++b) {
      matrix->addToLhs(row - 1 + a - 1, col - 1 + b - 1, m(a, b));
      if (row != col)
        matrix->addToLhs(col - 1 + b - 1, row - 1 + a - 1, m(a, b));
    }
  }
}

void SparseSolver::AddElement(const ElementBlocks& element)
{
  assert(element.ndof == ndof);
  matrix->AddElement(element);
}

void SparseSolver::Expect(std::span<const int> nodes, int count)
{
  matrix->Expect(nodes, count);
}

int SparseSolver::ApplyConstraint(int eq, double value, ReaVecV& b)
{
  assert(b.Size() == n);
  b(eq) = value;
  matrix->addToLhs(eq - 1, eq - 1, 0.0);  // a node without elements has no diagonal yet
  matrix->Fix_Row_Dalvek(eq - 1);
  prescribed.push_back(eq - 1);
  return eq;
}

double SparseSolver::ReturnRowPerVector(int i, const ReaVecV& v) const
{
  assert(v.Size() == n);
  return matrix->MultiplyVector(i - 1, v.Data());
}

std::unique_ptr<double[]> SparseSolver::TakeStart(const ReaVecV& b)
{
  std::unique_ptr<double[]> x = std::move(initialValues);
  if (!x)
    x = std::make_unique<double[]>(static_cast<std::size_t>(n));
  for (const int eq : prescribed)
    x[eq] = b.Data()[eq];
  return x;
}

std::unique_ptr<Preconditioner> SparseSolver::MakePreconditioner() const
{
  if (matrix->BlockSize() > 1)
    return std::make_unique<BlockFactors>(*matrix, prescribed);
  return std::make_unique<ILUPreconditioner>(*matrix);
}

int SparseSolver::Solver(ReaVecV& b, std::FILE* info)
{
  assert(matrix && b.Size() == n);
  const std::unique_ptr<double[]> x = TakeStart(b);
  int iterations = MaxIterations;
  double residual = tolerance1;
  const bool converged =
      CG(*matrix, x.get(), b.Data(), *MakePreconditioner(), iterations, residual, info) == 0;
  if (residual < 0.0)
    return -1;
  if (!converged && residual > tolerance2) {
    Progress(info, "Not Solved after %i Iterations\n", iterations);
    return -std::max(iterations, 1);
  }
  if (!converged)
    Progress(info, "After %i Iterations, accepted tolerance of %f\n", iterations, residual);
  std::copy_n(x.get(), n, b.Data());
  return 0;
}

void SparseSolver::PrintTo(std::ofstream& out) const
{
  out << "\nprinting Sparse Matrix size=" << n << "x" << n << "\n" << *matrix;
}

void SparseSolver::CopyFromYouToMat(Matriu&) const
{
  Fatal("error SparseSolver::CopyFromYouToMat not implemented\n");
}

void SparseSolver::WriteForKiv(std::ofstream&, std::ofstream&) const
{
  Fatal("error SparseSolver::WriteForKiv not implemented\n");
}

void SparseSolver::PrintInfoMem(std::FILE* info) const
{
  Progress(info,
           "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
           "Sparse matrix storage with Conjugate gradients\n"
           "Degrees of freedom= %i\n"
           "Total number of positions= %i\n"
           "Amount of memory= %.1fMb\n\n",
           n, matrix->GiveSlots(), static_cast<double>(matrix->StorageBytes()) / (1024.0 * 1024.0));
}
