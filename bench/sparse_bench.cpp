#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "measure.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/block_factors.h"
#include "solvers/conjugate_gradients.h"
#include "solvers/ilu_preconditioner.h"
#include "solvers/sparse_solver.h"

namespace morlen {

// The sparse solver on grids of beams, of solids with four nodes and of solids with ten nodes. The
// matrices are far larger than the last cache or ("Small") fit into it. The main counters:
//   read_ratio      the least bytes per second that an iteration moves, over those of a loop that
//                   only reads; at least 0.75 (solids with four nodes), 0.60 (ten nodes),
//                   0.85 (beams)
//   rows_ratio      time of an iteration over that with single entries by rows; at most 0.33;
//                   small grids
//   second_ratio    time of an iteration of two right-hand sides over that of one, less 1
//   iterations      time of the factors (at most 20) or of the assembly, in iterations
//   us_per_element  of the assembly
//   peak_ratio      peak memory over 1.15·16 bytes per entry and 400 bytes per node; at most 1

namespace {

enum class Kind
{
  kBeams,
  kSolids4,
  kSolids10
};

/// Elements on a grid of cells × cells × height cubes: beams along the edges, or six tetrahedra in
/// every cube.
class Grid
{
public:
  Grid(Kind kind_, int cells, int height)
      : kind(kind_),
        steps(kind == Kind::kSolids10 ? 2 : 1),
        sides{cells * steps + 1, cells * steps + 1, height * steps + 1}
  {
  }

  int Components() const { return kind == Kind::kBeams ? 6 : 3; }
  int Nodes() const { return sides[0] * sides[1] * sides[2]; }
  int Equations() const { return Nodes() * Components(); }
  int ClampedEquations() const { return sides[0] * sides[1] * Components(); }
  int Elements() const;

  std::unique_ptr<SparseSolver> MakeMatrix() const;
  void Assemble(SparseSolver& solver) const;
  ReaVecV Load() const;
  /// The matrix, filled and clamped at the bottom.
  std::unique_ptr<SparseSolver> Filled() const;

private:
  /// Calls visit(nodes) for every element, nodes from 0.
  template <class Visit>
  void ForEachElement(Visit visit) const;
  template <class Visit>
  void VisitBeams(int x, int y, int z, Visit visit) const;
  template <class Visit>
  void VisitSolids(int x, int y, int z, Visit visit) const;

  int Node(int x, int y, int z) const { return (z * sides[1] + y) * sides[0] + x; }

