#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "common/command_line.h"
#include "run_program/options.h"

namespace morlen::run {

/// One file to be solved, and the names of its results.
struct Job
{
  std::string input;           ///< as on the command line; "-" is standard input
  std::filesystem::path base;  ///< of the results, without ending
  bool isCases = false;        ///< a file of load cases

  bool IsStandardInput() const { return input == "-"; }
  /// A result: the base with this ending.
  std::filesystem::path Result(const char* ending) const;
  std::filesystem::path Folder() const;  ///< of the results
};

/// How a job has ended.
struct Outcome
{
  ExitStatus status;
  bool hasPage = false;  ///< the job has written the report
};

/// The jobs of a command line. Fatal when two of them would write the same results, or one would
/// replace an input.
std::vector<Job> PlanJobs(const Options& options);

}  // namespace morlen::run
