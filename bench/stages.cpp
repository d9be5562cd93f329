// Where the time of whole runs goes:
//
//   morlen_stages [-n REPETITIONS] problem.dat ...
//
// Each file runs in a process of its own, once to warm up and then some times more; of every
// stage the median processor time is printed. The stages of the analysis are told apart by
// the times of its messages on the information stream.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "measure.h"
#include "model/mesh.h"
#include "problem/project.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRepetitions = 5;

/// The messages of an analysis with the processor time at which each came.
class MessageLog
{
public:
  MessageLog() : file(fopencookie(this, "w", {nullptr, Keep, nullptr, nullptr})) {}
  MessageLog(const MessageLog&) = delete;
  MessageLog& operator=(const MessageLog&) = delete;
  ~MessageLog() { std::fclose(file); }

  std::FILE* File() const { return file; }

  /// When the first message came that begins so; 0 when there was none.
  double TimeOf(std::string_view beginning) const
  {
    const Message* found = Find(beginning);
    return found ? found->seconds : 0.0;
  }

  /// The whole number behind this beginning of a message; 0 when there was none.
  int NumberBehind(std::string_view beginning) const
  {
    const Message* found = Find(beginning);
    return found ? std::atoi(found->text.c_str() + beginning.size()) : 0;
  }

private:
  struct Message
  {
    double seconds;
    std::string text;
  };

  static ssize_t Keep(void* log, const char* text, std::size_t size)
  {
    static_cast<MessageLog*>(log)->messages.push_back({ProcessorSeconds(), {text, size}});
    return static_cast<ssize_t>(size);
  }

  const Message* Find(std::string_view beginning) const
  {
    for (const Message& message : messages) {
      if (message.text.starts_with(beginning))
        return &message;
    }
    return nullptr;
  }

  std::vector<Message> messages;
  std::FILE* file;
};

enum Stage
{
  kRead,
  kRenumber,
  kProfile,
  kAssemble,
  kLoads,
  kSupports,
  kFactorise,
  kIterate,
  kSubstitute,
  kResults,
  kWriteText,
  kWritePost,
  kRelease,
  kStages
};

constexpr const char* kStageNames[kStages] = {
    "read",       "renumber",   "profile, pattern", "assemble",   "loads",
    "supports",   "factorise",  "iterate",          "substitute", "strengths, reactions",
    "write text", "write post", "release"};

/// What one run took and was.
struct Run
{
  std::array<double, kStages> seconds{};
  bool direct = true;
  int equations = 0;
  int elements = 0;
  int iterations = 0;
  double factorisationFlops = 0.0;
  double storage = 0.0;           ///< bytes of the profile, or of matrix and factors
  double iterationTraffic = 0.0;  ///< bytes
  double bytesRead = 0.0;
  double bytesText = 0.0;
  double bytesPost = 0.0;

  double Total() const
  {
    double sum = 0.0;
    for (const double s : seconds)
      sum += s;
    return sum;
  }
  double PerIteration() const { return seconds[kIterate] / std::max(iterations, 1); }
};

/// Splits time into stages: each call gives what has gone by since the last one.
class StopWatch
{
public:
  double Lap() { return LapAt(ProcessorSeconds()); }
  /// The same for a moment of the past, not before the last one.
  double LapAt(double now)
  {
    const double gone = now - last;
    last = now;
    return gone;
  }

private:
  double last = ProcessorSeconds();
};

// Iteration i is announced at its beginning when it is a multiple of ten, and the last at its
// end. What the announced ones do not account for went into the factors.
void SplitIterations(const MessageLog& log, StopWatch& watch, Run& run)
{
  const bool converged = log.TimeOf("Converged it number. ") > 0.0;
  const char* const last = converged ? "Converged it number. " : "After ";
  const double end = log.TimeOf(last);
  const double tenth = log.TimeOf("iteration number 10 ");
  run.iterations = log.NumberBehind(last);
  const int fromTenth = run.iterations - 9;
  const double each = tenth > 0.0 ? (end - tenth) / fromTenth : 0.0;
  if (each > 0.0)
    run.seconds[kFactorise] = watch.LapAt(end - each * run.iterations);
  if (run.iterations > 0)
    run.seconds[kIterate] = watch.LapAt(end);
}

