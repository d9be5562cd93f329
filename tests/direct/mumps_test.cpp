#include "direct/mumps.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <mutex>
#include <numeric>
#include <string>
#include <vector>

#include "support/sanitizer.h"

namespace morlen::direct {

namespace {

/// A matrix of a band, in the order of its rows.
struct Band
{
  static constexpr int kEquations = 70000, kWidth = 7;

  Band() : values(std::size_t{kEquations} * kWidth, -1.0), places(kEquations)
  {
    for (int row = 1; row <= kEquations; ++row) {
      for (int column = row; column <= std::min(row + kWidth - 1, kEquations); ++column) {
        if (row == column)
          values[entries.rows.size()] = 2.0 * kWidth;
        entries.rows.push_back(row);
        entries.columns.push_back(column);
      }
    }
    entries.values = values.data();
    std::iota(places.begin(), places.end(), 1);
  }

  Coordinates entries;
  std::vector<double> values;
  std::vector<int> places;
};

/// The address space of the process, in bytes.
rlim_t MappedBytes()
{
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

/// Analyses in a new process that may map so many more bytes; returns its state, as wait gives it.
int StateOfAnalysis(Band& band, rlim_t more)
{
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit = {MappedBytes() + more, RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &limit);
    std::mutex busy;
    Mumps mumps(busy);
    mumps.Analyse(Band::kEquations, band.entries, band.places);
    _exit(0);
  }
  int state = -1;
  waitpid(child, &state, 0);
  return state;
}

}  // namespace

// The library does not check every allocation: an array of the equations takes 560,000 bytes.
TEST(Mumps, AnalysesOrEndsTheRunInLittleMemory)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer maps memory beyond the limits here";
  Band band;
  constexpr rlim_t kStep = 250000, kMost = 16000000;
  int refused = 0;
  testing::internal::CaptureStderr();  // the errors of the processes
  for (rlim_t more = 0; more <= kMost; more += kStep) {
    const int state = StateOfAnalysis(band, more);
    ASSERT_TRUE(WIFEXITED(state)) << "signal " << WTERMSIG(state) << " with " << more << " bytes";
    if (WEXITSTATUS(state) != 0) {
      EXPECT_EQ(WEXITSTATUS(state), 2);
      ++refused;
    }
  }
  const std::string text = testing::internal::GetCapturedStderr();
  const std::string message = "Not space available on heap";
  EXPECT_EQ(text.size(), refused * message.size());
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused * kStep, kMost);
}

}  // namespace morlen::direct
