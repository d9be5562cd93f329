#include "solvers/sparse_solver.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/block_factors.h"
#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"

namespace morlen {

namespace {

constexpr double kTolerance1 = 1e-05;
constexpr double kTolerance2 = 0.1;
constexpr int kMaxIterations = 3000;
/// Divided by √n. The entries of a probe have random signs: a free motion is about 1/√n of it, and
/// less than 1/(1000·√n) only once in 1000 cases.
constexpr double kProbeTolerance = 1e-3;

/// Slots of the rows of a matrix with this pattern.
std::vector<int> RowLengths(const NodePattern& pattern, int ndof)
{
  std::vector<int> lengths;
  for (int p = 0; p < pattern.Lines(); ++p) {
    const int blocks = pattern.starts[p + 1] - pattern.starts[p];
    lengths.insert(lengths.end(), static_cast<std::size_t>(ndof), blocks * ndof);
  }
  return lengths;
}

}  // namespace

SparseSolver::SparseSolver(int nnodes, int ndof_, Processor processor_)
    : SparseSolver(nnodes, ndof_, kTolerance1, kTolerance2, kMaxIterations, processor_)
{
}

SparseSolver::SparseSolver(int nnodes, int ndof_, double tolerance1_, double tolerance2_,
                           int MaxIterations_, Processor processor_)
    : n(ArrayLength(std::max(nnodes, 0), ndof_)),
      ndof(ndof_),
      tolerance1(tolerance1_),
      tolerance2(tolerance2_),
      MaxIterations(MaxIterations_),
      processor(processor_),
      probeTolerance(kProbeTolerance / std::sqrt(std::max(n, 1))),
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
  NodePattern pattern = couplings.MakePattern();
  const auto slots = static_cast<std::uint64_t>(ndof) * ndof * pattern.columns.size();
  const std::uint64_t ofFactors = (slots + static_cast<std::uint64_t>(n) * ndof) / 2;
  RequireMemory((slots + ofFactors) * sizeof(double));
  if (NodeBlockMatrix::Suits(ndof)) {
    blocks = std::make_unique<NodeBlockMatrix>(std::move(pattern), ndof, processor);
    matrix = blocks.get();
  } else {
    entries = std::make_unique<SparseMatrix>(n, RowLengths(pattern, ndof).data());
    matrix = entries.get();
  }
}

SystemMatrix& SparseSolver::MatrixToChange()
{
  preconditioner.reset();
  return *matrix;
}

double& SparseSolver::operator()(int i, int j)
{
  return MatrixToChange().set(i - 1, j - 1);
}

void SparseSolver::SetToZero()
{
  MatrixToChange().NullifyMatrix();
  prescribed.clear();
}

void SparseSolver::AddSubMatriu(int row, int col, const Matriu& m)
{
  if (row < 1 || col < 1 || row - 1 > n - m.Rows() || col - 1 > n - m.Cols())
    OutOfBounds();
  SystemMatrix& sum = MatrixToChange();
  const bool ofNodes = m.Rows() == ndof && m.Cols() == ndof;
  if (blocks && ofNodes && (row - 1) % ndof == 0 && (col - 1) % ndof == 0) {
    const int p = (row - 1) / ndof;
    const int q = (col - 1) / ndof;
    blocks->AddNodeBlock(p, q, m.Data(), false);
    if (p != q)
      blocks->AddNodeBlock(q, p, m.Data(), true);
    return;
  }
  for (int a = 1; a <= m.Rows(); ++a) {
    for (int b = 1; b <= m.Cols(); ++b) {
      sum.addToLhs(row - 1 + a - 1, col - 1 + b - 1, m(a, b));
      if (row != col)
        sum.addToLhs(col - 1 + b - 1, row - 1 + a - 1, m(a, b));
    }
  }
}

void SparseSolver::AddElement(const ElementBlocks& element)
{
  assert(element.ndof == ndof);
  if (blocks) {
    MatrixToChange();
    blocks->AddElement(element);
    return;
  }
  for (const int node : element.nodes)
    if (node < 1 || node > n / ndof)
      OutOfBounds();
  BSolver::AddElement(element);
}

