#include "measure.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "solvers/node_block_matrix.h"
#include "solvers/skymatriu.h"

namespace morlen {

namespace {

/// The entry with this name in the memory status of this process, in bytes.
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

void ReadLoop::operator()()
{
  constexpr std::size_t kSums = 32;  // enough that no addition waits for another
  double sums[kSums] = {};
  for (std::size_t i = 0; i < a.size(); i += kSums)
    for (std::size_t k = 0; k < kSums; ++k)
      sums[k] += a[i + k];
  for (const double sum : sums)
    total += sum;
}

double ReadBandwidth()
{
  constexpr int kRepetitions = 5;
  ReadLoop loop;
  loop();
  const double seconds = Seconds(kRepetitions, [&] { loop(); });
  // The compiler cannot remove a sum that is used.
  [[maybe_unused]] volatile const double used = loop.Total();
  return ReadLoop::kBytes / seconds;
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

double IterationStorage(const NodeBlockMatrix& matrix)
{
  const BlockLines blocks = matrix.Blocks();
  const double ints = static_cast<double>(blocks.starts[blocks.lines]) + blocks.lines;
  return 2.0 * (sizeof(double) * static_cast<double>(matrix.GiveSlots()) + sizeof(int) * ints);
}

double IterationTraffic(const NodeBlockMatrix& matrix)
{
  return IterationStorage(matrix) + VectorTraffic(matrix);
}

double VectorTraffic(const NodeBlockMatrix& matrix)
{
  constexpr double kVectors = 5.0;
  return kVectors * 2.0 * sizeof(double) * matrix.GiveSize();
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

TimedFiles ParseTimedFiles(int argc, char** argv, const char* program, int repetitions)
{
  TimedFiles arguments = {{argv + 1, argv + argc}, repetitions};
  std::vector<std::string>& files = arguments.files;
  if (files.size() >= 2 && files[0] == "-n") {
    arguments.repetitions = std::atoi(files[1].c_str());
    files.erase(files.begin(), files.begin() + 2);
  }
  if (files.empty() || arguments.repetitions < 1) {
    std::fprintf(stderr, "usage: %s [-n REPETITIONS] problem.dat ...\n", program);
    std::exit(2);
  }
  return arguments;
}

}  // namespace morlen
