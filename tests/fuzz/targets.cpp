#include "fuzz/targets.h"

#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <initializer_list>

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

// Whether a word that printf writes for what is no finite number stands in the file.
bool HoldsNoNumber(const std::string& name)
{
  std::ifstream in(name);
  for (std::string word; in >> word;) {
    for (const char* wrong : {"nan", "-nan", "inf", "-inf"}) {
      if (word == wrong)
        return true;
    }
  }
  return false;
}

// Calls write(file) and tells whether the file holds nothing but numbers.
template <class Write>
bool WritesNumbers(Write write)
{
  std::ofstream file;
  OpenOutput(file, MemoryFile());
  write(file);
  CloseOutput(file);
  return !HoldsNoNumber(MemoryFile());
}

void Bound(Project& project)
{
  project.problem.numOfDivisions = std::min(project.problem.numOfDivisions, 20);
  project.problem.solverSettings.maxIterations =
      std::min(project.problem.solverSettings.maxIterations, 200);
}

// Names of units may be any word; these texts are not searched.
bool NamesNoNumber(std::string_view text)
{
  return text.find("nan") != text.npos || text.find("inf") != text.npos;
}

}  // namespace

Outcome ReadText(std::string_view text)
{
  Outcome outcome;
  outcome.message = FatalCaught([&] {
    Project project(100);
    TextScan scan(text);
    project.ReadFromAscii(scan);
  });
  return outcome;
}

Outcome AnalyseText(std::string_view text)
{
  Outcome outcome;
  bool finite = true;
  outcome.message = FatalCaught([&] {
    Project project(100);
    TextScan scan(text);
    project.ReadFromAscii(scan);
    Bound(project);
    project.Calc(1, nullptr);
    project.CalcStrengthsAndReactions(nullptr);
    finite = WritesNumbers([&](std::ofstream& out) { project.WriteResults(out); });
    finite &= WritesNumbers([&](std::ofstream& out) { project.WriteKivResults(out, nullptr); });
  });
  outcome.finite = finite || NamesNoNumber(text);
  return outcome;
}

}  // namespace morlen
