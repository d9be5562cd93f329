#include <mpi.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/unfinished_files.h"
#include "mpi/distributed_kit.h"
#include "mpi/ranks.h"
#include "run/driver.h"

using namespace morlen;

// Of OpenBLAS, whose header is not always that of the system's default.
extern "C" {
void openblas_set_num_threads(int count);
int openblas_get_num_threads();
}

namespace {

/// Says that the run ends, and continues with the end that was set before.
struct EndFromOutside
{
  static void Set()
  {
    CleanUpOnSignals();
    sigaction(SIGTERM, nullptr, &before);
    if (before.sa_handler == SIG_IGN || before.sa_handler == SIG_DFL)
      return;
    struct sigaction action = {};
    action.sa_handler = Handle;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
  }

private:
  static void Handle(int signal)
  {
    constexpr std::string_view kMessage = "error: the run has been ended from outside\n";
    [[maybe_unused]] const auto written = write(STDERR_FILENO, kMessage.data(), kMessage.size());
    before.sa_handler(signal);
  }

  static inline struct sigaction before = {};
};

/// The arguments without --threads.
struct Arguments
{
  std::vector<char*> others;
  int threads = 1;
  bool good = true;
};

Arguments Parse(int argc, char** argv)
{
  Arguments arguments;
  for (int i = 0; i < argc; ++i) {
    if (std::string_view(argv[i]) != "--threads") {
      arguments.others.push_back(argv[i]);
      continue;
    }
    const std::string_view text = i + 1 < argc ? argv[++i] : "";
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), arguments.threads);
    arguments.good = arguments.good && error == std::errc() && end == text.data() + text.size() &&
                     arguments.threads > 0;
  }
  return arguments;
}

int RunFirstRank(const Arguments& arguments)
{
  // Static, so that an error ends the other ranks too: it ends the process by exit.
  static mpi::OtherRanks others;
  if (openblas_get_num_threads() != arguments.threads)
    errorwriter.WriteWarning("--threads has no effect: this OpenBLAS works with " +
                             std::to_string(openblas_get_num_threads()));
  EndFromOutside::Set();
  mpi::Team team(others);
  const mpi::DistributedKit kit(team);
  std::vector<char*> argv = arguments.others;
  const int count = static_cast<int>(argv.size());
  argv.push_back(nullptr);
  const int status =
      arguments.good ? RunMorlen(count, argv.data(), kit) : RunMorlen(1, argv.data());
  if (status != 0)
    std::printf("    --threads N: use N threads for the work of each rank\n");
  return status;
}

}  // namespace

int main(int argc, char** argv)
{
  int given = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &given);
  const Arguments arguments = Parse(argc, argv);
  openblas_set_num_threads(arguments.threads);
  if (mpi::OwnRank() == mpi::kFirstRank)
    return RunFirstRank(arguments);
  CleanUpOnSignals();
  mpi::Serve();
  MPI_Finalize();
  return 0;
}
