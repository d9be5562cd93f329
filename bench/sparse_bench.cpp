#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "measure.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "solvers/ilu_preconditioner.h"
#include "solvers/krylov.h"
#include "solvers/sparse_solver.h"

// The sparse solver on a space frame of some 200,000 equations: a regular grid of nodes joined
// by beams, six components a node. The counters ending in "_ratio" are what matters:
// "triad_ratio" traffic in compulsory bytes over that of a plain triad loop, measured in the
// same run; "iterations_ratio" time over that of one iteration; "peak_ratio" peak memory over
// the bytes of the matrix and its factors.

namespace {

constexpr int kComponents = 6;

/// A space frame on a grid of nx × ny × nz nodes, clamped at the bottom.
class Frame
{
public:
  Frame(int nx, int ny, int nz) : sides{nx, ny, nz} {}

  int Nodes() const { return sides[0] * sides[1] * sides[2]; }
  int Equations() const { return Nodes() * kComponents; }
  int ClampedEquations() const { return sides[0] * sides[1] * kComponents; }

  std::unique_ptr<SparseSolver> MakeMatrix() const;
  void Assemble(SparseSolver& solver) const;
  void Clamp(SparseSolver& solver, ReaVecV& load) const;
  ReaVecV Load() const;

private:
  /// Calls visit(first node, second node, axis) for every beam.
  template <class Visit>
  void ForEachBeam(Visit visit) const;

  int sides[3];
};

template <class Visit>
void Frame::ForEachBeam(Visit visit) const
{
  const int steps[3] = {1, sides[0], sides[0] * sides[1]};
  for (int node = 0; node < Nodes(); ++node)
    for (int axis = 0; axis < 3; ++axis)
      if (node / steps[axis] % sides[axis] + 1 < sides[axis])
        visit(node + 1, node + 1 + steps[axis], axis);
}

std::unique_ptr<SparseSolver> Frame::MakeMatrix() const
{
  auto solver = std::make_unique<SparseSolver>(Nodes(), kComponents);
  ForEachBeam([&](int a, int b, int) { solver->EnterMaxDiff(a, b, kComponents); });
  solver->Create(kComponents);
  return solver;
}

/// The three 6×6 blocks of a beam of length 1 along an axis, by the formulas of engineering
/// bending, with unequal stiffnesses.
struct BeamBlocks
{
  Matriu K11{kComponents, kComponents};
  Matriu K12{kComponents, kComponents};
  Matriu K22{kComponents, kComponents};

  explicit BeamBlocks(int axis)
  {
    K11 = K12 = K22 = 0.0;
    AddRod(axis, 100.0);
    AddRod(axis + 3, 1.0);
    const int y = (axis + 1) % 3;
    const int z = (axis + 2) % 3;
    AddBending(y, z + 3, 1.0, 2.0);
    AddBending(z, y + 3, -1.0, 1.0);
  }

private:
  void AddRod(int u, double k)
  {
    K11(u + 1, u + 1) += k;
    K22(u + 1, u + 1) += k;
    K12(u + 1, u + 1) -= k;
  }

