#include "mpi/distributed_factors.h"

#include <mpi.h>
#include <time.h>

#include <utility>

#include "base/memory_limit.h"
#include "direct/mumps_record.h"
#include "mpi/ranks.h"

namespace morlen::mpi {

namespace {

/// The demand of the rank where the least is left after it.
Demand LeastRest(Demand demand)
{
  struct
  {
    double rest;
    int rank;
  } least = {demand.left - demand.needed, OwnRank()};
  MPI_Allreduce(MPI_IN_PLACE, &least, 1, MPI_DOUBLE_INT, MPI_MINLOC, MPI_COMM_WORLD);
  double values[] = {demand.needed, demand.left};
  MPI_Bcast(values, 2, MPI_DOUBLE, least.rank, MPI_COMM_WORLD);
  return {.needed = values[0], .left = values[1]};
}

/// The ranks that share the memory and the folders of a machine.
class Machine
{
public:
  Machine()
  {
    MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, OwnRank(), MPI_INFO_NULL, &ranks);
  }
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;
  ~Machine() { MPI_Comm_free(&ranks); }

  /// The demand of the machine with the least rest. own: bytes that this rank needs; free: bytes
  /// that it sees as free.
  Demand Of(double own, std::uint64_t free) const
  {
    Demand demand{.needed = own, .left = static_cast<double>(free)};
    MPI_Allreduce(MPI_IN_PLACE, &demand.needed, 1, MPI_DOUBLE, MPI_SUM, ranks);
    MPI_Allreduce(MPI_IN_PLACE, &demand.left, 1, MPI_DOUBLE, MPI_MIN, ranks);
    return LeastRest(demand);
  }

private:
  MPI_Comm ranks = MPI_COMM_NULL;
};

double ProcessorSeconds()
{
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

}  // namespace

DistributedFactors::DistributedFactors() : mumps(std::make_unique<direct::MumpsRecord>())
{
  mumps->Begin();
  mumps->Control(18) = 3;  // distributed entries
}

DistributedFactors::~DistributedFactors() = default;

void DistributedFactors::End()
{
  mumps->End();
}

FactorOutcome DistributedFactors::Outcome(int status) const
{
  return {.status = status, .detail = mumps->GlobalInfo(2)};
}

FactorAnalysis DistributedFactors::Analyse(int equations, direct::Coordinates entries,
                                           std::vector<int> order)
{
  constexpr double kMegabyte = 1e6;
  constexpr int kInMemory = 15, kOutOfCore = 17;
  matrix = std::move(entries);
  mumps->n = equations;
  mumps->nnz_loc = matrix.Count();
  mumps->irn_loc = matrix.rows.data();
  mumps->jcn_loc = matrix.columns.data();
  mumps->a_loc = matrix.values;
  mumps->perm_in = order.data();
  FactorAnalysis analysis;
  analysis.outcome = Outcome(mumps->Run(direct::MumpsRecord::kAnalyse));
  mumps->perm_in = nullptr;
  if (analysis.outcome.status < 0)
    return analysis;
  const Machine machine;
  const std::uint64_t available = AvailableMemory();
  analysis.sizes = mumps->Sizes();
  analysis.memory = machine.Of(kMegabyte * mumps->Info(kInMemory), available);
  analysis.memoryLeast = machine.Of(kMegabyte * mumps->Info(kOutOfCore), available);
  analysis.files = machine.Of(static_cast<double>(mumps->OwnFileBytes()), files.FreeBytes());
  return analysis;
}

FactorOutcome DistributedFactors::Factorise(bool outOfCore)
{
  const double before = ProcessorSeconds();
  mumps->Control(22) = outOfCore ? 1 : 0;
  // The name of a folder that is too long is cut; MUMPS then fails on all ranks.
  if (outOfCore)
    files.MakeFolder(mumps->ooc_tmpdir, mumps->ooc_prefix);
  const FactorOutcome outcome = Outcome(mumps->Factorise(matrix));
  matrix = {};
  mumps->irn_loc = mumps->jcn_loc = nullptr;
  mumps->a_loc = nullptr;
  size = {.megabytes = static_cast<double>(mumps->Info(22)),
          .seconds = ProcessorSeconds() - before};
  return outcome;
}

FactorOutcome DistributedFactors::Solve(std::span<double> sides, int count)
{
  if (OwnRank() == kFirstRank) {
    mumps->rhs = sides.data();
    mumps->nrhs = count;
    mumps->lrhs = mumps->n;
    mumps->Control(27) = count;
  }
  const FactorOutcome outcome = Outcome(mumps->RunWithRoom(direct::MumpsRecord::kSolve));
  mumps->rhs = nullptr;
  return outcome;
}

bool FactorOutcome::IsSingular() const
{
  return status == direct::MumpsRecord::kSingular;
}

void RequireSuccess(const FactorOutcome& outcome)
{
  if (outcome.status < 0)
    direct::FailOfMumps(outcome.status, outcome.detail);
}

}  // namespace morlen::mpi
