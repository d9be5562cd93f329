// MUMPS in one process.

#include "direct/mumps.h"

#include "base/errorwriter.h"
#include "base/interruption.h"
#include "base/memory_limit.h"
#include "direct/mumps_record.h"

// MUMPS would end the process here, with a text of its own, after an error in itself.
// The linker wants this name.
extern "C" [[noreturn]] void __wrap_mpi_abort_()  // NOLINT(bugprone-reserved-identifier)
{
  morlen::Fatal("error: the solver Direct has failed: an internal error of its library\n");
}

namespace morlen::direct {

namespace {

/// A bound of what the analysis allocates: two integers for each entry, arrays of the equations
/// (56 to 64 bytes were seen), and the rounding to pages.
std::size_t AnalysisBytes(int n, std::int64_t entries)
{
  constexpr std::size_t kOfEntry = 8, kOfEquation = 72, kOfPages = 1 << 20;
  return kOfEntry * static_cast<std::size_t>(entries) + kOfEquation * static_cast<std::size_t>(n) +
         kOfPages;
}

}  // namespace

Mumps::Mumps(std::mutex& busy_) : busy(busy_), record(std::make_unique<MumpsRecord>())
{
  Require(Call([](MumpsRecord& r) { return r.Begin(); }));
}

Mumps::~Mumps()
{
  Call([](MumpsRecord& r) { return r.End(); });
  if (files)
    files->Remove();
}

template <class Step>
int Mumps::Call(Step step)
{
  const std::lock_guard<std::mutex> alone(busy);
  return step(*record);
}

void Mumps::Require(int status)
{
  if (status >= 0)
    return;
  if (files)
    files->Remove();
  FailOfMumps(status, record->GlobalInfo(2));
}

MumpsSizes Mumps::Analyse(int n, Coordinates& entries, std::vector<int>& places)
{
  matrix = &entries;
  record->n = n;
  record->nnz = entries.Count();
  record->irn = entries.rows.data();
  record->jcn = entries.columns.data();
  record->a = entries.values;
  record->perm_in = places.data();
  RequireAddressSpace(AnalysisBytes(n, entries.Count()));  // MUMPS checks only some allocations
  Require(Call([](MumpsRecord& r) { return r.Run(MumpsRecord::kAnalyse); }));
  CheckInterruption();
  return record->Sizes();
}

bool Mumps::Factorise(FactorFiles* factorFiles)
{
  files = factorFiles;
  record->Control(22) = files ? 1 : 0;
  if (files && !files->MakeFolder(record->ooc_tmpdir, record->ooc_prefix))
    Fatal("error: the name of the folder for temporary files is too long\n");
  const int status = Call([this](MumpsRecord& r) { return r.Factorise(*matrix); });
  if (status != MumpsRecord::kSingular)
    Require(status);
  CheckInterruption();
  return status != MumpsRecord::kSingular;
}

void Mumps::Solve(double* sides, int count)
{
  record->rhs = sides;
  record->nrhs = count;
  record->lrhs = record->n;
  record->Control(27) = count;
  Require(Call([](MumpsRecord& r) { return r.RunWithRoom(MumpsRecord::kSolve); }));
}

}  // namespace morlen::direct
