#include "measure.h"

#include <fstream>
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
