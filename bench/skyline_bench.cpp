#include <benchmark/benchmark.h>

#include <algorithm>

#include "measure.h"
#include "numeric/reavecv.h"
#include "solvers/skymatriu.h"

// Factorisation and substitution on profiles like those of renumbered models. Counters:
// "bytes" of stored entries, "flops" multiplications and additions of the sums in a second,
// "bytes_per_second" how fast the profile is read.

namespace {

/// Couples neighbours (also diagonally) on a grid, numbered across its width.
void CreateGrid(SkyMatriu& matrix, int length, int width, int ndof)
{
  for (int x = 0; x < length; ++x)
    for (int y = 0; y < width; ++y) {
      const int node = x * width + y + 1;
      if (y + 1 < width)
        matrix.EnterMaxDiff(node, node + 1, ndof);
      if (x + 1 == length)
        continue;
      for (int z = std::max(0, y - 1); z <= std::min(width - 1, y + 1); ++z)
        matrix.EnterMaxDiff(node, (x + 1) * width + z + 1, ndof);
    }
  matrix.Create(ndof);
}

/// Heights without a pattern up to the given one, every row on its own.
void CreateRagged(SkyMatriu& matrix, int highest)
{
  for (int i = 1; i <= matrix.GiveSize(); ++i)
    matrix.EnterMaxDiff(i, std::max(1, i - (i * 61) % highest));
  matrix.Create(1);
}

/// A diagonal that outweighs its row.
void Fill(SkyMatriu& matrix)
{
  matrix.SetToZero();
  for (int i = 1; i <= matrix.GiveSize(); ++i) {
    const int height = matrix.GiveHeight(i);
    for (int d = 1; d < height; ++d)
      matrix.val(i - d, i) = -1.0 / (d + 1);
    matrix.val(i, i) = 100.0;
  }
}

void MeasureFactorisation(benchmark::State& state, SkyMatriu& matrix)
{
  for (auto _ : state) {
    state.PauseTiming();
    Fill(matrix);
    state.ResumeTiming();
    benchmark::DoNotOptimize(matrix.Txolesky(nullptr));
  }
  state.counters["bytes"] = static_cast<double>(matrix.StorageBytes());
  state.counters["flops"] =
      benchmark::Counter(FactorisationFlops(matrix), benchmark::Counter::kIsIterationInvariantRate);
}

void MeasureSubstitution(benchmark::State& state, SkyMatriu& matrix)
{
  Fill(matrix);
  matrix.Txolesky(nullptr);
  ReaVecV b(matrix.GiveSize());
  for (auto _ : state) {
    b = 1.0;
    matrix.Substitute(b, nullptr);
    benchmark::DoNotOptimize(b.Data());
  }
  // Forwards and backwards: the profile is read twice.
  state.SetBytesProcessed(state.iterations() * 2 * static_cast<int64_t>(matrix.StorageBytes()));
}

/// Arguments: length, width, degrees of freedom of a node.
void GridFactorisation(benchmark::State& state)
{
  const int length = static_cast<int>(state.range(0));
  const int width = static_cast<int>(state.range(1));
  const int ndof = static_cast<int>(state.range(2));
  SkyMatriu matrix(length * width * ndof);
  CreateGrid(matrix, length, width, ndof);
  MeasureFactorisation(state, matrix);
}

void GridSubstitution(benchmark::State& state)
{
  const int length = static_cast<int>(state.range(0));
  const int width = static_cast<int>(state.range(1));
  const int ndof = static_cast<int>(state.range(2));
  SkyMatriu matrix(length * width * ndof);
  CreateGrid(matrix, length, width, ndof);
  MeasureSubstitution(state, matrix);
}

/// Arguments: equations, greatest height.
void RaggedFactorisation(benchmark::State& state)
{
  SkyMatriu matrix(static_cast<int>(state.range(0)));
  CreateRagged(matrix, static_cast<int>(state.range(1)));
  MeasureFactorisation(state, matrix);
}

void RaggedSubstitution(benchmark::State& state)
{
  SkyMatriu matrix(static_cast<int>(state.range(0)));
  CreateRagged(matrix, static_cast<int>(state.range(1)));
  MeasureSubstitution(state, matrix);
}

/// A frame of bars in a row, a slab, a square plate, a plane mesh.
void Grids(benchmark::internal::Benchmark* bench)
{
  bench->ArgNames({"length", "width", "ndof"});
  bench->Args({2000, 1, 6})->Args({300, 10, 6})->Args({50, 50, 6})->Args({70, 70, 3});
  bench->Unit(benchmark::kMillisecond);
}

void RaggedProfiles(benchmark::internal::Benchmark* bench)
{
  bench->ArgNames({"equations", "highest"})->Args({12000, 60})->Args({12000, 600});
  bench->Unit(benchmark::kMillisecond);
}

BENCHMARK(GridFactorisation)->Apply(Grids);
BENCHMARK(GridSubstitution)->Apply(Grids);
BENCHMARK(RaggedFactorisation)->Apply(RaggedProfiles);
BENCHMARK(RaggedSubstitution)->Apply(RaggedProfiles);

}  // namespace
