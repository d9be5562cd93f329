#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morlen {

/// A new folder for the files of a test. The destructor removes it with its content.
class TemporaryFolder
{
public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return path; }
  /// Writes a file and makes the folders of its name.
  void Write(const std::string& name, std::string_view content) const;
  /// Makes `name` a link to the file `target`.
  void Link(const std::string& name, const std::string& target) const;
  /// The content of a file. Fails the test and returns an empty text when there is none.
  std::string Read(const std::string& name) const;
  bool Has(const std::string& name) const { return std::filesystem::exists(path / name); }
  /// The contents of all files by name. Names include folders.
  std::map<std::string, std::string> Files() const;

private:
  std::filesystem::path path;
};

/// The exit status and the output of a run of the program.
struct RunResult
{
  int status = -1;  ///< exit status; -1 when a signal ended the run
  int signal = 0;   ///< the signal; 0 when the run ended by itself
  long memory = 0;  ///< peak memory in bytes
  std::string out;
  std::string err;
};

/// Unusual conditions of a run.
struct RunConditions
{
  std::string standardOutput = {};        ///< file of the folder; empty: RunResult
  std::vector<int> closed = {};           ///< standard streams that are closed
  std::optional<long> fileSize = {};      ///< most bytes of a written file
  std::optional<long> stack = {};         ///< most bytes of the stack
  std::optional<long> addressSpace = {};  ///< most bytes of memory
  std::optional<int> killAfter = {};      ///< microseconds
  std::optional<unsigned> user = {};      ///< number of the user and of the group
  std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to that of the test
};

/// A run of the built program that goes on while the test looks at its files.
class StartedRun
{
public:
  StartedRun(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
             const RunConditions& conditions = {});
  StartedRun(const StartedRun&) = delete;
  StartedRun& operator=(const StartedRun&) = delete;
  ~StartedRun();  ///< kills the run unless Wait has been called

  void Send(int signal) const;
  /// Waits for the end of the run.
  RunResult Wait();

private:
  TemporaryFolder streams;    ///< for the files of standard output and standard error
  std::filesystem::path out;  ///< the file of standard output
  bool ownOutput;             ///< that file is in `streams`
  int process = -1;
};

/// Runs the built program with these arguments in the folder, to its end.
RunResult RunProgram(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                     const RunConditions& conditions = {});

/// Writes problem.dat into a new folder and runs the program on it.
RunResult RunOnProblem(std::string_view problem);

/// Expects that a run has written this message on the standard error, and nothing after it but a
/// line "hint: ...". Returns the text of that line; empty without one.
std::string HintAfter(const std::string& message, const RunResult& run);

/// The content of a file outside the folders of tests. Fails the test when there is none.
std::string ReadFile(const std::filesystem::path& file);

}  // namespace morlen
