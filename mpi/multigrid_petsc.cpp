#include <petscksp.h>

#include <array>
#include <utility>

#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "model/node.h"
#include "mpi/multigrid.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"

namespace morlen::mpi {

namespace {

constexpr int kMotions = 6;
/// The residual at which an iteration ends, relative to the right-hand side. The refinement of the
/// solution makes it smaller.
constexpr double kTolerance = 1e-6;
constexpr int kMostIterations = 300;

/// Calls a function of the library. A failure is fatal at once: the other ranks may have none, and
/// wait in the next call for this one.
template <class Function, class... Arguments>
void Call(Function function, Arguments... arguments)
{
  const PetscErrorCode status = function(arguments...);
  if (status == PETSC_ERR_MEM)
    Fatal("Not space available on heap");
  if (status != 0)
    Fatal("error: multigrid has failed (", static_cast<int>(status), ")\n");
}

/// Starts the library with the first object that needs it; messages and signals stay ours.
void Start()
{
  PetscBool started = PETSC_FALSE;
  Call(PetscInitialized, &started);
  if (started)
    return;
  Call(PetscOptionsSetValue, nullptr, "-no_signal_handler", "true");
  Call(PetscInitializeNoArguments);
  Call(PetscPushErrorHandler, PetscReturnErrorHandler, nullptr);
}

/// The displacement of a point by one of the six rigid motions: translations, then rotations.
std::array<double, 3> Motion(int motion, const Node& node)
{
  const double x = node(1), y = node(2), z = node(3);
  const std::array<double, 3> motions[kMotions] = {
      {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, -z, y}, {z, 0.0, -x}, {-y, x, 0.0}};
  return motions[motion];
}

/// A rigid motion by equation of the part, in the axes of the supports.
ReaVecV MotionOfPart(const Problem& problem, int motion)
{
  ReaVecV values;
  values.resize(problem.Equations(), 0.0);
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    const std::array<double, 3> moved = Motion(motion, node);
    for (int k = 1; k <= 3; ++k)
      values(problem.Equation(node, k)) = moved[k - 1];
  }
  ConvertGlobalLoadToLocal(problem.GiveNodes(), values, problem.components.count);
  return values;
}

}  // namespace

struct Multigrid::Grids
{
  void MakeMatrix(const direct::Coordinates& entries);
  template <class Visit>
  void ForEachFree(const direct::Coordinates& entries, Visit visit) const;
  void AddMotions(const Part& part);
  void MakeSolver();
  void SetOwn(Vec vector, const double* values);
  void Free();

  FreeEquations equations;
  std::vector<std::pair<int, int>> own;  ///< equation of the part, place in the rank's share
  Mat matrix = nullptr;
  Vec side = nullptr;
  Vec solution = nullptr;
  KSP solver = nullptr;
};

// Both triangles, from the upper one. The matrix is copied once, because the original keeps the way
// of each entry into it.
void Multigrid::Grids::MakeMatrix(const direct::Coordinates& entries)
{
  Mat original = nullptr;
  Call(MatCreate, PETSC_COMM_WORLD, &original);
  Call(MatSetSizes, original, equations.own, equations.own, PETSC_DETERMINE, PETSC_DETERMINE);
  Call(MatSetBlockSize, original, equations.blockSize);
  Call(MatSetType, original, MATAIJ);
  std::size_t count = 0;
  ForEachFree(entries, [&](int, int, double) { ++count; });
  {
    std::vector<PetscInt> rows, columns;
    rows.reserve(count);
    columns.reserve(count);
    ForEachFree(entries, [&](int row, int column, double) {
      rows.push_back(row);
      columns.push_back(column);
    });
    Call(MatSetPreallocationCOO, original, static_cast<PetscCount>(count), rows.data(),
         columns.data());
  }
  {
    std::vector<double> values;
    values.reserve(count);
    ForEachFree(entries, [&](int, int, double value) { values.push_back(value); });
    Call(MatSetValuesCOO, original, values.data(), ADD_VALUES);
  }
  Call(MatDuplicate, original, MAT_COPY_VALUES, &matrix);
  MatDestroy(&original);
  Call(MatSetOption, matrix, MAT_SPD, PETSC_TRUE);
  Call(MatCreateVecs, matrix, &side, &solution);
}

// visit(row, column, value): of both triangles, numbers of free equations.
template <class Visit>
void Multigrid::Grids::ForEachFree(const direct::Coordinates& entries, Visit visit) const
{
  for (std::int64_t k = 0; k < entries.Count(); ++k) {
    const int row = equations.numbers[entries.rows[k] - 1];
    const int column = equations.numbers[entries.columns[k] - 1];
    if (row < 0 || column < 0)
      continue;
    visit(row, column, entries.values[k]);
    if (row != column)
      visit(column, row, entries.values[k]);
  }
}

