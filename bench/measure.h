#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

class SkyMatriu;
class SparseMatrix;

// What the benchmarks measure with.

/// Processor time that this process has used.
inline double ProcessorSeconds()
{
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// The middle of some values, at least one.
inline double Median(std::vector<double> values)
{
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Median processor time of an action in seconds.
template <class Action>
double Seconds(int repeats, Action action)
{
  std::vector<double> times;
  for (int k = 0; k < repeats; ++k) {
    const double start = ProcessorSeconds();
    action();
    times.push_back(ProcessorSeconds() - start);
  }
  return Median(times);
}

/// a = b + 3·c over arrays far beyond the caches: the memory traffic that one core reaches.
class Triad
{
public:
  void operator()();
  static constexpr double kBytes = 24.0 * (1 << 24);

private:
  static constexpr std::size_t kLength = 1 << 24;
  std::vector<double> a = std::vector<double>(kLength, 1.0);
  std::vector<double> b = a;
  std::vector<double> c = a;
};

/// Bytes a second of a plain loop that only reads arrays far beyond the caches.
double ReadBandwidth();

/// Multiplications and additions in the sums of the factorisation of this profile.
double FactorisationFlops(const SkyMatriu& matrix);

/// Bytes of the matrix and its factors without fill: a double and an int for every entry, an
/// int for every row; in the factors two, since each row has its two parts.
double IterationStorage(const SparseMatrix& matrix);

/// What an iteration of conjugate gradients has to move at least: matrix and factors are read;
/// x, r, p, q and z are read and written.
double IterationTraffic(const SparseMatrix& matrix);

/// Memory of this process in bytes: now, and the most it had; 0 where the system does not say.
double MemoryNow();
double MemoryPeak();
/// Begins the peak anew.
void ResetMemoryPeak();
