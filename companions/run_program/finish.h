#pragma once

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
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
Outcome CannotRead(const std::string& file);

/// Tells on standard error that the problems of a file stop the run.
Outcome NotSolved(const std::string& file, const check::Report& report);

/// The same, and writes the page that shows them in the model, in the place of an older one; no
/// page when the model cannot be read, or with `-o -`. model: the text of the problem file.
Outcome NotSolved(const Job& job, const Options& options, const check::Report& report,
                  std::string_view model, std::vector<std::string> description);

/// Tells on standard error that results of an earlier run stay, where there are some. hasNewPage:
/// the page is not one of them.
void TellOfOldResults(const Job& job, bool hasNewPage);

/// Makes the folder of the results and removes the temporary files of killed runs from it. Fatal
/// when that fails.
void PrepareFolder(const std::filesystem::path& folder);

/// Lets this process keep as many files open as the system allows: every result is one until it
/// gets its name.
void AllowManyFiles();

/// Tests that files can be written, before the work for them. Fatal when one cannot.
void RequireWritable(std::span<const std::filesystem::path> files);

/// Adds the record of the run to the files, gives all their names, and prints these on standard
/// output. A signal in between takes effect at the end, so that the old and the new results are not
/// mixed. Returns the files of other runs. Fatal when a file cannot be written.
Neighbours Publish(const Job& job, std::vector<RecordedFile> inputs, const RunFacts& facts,
                   OutputSet& files);

/// Prints a file on standard output. Fatal when something is lost.
void PrintFile(const std::filesystem::path& file);

/// The name in the pages, the tables and the record.
std::string TitleOf(const Job& job);

/// Prints the warnings on standard error and the summary into a stream. Returns the status.
ExitStatus Tell(const Summary& summary, std::FILE* out);

}  // namespace morlen::run
