#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "measure.h"
#include "numeric/reavecv.h"
#include "solvers/skymatriu.h"

namespace morlen {

// Factorisation and substitution with profiles like those of renumbered models. Counters:
//   bytes             of the stored entries
//   flops             multiplications and additions of the sums per second
//   bytes_per_second  of the profile that are read

namespace {

/// Couples neighbours on a grid, including diagonal ones. Nodes are numbered across its width.
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

/// Irregular heights up to the given one, with a different height for every row.
void CreateRagged(SkyMatriu& matrix, int highest)
{
  for (int i = 1; i <= matrix.GiveSize(); ++i)
    matrix.EnterMaxDiff(i, std::max(1, i - (i * 61) % highest));
  matrix.Create(1);
}

/// Fills the matrix so that the diagonal is dominant.
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
    matrix.Substitute({&b}, nullptr);
    benchmark::DoNotOptimize(b.Data());
  }
  // The profile is read twice, for the forward and the backward substitution.
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

/// Profiles of a chain of beams, a slab, a square plate and a plane mesh.
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

/// The plain algorithm, row by row, with sums unrolled by four.
void FactorisePlainly(SkyMatriu& matrix)
{
  std::vector<double> g(static_cast<std::size_t>(matrix.GiveSize()) + 1);
  for (int j = 1; j <= matrix.GiveSize(); ++j) {
    const int start = j - matrix.GiveHeight(j) + 1;
    double* const row = &matrix.val(j, j);
    for (int i = start; i < j; ++i) {
      const int count = std::min(matrix.GiveHeight(i), i - start + 1) - 1;
      const double* const a = &matrix.val(i, i) + 1;
      const double* const b = row + (j - i) + 1;
      double sums[4] = {};
      int k = 0;
      for (; k + 4 <= count; k += 4)
        for (int lane = 0; lane < 4; ++lane)
          sums[lane] += a[k + lane] * b[k + lane];
      for (; k < count; ++k)
        sums[0] += a[k] * b[k];
      row[j - i] -= (sums[0] + sums[1]) + (sums[2] + sums[3]);
    }
    for (int i = start; i < j; ++i) {
      const double l = row[j - i] / matrix.val(i, i);
      row[0] -= row[j - i] * l;
      row[j - i] = l;
    }
  }
}

/// Operations per second of the product of two matrices by OpenBLAS; 0 when it is not installed.
double ProductRate()
{
  using Dgemm = void (*)(int, int, int, int, int, int, double, const double*, int, const double*,
                         int, double, double*, int);
  void* const library = dlopen("libopenblas.so.0", RTLD_NOW);
  if (!library)
    return 0.0;
  const auto setThreads =
      reinterpret_cast<void (*)(int)>(dlsym(library, "openblas_set_num_threads"));
  const auto dgemm = reinterpret_cast<Dgemm>(dlsym(library, "cblas_dgemm"));
  constexpr int kOrder = 1024;
  constexpr int kRowMajor = 101, kAsIs = 111;
  constexpr std::size_t kEntries = std::size_t{kOrder} * kOrder;
  const std::vector<double> a(kEntries, 0.5), b(kEntries, 0.25);
  std::vector<double> c(kEntries);
  setThreads(1);
  return 2.0 * kOrder * kOrder * kOrder / Seconds(5, [&] {
           dgemm(kRowMajor, kAsIs, kAsIs, kOrder, kOrder, kOrder, 1.0, a.data(), kOrder, b.data(),
                 kOrder, 0.0, c.data(), kOrder);
         });
}

double FactorisationRate(SkyMatriu& matrix, void (*factorise)(SkyMatriu&))
{
  std::vector<double> times;
  for (int k = 0; k < 5; ++k) {
    Fill(matrix);
    times.push_back(Seconds(1, [&] { factorise(matrix); }));
  }
  return FactorisationFlops(matrix) / Median(times);
}

/// Counters: GFLOP/s, and its ratios to the matrix product ("dgemm") and to the plain loop
/// ("plain").
void FactorisationRatios(benchmark::State& state)
{
  const int width = static_cast<int>(state.range(1));
  SkyMatriu matrix(static_cast<int>(state.range(0)) * width * 6);
  CreateGrid(matrix, static_cast<int>(state.range(0)), width, 6);
  for (auto _ : state) {
    const double rate = FactorisationRate(matrix, [](SkyMatriu& m) { m.Txolesky(nullptr); });
    const double plain = FactorisationRate(matrix, FactorisePlainly);
    const double product = ProductRate();
    state.counters["GFLOP/s"] = 1e-9 * rate;
    state.counters["dgemm"] = product > 0.0 ? rate / product : 0.0;
    state.counters["plain"] = rate / plain;
  }
}

BENCHMARK(FactorisationRatios)
    ->ArgNames({"length", "width"})
    ->Args({100, 24})
    ->Args({50, 50})
    ->Args({20, 150})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GridFactorisation)->Apply(Grids);
BENCHMARK(GridSubstitution)->Apply(Grids);
BENCHMARK(RaggedFactorisation)->Apply(RaggedProfiles);
BENCHMARK(RaggedSubstitution)->Apply(RaggedProfiles);

}  // namespace

}  // namespace morlen
