#include "mpi/distributed_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "direct/factor_files.h"
#include "direct/mumps_sizes.h"
#include "direct/node_ordering.h"
#include "mpi/node_parts.h"
#include "mpi/ranks.h"
#include "numeric/matriu.h"

namespace morlen::mpi {

namespace {

[[noreturn]] void NoEntries()
{
  Fatal("error: the entries of a distributed matrix are not available\n");
}

/// The bytes of a Demand. Those of an unknown rest have no end.
std::uint64_t BytesOf(double size)
{
  constexpr double kMost = 1e18;
  return static_cast<std::uint64_t>(std::min(size, kMost));
}

[[noreturn]] void FailForMemory(const FactorAnalysis& analysis)
{
  Explain(
      "the solver Direct takes more machines, or more memory on each; ",
      direct::FactorFiles().Need(
          {.memory = BytesOf(analysis.memoryLeast.needed), .files = BytesOf(analysis.files.needed)},
          {.memory = BytesOf(analysis.memoryLeast.left), .files = BytesOf(analysis.files.left)}));
  constexpr double kMegabyte = 1e6;
  Fatal("error: the factors need ", BytesOf(analysis.memory.needed / kMegabyte),
        " Mb of memory on a machine, and ", BytesOf(analysis.memory.left / kMegabyte),
        " Mb are left\n");
}

/// True when the factors go to files. Fatal when there is room neither in memory nor in files.
bool NeedsFiles(const FactorAnalysis& analysis, std::FILE* info)
{
  if (analysis.memory.Fits())
    return false;
  if (!analysis.memoryLeast.Fits() || !analysis.files.Fits())
    FailForMemory(analysis);
  direct::ReportFiles(direct::FactorFiles().Place(), BytesOf(analysis.memory.left), info);
  return true;
}

void Report(const std::vector<FactorSize>& sizes, bool inFiles, std::FILE* info)
{
  for (std::size_t rank = 0; rank < sizes.size(); ++rank) {
    const auto& [megabytes, seconds] = sizes[rank];
    Progress(info, "Rank %zu: %.0f Mb of memory, %.2f seconds of processor time%s\n", rank,
             megabytes, seconds, inFiles ? ", factors in temporary files" : "");
  }
}

}  // namespace

DistributedMatrix::DistributedMatrix(Team& team_, int nodes, int components_)
    : team(team_),
      size(ArrayLength(nodes, components_)),
      components(components_),
      couplings(std::make_unique<NodeCouplings>(nodes, std::numeric_limits<int>::max()))
{
}

DistributedMatrix::~DistributedMatrix()
{
  team.Order(
      Command::Free, [](int, ByteWriter&) {}, [](int, ByteReader&) {});
}

void DistributedMatrix::EnterMaxDiff(int node1, int node2, int /*ndof*/)
{
  if (node1 == node2)
    return;
  couplings->Add(node1 - 1, node2 - 1);
  couplings->Add(node2 - 1, node1 - 1);
}

void DistributedMatrix::Create(int /*ndof*/)
{
  const NodePattern pattern = couplings->MakePattern();
  couplings.reset();
  UsePattern(pattern);
  partOfNode = PartsOfNodes(pattern, team.Count());
}

// The first call after an assembly adds the loads of all prescribed displacements.
int DistributedMatrix::ApplyConstraint(int eq, std::span<const double> values,
                                       std::span<ReaVecV* const> sides)
{
  if (assembled.loads.Size() > 0) {
    for (ReaVecV* side : sides)
      *side += assembled.loads;
    assembled.loads.resize(0, 0.0);
  }
  for (std::size_t k = 0; k < sides.size(); ++k)
    (*sides[k])(eq) = values[k];
  return eq;
}

int DistributedMatrix::FindRefused() const
{
  for (int i = 1; i <= size; ++i) {
    if (!(std::fabs(assembled.diagonal(i)) > 0.0))
      return i;
  }
  return assembled.notFinite;
}

std::int64_t DistributedMatrix::MatrixValues() const
{
  return std::accumulate(assembled.values.begin(), assembled.values.end(), std::int64_t{0});
}

double& DistributedMatrix::operator()(int /*i*/, int /*j*/)
{
  NoEntries();
}

double DistributedMatrix::ReturnRowPerVector(int /*i*/, const ReaVecV& /*v*/) const
{
  NoEntries();
}

void DistributedMatrix::PrintTo(std::ofstream& /*out*/) const
{
  NoEntries();
}

void DistributedMatrix::CopyFromYouToMat(Matriu& /*m*/) const
{
  NoEntries();
}

void DistributedMatrix::WriteForKiv(std::ofstream& /*mesh*/, std::ofstream& /*res*/) const
{
  NoEntries();
}

void DistributedSolver::UsePattern(const NodePattern& pattern)
{
  order = direct::OrderNodes(pattern);
}

FactorAnalysis DistributedSolver::Analyse(std::FILE* info) const
{
  direct::ReportAnalysis(size, MatrixValues(), info);
  FactorAnalysis analysis;
  team.Order(
      Command::Analyse,
      [&](int rank, ByteWriter& out) {
        out.Put(size);
        out.PutAll(rank == kFirstRank ? direct::PlacesOfEquations(order, components)
                                      : std::vector<int>());
      },
      [&](int, ByteReader& in) { analysis = in.Get<FactorAnalysis>(); });
  RequireSuccess(analysis.outcome);
  direct::ReportSizes(analysis.sizes, info);
  return analysis;
}

int DistributedSolver::Factorise(std::FILE* info)
{
  factorised = false;
  if (const int refused = FindRefused())
    return refused;
  const bool inFiles = NeedsFiles(Analyse(info), info);
  Progress(info, "Factorisation\n");
  FactorOutcome outcome;
  std::vector<FactorSize> sizes;
  team.Order(
      Command::Factorise, [&](int, ByteWriter& out) { out.Put(inFiles); },
      [&](int, ByteReader& in) {
        const auto answer = in.Get<FactorAnswer>();
        outcome = answer.outcome;
        sizes.push_back(answer.size);
      });
  if (outcome.IsSingular())
    return -1;
  RequireSuccess(outcome);
  Progress(info, "Factorisation finished\n");
  Report(sizes, inFiles, info);
  factorised = true;
  return 0;
}

void DistributedSolver::Substitute(const RightHandSides& sides, std::FILE* info) const
{
  direct::ReportSolution(sides.size(), info);
  FactorOutcome outcome;
  team.Order(
      Command::Solve,
      [&](int rank, ByteWriter& out) {
        std::vector<double> all;
        if (rank == kFirstRank) {
          for (const ReaVecV* side : sides)
            all.insert(all.end(), side->Data(), side->Data() + size);
        }
        out.Put(static_cast<int>(sides.size()));
        out.PutAll(all);
      },
      [&](int rank, ByteReader& in) {
        if (rank != kFirstRank)
          return;
        outcome = in.Get<FactorOutcome>();
        const auto all = in.GetAll<double>();
        for (std::size_t k = 0; k < sides.size(); ++k)
          std::copy_n(all.data() + k * size, size, sides[k]->Data());
      });
  RequireSuccess(outcome);
}

}  // namespace morlen::mpi
