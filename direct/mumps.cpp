// The calls of MUMPS. The names ICNTL, CNTL, INFOG and RINFOG, with indices from 1, are those of
// its Users' Guide.

#include "direct/mumps.h"

#include <dmumps_c.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>

#include "base/errorwriter.h"

// MUMPS would end the process here, with a text of its own, after an error in itself.
// The linker wants this name.
extern "C" [[noreturn]] void __wrap_mpi_abort_()  // NOLINT(bugprone-reserved-identifier)
{
  morlen::Fatal("error: the solver Direct has failed: an internal error of its library\n");
}

namespace morlen::direct {

namespace {

constexpr int kStart = -1, kEnd = -2, kAnalyse = 1, kFactorise = 2, kSolve = 3;

/// INFOG(1) of a matrix with a pivot that is 0.
constexpr int kSingular = -10;

struct Failure
{
  int first, last;  ///< of INFOG(1)
  const char* sentence;
};

constexpr Failure kFailures[] = {
    {-7, -5, "Not space available on heap"},
    {-13, -13, "Not space available on heap"},
    {-19, -19, "Not space available on heap"},
    {-22, -22, "an array of the matrix is missing"},
    {-53, -51, "the matrix is too large for its 32 bit integers"},
    {-79, -70, "its files cannot be used"},
    {-99, -90, "its temporary files cannot be written or read"},
};

/// A number of INFOG: a negative one counts millions.
double Count(int number)
{
  constexpr double kMillion = 1e6;
  return number < 0 ? -kMillion * number : number;
}

std::uint64_t Bytes(int megabytes)
{
  constexpr std::uint64_t kMillion = 1000000;
  return kMillion * static_cast<std::uint64_t>(std::max(megabytes, 0));
}

}  // namespace

struct Mumps::Instance
{
  int& Control(int k) { return data.icntl[k - 1]; }
  int Info(int k) const { return data.infog[k - 1]; }

  DMUMPS_STRUC_C data = {};
};

Mumps::Mumps(std::mutex& busy_) : busy(busy_), instance(std::make_unique<Instance>())
{
  constexpr int kCommunicator = -987654, kPositiveDefinite = 1;
  DMUMPS_STRUC_C& data = instance->data;
  data.par = 1;
  data.sym = kPositiveDefinite;
  data.comm_fortran = kCommunicator;
  if (const int result = Call(kStart); result < 0)
    Fail(result);
  for (int stream = 1; stream <= 4; ++stream)
    instance->Control(stream) = 0;  // no messages
  instance->Control(6) = 0;         // rows stay in place
  instance->Control(7) = 1;         // the order is given
  instance->Control(8) = 0;         // no scaling: it changes nothing without a search for pivots
  instance->Control(13) = 1;        // the last front is one like all others
  instance->Control(14) = 20;       // percent of memory above the estimate
  instance->Control(28) = 1;        // analysis in sequence
}

Mumps::~Mumps()
{
  Call(kEnd);
  if (files)
    files->Remove();
}

int Mumps::Call(int job)
{
  const std::lock_guard<std::mutex> alone(busy);
  instance->data.job = job;
  dmumps_c(&instance->data);
  return instance->Info(1);
}

void Mumps::Fail(int result)
{
  const int detail = instance->Info(2);
  const auto* found =
      std::find_if(std::begin(kFailures), std::end(kFailures), [result](const Failure& failure) {
        return failure.first <= result && result <= failure.last;
      });
  if (files)
    files->Remove();
  if (found == std::end(kFailures))
    Fatal("error: the solver Direct has failed (", result, ", ", detail, ")\n");
  const std::string sentence = found->sentence;
  if (sentence.starts_with("Not space"))
    Fatal(sentence);
  Fatal("error: the solver Direct has failed: ", sentence, "\n");
}

Mumps::Sizes Mumps::Analyse(int n, Coordinates& matrix, std::vector<int>& places)
{
  DMUMPS_STRUC_C& data = instance->data;
  data.n = n;
  data.nnz = matrix.Count();
  data.irn = matrix.rows.data();
  data.jcn = matrix.columns.data();
  data.a = matrix.values;
  data.perm_in = places.data();
  if (const int result = Call(kAnalyse); result < 0)
    Fail(result);
  return {.entries = Count(instance->Info(20)),
          .operations = data.rinfog[0],
          .bytes = Bytes(instance->Info(17)),
          .bytesLeast = Bytes(instance->Info(27))};
}

bool Mumps::Factorise(FactorFiles* factorFiles)
{
  files = factorFiles;
  instance->Control(22) = files ? 1 : 0;
  if (files) {
    DMUMPS_STRUC_C& data = instance->data;
    if (!files->MakeFolder(data.ooc_tmpdir, data.ooc_prefix))
      Fatal("error: the name of the folder for temporary files is too long\n");
  }
  int result = Call(kFactorise);
  // The estimate of the memory was too small.
  constexpr int kMostPercent = 10000;
  for (int& percent = instance->Control(14);
       (result == -8 || result == -9) && percent < kMostPercent; result = Call(kFactorise))
    percent *= 2;
  if (result < 0 && result != kSingular)
    Fail(result);
  return result != kSingular;
}

void Mumps::Solve(double* sides, int count)
{
  DMUMPS_STRUC_C& data = instance->data;
  data.rhs = sides;
  data.nrhs = count;
  data.lrhs = data.n;
  instance->Control(27) = count;
  int result = Call(kSolve);
  constexpr int kMostPercent = 10000;
  for (int& percent = instance->Control(14);
       (result == -11 || result == -12 || result == -14) && percent < kMostPercent;
       result = Call(kSolve))
    percent *= 2;
  if (result < 0)
    Fail(result);
}

}  // namespace morlen::direct