  Kind kind;
  int steps;  ///< nodes along the edge of a cube, minus one
  std::array<int, 3> sides;
};

template <class Visit>
void Grid::VisitBeams(int x, int y, int z, Visit visit) const
{
  const std::array<int, 3> at = {x, y, z};
  for (int axis = 0; axis < 3; ++axis) {
    std::array<int, 3> next = at;
    if (++next[axis] < sides[axis])
      visit(std::array{Node(x, y, z), Node(next[0], next[1], next[2])});
  }
}

/// The tetrahedra around the diagonal of a cube. The edges of each follow the axes in another
/// order.
template <class Visit>
void Grid::VisitSolids(int x, int y, int z, Visit visit) const
{
  constexpr int kOrders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  for (const auto& order : kOrders) {
    std::array<std::array<int, 3>, 4> corners = {{{x, y, z}}};
    for (int k = 0; k < 3; ++k) {
      corners[k + 1] = corners[k];
      corners[k + 1][order[k]] += steps;
    }
    std::vector<int> nodes;
    nodes.reserve(10);
    for (int a = 0; a < 4; ++a)
      nodes.push_back(Node(corners[a][0], corners[a][1], corners[a][2]));
    for (int a = 0; a < 4 && kind == Kind::kSolids10; ++a)
      for (int b = a + 1; b < 4; ++b)
        nodes.push_back((nodes[a] + nodes[b]) / 2);  // numbers are linear in the place
    visit(nodes);
  }
}

template <class Visit>
void Grid::ForEachElement(Visit visit) const
{
  for (int z = 0; z < sides[2]; z += steps)
    for (int y = 0; y < sides[1]; y += steps)
      for (int x = 0; x < sides[0]; x += steps) {
        if (kind == Kind::kBeams)
          VisitBeams(x, y, z, visit);
        else if (x + steps < sides[0] && y + steps < sides[1] && z + steps < sides[2])
          VisitSolids(x, y, z, visit);
      }
}

int Grid::Elements() const
{
  int elements = 0;
  ForEachElement([&](const auto&) { ++elements; });
  return elements;
}

std::unique_ptr<SparseSolver> Grid::MakeMatrix() const
{
  auto solver = std::make_unique<SparseSolver>(Nodes(), Components());
  ForEachElement([&](const auto& nodes) {
    for (std::size_t r = 0; r < nodes.size(); ++r)
      for (std::size_t s = r + 1; s < nodes.size(); ++s)
        solver->EnterMaxDiff(nodes[r] + 1, nodes[s] + 1, Components());
  });
  solver->Create(Components());
  return solver;
}

/// Springs with the same full stiffness between all nodes of an element. The matrix is positive
/// definite and has as many entries as that of real elements.
void Grid::Assemble(SparseSolver& solver) const
{
  const int n = Components();
  Matriu apart(n, n), own(n, n);
  for (int a = 1; a <= n; ++a)
    for (int b = 1; b <= n; ++b)
      apart(a, b) = (a == b ? -1.0 : 0.0) - 0.1 * a * b;
  const auto first = [n](int node) { return node * n + 1; };
  ForEachElement([&](const auto& nodes) {
    own = apart;
    own *= 1.0 - static_cast<double>(nodes.size());
    for (std::size_t r = 0; r < nodes.size(); ++r) {
      solver.AddSubMatriu(first(nodes[r]), first(nodes[r]), own);
      for (std::size_t s = r + 1; s < nodes.size(); ++s)
        solver.AddSubMatriu(first(nodes[r]), first(nodes[s]), apart);
    }
  });
}

ReaVecV Grid::Load() const
{
  ReaVecV load(Equations());
  load = 0.0;
  for (int node = Nodes() / 2; node < Nodes(); ++node)
    load(node * Components() + 1 + node % 3) = 1.0;
  return load;
}

std::unique_ptr<SparseSolver> Grid::Filled() const
{
  std::unique_ptr<SparseSolver> solver = MakeMatrix();
  Assemble(*solver);
  ReaVecV load = Load();
  for (int equation = 1; equation <= ClampedEquations(); ++equation)
    solver->ApplyConstraint(equation, 0.0, load);
  return solver;
}

/// The same matrix in single entries.
SparseMatrix InRows(const NodeBlockMatrix& matrix)
{
  std::vector<int> lengths(static_cast<std::size_t>(matrix.GiveSize()), 0);
  for (int i = 0; i < matrix.GiveSize(); ++i)
    matrix.ForEachInRow(i, [&](int, double) { ++lengths[i]; });
  SparseMatrix rows(matrix.GiveSize(), lengths.data());
  for (int i = 0; i < matrix.GiveSize(); ++i)
    matrix.ForEachInRow(i, [&](int j, double value) { rows.addToLhs(i, j, value); });
  return rows;
}

/// Processor time of an iteration with `sides` right-hand sides.
double SecondsPerIteration(const SystemMatrix& A, const Preconditioner& M, const ReaVecV& b,
                           std::size_t sides = 1)
{
  constexpr int iterations = 15;  // few enough that the residual does not underflow
  return Seconds(A.GiveSize() < 30000 ? 15 : 3,
                 [&] {
                   std::vector<double> x(sides * b.Size(), 0.0);
                   std::vector<CgSystem> all;
                   all.reserve(sides);
                   std::vector<CgSystem*> systems;
                   for (std::size_t k = 0; k < sides; ++k)
                     systems.push_back(&all.emplace_back(A, &x[k * b.Size()], b.Data()));
                   for (int i = 0; i < iterations; ++i)
                     CgSystem::Advance(A, M, systems);
                   benchmark::DoNotOptimize(all.front().Residual());
                 }) /
         iterations;
}

void Iteration(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  const NodeBlockMatrix& A = *solver->GiveBlocks();
  const BlockFactors M(A, {});
  const ReaVecV load = grid.Load();
  ReadLoop read;
  std::vector<double> iterations, pairs, reads;
  for (auto _ : state) {  // in turns, so that a busy machine slows all of them
    iterations.push_back(SecondsPerIteration(A, M, load));
    pairs.push_back(SecondsPerIteration(A, M, load, 2));
    reads.push_back(Seconds(1, read));
  }
  benchmark::DoNotOptimize(read.Total());
  const double rate = IterationTraffic(A) / Median(iterations);
  const double readRate = ReadLoop::kBytes / Median(reads);
  state.counters["equations"] = A.GiveSize();
  state.counters["ms_per_iteration"] = 1e3 * Median(iterations);
  state.counters["second_ratio"] = Median(pairs) / Median(iterations) - 1.0;
  state.counters["GB/s"] = 1e-9 * rate;
  state.counters["read_GB/s"] = 1e-9 * readRate;
  state.counters["read_ratio"] = rate / readRate;
}

void IterationInCache(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  const NodeBlockMatrix& A = *solver->GiveBlocks();
  const SparseMatrix rows = InRows(A);
  const BlockFactors M(A, {});
  const ILUPreconditioner rowsM(rows);
  const ReaVecV load = grid.Load();
  std::vector<double> blockTimes, pairTimes, rowTimes;
  for (auto _ : state) {
    blockTimes.push_back(SecondsPerIteration(A, M, load));
    pairTimes.push_back(SecondsPerIteration(A, M, load, 2));
    rowTimes.push_back(SecondsPerIteration(rows, rowsM, load));
  }
  state.counters["equations"] = A.GiveSize();
  state.counters["us_per_iteration"] = 1e6 * Median(blockTimes);
  state.counters["second_ratio"] = Median(pairTimes) / Median(blockTimes) - 1.0;
  state.counters["rows_ratio"] = Median(blockTimes) / Median(rowTimes);
}

/// The matrix and its factor have the same size.
void SetTraffic(benchmark::State& state, const NodeBlockMatrix& A)
{
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(IterationStorage(A) / 2));
}

/// The matrix product alone; Preconditioning measures the two substitutions.
void Product(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  std::vector<double> x(static_cast<std::size_t>(grid.Equations()), 1.0), y = x;
  for (auto _ : state) {
    solver->GiveBlocks()->mult(x.data(), y.data());
    benchmark::ClobberMemory();
  }
  SetTraffic(state, *solver->GiveBlocks());
}

void Preconditioning(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  const BlockFactors M(*solver->GiveBlocks(), {});
  std::vector<double> x(static_cast<std::size_t>(grid.Equations()), 1.0), y = x;
  for (auto _ : state) {
    M.solve(x.data(), y.data());
    benchmark::ClobberMemory();
  }
  SetTraffic(state, *solver->GiveBlocks());
}

void Factors(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  const NodeBlockMatrix& A = *solver->GiveBlocks();
  const double iteration = SecondsPerIteration(A, BlockFactors(A, {}), grid.Load());
  std::vector<double> seconds;
  for (auto _ : state)
    seconds.push_back(
        Seconds(1, [&] { benchmark::DoNotOptimize(BlockFactors(A, {}).IsComplete()); }));
  state.counters["iterations"] = Median(seconds) / iteration;
}

/// The couplings and the pattern of the matrix.
void Pattern(benchmark::State& state, const Grid& grid)
{
  std::vector<double> seconds;
  for (auto _ : state)
    seconds.push_back(Seconds(1, [&] { benchmark::DoNotOptimize(grid.MakeMatrix()); }));
  state.counters["us_per_element"] = 1e6 * Median(seconds) / grid.Elements();
}

void Assembly(benchmark::State& state, const Grid& grid)
{
  const std::unique_ptr<SparseSolver> solver = grid.Filled();
  const NodeBlockMatrix& A = *solver->GiveBlocks();
  const double iteration = SecondsPerIteration(A, BlockFactors(A, {}), grid.Load());
  std::vector<double> seconds;
  for (auto _ : state) {
    solver->SetToZero();
    seconds.push_back(Seconds(1, [&] { grid.Assemble(*solver); }));
  }
  state.counters["us_per_element"] = 1e6 * Median(seconds) / grid.Elements();
  state.counters["iterations"] = Median(seconds) / iteration;
}

/// The whole solution from the couplings on. The peak is relative to the memory before. Run this
/// benchmark alone, so that no freed memory is reused.
void Run(benchmark::State& state, const Grid& grid)
{
  for (auto _ : state) {
    ResetMemoryPeak();
    const double before = MemoryNow();
    const std::unique_ptr<SparseSolver> solver = grid.Filled();
    ReaVecV load = grid.Load();
    for (int equation = 1; equation <= grid.ClampedEquations(); ++equation)
      load(equation) = 0.0;
    state.counters["result"] = solver->Solver(load, nullptr);
    const double allowed = 1.15 * 16.0 * solver->GiveBlocks()->GiveSlots() + 400.0 * grid.Nodes();
    state.counters["peak_ratio"] = (MemoryPeak() - before) / allowed;
  }
}

void RegisterAll()
{
  static const struct
  {
    const char* name;
    Grid large, small;
  } families[] = {
      {"beams", {Kind::kBeams, 31, 32}, {Kind::kBeams, 5, 40}},
      {"solids4", {Kind::kSolids4, 36, 36}, {Kind::kSolids4, 10, 10}},
      {"solids10", {Kind::kSolids10, 18, 18}, {Kind::kSolids10, 4, 4}},
  };
  static const struct
  {
    const char* name;
    void (*run)(benchmark::State&, const Grid&);
    bool small;
    int iterations;
  } figures[] = {
      {"SparseRun", Run, false, 1},
      {"SparseIteration", Iteration, false, 5},
      {"SparseIterationSmall", IterationInCache, true, 5},
      {"SparseProduct", Product, false, 10},
      {"SparseProductSmall", Product, true, 100},
      {"SparsePreconditioning", Preconditioning, false, 10},
      {"SparsePreconditioningSmall", Preconditioning, true, 100},
      {"SparseFactors", Factors, false, 3},
      {"SparsePattern", Pattern, false, 3},
      {"SparseAssembly", Assembly, false, 3},
  };
  for (const auto& figure : figures)
    for (const auto& family : families) {
      const std::string name = std::string(figure.name) + "/" + family.name;
      benchmark::RegisterBenchmark(name.c_str(), figure.run,
                                   figure.small ? family.small : family.large)
          ->Unit(benchmark::kMillisecond)
          ->Iterations(figure.iterations);
    }
}

const bool kRegistered = (RegisterAll(), true);

}  // namespace

}  // namespace morlen
