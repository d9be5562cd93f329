#include "mpi/worker.h"

#include <mpi.h>

#include <cmath>
#include <cstdlib>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "assembly/element_assembly.h"
#include "assembly/element_family.h"
#include "assembly/internal_forces.h"
#include "assembly/solution.h"
#include "base/errorwriter.h"
#include "direct/blas_kernels.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "mpi/ranks.h"
#include "numeric/plex_range.h"
#include "results/strengths.h"
#include "run/element_families.h"

namespace morlen::mpi {

namespace {

ReaVecV VectorOf(const std::vector<double>& values)
{
  ReaVecV vector(static_cast<int>(values.size()));
  std::copy(values.begin(), values.end(), vector.Data());
  return vector;
}

std::span<const double> ValuesOf(const ReaVecV& vector)
{
  return {vector.Data(), static_cast<std::size_t>(vector.Size())};
}

ReaVecV ReadVector(ByteReader& in)
{
  return VectorOf(in.GetAll<double>());
}

/// The equation of the whole problem with an entry that is not a number; 0 for none.
int NotFinite(const Part& part, const direct::Coordinates& entries)
{
  const int n = part.problem.components.count;
  for (std::int64_t k = 0; k < entries.Count(); ++k) {
    const int column = entries.columns[k] - 1;
    if (!std::isfinite(entries.values[k]))
      return part.problem.components.Equation(part.nodes[column / n], column % n + 1);
  }
  return 0;
}

/// A message that begins with true for an answer and with false for an error.
Bytes Failure(std::string_view message, std::string_view hint)
{
  ByteWriter out;
  out.Put(false);
  out.PutText(message);
  out.PutText(hint);
  return out.Take();
}

// Prints the message and ends all ranks: the others wait for this one within a library, or memory
// has run out.
void AbortAll(std::string_view message)
{
  std::fwrite(message.data(), 1, message.size(), stderr);
  std::fflush(stderr);
  MPI_Abort(MPI_COMM_WORLD, ErrorWriter::kExitStatus);
}

// Sends the error to the first rank, which reports it, and waits for the end.
void HandOver(std::string_view message)
{
  errorwriter.SetEndOfRun(AbortAll);  // of an error here
  Send(kFirstRank, Failure(message, errorwriter.Hint()));
  ReceiveLater(kFirstRank);
  MPI_Finalize();
  std::_Exit(ErrorWriter::kExitStatus);
}

}  // namespace

void Worker::Do(Command command, ByteReader& in, ByteWriter& answer)
{
  switch (command) {
    case Command::TakePart:
      return TakePart(in);
    case Command::Assemble:
      return Assemble(answer);
    case Command::Analyse:
      return Analyse(in, answer);
    case Command::Factorise:
      return Factorise(in, answer);
    case Command::Solve:
      return Solve(in, answer);
    case Command::MakeGrids:
      return MakeGrids(in);
    case Command::Iterate:
      return Iterate(in, answer);
    case Command::Forces:
      return AddForces(in, answer);
    case Command::Strengths:
      return CalcStrengths(in, answer);
    case Command::Free:
      return Free();
    case Command::End:
      return;
  }
}

void Worker::TakePart(ByteReader& in)
{
  part = UnpackPart(in);
}

void Worker::Assemble(ByteWriter& answer)
{
  direct::ReserveBlasMemory();  // here, where an error of any rank is told once
  matrix.emplace(*part);
  const Problem& problem = part->problem;
  for (const auto& mesh : problem.meshes)
    FamiliesOf(problem).Of(*mesh).addStiffness(problem, *mesh, kInSupportAxes, *matrix);
  const std::vector<double> loads = matrix->ApplySupports();
  const std::vector<double> diagonal = matrix->Diagonal();
  entries = matrix->TakeEntries();
  answer.Put(entries.Count());
  answer.Put(NotFinite(*part, entries));
  answer.PutAll(loads);
  answer.PutAll(diagonal);
}

void Worker::Analyse(ByteReader& in, ByteWriter& answer)
{
  const int equations = in.Get<int>();
  FreeSolver();
  factors = std::make_unique<DistributedFactors>();
  RenumberAsWhole(*part, entries);
  answer.Put(factors->Analyse(equations, std::move(entries), in.GetAll<int>()));
}

void Worker::Factorise(ByteReader& in, ByteWriter& answer)
{
  FactorAnswer result;
  result.outcome = factors->Factorise(in.Get<bool>());
  result.size = factors->Size();
  matrix.reset();
  answer.Put(result);
}

void Worker::Solve(ByteReader& in, ByteWriter& answer)
{
  const int count = in.Get<int>();
  std::vector<double> sides = in.GetAll<double>();
  answer.Put(factors->Solve(sides, count));
  answer.PutAll(sides);
}

void Worker::MakeGrids(ByteReader& in)
{
  multigrid.emplace();
  multigrid->EnterMatrix(*part, NumberFreeEquations(*part, in.GetAll<int>()), entries);
  matrix.reset();
  entries = {};
  multigrid->MakeGrids(*part);
}

void Worker::Iterate(ByteReader& in, ByteWriter& answer)
{
  std::vector<double> side = in.GetAll<double>();
  answer.Put(multigrid->Solve(side));
  answer.PutAll(side);
}

void Worker::AddForces(ByteReader& in, ByteWriter& answer)
{
  std::vector<SplitVector> displacements(static_cast<std::size_t>(in.Get<int>()));
  for (SplitVector& u : displacements) {
    u.value = ReadVector(in);
    u.rest = ReadVector(in);
  }
  const Problem& problem = part->problem;
  InternalForces forces({displacements.begin(), displacements.end()}, problem.Equations(),
                        problem.components.count);
  morlen::AddForces(problem, FamiliesOf(problem), forces);
  for (int index = 0; index < forces.Count(); ++index)
    answer.PutAll(ValuesOf(forces.Forces(index)));
}

void Worker::CalcStrengths(ByteReader& in, ByteWriter& answer)
{
  const int mesh = in.Get<int>();
  Solution solution;
  solution.displacements = ReadVector(in);
  solution.displacementRests = ReadVector(in);
  morlen::CalcStrengths(part->problem, FamiliesOf(part->problem), mesh, solution);
  const MeshResults& results = solution.results[mesh];
  answer.Put(results.blockSize);
  for (const ReaVecV* values : {&results.strengths, &results.mainAngles, &results.mainStrengths})
    answer.PutAll(ValuesOf(*values));
}

void Worker::FreeSolver()
{
  if (factors)
    factors->End();
  factors.reset();
  if (multigrid)
    multigrid->End();
  multigrid.reset();
}

void Worker::Free()
{
  FreeSolver();
  matrix.reset();
  entries = {};
}

void Serve()
{
  Worker worker;
  for (;;) {
    const Bytes message = ReceiveLater(kFirstRank);
    ByteReader in(message);
    const auto command = in.Get<Command>();
    if (command == Command::End)
      return;
    errorwriter.SetEndOfRun(IsTogether(command) ? AbortAll : HandOver);
    ByteWriter answer;
    answer.Put(true);
    worker.Do(command, in, answer);
    Send(kFirstRank, answer.Take());
  }
}

}  // namespace morlen::mpi