void SplitAnalysis(const MessageLog& log, StopWatch& watch, Run& run)
{
  run.seconds[kProfile] = watch.LapAt(log.TimeOf("\nINFORMATION"));
  run.seconds[kAssemble] = watch.LapAt(log.TimeOf("Stiffness matrix filled"));
  run.seconds[kLoads] = watch.LapAt(log.TimeOf("Load vector constructed"));
  run.seconds[kSupports] = watch.LapAt(log.TimeOf("Just before Solver"));
  if (run.direct)
    run.seconds[kFactorise] = watch.LapAt(log.TimeOf("Txolesky finished"));
  else
    SplitIterations(log, watch, run);
  run.seconds[kSubstitute] = watch.LapAt(log.TimeOf("Solver finished"));
}

void Describe(const Project& project, Run& run)
{
  run.equations = project.numNodes * project.freeDegrees;
  for (const auto& mesh : project.meshes)
    run.elements += mesh->GiveElemPlex()->Count();
  run.direct = project.solverSettings.type == SolverType::SkyLine;
  if (run.direct) {
    const auto& matrix = static_cast<const SkyMatriu&>(*project.solver);
    run.factorisationFlops = FactorisationFlops(matrix);
    run.storage = static_cast<double>(matrix.StorageBytes());
  } else {
    const SparseMatrix& matrix = *static_cast<const SparseSolver&>(*project.solver).GiveMatrix();
    run.storage = IterationStorage(matrix);
    run.iterationTraffic = IterationTraffic(matrix);
  }
}

/// The result files of the runs of this process; removed at the end.
class ResultFiles
{
public:
  ResultFiles() : base(fs::temp_directory_path() / ("morlen_stages." + std::to_string(getpid()))) {}
  ResultFiles(const ResultFiles&) = delete;
  ResultFiles& operator=(const ResultFiles&) = delete;
  ~ResultFiles()
  {
    std::error_code ignored;
    fs::remove(Text(), ignored);
    fs::remove(Post(), ignored);
  }

  fs::path Text() const { return base.string() + ".txt"; }
  fs::path Post() const { return base.string() + ".res"; }

private:
  fs::path base;
};

/// Runs a problem file. `renumber` does so before the analysis, which then keeps the numbers,
/// so that it can be timed by itself.
Run RunOnce(const std::string& file, const ResultFiles& results, bool renumber)
{
  Run run;
  MessageLog log;
  StopWatch watch;
  {
    Project project(100);
    std::ifstream in(file);
    project.ReadFromAscii(in);
    run.seconds[kRead] = watch.Lap();
    if (renumber)
      project.meshes.front()->RenumberNodes();
    run.seconds[kRenumber] = watch.Lap();
    project.Calc(0, log.File());
    // Counting what was done is not part of the run.
    Describe(project, run);
    SplitAnalysis(log, watch, run);
    watch.Lap();
    project.CalcStrengthsAndReactions(nullptr);
    run.seconds[kResults] = watch.Lap();
    std::ofstream text(results.Text());
    project.WriteResults(text);
    text.close();
    run.seconds[kWriteText] = watch.Lap();
    std::ofstream post(results.Post());
    project.WriteKivResults(post, nullptr);
    post.close();
    run.seconds[kWritePost] = watch.Lap();
  }
  run.seconds[kRelease] = watch.Lap();
  run.bytesRead = static_cast<double>(fs::file_size(file));
  run.bytesText = static_cast<double>(fs::file_size(results.Text()));
  run.bytesPost = static_cast<double>(fs::file_size(results.Post()));
  return run;
}

/// The runs as one, with the median of every stage.
Run MedianOf(const std::vector<Run>& runs)
{
  Run median = runs.front();
  for (int stage = 0; stage < kStages; ++stage) {
    std::vector<double> seconds;
    for (const Run& run : runs)
      seconds.push_back(run.seconds[stage]);
    median.seconds[stage] = Median(seconds);
  }
  return median;
}

void PrintRate(double bytes, double seconds)
{
  if (seconds > 0.0)
    std::printf("   %.1f MB, %.0f MB/s", 1e-6 * bytes, 1e-6 * bytes / seconds);
}

