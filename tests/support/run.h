#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morlen {

/// A fresh folder for files of a test; removed with all that is in it.
class TemporaryFolder
{
public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return path; }
  /// Writes a file; the folders of its name are made.
  void Write(const std::string& name, std::string_view content) const;
  /// Makes `name` another name of the file `target`.
  void Link(const std::string& name, const std::string& target) const;
  /// Content of a file; fails the test and is empty when there is none.
  std::string Read(const std::string& name) const;
  bool Has(const std::string& name) const { return std::filesystem::exists(path / name); }
  /// Contents of all files by name, folders included in the name.
  std::map<std::string, std::string> Files() const;

private:
  std::filesystem::path path;
};

/// How a run of the program ended and what it wrote.
struct RunResult
{
  int status = -1;  ///< exit status; -1 when a signal ended the run
  long memory = 0;  ///< most bytes that the run had in memory
  std::string out;
  std::string err;
};

/// What a run finds around itself, where that is not the usual.
struct RunConditions
{
  std::string standardOutput = {};        ///< goes to this file of the folder, not to RunResult
  std::vector<int> closed = {};           ///< standard streams that are not open
  std::optional<long> fileSize = {};      ///< most bytes of a written file
  std::optional<long> stack = {};         ///< most bytes of the stack
  std::optional<long> addressSpace = {};  ///< most bytes of memory
  std::optional<int> killAfter = {};      ///< microseconds
  std::vector<std::pair<std::string, std::string>> environment = {};  ///< added to that of the test
};

/// Runs the built program with these arguments in the folder.
RunResult RunProgram(const TemporaryFolder& folder, const std::vector<std::string>& arguments,
                     const RunConditions& conditions = {});

/// Writes problem.dat into a fresh folder and runs the program on it.
RunResult RunOnProblem(std::string_view problem);

/// Content of a file outside the folders of tests; fails the test when there is none.
std::string ReadFile(const std::filesystem::path& file);

}  // namespace morlen
