#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

namespace morlen {

class SkyMatriu;
class NodeBlockMatrix;

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

/// Reads arrays far beyond the caches and nothing else: what memory gives one core at most.
class ReadLoop
{
public:
  void operator()();
  double Total() const { return total; }
  static constexpr double kBytes = 8.0 * (1 << 25);

private:
  std::vector<double> a = std::vector<double>(1 << 25, 1.0);
  double total = 0.0;
};

/// Bytes a second of that loop.
double ReadBandwidth();

/// Multiplications and additions in the sums of the factorisation of this profile.
double FactorisationFlops(const SkyMatriu& matrix);

/// Bytes of the matrix and of the passes through its factor without fill: twice a double for
/// every entry, an int for every block and for every line of blocks.
double IterationStorage(const NodeBlockMatrix& matrix);

/// What an iteration of conjugate gradients has to move at least: matrix and factors are read;
/// x, r, p, q and z are read and written.
double IterationTraffic(const NodeBlockMatrix& matrix);
/// The part of the five vectors, which a second right-hand side adds.
double VectorTraffic(const NodeBlockMatrix& matrix);

/// Memory of this process in bytes: now, and the most it had; 0 where the system does not say.
double MemoryNow();
double MemoryPeak();
/// Begins the peak anew.
void ResetMemoryPeak();

}  // namespace morlen
