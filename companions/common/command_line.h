#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace morlen {

// What the command lines of all companions have in common: --help and --version, messages on
// standard error, and the exit status.

/// Exit status of a companion.
enum class ExitStatus : int
{
  Done = 0,
  Found = 1,  ///< the work is done and has found errors in what it was to judge
  Failed = 2  ///< the work cannot be done: wrong arguments, unreadable or unwritable files
};

/// The parser of a companion with this name and purpose, with --help and --version.
class CommandLine
{
public:
  CommandLine(const std::string& name, const std::string& purpose);

  CLI::App& Options() { return app; }

  /// Parses the arguments. The exit status when the run ends here, with what it has to say
  /// printed: help and version on standard output, faults on standard error.
  std::optional<ExitStatus> Parse(int argc, char** argv);

private:
  CLI::App app;
};

/// The version of the program and its companions.
const char* ProgramVersion();

}  // namespace morlen