void Multigrid::Grids::SetOwn(Vec vector, const double* values)
{
  PetscScalar* to = nullptr;
  Call(VecGetArray, vector, &to);
  for (std::size_t k = 0; k < own.size(); ++k)
    to[own[k].second] = values[own[k].first];
  Call(VecRestoreArray, vector, &to);
}

// The motions, made orthonormal one after another.
void Multigrid::Grids::AddMotions(const Part& part)
{
  std::array<Vec, kMotions> motions = {};
  for (int m = 0; m < kMotions; ++m) {
    Call(VecDuplicate, solution, &motions[m]);
    SetOwn(motions[m], MotionOfPart(part.problem, m).Data());
    for (int pass = 0; pass < 2; ++pass) {
      for (int before = 0; before < m; ++before) {
        PetscScalar product = 0.0;
        Call(VecDot, motions[m], motions[before], &product);
        Call(VecAXPY, motions[m], -product, motions[before]);
      }
      PetscReal length = 0.0;
      Call(VecNormalize, motions[m], &length);
    }
  }
  MatNullSpace space = nullptr;
  Call(MatNullSpaceCreate, PETSC_COMM_WORLD, PETSC_FALSE, PetscInt{kMotions}, motions.data(),
       &space);
  Call(MatSetNearNullSpace, matrix, space);
  Call(MatNullSpaceDestroy, &space);
  for (Vec& motion : motions)
    Call(VecDestroy, &motion);
}

void Multigrid::Grids::MakeSolver()
{
  PC grids = nullptr;
  Call(KSPCreate, PETSC_COMM_WORLD, &solver);
  Call(KSPSetOperators, solver, matrix, matrix);
  Call(KSPSetType, solver, KSPCG);
  Call(KSPSetNormType, solver, KSP_NORM_UNPRECONDITIONED);
  Call(KSPSetTolerances, solver, kTolerance, 0.0, PETSC_DEFAULT, kMostIterations);
  Call(KSPGetPC, solver, &grids);
  Call(PCSetType, grids, PCGAMG);
  Call(PCGAMGSetType, grids, PCGAMGAGG);
  Call(PCGAMGSetNSmooths, grids, 1);
  Call(KSPSetOptionsPrefix, solver, "morlen_");
  Call(KSPSetFromOptions, solver);
  Call(KSPSetUp, solver);
}

void Multigrid::Grids::Free()
{
  KSPDestroy(&solver);
  VecDestroy(&side);
  VecDestroy(&solution);
  MatDestroy(&matrix);
}

bool Multigrid::IsAvailable()
{
  return true;
}

Multigrid::Multigrid() : grids(std::make_unique<Grids>()) {}

Multigrid::~Multigrid() = default;

void Multigrid::EnterMatrix(const Part& part, const FreeEquations& equations,
                            const direct::Coordinates& entries)
{
  Start();
  grids->equations = equations;
  // A block of the whole matrix: other ranks may have partly supported nodes.
  MPI_Allreduce(MPI_IN_PLACE, &grids->equations.blockSize, 1, MPI_INT, MPI_MIN, MPI_COMM_WORLD);
  const FreeEquations& free = grids->equations;
  const int n = part.problem.components.count;
  for (std::size_t i = 0; i < free.numbers.size(); ++i) {
    if (free.numbers[i] >= 0 && part.owned[i / n])
      grids->own.emplace_back(static_cast<int>(i), static_cast<int>(grids->own.size()));
  }
  grids->MakeMatrix(entries);
}

void Multigrid::MakeGrids(const Part& part)
{
  grids->AddMotions(part);
  grids->MakeSolver();
}

int Multigrid::Solve(std::span<double> values)
{
  Grids& g = *grids;
  g.SetOwn(g.side, values.data());
  Call(KSPSolve, g.solver, g.side, g.solution);
  KSPConvergedReason reason = KSP_DIVERGED_ITS;
  PetscInt iterations = 0;
  Call(KSPGetConvergedReason, g.solver, &reason);
  Call(KSPGetIterationNumber, g.solver, &iterations);
  std::fill(values.begin(), values.end(), 0.0);
  const PetscScalar* from = nullptr;
  Call(VecGetArrayRead, g.solution, &from);
  for (std::size_t k = 0; k < g.own.size(); ++k)
    values[g.own[k].first] = from[g.own[k].second];
  Call(VecRestoreArrayRead, g.solution, &from);
  return reason > 0 ? iterations : -1;
}

void Multigrid::End()
{
  grids->Free();
}

}  // namespace morlen::mpi