void PrintIterations(const Run& run, double triadSeconds)
{
  const double rate = run.iterationTraffic / run.PerIteration();
  const double triadRate = Triad::kBytes / triadSeconds;
  std::printf("   %d iterations, %.1f a second, %.2f GB/s, %.2f of a triad loop (%.2f GB/s)",
              run.iterations, 1.0 / run.PerIteration(), 1e-9 * rate, rate / triadRate,
              1e-9 * triadRate);
}

/// What stands behind the time of a stage.
void PrintFigure(const Run& run, Stage stage, double triadSeconds)
{
  const double seconds = run.seconds[stage];
  if (stage == kRead)
    PrintRate(run.bytesRead, seconds);
  else if (stage == kWriteText)
    PrintRate(run.bytesText, seconds);
  else if (stage == kWritePost)
    PrintRate(run.bytesPost, seconds);
  else if (stage == kAssemble)
    std::printf("   %.2f us an element", 1e6 * seconds / run.elements);
  else if (stage == kFactorise && run.direct)
    std::printf("   %.2f GFLOP, %.2f GFLOP/s", 1e-9 * run.factorisationFlops,
                1e-9 * run.factorisationFlops / seconds);
  else if (stage == kIterate && run.iterations > 0)
    PrintIterations(run, triadSeconds);
  else if (stage == kSubstitute && run.direct)
    std::printf("   %.2f GB/s", 1e-9 * 2.0 * run.storage / seconds);
  const bool inIterations = stage == kProfile || stage == kAssemble || stage == kFactorise;
  if (inIterations && run.iterations > 0)
    std::printf("   %.1f iterations", seconds / run.PerIteration());
}

void PrintTable(const std::string& file, const Run& run, double peak, double triadSeconds)
{
  std::printf("%s: %d equations, %d elements, %s\n", fs::path(file).filename().c_str(),
              run.equations, run.elements, run.direct ? "skyline" : "sparse");
  const double total = run.Total();
  for (int stage = 0; stage < kStages; ++stage) {
    if (stage == (run.direct ? kIterate : kRenumber))
      continue;
    const double seconds = run.seconds[stage];
    std::printf("  %-21s%10.2f ms %5.1f %%", kStageNames[stage], 1e3 * seconds,
                100.0 * seconds / total);
    PrintFigure(run, static_cast<Stage>(stage), triadSeconds);
    std::printf("\n");
  }
  std::printf("  %-21s%10.2f ms\n", "total", 1e3 * total);
  std::printf("  %-21s%10.1f MB           %.2f of the %.1f MB of %s\n\n", "peak memory",
              1e-6 * peak, peak / run.storage, 1e-6 * run.storage,
              run.direct ? "the profile" : "matrix and factors");
}

void Measure(const std::string& file, int repetitions)
{
  const ResultFiles results;
  const bool direct = RunOnce(file, results, false).direct;
  std::vector<Run> runs;
  std::vector<double> triadSeconds = {0.0};
  const double peak = MemoryPeak();
  for (int k = 0; k < repetitions; ++k)
    runs.push_back(RunOnce(file, results, direct));
  if (!direct) {
    Triad triad;
    triad();
    triadSeconds = {Seconds(kRepetitions, triad)};
  }
  PrintTable(file, MedianOf(runs), peak, triadSeconds.front());
}

/// Measures in a process of its own, so that memory counts from the beginning.
bool MeasureApart(const std::string& file, int repetitions)
{
  const pid_t child = fork();
  if (child == 0) {
    Measure(file, repetitions);
    std::fflush(stdout);
    std::_Exit(0);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

int main(int argc, char** argv)
{
  std::vector<std::string> files(argv + 1, argv + argc);
  int repetitions = kRepetitions;
  if (files.size() >= 2 && files[0] == "-n") {
    repetitions = std::atoi(files[1].c_str());
    files.erase(files.begin(), files.begin() + 2);
  }
  if (files.empty() || repetitions < 1) {
    std::fprintf(stderr, "usage: morlen_stages [-n REPETITIONS] problem.dat ...\n");
    return 2;
  }
  bool allRan = true;
  for (const std::string& file : files)
    allRan = MeasureApart(file, repetitions) && allRan;
  return allRan ? 0 : 1;
}