void SparseSolver::Prefetch(std::span<const int> nodes, int count)
{
  if (blocks)
    blocks->Prefetch(nodes, count);
}

int SparseSolver::ApplyConstraint(int eq, std::span<const double> values,
                                  std::span<ReaVecV* const> sides)
{
  assert(values.size() == sides.size());
  for (std::size_t k = 0; k < sides.size(); ++k)
    (*sides[k])(eq) = values[k];
  MatrixToChange().addToLhs(eq - 1, eq - 1, 0.0);  // a node without elements has no diagonal yet
  matrix->Fix_Row_Dalvek(eq - 1);
  prescribed.push_back(eq - 1);
  return eq;
}

double SparseSolver::ReturnRowPerVector(int i, const ReaVecV& v) const
{
  assert(v.Size() == n);
  return matrix->MultiplyVector(i - 1, v.Data());
}

std::unique_ptr<double[]> SparseSolver::ConsumeStart(const ReaVecV& b)
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
  if (blocks)
    return std::make_unique<BlockFactors>(*blocks, prescribed);
  return std::make_unique<ILUPreconditioner>(*entries);
}

int SparseSolver::Solver(ReaVecV& b, std::FILE* info)
{
  return Solve(b, nullptr, info);
}

int SparseSolver::Solver(ReaVecV& b, ReaVecV& probe, std::FILE* info)
{
  return Solve(b, &probe, info);
}

void SparseSolver::KeepPreconditioner(bool keep)
{
  keepsPreconditioner = keep;
  if (!keep)
    preconditioner.reset();
}

double SparseSolver::AllLoads(const ReaVecV& b) const
{
  std::vector<double> u(static_cast<std::size_t>(n), 0.0);
  for (const int eq : prescribed)
    u[eq] = b.Data()[eq];
  if (std::all_of(u.begin(), u.end(), [](double value) { return value == 0.0; }))
    return 1.0;
  std::vector<double> loads(u.size());
  matrix->mult(u.data(), loads.data());
  for (int i = 0; i < n; ++i)
    loads[i] = b.Data()[i] - loads[i];
  return std::max(norm(loads.data(), n) / norm(b.Data(), n), 1.0);
}

int SparseSolver::Solve(ReaVecV& b, ReaVecV* probe, std::FILE* info)
{
  assert(matrix && b.Size() == n && (!probe || probe->Size() == n));
  if (!preconditioner)
    preconditioner = MakePreconditioner();
  const std::unique_ptr<double[]> u = ConsumeStart(b);
  std::vector<double> v(probe ? static_cast<std::size_t>(n) : 0, 0.0);
  CheckedIteration model(*matrix, u.get(), b.Data(), {tolerance1, demands, AllLoads(b)});
  std::optional<CheckedIteration> second;
  if (probe)
    second.emplace(*matrix, v.data(), probe->Data(),
                   IterationGoal{probeTolerance, {.quotient = demands.quotient}});
  CheckedIteration::Run(*matrix, *preconditioner, model, second ? &*second : nullptr, MaxIterations,
                        info);
  if (!keepsPreconditioner)
    preconditioner.reset();
  modelReport = model.Report();
  probeReport = second ? second->Report() : IterationReport{};
  if (probe)
    std::copy(v.begin(), v.end(), probe->Data());
  const int result = Judge(info);
  if (result == 0)
    std::copy_n(u.get(), n, b.Data());
  return result;
}

int SparseSolver::Judge(std::FILE* info) const
{
  const IterationReport& report = modelReport;
  if (report.broken)
    return -1;
  if (report.reached)
    return 0;
  const bool acceptable = !demands.AreMade() && !report.left;
  if (!acceptable || !(report.residual <= tolerance2)) {
    Progress(info, "Not Solved after %i Iterations\n", std::min(report.iterations, MaxIterations));
    return -std::max(report.iterations, 1);
  }
  Progress(info, "After %i Iterations, accepted tolerance of %f\n", report.iterations,
           report.residual);
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

}  // namespace morlen
