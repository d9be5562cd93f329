#include "support/text_run.h"

#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "base/errorwriter.h"
#include "base/output_file.h"
#include "base/textscan.h"
#include "run/project.h"
#include "support/run_ended.h"

namespace morlen {

namespace {

// The name of a file in memory, made once for the process.
const std::string& MemoryFile()
{
  static const std::string name =
      "/proc/self/fd/" + std::to_string(memfd_create("results", MFD_CLOEXEC));
  return name;
}

// The text that write(file) writes.
template <class Write>
std::string Written(Write write)
{
  std::ofstream file;
  OpenOutput(file, MemoryFile());
  write(file);
  CloseOutput(file);
  std::ifstream in(MemoryFile(), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void Bound(Project& project)
{
  project.problem.numOfDivisions = std::min(project.problem.numOfDivisions, 20);
  project.problem.solverSettings.maxIterations =
      std::min(project.problem.solverSettings.maxIterations, 200);
}

// Collects the warnings of its thread while it exists.
class WarningsHeard
{
public:
  explicit WarningsHeard(std::vector<std::string>& warnings)
      : outer(std::exchange(heard, &warnings)),
        previous(errorwriter.SetWarningListener(
            [](std::string_view warning) { heard->emplace_back(warning); }))
  {
  }
  WarningsHeard(const WarningsHeard&) = delete;
  WarningsHeard& operator=(const WarningsHeard&) = delete;
  ~WarningsHeard()
  {
    errorwriter.SetWarningListener(previous);
    heard = outer;
  }

private:
  static inline thread_local std::vector<std::string>* heard = nullptr;
  std::vector<std::string>* outer;
  ErrorWriter::WarningListener previous;
};

// The action gets the project and the run, after the text has been read.
template <class Action>
TextRun AfterReading(std::string_view text, Action action)
{
  TextRun run;
  const WarningsHeard warnings(run.warnings);
  bool done = false;
  run.message = FatalCaught([&] {
    Project project(100);
    TextScan scan(text);
    project.ReadFromAscii(scan);
    action(project, run);
    done = true;
  });
  if (!done)
    run.hint = errorwriter.Hint();
  return run;
}

}  // namespace

TextRun RunText(std::string_view text)
{
  return AfterReading(text, [](Project& project, TextRun& run) {
    Bound(project);
    project.Calc(1, nullptr);
    project.CalcStrengthsAndReactions(nullptr);
    std::string results = Written([&](std::ofstream& out) { project.WriteResults(out); });
    run.postResults = Written([&](std::ofstream& out) { project.WriteKivResults(out, nullptr); });
    run.results = std::move(results);
  });
}

TextRun RunReading(std::string_view text)
{
  return AfterReading(text, [](Project&, TextRun&) {});
}

}  // namespace morlen
