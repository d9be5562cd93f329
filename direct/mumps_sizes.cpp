#include "direct/mumps_sizes.h"

#include "base/stprintf.h"

namespace morlen::direct {

double Megabytes(std::uint64_t bytes)
{
  constexpr double kMegabyte = 1024.0 * 1024.0;
  return static_cast<double>(bytes) / kMegabyte;
}

void ReportAnalysis(int equations, std::int64_t entries, std::FILE* info)
{
  Progress(info, "Analysis of %i equations, %lld entries\n", equations,
           static_cast<long long>(entries));
}

void ReportSizes(const MumpsSizes& sizes, std::FILE* info)
{
  Progress(info, "Analysis finished: %.0f entries of the factors, %.2g operations, %.0f Mb\n",
           sizes.entries, sizes.operations, Megabytes(sizes.bytes));
}

void ReportFiles(const std::string& folder, std::uint64_t memoryLeft, std::FILE* info)
{
  Progress(info, "The factors go to files in %s: %.0f Mb of memory are left\n", folder.c_str(),
           Megabytes(memoryLeft));
}

void ReportSolution(std::size_t sides, std::FILE* info)
{
  Progress(info, "Solution for %zu right-hand sides\n", sides);
}

}  // namespace morlen::direct
