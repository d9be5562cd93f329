#pragma once

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "check/check.h"
#include "common/output_set.h"
#include "common/run_record.h"
#include "run_program/job.h"
#include "run_program/summary.h"

namespace morlen::run {

// The beginning and the end that runs of problem files and of load cases share.

/// The time since its construction.
class Stopwatch
{
public:
  double Seconds() const
  {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

private:
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// Tells on standard error that a file cannot be read, and why.
ExitStatus CannotRead(const std::string& file);

/// Tells on standard error that the problems of a file stop the run.
ExitStatus NotSolved(const std::string& file, const check::Report& report);

/// Tells on standard error that results of an earlier run stay, where there are some.
void TellOfOldResults(const Job& job);

/// Makes the folder of the results and removes the temporary files of killed runs from it. Fatal
/// when that fails.
void PrepareFolder(const std::filesystem::path& folder);

/// Tests that files can be written, before the work for them. Fatal when one cannot.
void RequireWritable(std::span<const std::filesystem::path> files);

/// Adds the record of the run to the files, gives all their names, and prints these on standard
/// output. A signal in between takes effect at the end, so that the old and the new results are not
/// mixed. Fatal when a file cannot be written.
void Publish(const Job& job, std::vector<RecordedFile> inputs, const RunFacts& facts,
             OutputSet& files);

/// Prints a file on standard output. Fatal when something is lost.
void PrintFile(const std::filesystem::path& file);

/// Prints the warnings on standard error and the summary into a stream. Returns the status.
ExitStatus Tell(const Summary& summary, std::FILE* out);

}  // namespace morlen::run
