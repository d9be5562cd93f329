#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace morlen {

// The common part of the command lines of all companions: --help and --version, messages on
// standard error, and the exit status.

/// Exit status of a companion.
enum class ExitStatus : int
{
  Done = 0,
  Found = 1,  ///< the work is done, and the model or its results have errors
  Failed = 2  ///< the work cannot be done: wrong arguments, unreadable or unwritable files
};

/// The parser of a companion with this name and purpose, with --help and --version.
class CommandLine
{
public:
  CommandLine(const std::string& name, const std::string& purpose);

  CLI::App& Options() { return app; }

  /// Parses the arguments. Returns the exit status when the run ends here, after printing help or
  /// version on standard output or the fault on standard error.
  std::optional<ExitStatus> Parse(int argc, char** argv);

private:
  CLI::App app;
};

/// The status for the system at the end of a companion. Fatal, which is the status 2, when
/// something printed on standard output is lost.
int SystemStatus(ExitStatus status);

/// The version of the program and its companions.
const char* ProgramVersion();

}  // namespace morlen
