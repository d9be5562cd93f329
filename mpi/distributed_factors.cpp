#include "mpi/distributed_factors.h"

#include <dmumps_c.h>
#include <mpi.h>
#include <time.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "mpi/ranks.h"

namespace morlen::mpi {

namespace {

// Values of `job`.
constexpr int kBegin = -1;
constexpr int kEnd = -2;
constexpr int kAnalyse = 1;
constexpr int kFactorise = 2;
constexpr int kSolve = 3;

constexpr int kWholeGroup = -987654;  // the communicator MPI_COMM_WORLD

struct Failure
{
  int first, last;  ///< statuses
  const char* sentence;
};

constexpr Failure kFailures[] = {
    {-7, -5, "Not space available on heap"},
    {-13, -13, "Not space available on heap"},
    {-20, -19, "Not space available on heap"},
    {-53, -51,
     "error: the solver Direct has failed: the matrix is too large for its 32 bit integers\n"},
    {-79, -70, "error: the solver Direct has failed: its files cannot be used\n"},
    {-99, -90,
     "error: the solver Direct has failed: its temporary files cannot be written or read\n"},
};

/// The part of a diagonal entry that is added to it after a pivot of 0.
constexpr double kPerturbation = 1e-13;

/// Percent of the estimated memory that are added to it.
constexpr int kMoreMemory = 20;
constexpr int kMostMemory = 10000;

/// The demand of the rank where the least memory is left after it.
MemoryDemand LeastRest(MemoryDemand demand)
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

double ProcessorSeconds()
{
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

}  // namespace

struct DistributedFactors::Instance : DMUMPS_STRUC_C
{
  // The arrays of the library count from 1 in its manual.
  MUMPS_INT& Control(int k) { return icntl[k - 1]; }
  MUMPS_INT Info(int k) const { return info[k - 1]; }
  MUMPS_INT GlobalInfo(int k) const { return infog[k - 1]; }
};

DistributedFactors::DistributedFactors() : mumps(std::make_unique<Instance>())
{
  mumps->comm_fortran = kWholeGroup;
  mumps->par = 1;
  mumps->sym = 1;
  Run(kBegin);
  for (const int stream : {1, 2, 3})
    mumps->Control(stream) = -1;
  mumps->Control(4) = 0;
  mumps->Control(5) = 0;
  mumps->Control(6) = 0;
  mumps->Control(7) = 1;   // the order is given
  mumps->Control(8) = 0;   // no scaling: it changes nothing without a search for pivots
  mumps->Control(13) = 1;  // the last front stays symmetric
  mumps->Control(14) = kMoreMemory;
  mumps->Control(18) = 3;  // distributed entries
  mumps->Control(28) = 1;  // analysis on the first rank
}

DistributedFactors::~DistributedFactors() = default;

void DistributedFactors::End()
{
  Run(kEnd);
}

FactorOutcome DistributedFactors::Run(int job)
{
  mumps->job = job;
  dmumps_c(mumps.get());
  return {.status = mumps->GlobalInfo(1), .detail = mumps->GlobalInfo(2)};
}

FactorOutcome DistributedFactors::Analyse(int equations, direct::Coordinates entries,
                                          std::vector<int> order)
{
  matrix = std::move(entries);
  mumps->n = equations;
  mumps->nnz_loc = matrix.Count();
  mumps->irn_loc = matrix.rows.data();
  mumps->jcn_loc = matrix.columns.data();
  mumps->a_loc = matrix.values;
  mumps->perm_in = order.data();
  const FactorOutcome outcome = Run(kAnalyse);
  mumps->perm_in = nullptr;
  return outcome;
}

MemoryDemand DistributedFactors::Demand(bool outOfCore) const
{
  constexpr int kInMemory = 15;
  constexpr int kOutOfCore = 17;
  constexpr double kMegabyte = 1e6;
  const double own = mumps->Info(outOfCore ? kOutOfCore : kInMemory);
  MPI_Comm machine = MPI_COMM_NULL;
  MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, OwnRank(), MPI_INFO_NULL, &machine);
  MemoryDemand demand{.needed = 0.0, .left = static_cast<double>(AvailableMemory()) / kMegabyte};
  MPI_Allreduce(&own, &demand.needed, 1, MPI_DOUBLE, MPI_SUM, machine);
  MPI_Allreduce(MPI_IN_PLACE, &demand.left, 1, MPI_DOUBLE, MPI_MIN, machine);
  MPI_Comm_free(&machine);
  return LeastRest(demand);
}

FactorOutcome DistributedFactors::RunWithRoom(int job)
{
  FactorOutcome outcome = Run(job);
  for (int& percent = mumps->Control(14); outcome.NeedsRoom() && percent < kMostMemory;
       outcome = Run(job))
    percent *= 2;
  return outcome;
}

FactorOutcome DistributedFactors::Factorise(bool outOfCore)
{
  const double before = ProcessorSeconds();
  mumps->Control(22) = outOfCore ? 1 : 0;
  // The name of a folder that is too long is cut; MUMPS then fails on all ranks.
  if (outOfCore)
    files.MakeFolder(mumps->ooc_tmpdir, mumps->ooc_prefix);
  FactorOutcome outcome = RunWithRoom(kFactorise);
  if (outcome.IsSingular()) {
    for (std::int64_t k = 0; k < matrix.Count(); ++k) {
      if (matrix.rows[k] == matrix.columns[k])
        matrix.values[k] += kPerturbation * matrix.values[k];
    }
    outcome = RunWithRoom(kFactorise);
  }
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
  const FactorOutcome outcome = RunWithRoom(kSolve);
  mumps->rhs = nullptr;
  return outcome;
}

void RequireSuccess(const FactorOutcome& outcome)
{
  if (outcome.status >= 0)
    return;
  const auto* found =
      std::find_if(std::begin(kFailures), std::end(kFailures), [&](const Failure& failure) {
        return failure.first <= outcome.status && outcome.status <= failure.last;
      });
  if (found == std::end(kFailures))
    Fatal("error: the solver Direct has failed (", outcome.status, ", ", outcome.detail, ")\n");
  Fatal(found->sentence);
}

}  // namespace morlen::mpi