  /// Deflection v, rotation t, which is sign times the slope.
  void AddBending(int v, int t, double sign, double EI)
  {
    ++v, ++t;
    K11(v, v) += 12 * EI, K22(v, v) += 12 * EI, K12(v, v) -= 12 * EI;
    K11(t, t) += 4 * EI, K22(t, t) += 4 * EI, K12(t, t) += 2 * EI;
    const double k = 6 * EI * sign;
    K11(v, t) += k, K11(t, v) += k, K22(v, t) -= k, K22(t, v) -= k;
    K12(v, t) += k, K12(t, v) -= k;
  }
};

void Frame::Assemble(SparseSolver& solver) const
{
  const BeamBlocks blocks[3] = {BeamBlocks(0), BeamBlocks(1), BeamBlocks(2)};
  const auto first = [](int node) { return (node - 1) * kComponents + 1; };
  ForEachBeam([&](int a, int b, int axis) {
    solver.AddSubMatriu(first(a), first(a), blocks[axis].K11);
    solver.AddSubMatriu(first(a), first(b), blocks[axis].K12);
    solver.AddSubMatriu(first(b), first(b), blocks[axis].K22);
  });
}

void Frame::Clamp(SparseSolver& solver, ReaVecV& load) const
{
  for (int equation = 1; equation <= ClampedEquations(); ++equation)
    solver.ApplyConstraint(equation, 0.0, load);
}

ReaVecV Frame::Load() const
{
  ReaVecV load(Equations());
  load = 0.0;
  for (int node = 1; node <= Nodes(); ++node)
    load((node - 1) * kComponents + 1 + node % 3) = 1.0;
  return load;
}

const Frame kFrame(32, 32, 33);

/// The frame, filled and clamped; made once.
SparseSolver& FilledFrame()
{
  static const std::unique_ptr<SparseSolver> solver = [] {
    std::unique_ptr<SparseSolver> made = kFrame.MakeMatrix();
    kFrame.Assemble(*made);
    ReaVecV load = kFrame.Load();
    kFrame.Clamp(*made, load);
    return made;
  }();
  return *solver;
}

const SparseMatrix& FilledMatrix()
{
  return *FilledFrame().GiveMatrix();
}

/// Iterates a given number of times.
void Iterate(const SparseMatrix& A, const Preconditioner& M, int iterations)
{
  static const ReaVecV b = [] {
    ReaVecV load = kFrame.Load();
    for (int i = 1; i <= kFrame.ClampedEquations(); ++i)
      load(i) = 0.0;
    return load;
  }();
  std::vector<double> x(static_cast<std::size_t>(A.GiveSize()), 0.0);
  double tol = 0.0;
  benchmark::DoNotOptimize(CG(A, x.data(), b.Data(), M, iterations, tol, nullptr));
}

constexpr int kIterationsTimed = 40;

double SecondsPerIteration()
{
  static const double seconds = [] {
    const ILUPreconditioner M(FilledMatrix());
    return Seconds(5, [&] { Iterate(FilledMatrix(), M, kIterationsTimed); }) / kIterationsTimed;
  }();
  return seconds;
}

void SparseIteration(benchmark::State& state)
{
  const SparseMatrix& A = FilledMatrix();
  const ILUPreconditioner M(A);
  Triad triad;
  double seconds = 0.0;
  double triadSeconds = 0.0;
  for (auto _ : state) {  // in turns, so that both meet the machine in the same state
    seconds += Seconds(1, [&] { Iterate(A, M, kIterationsTimed); });
    triadSeconds += Seconds(5, triad);
  }
  const double triadRate = Triad::kBytes * static_cast<double>(state.iterations()) / triadSeconds;
  const double iterations = static_cast<double>(state.iterations()) * kIterationsTimed;
  const double rate = IterationTraffic(A) * iterations / seconds;
  state.counters["equations"] = A.GiveSize();
  state.counters["matrix_bytes"] = static_cast<double>(A.StorageBytes());
  state.counters["factor_bytes"] = static_cast<double>(M.StorageBytes());
  state.counters["ms_per_iteration"] = 1e3 * seconds / iterations;
  state.counters["GB/s"] = 1e-9 * rate;
  state.counters["triad_GB/s"] = 1e-9 * triadRate;
  state.counters["triad_ratio"] = rate / triadRate;
}

void SparseProduct(benchmark::State& state)
{
  const SparseMatrix& A = FilledMatrix();
  std::vector<double> x(static_cast<std::size_t>(A.GiveSize()), 1.0), y = x;
  for (auto _ : state) {
    A.mult(x.data(), y.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(A.StorageBytes()));
}

void SparsePreconditioning(benchmark::State& state)
{
  const ILUPreconditioner M(FilledMatrix());
  std::vector<double> x(static_cast<std::size_t>(kFrame.Equations()), 1.0), y = x;
  for (auto _ : state) {
    M.solve(x.data(), y.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(M.StorageBytes()));
}

void SetIterationsRatio(benchmark::State& state, double seconds)
{
  const double mean = seconds / static_cast<double>(state.iterations());
  state.counters["iterations_ratio"] = mean / SecondsPerIteration();
}

/// From the couplings to the filled matrix.
void SparseAssembly(benchmark::State& state)
{
  SecondsPerIteration();
  double seconds = 0.0;
  for (auto _ : state)
    seconds += Seconds(1, [] {
      const std::unique_ptr<SparseSolver> solver = kFrame.MakeMatrix();
      kFrame.Assemble(*solver);
    });
  SetIterationsRatio(state, seconds);
}

/// Filling again what was filled before.
void SparseReassembly(benchmark::State& state)
{
  SecondsPerIteration();
  const std::unique_ptr<SparseSolver> solver = kFrame.MakeMatrix();
  double seconds = 0.0;
  for (auto _ : state)
    seconds += Seconds(1, [&] {
      solver->SetToZero();
      kFrame.Assemble(*solver);
    });
  SetIterationsRatio(state, seconds);
}

void SparseFactors(benchmark::State& state)
{
  SecondsPerIteration();
  double seconds = 0.0;
  for (auto _ : state)
    seconds += Seconds(
        1, [] { benchmark::DoNotOptimize(ILUPreconditioner(FilledMatrix()).IsComplete()); });
  SetIterationsRatio(state, seconds);
}

/// The whole way from couplings to solution. The peak counts from what the process held
/// before; run this one alone (--benchmark_filter=SparseRun), so that nothing freed is reused.
void SparseRun(benchmark::State& state)
{
  for (auto _ : state) {
    ResetMemoryPeak();
    const double before = MemoryNow();
    const std::unique_ptr<SparseSolver> solver = kFrame.MakeMatrix();
    kFrame.Assemble(*solver);
    ReaVecV load = kFrame.Load();
    kFrame.Clamp(*solver, load);
    state.counters["result"] = solver->Solver(load, nullptr);
    state.counters["peak_ratio"] =
        (MemoryPeak() - before) / IterationStorage(*solver->GiveMatrix());
  }
}

BENCHMARK(SparseRun)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(SparseIteration)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(SparseProduct)->Unit(benchmark::kMillisecond);
BENCHMARK(SparsePreconditioning)->Unit(benchmark::kMillisecond);
BENCHMARK(SparseAssembly)->Unit(benchmark::kMillisecond);
BENCHMARK(SparseReassembly)->Unit(benchmark::kMillisecond);
BENCHMARK(SparseFactors)->Unit(benchmark::kMillisecond);

}  // namespace
