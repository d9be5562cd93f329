// The time of each stage of whole runs:
//
//   morlen_stages [-n REPETITIONS] problem.dat ...
//
// Each file runs in a separate process, once as a warm-up and then REPETITIONS times. The median
// processor time of every stage is printed as a line of JSON, from which report.py makes a table.
// The stages of the analysis are separated by the times of its messages on the information stream.

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

#include "assembly/solver_choice.h"
#include "measure.h"
#include "message_stream.h"
#include "model/mesh.h"
#include "run/element_families.h"
#include "run/project.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

using namespace morlen;

namespace fs = std::filesystem;

namespace {

constexpr int kRepetitions = 5;

/// The messages of an analysis, with the processor time of each.
class MessageLog
{
public:
  std::FILE* File() const { return stream.File(); }

  /// The time of the last message with this beginning; 0 when there was none. The direct solver
  /// writes the same messages again after an iteration that has failed.
  double TimeOf(std::string_view beginning) const
  {
    const Message* found = Find(beginning);
    return found ? found->seconds : 0.0;
  }

  /// The whole number after this beginning of a message; 0 when there was none.
  int NumberAfter(std::string_view beginning) const
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
    const auto found =
        std::find_if(messages.rbegin(), messages.rend(),
                     [&](const Message& message) { return message.text.starts_with(beginning); });
    return found == messages.rend() ? nullptr : &*found;
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
  kChoose,
  kProfile,
  kAssemble,
  kLoads,
  kSupports,
  kFactorise,
  kIterate,
  kSubstitute,
  kRefine,
  kResults,
  kWriteText,
  kWritePost,
  kRelease,
  kStages
};

constexpr const char* kStageNames[kStages] = {"read",       "renumber",   "choose",   "profile",
                                              "assemble",   "loads",      "supports", "factorise",
                                              "iterate",    "substitute", "refine",   "results",
                                              "write text", "write post", "release"};

/// Times and sizes of one run.
struct Run
{
  std::array<double, kStages> seconds{};
  bool direct = true;
  int equations = 0;
  int nodes = 0;
  int elements = 0;
  int iterations = 0;        ///< of the loads or the probe, whichever needed more
  int singleIterations = 0;  ///< of these, the ones with only one of the two
  double factorisationFlops = 0.0;
  double storage = 0.0;           ///< bytes of the profile, or of matrix and factors
  double entries = 0.0;           ///< of the sparse matrix
  double iterationTraffic = 0.0;  ///< of one iteration for one right-hand side; bytes
  double vectorTraffic = 0.0;     ///< of a further right-hand side; bytes
  double bytesRead = 0.0;
  double bytesText = 0.0;
  double bytesPost = 0.0;
  double wordsWritten = 0.0;
};

/// Splits time into stages. Each call returns the time since the last one.
class StopWatch
{
public:
  double Lap() { return LapAt(ProcessorSeconds()); }
  /// The same up to a time in the past, which must not be before the last call.
  double LapAt(double now)
  {
    const double gone = now - last;
    last = now;
    return gone;
  }

private:
  double last = ProcessorSeconds();
};

// A message announces every tenth iteration of the model at its beginning, and another one the end
// of the last. The time before the first iteration belongs to the factors. The probe may continue
// alone.
void SplitIterations(const MessageLog& log, StopWatch& watch, Run& run)
{
  const bool converged = log.TimeOf("Converged it number. ") > 0.0;
  const char* const last = converged ? "Converged it number. " : "After ";
  const int ofModel = log.NumberAfter(last);
  const int ofProbe = log.NumberAfter("probe: converged after ");
  const double end = log.TimeOf(last);
  const double tenth = log.TimeOf("iteration number 10 ");
  const double each = tenth > 0.0 ? (end - tenth) / (ofModel - 9) : 0.0;
  if (each > 0.0)
    run.seconds[kFactorise] = watch.LapAt(end - each * ofModel);
  run.iterations = std::max(ofModel, ofProbe);
  run.singleIterations = std::abs(ofModel - ofProbe);
  if (ofModel > 0)
    run.seconds[kIterate] = watch.LapAt(std::max(end, log.TimeOf("probe: ")));
}

// The second substitution needs as much time as the first. The refinement follows.
void SplitDirectSolution(const MessageLog& log, StopWatch& watch, Run& run)
{
  const double factorised = log.TimeOf("Txolesky finished");
  const double half = log.TimeOf("Beginning 2nd substitution") - factorised;
  run.seconds[kFactorise] = watch.LapAt(factorised);
  run.seconds[kSubstitute] = watch.LapAt(factorised + 2.0 * half);
  run.seconds[kRefine] = watch.LapAt(log.TimeOf("Estimated relative error"));
}

void SplitAnalysis(const MessageLog& log, StopWatch& watch, Run& run)
{
  // An iteration has failed before the direct solution.
  if (run.direct && log.TimeOf("probe: ") > 0.0)
    run.seconds[kIterate] = watch.LapAt(log.TimeOf("probe: "));
  run.seconds[kProfile] = watch.LapAt(log.TimeOf("\nINFORMATION"));
  run.seconds[kAssemble] = watch.LapAt(log.TimeOf("Stiffness matrix filled"));
  run.seconds[kLoads] = watch.LapAt(log.TimeOf("Load vector constructed"));
  run.seconds[kSupports] = watch.LapAt(log.TimeOf("Just before Solver"));
  if (run.direct)
    SplitDirectSolution(log, watch, run);
  else
    SplitIterations(log, watch, run);
  run.seconds[kSubstitute] += watch.LapAt(log.TimeOf("Solver finished"));
}

void Describe(const Project& project, Run& run)
{
  run.equations = project.problem.numNodes * project.problem.components.count;
  run.nodes = project.problem.numNodes;
  for (const auto& mesh : project.problem.meshes)
    run.elements += mesh->GiveElemPlex()->Count();
  run.direct = project.problem.solverSettings.type == SolverType::SkyLine;
  if (run.direct) {
    const auto& matrix = static_cast<const SkyMatriu&>(*project.solver);
    run.factorisationFlops = FactorisationFlops(matrix);
    run.storage = static_cast<double>(matrix.StorageBytes());
  } else {
    const NodeBlockMatrix& matrix = *static_cast<const SparseSolver&>(*project.solver).GiveBlocks();
    run.storage = IterationStorage(matrix);
    run.entries = matrix.GiveSlots();
    run.iterationTraffic = IterationTraffic(matrix);
    run.vectorTraffic = VectorTraffic(matrix);
  }
}

/// The result files of the runs of this process. The destructor removes them.
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

/// Times renumbering and choice of the solver, for which the analysis writes no messages. The
/// analysis does both again. The nodes have the numbers of the file afterwards.
void TimeChoice(Project& project, StopWatch& watch, Run& run)
{
  if (project.problem.solverSettings.type == SolverType::Sparse)
    return;
  Mesh& mesh = *project.problem.meshes.front();
  watch.Lap();
  mesh.RenumberNodes();
  run.seconds[kRenumber] = watch.Lap();
  const long long equations =
      static_cast<long long>(project.problem.numNodes) * project.problem.components.count;
  if (project.problem.solverSettings.type == SolverType::Automatic && equations >= kChoiceFrom) {
    project.CalcCoplanarityVector();
    EstimateWork(project.problem, FamiliesOf(project.problem));
    run.seconds[kChoose] = watch.Lap();
    project.problem.coplanarity.clear();
  }
  mesh.RestoreNumbers();
}

/// Runs a problem file.
Run RunOnce(const std::string& file, const ResultFiles& results)
{
  Run run;
  MessageLog log;
  StopWatch watch;
  {
    Project project(100);
    std::ifstream in(file);
    project.ReadFromAscii(in);
    run.seconds[kRead] = watch.Lap();
    TimeChoice(project, watch, run);
    watch.Lap();
    project.Calc(1, log.File());
    Describe(project, run);  // not part of the run
    SplitAnalysis(log, watch, run);
    run.seconds[kProfile] -= run.seconds[kRenumber] + run.seconds[kChoose];
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

/// The count of numbers and words in a text file.
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

/// The first run with the median time of every stage.
Run MedianOf(const std::vector<Run>& runs)
{
  Run median = runs.at(0);
  for (int stage = 0; stage < kStages; ++stage) {
    std::vector<double> seconds;
    seconds.reserve(runs.size());
    for (const Run& run : runs)
      seconds.push_back(run.seconds[stage]);
    median.seconds[stage] = Median(seconds);
  }
  return median;
}

/// Mean bytes of an iteration. Some iterations have two right-hand sides.
double MeanTraffic(const Run& run)
{
  const int iterations = std::max(run.iterations, 1);
  const double both = static_cast<double>(run.iterations - run.singleIterations) / iterations;
  return run.iterationTraffic + both * run.vectorTraffic;
}

/// Prints one object of JSON in one line, for report.py.
void PrintJson(const std::string& file, const Run& run, double peak, double readBandwidth)
{
  std::printf("{\"model\": \"%s\", \"equations\": %d, \"nodes\": %d, \"elements\": %d, ",
              fs::path(file).stem().c_str(), run.equations, run.nodes, run.elements);
  std::printf("\"direct\": %s, \"iterations\": %d, \"factorisation_flops\": %.6g, ",
              run.direct ? "true" : "false", run.iterations, run.factorisationFlops);
  std::printf("\"storage\": %.0f, \"entries\": %.0f, \"iteration_traffic\": %.0f, ", run.storage,
              run.entries, MeanTraffic(run));
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
  RunOnce(file, results);
  std::vector<Run> runs;
  runs.reserve(static_cast<std::size_t>(repetitions));
  const double peak = MemoryPeak();
  for (int k = 0; k < repetitions; ++k)
    runs.push_back(RunOnce(file, results));
  Run median = MedianOf(runs);
  median.wordsWritten = CountWords(results.Text()) + CountWords(results.Post());
  PrintJson(file, median, peak, ReadBandwidth());
}

/// Measures in a separate process, so that its peak memory is that of one file.
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
  const auto [files, repetitions] = ParseTimedFiles(argc, argv, "morlen_stages", kRepetitions);
  bool allRan = true;
  for (const std::string& file : files)
    allRan = MeasureApart(file, repetitions) && allRan;
  return allRan ? 0 : 1;
}
