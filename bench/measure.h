#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

namespace morlen {

class SkyMatriu;
class NodeBlockMatrix;

// Measurements that the benchmarks share.

/// Processor time of this process.
inline double ProcessorSeconds()
{
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// The median. There must be at least one value.
inline double Median(std::vector<double> values)
{
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The median processor time of an action in seconds.
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

/// A loop that only reads an array far larger than the caches: the most that one core gets from
/// memory.
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

/// Bytes per second of that loop.
double ReadBandwidth();

/// The multiplications and additions in the sums of the factorisation of this profile.
double FactorisationFlops(const SkyMatriu& matrix);

/// Bytes of the matrix and of its factor without fill. Each has a double for every entry, an int
/// for every block and an int for every line of blocks.
double IterationStorage(const NodeBlockMatrix& matrix);

/// The least bytes that an iteration of conjugate gradients moves: matrix and factors are read, and
/// x, r, p, q and z are read and written.
double IterationTraffic(const NodeBlockMatrix& matrix);
/// The part of the five vectors, which each further right-hand side adds.
double VectorTraffic(const NodeBlockMatrix& matrix);

/// Memory of this process in bytes: now, and its peak; 0 when the system does not tell it.
double MemoryNow();
double MemoryPeak();
/// Resets the peak to the current memory.
void ResetMemoryPeak();

/// The arguments [-n REPETITIONS] problem.dat ... of a program that times problem files.
struct TimedFiles
{
  std::vector<std::string> files;
  int repetitions;
};

/// repetitions: without -n. Wrong arguments end the program with its usage and status 2.
TimedFiles ParseTimedFiles(int argc, char** argv, const char* program, int repetitions);

}  // namespace morlen
