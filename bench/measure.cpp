#include "measure.h"

#include <fstream>
#include <numeric>
#include <string>

#include "solvers/skymatriu.h"
#include "solvers/sparse_matrix.h"

namespace {

/// A figure of this process's memory in bytes.
double MemoryFigure(const std::string& name)
{
  std::ifstream status("/proc/self/status");
  double kilobytes = 0.0;
  for (std::string word; status >> word;) {
    if (word == name)
      status >> kilobytes;
  }
  return 1024.0 * kilobytes;
}

}  // namespace

void Triad::operator()()
{
  for (std::size_t i = 0; i < kLength; ++i)
    a[i] = b[i] + 3.0 * c[i];
}

double ReadBandwidth()
{
  constexpr std::size_t kLength = std::size_t{1} << 25;
  constexpr int kSums = 8;
  constexpr int kRepetitions = 5;
  const std::vector<double> array(kLength, 1.0);
  double sums[kSums] = {};
  const double seconds = Seconds(kRepetitions, [&] {
    for (std::size_t i = 0; i < kLength; i += kSums)
      for (int k = 0; k < kSums; ++k)
        sums[k] += array[i + k];
  });
  // A sum that is used cannot be left out by the compiler.
  volatile double used = std::accumulate(sums, sums + kSums, 0.0);
  static_cast<void>(used);
  return sizeof(double) * kLength / seconds;
}

double FactorisationFlops(const SkyMatriu& matrix)
{
  double terms = 0.0;
  for (int j = 1; j <= matrix.GiveSize(); ++j) {
    const int firstOfRow = j - matrix.GiveHeight(j) + 1;
    for (int i = firstOfRow; i <= j; ++i)
      terms += i - std::max(firstOfRow, i - matrix.GiveHeight(i) + 1);
  }
  return 2.0 * terms;
}

double IterationStorage(const SparseMatrix& matrix)
{
  const double secondInts = sizeof(int) * static_cast<double>(matrix.GiveSize());
  return 2.0 * static_cast<double>(matrix.StorageBytes()) + secondInts;
}

double IterationTraffic(const SparseMatrix& matrix)
{
  constexpr double kVectors = 5.0;
  return IterationStorage(matrix) + kVectors * 2.0 * sizeof(double) * matrix.GiveSize();
}

double MemoryNow()
{
  return MemoryFigure("VmRSS:");
}

double MemoryPeak()
{
  return MemoryFigure("VmHWM:");
}

void ResetMemoryPeak()
{
  std::ofstream("/proc/self/clear_refs") << "5";
}
