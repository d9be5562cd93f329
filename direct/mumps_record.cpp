// The controls of MUMPS, its second tries and its errors. The names ICNTL, INFO, INFOG and RINFOG
// are those of its Users' Guide.

#include "direct/mumps_record.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/errorwriter.h"

namespace morlen::direct {

namespace {

constexpr int kBegin = -1, kEnd = -2, kFactorise = 2;

/// The part of a diagonal entry that is added to it after a pivot of 0: the refinement takes the
/// change out of the displacements of a stable structure, and shows the motion of another one.
constexpr double kPerturbation = 1e-13;

struct Failure
{
  int first, last;  ///< of INFOG(1)
  const char* sentence;
};

constexpr Failure kFailures[] = {
    {-7, -5, "Not space available on heap"},
    {-13, -13, "Not space available on heap"},
    {-20, -19, "Not space available on heap"},
    {-22, -22, "an array of the matrix is missing"},
    {-53, -51, "the matrix is too large for its 32 bit integers"},
    {-79, -70, "its files cannot be used"},
    {-99, -90, "its temporary files cannot be written or read"},
};

/// True when the estimated memory was too small, in the factorisation or the solution.
bool NeedsRoom(int status)
{
  return status == -8 || status == -9 || status == -11 || status == -12 || status == -14;
}

std::uint64_t Bytes(int megabytes)
{
  constexpr std::uint64_t kMillion = 1000000;
  return kMillion * static_cast<std::uint64_t>(std::max(megabytes, 0));
}

/// A number of INFOG: a negative one counts millions.
double Count(int number)
{
  constexpr double kMillion = 1e6;
  return number < 0 ? -kMillion * number : number;
}

/// places: for entries of the factors, with those that remain 0.
std::uint64_t FileBytes(int places)
{
  return static_cast<std::uint64_t>(sizeof(double) * Count(places));
}

}  // namespace

int MumpsRecord::Begin()
{
  constexpr int kAllProcesses = -987654, kPositiveDefinite = 1;
  par = 1;
  sym = kPositiveDefinite;
  comm_fortran = kAllProcesses;
  const int status = Run(kBegin);
  for (int stream = 1; stream <= 4; ++stream)
    Control(stream) = 0;  // no messages
  Control(6) = 0;         // rows stay in place
  Control(7) = 1;         // the order is given
  Control(8) = 0;         // no scaling: it changes nothing without a search for pivots
  Control(13) = 1;        // the last front is one like all others
  Control(14) = 20;       // percent of memory above the estimate
  Control(28) = 1;        // analysis in sequence
  return status;
}

int MumpsRecord::End()
{
  return Run(kEnd);
}

int MumpsRecord::Run(int jobToDo)
{
  job = jobToDo;
  dmumps_c(this);
  return GlobalInfo(1);
}

int MumpsRecord::RunWithRoom(int jobToDo)
{
  constexpr int kMostPercent = 10000;
  int status = Run(jobToDo);
  for (int& percent = Control(14); NeedsRoom(status) && percent < kMostPercent;
       status = Run(jobToDo))
    percent *= 2;
  return status;
}

int MumpsRecord::Factorise(Coordinates& matrix)
{
  const int status = RunWithRoom(kFactorise);
  if (status != kSingular)
    return status;
  for (std::int64_t k = 0; k < matrix.Count(); ++k) {
    if (matrix.rows[k] == matrix.columns[k])
      matrix.values[k] += kPerturbation * matrix.values[k];
  }
  return RunWithRoom(kFactorise);
}

MumpsSizes MumpsRecord::Sizes() const
{
  return {.entries = Count(GlobalInfo(20)),
          .operations = rinfog[0],
          .bytes = Bytes(GlobalInfo(17)),
          .bytesLeast = Bytes(GlobalInfo(27)),
          .fileBytes = FileBytes(GlobalInfo(3))};
}

std::uint64_t MumpsRecord::OwnFileBytes() const
{
  return FileBytes(Info(3));
}

void FailOfMumps(int status, int detail)
{
  const auto* found =
      std::find_if(std::begin(kFailures), std::end(kFailures), [status](const Failure& failure) {
        return failure.first <= status && status <= failure.last;
      });
  if (found == std::end(kFailures))
    Fatal("error: the solver Direct has failed (", status, ", ", detail, ")\n");
  const std::string sentence = found->sentence;
  if (sentence.starts_with("Not space"))
    Fatal(sentence);
  Fatal("error: the solver Direct has failed: ", sentence, "\n");
}

}  // namespace morlen::direct
