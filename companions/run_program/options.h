#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace morlen::run {

/// The command line of morlen-run.
struct Options
{
  std::vector<std::string> files;  ///< problem files and files of load cases; "-" is standard input
  std::optional<std::filesystem::path> folder;  ///< of the results; "-" is standard output
  int jobs = 1;                                 ///< files that are solved at the same time
  bool open = false;
  bool vtu = false;
  bool csv = false;
  bool json = false;
  bool strict = false;  ///< warnings of the check stop the run

  bool ToStandardOutput() const { return folder && *folder == "-"; }
};

void Declare(CLI::App& app, Options& options);

/// Fatal when options contradict each other.
void RequireConsistent(const Options& options);

}  // namespace morlen::run
