// Where the time of whole runs goes:
//
//   morlen_stages [-n REPETITIONS] problem.dat ...
//
// Each file runs in a process of its own, once to warm up and then some times more; the median
// processor time of every stage is printed as a line of JSON, which report.py makes readable. The
// stages of the analysis are told apart by the times of its messages on the information stream.

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
#include "message_stream.h"
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
  std::FILE* File() const { return stream.File(); }

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

  const Message* Find(std::string_view beginning) const
  {
    for (const Message& message : messages) {
      if (message.text.starts_with(beginning))
        return &message;
    }
    return nullptr;
  }

  std::vector<Message> messages;
  MessageStream stream{[this](std::string_view text) {
    messages.push_back({ProcessorSeconds(), std::string(text)});
  }};
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
    "read",    "renumber",   "profile", "assemble",   "loads",      "supports", "factorise",
    "iterate", "substitute", "results", "write text", "write post", "release"};

/// What one run took and was.
struct Run
{
  std::array<double, kStages> seconds{};
  bool direct = true;
  int equations = 0;
  int nodes = 0;
  int elements = 0;
  int iterations = 0;
  double factorisationFlops = 0.0;
  double storage = 0.0;           ///< bytes of the profile, or of matrix and factors
  double entries = 0.0;           ///< of the sparse matrix
  double iterationTraffic = 0.0;  ///< bytes
  double bytesRead = 0.0;
  double bytesText = 0.0;
  double bytesPost = 0.0;
  double wordsWritten = 0.0;
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
  run.nodes = project.numNodes;
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
    run.entries = matrix.GiveSlots();
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

/// Numbers and words of a text file.
double CountWords(const fs::path& path)
{
  std::ifstream in(path, std::ios::binary);
  std::array<char, 1 << 16> part;
  double words = 0.0;
  bool inWord = false;
  do {
    in.read(part.data(), static_cast<std::streamsize>(part.size()));
    for (std::streamsize k = 0; k < in.gcount(); ++k) {
      const bool isBlank = part[k] == ' ' || part[k] == '\n';
      words += !isBlank && !inWord;
      inWord = !isBlank;
    }
  } while (in);
  return words;
}

/// The runs as one, with the median of every stage.
Run MedianOf(const std::vector<Run>& runs)
{
  Run median = runs.at(0);
  for (int stage = 0; stage < kStages; ++stage) {
    std::vector<double> seconds;
    for (const Run& run : runs)
      seconds.push_back(run.seconds[stage]);
    median.seconds[stage] = Median(seconds);
  }
  return median;
}

/// One object of JSON in one line: what report.py takes.
void PrintJson(const std::string& file, const Run& run, double peak, double readBandwidth)
{
  std::printf("{\"model\": \"%s\", \"equations\": %d, \"nodes\": %d, \"elements\": %d, ",
              fs::path(file).stem().c_str(), run.equations, run.nodes, run.elements);
  std::printf("\"direct\": %s, \"iterations\": %d, \"factorisation_flops\": %.6g, ",
              run.direct ? "true" : "false", run.iterations, run.factorisationFlops);
  std::printf("\"storage\": %.0f, \"entries\": %.0f, \"iteration_traffic\": %.0f, ", run.storage,
              run.entries, run.iterationTraffic);
  std::printf("\"bytes_read\": %.0f, \"bytes_text\": %.0f, \"bytes_post\": %.0f, ", run.bytesRead,
              run.bytesText, run.bytesPost);
  std::printf("\"words_written\": %.0f, \"peak_memory\": %.0f, \"read_bandwidth\": %.6g, ",
              run.wordsWritten, peak, readBandwidth);
  std::printf("\"seconds\": {");
  for (int stage = 0; stage < kStages; ++stage)
    std::printf("%s\"%s\": %.6g", stage ? ", " : "", kStageNames[stage], run.seconds[stage]);
  std::printf("}}\n");
}

void Measure(const std::string& file, int repetitions)
{
  const ResultFiles results;
  const bool direct = RunOnce(file, results, false).direct;
  std::vector<Run> runs;
  const double peak = MemoryPeak();
  for (int k = 0; k < repetitions; ++k)
    runs.push_back(RunOnce(file, results, direct));
  Run median = MedianOf(runs);
  median.wordsWritten = CountWords(results.Text()) + CountWords(results.Post());
  PrintJson(file, median, peak, ReadBandwidth());
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
