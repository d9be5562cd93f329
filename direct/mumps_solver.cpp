// The sparse direct solver: the order of the elimination, the entries for MUMPS, the memory.

#include "direct/mumps_solver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "direct/blas_kernels.h"
#include "direct/node_ordering.h"
#include "numeric/matriu.h"

namespace morlen::direct {

MumpsSolver::MumpsSolver(int nodes_, int ndof_, std::mutex& busy_, std::unique_ptr<OrderPlan> plan_)
    : nodes(nodes_), ndof(ndof_), busy(busy_), plan(std::move(plan_))
{
  ArrayLength(nodes, ndof);
  if (!plan)
    couplings = std::make_unique<NodeCouplings>(nodes, nodes);
}

void MumpsSolver::EnterMaxDiff(int node1, int node2, int /*ndof*/)
{
  if (plan || node1 == node2)
    return;
  couplings->Add(node1 - 1, node2 - 1);
  couplings->Add(node2 - 1, node1 - 1);
}

void MumpsSolver::Create(int /*ndof*/)
{
  if (!plan) {
    plan = std::make_unique<OrderPlan>();
    plan->pattern = couplings->MakePattern();
    plan->order = OrderNodes(plan->pattern);
  }
  couplings.reset();
  order = std::move(plan->order);
  matrix = UpperMatrix(std::move(plan->pattern), ndof);
  plan.reset();
}

double& MumpsSolver::operator()(int i, int j)
{
  if (double* const entry = matrix.Find(i, j))
    return *entry;
  outside = 0.0;
  return outside;
}

void MumpsSolver::SetToZero()
{
  mumps.reset();
  files.reset();
  matrix.SetToZero();
  factorised = false;
}

int MumpsSolver::ApplyConstraint(int eq, std::span<const double> prescribed,
                                 std::span<ReaVecV* const> sides)
{
  matrix.Constrain(eq, prescribed, sides);
  return eq;
}

int MumpsSolver::FindRefused() const
{
  for (int i = 1; i <= GiveSize(); ++i) {
    if (!(std::fabs(*matrix.Find(i, i)) > 0.0))
      return i;
  }
  return 0;
}

void MumpsSolver::ChoosePlace(const MumpsSizes& sizes, std::FILE* info)
{
  const std::uint64_t available = AvailableMemory();
  if (sizes.bytes <= available)
    return;
  files = std::make_unique<FactorFiles>();
  if (sizes.bytesLeast > available || sizes.fileBytes > files->FreeBytes()) {
    Explain(files->Need({.memory = sizes.bytesLeast, .files = sizes.fileBytes},
                        {.memory = available, .files = files->FreeBytes()}));
    Fatal("error: the solver Direct needs ", sizes.bytes / 1000000 + 1, " MB of memory\n");
  }
  ReportFiles(files->Place(), available, info);
}

int MumpsSolver::Factorise(std::FILE* info)
{
  factorised = GiveSize() == 0;
  if (factorised)
    return 0;
  if (const int refused = FindRefused())
    return refused;
  entries = matrix.Compress();
  for (std::int64_t k = 0; k < entries.Count(); ++k) {
    if (!std::isfinite(entries.values[k]))
      return entries.columns[k];
  }
  places = PlacesOfEquations(order, ndof);
  ReserveBlasMemory();
  mumps = std::make_unique<Mumps>(busy);
  ReportAnalysis(GiveSize(), entries.Count(), info);
  const MumpsSizes sizes = mumps->Analyse(GiveSize(), entries, places);
  ReportSizes(sizes, info);
  ChoosePlace(sizes, info);
  Progress(info, "Factorisation\n");
  if (!mumps->Factorise(files.get()))
    return -1;
  Progress(info, "Factorisation finished\n");
  factorised = true;
  return 0;
}

void MumpsSolver::Substitute(const RightHandSides& sides, std::FILE* info) const
{
  ReportSolution(sides.size(), info);
  const auto n = static_cast<std::size_t>(GiveSize());
  if (n == 0)
    return;
  // BLAS rounds a column by a kernel that depends on the number of columns. With one number for all
  // calls, a solution does not depend on the right-hand sides beside it.
  constexpr std::size_t kTogether = 8;
  std::vector<double> block(n * kTogether);
  for (std::size_t first = 0; first < sides.size(); first += kTogether) {
    const std::size_t count = std::min(kTogether, sides.size() - first);
    for (std::size_t k = 0; k < count; ++k)
      std::copy_n(sides[first + k]->Data(), n, block.data() + k * n);
    std::fill(block.data() + count * n, block.data() + block.size(), 0.0);
    mumps->Solve(block.data(), kTogether);
    for (std::size_t k = 0; k < count; ++k)
      std::copy_n(block.data() + k * n, n, sides[first + k]->Data());
  }
}

void MumpsSolver::PrintTo(std::ofstream& out) const
{
  out << "\nprinting Sparse Matrix size=" << GiveSize() << "x" << GiveSize() << "\n";
  for (int i = 1; i <= GiveSize(); ++i) {
    for (int j = 1; j <= GiveSize(); ++j) {
      if (const double* entry = matrix.Find(i, j))
        out << i << " " << j << " " << *entry << "\n";
    }
  }
}

void MumpsSolver::CopyFromYouToMat(Matriu& m) const
{
  m = Matriu(GiveSize(), GiveSize());
  for (int i = 1; i <= GiveSize(); ++i) {
    for (int j = 1; j <= GiveSize(); ++j) {
      const double* const entry = matrix.Find(i, j);
      m(i, j) = entry ? *entry : 0.0;
    }
  }
}

void MumpsSolver::WriteForKiv(std::ofstream&, std::ofstream&) const
{
  Fatal("error MumpsSolver::WriteForKiv not implemented\n");
}

void MumpsSolver::PrintInfoMem(std::FILE* info) const
{
  Progress(info,
           "\nINFORMATION ABOUT STIFFNESS MATRIX\n"
           "Sparse matrix storage with a direct solver\n"
           "Degrees of freedom= %i\n"
           "Total number of positions= %zu\n"
           "Amount of memory= %.1fMb\n\n",
           GiveSize(), matrix.StorageBytes() / sizeof(double), Megabytes(matrix.StorageBytes()));
}

}  // namespace morlen::direct
