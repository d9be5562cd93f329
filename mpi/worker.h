#pragma once

#include <memory>
#include <optional>

#include "mpi/bytes.h"
#include "mpi/distributed_factors.h"
#include "mpi/multigrid.h"
#include "mpi/part.h"
#include "mpi/part_matrix.h"

namespace morlen::mpi {

/// The commands that the first rank sends to all.
enum class Command : int
{
  TakePart,   ///< Worker::TakePart
  Assemble,   ///< Worker::Assemble
  Analyse,    ///< Worker::Analyse; all ranks work together
  Factorise,  ///< Worker::Factorise; all ranks work together
  Solve,      ///< Worker::Solve; all ranks work together
  MakeGrids,  ///< Worker::MakeGrids; all ranks work together
  Iterate,    ///< Worker::Iterate; all ranks work together
  Forces,     ///< Worker::AddForces
  Strengths,  ///< Worker::CalcStrengths
  Free,       ///< Worker::Free; all ranks work together
  End
};

/// True for commands during which the ranks wait for each other.
constexpr bool IsTogether(Command command)
{
  return command == Command::Analyse || command == Command::Factorise ||
         command == Command::Solve || command == Command::MakeGrids ||
         command == Command::Iterate || command == Command::Free;
}

/// The work of one rank: its part of the model and its share of the matrix. Every rank has one, the
/// first too.
///
/// A member reads the data of a command and writes the answer.
class Worker
{
public:
  void Do(Command command, ByteReader& in, ByteWriter& answer);

private:
  /// In: the part. Answer: nothing.
  void TakePart(ByteReader& in);
  /// In: nothing. Answer: the number of matrix values; an equation with a value that is not a
  /// number, or 0; the loads of prescribed displacements and the diagonal, by equation of the part.
  void Assemble(ByteWriter& answer);
  /// In: the number of equations; on the first rank their order. Answer: FactorAnalysis.
  void Analyse(ByteReader& in, ByteWriter& answer);
  /// In: true when the factors go to files. Answer: FactorAnswer.
  void Factorise(ByteReader& in, ByteWriter& answer);
  /// In: the number of right-hand sides, and these one after another; none on all ranks but the
  /// first. Answer: the outcome and the solutions.
  void Solve(ByteReader& in, ByteWriter& answer);
  /// In: the number, from 0, of the first free equation of each node of the part. Answer: true when
  /// the grids exist.
  void MakeGrids(ByteReader& in);
  /// In: a right-hand side by equation of the part. Answer: the number of iterations, -1 without
  /// convergence; the solution in the equations that the part owns, else 0.
  void Iterate(ByteReader& in, ByteWriter& answer);
  /// In: the number of displacement vectors, values and rests of each, by equation of the part.
  /// Answer: the forces for each.
  void AddForces(ByteReader& in, ByteWriter& answer);
  /// In: a mesh (from 0), displacements and rests. Answer: the results of the mesh of the part.
  void CalcStrengths(ByteReader& in, ByteWriter& answer);
  void Free();
  void FreeSolver();

  std::unique_ptr<Part> part;
  std::optional<PartMatrix> matrix;  ///< until it is factorised
  direct::Coordinates entries;       ///< of the matrix
  std::unique_ptr<DistributedFactors> factors;
  std::optional<Multigrid> multigrid;
};

/// The answer of a rank to Command::Factorise.
struct FactorAnswer
{
  FactorOutcome outcome;
  FactorSize size;
};

/// Carries out the commands of the first rank until it sends End. For all other ranks.
void Serve();

}  // namespace morlen::mpi
