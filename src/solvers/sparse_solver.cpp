#include "solvers/sparse_solver.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <numeric>
#include <utility>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
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
      neighbours(static_cast<std::size_t>(std::max(nnodes, 0)))
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
  std::vector<int>& list = neighbours[node - 1];
  const auto place = std::lower_bound(list.begin(), list.end(), neighbour - 1);
  if (place != list.end() && *place == neighbour - 1)
    return;
  if (list.size() == MAXNUMNODESAROUNDNODE)
    Fatal("error: increase parameter MAXNUMNODESAROUNDNODE node=", node, "\n");
  list.insert(place, neighbour - 1);
}

void SparseSolver::Create([[maybe_unused]] int ndofOfNodes)
{
  assert(ndofOfNodes == ndof && !matrix);
  const std::vector<int> lengths = RowLengths();
  constexpr std::uint64_t kSlot = 2 * (sizeof(double) + sizeof(int));  // of matrix and factors
  RequireMemory(kSlot * std::accumulate(lengths.begin(), lengths.end(), std::uint64_t{0}));
  matrix = std::make_unique<SparseMatrix>(n, lengths.data());
  MakePattern();
}

std::vector<int> SparseSolver::RowLengths() const
{
  std::vector<int> lengths;
  lengths.reserve(static_cast<std::size_t>(std::max(n, 0)));
  for (const std::vector<int>& list : neighbours)
    lengths.insert(lengths.end(), ndof, (static_cast<int>(list.size()) + 1) * ndof);
  return lengths;
}

void SparseSolver::MakePattern()
{
  const int numNodes = static_cast<int>(neighbours.size());
  pattern.starts.assign(1, 0);
  for (int p = 0; p < numNodes; ++p) {
    std::vector<int>& list = neighbours[p];
    const auto place = std::lower_bound(list.begin(), list.end(), p);
    if (place == list.end() || *place != p)
      list.insert(place, p);
    pattern.nodes.insert(pattern.nodes.end(), list.begin(), list.end());
    pattern.starts.push_back(static_cast<int>(pattern.nodes.size()));
  }
  neighbours = {};
}

int SparseSolver::FindGroup(int p, int q) const
{
  const auto first = pattern.nodes.begin() + pattern.starts[p];
  const auto last = pattern.nodes.begin() + pattern.starts[p + 1];
  const auto found = std::lower_bound(first, last, q);
  return found == last || *found != q ? -1 : static_cast<int>(found - first) * ndof;
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

bool SparseSolver::IsNodeBlock(int row, int col, const Matriu& m) const
{
  return m.Rows() == ndof && m.Cols() == ndof && row % ndof == 0 && col % ndof == 0;
}

void SparseSolver::AddSubMatriu(int row, int col, const Matriu& m)
{
  if (row < 1 || col < 1 || row - 1 > n - m.Rows() || col - 1 > n - m.Cols())
    Fatal("Sparse Matrix accessing exception -- out of bounds.");
  if (IsNodeBlock(row - 1, col - 1, m)) {
    const int p = (row - 1) / ndof;
    const int q = (col - 1) / ndof;
    AddNodeBlock(p, q, m.Data(), ndof, 1);
    if (p != q)
      AddNodeBlock(q, p, m.Data(), 1, ndof);
    return;
  }
  for (int a = 1; a <= m.Rows(); ++a) {
    for (int b = 1; b <= m.Cols(); ++b) {
      AddEntry(row - 1 + a - 1, col - 1 + b - 1, m(a, b));
      if (row != col)
        AddEntry(col - 1 + b - 1, row - 1 + a - 1, m(a, b));
    }
  }
}

void SparseSolver::AddNodeBlock(int p, int q, const double* m, int rowStep, int colStep)
{
  const int group = FindGroup(p, q);
  for (int a = 0; a < ndof; ++a, m += rowStep) {
    if (group >= 0)
      matrix->AddRun(p * ndof + a, group, q * ndof, ndof, m, colStep);
    else
      for (int b = 0; b < ndof; ++b)
        matrix->addToLhs(p * ndof + a, q * ndof + b, m[b * colStep]);
  }
}

void SparseSolver::AddEntry(int i, int j, double value)
{
  const int group = FindGroup(i / ndof, j / ndof);
  if (group >= 0)
    matrix->AddRun(i, group + j % ndof, j, 1, &value, 1);
  else
    matrix->addToLhs(i, j, value);
}

int SparseSolver::ApplyConstraint(int eq, double value, ReaVecV& b)
{
  assert(b.Size() == n);
  b(eq) = value;
  AddEntry(eq - 1, eq - 1, 0.0);  // a node without elements has no diagonal yet
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

int SparseSolver::Solver(ReaVecV& b, std::FILE* info)
{
  assert(matrix && b.Size() == n);
  const std::unique_ptr<double[]> x = TakeStart(b);
  int iterations = MaxIterations;
  double residual = tolerance1;
  const bool converged =
      CG(*matrix, x.get(), b.Data(), ILUPreconditioner(*matrix), iterations, residual, info) == 0;
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
